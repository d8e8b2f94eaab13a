#pragma once

#include <QString>

namespace halvane {

// The game's console has no escape character: a double quote ends a quoted
// value, a ';' or a line break ends a command, and on the game's command line
// a '+' starts one. A value is therefore checked for the place it is written
// to, and refused when the game would split it.
enum class ConsolePlace {
    Quoted,      // between double quotes in a script: seta sv_hostname "..."
    Unquoted,    // bare in a script: seta sv_maxRate ...
    Rotation,    // inside a quoted command sequence run later (set srv0 "...; map X; ...")
    CommandLine, // bare on the game's command line: +set g_password ...
    Parameters,  // the operator's own extra command-line parameters (+set ... +set ...)
};

// Index of the first character of text that the game would read as the end of
// the value or the start of another command in that place; -1 when none.
// Control characters (line breaks included) are refused everywhere, the
// comment marks "/*" and "*/" everywhere but between quotes; in the
// parameters only a double quote without a partner is refused.
qsizetype firstConsoleBreak(const QString& text, ConsolePlace place);

inline bool isConsoleSafe(const QString& text, ConsolePlace place) {
    return firstConsoleBreak(text, place) < 0;
}

// What a refused character is called in a message: "a double quote (\")",
// "a semicolon (;)", "a plus sign (+)", "a line break", "a control character
// (code 9)".
QString consoleCharacterName(QChar c);

// The refusal for the box (or file) named caption holding c, e.g.
// Server Name cannot hold a double quote ("): the game would read the rest as
// another command.
QString consoleRefusal(const QString& caption, QChar c);

// The message for text refused in place, or an empty text when it is safe.
QString consoleRefusal(const QString& caption, const QString& text, ConsolePlace place);

// True when name (a map's file name without ".bsp") can stand in a map
// command and a rotation line as one word: not empty, no blank, no control
// character, no double quote, no ';' and no comment mark ("//", "/*" or
// "*/", which would hide the rest of a rotation line or end a hidden part).
bool isConsoleSafeMapName(const QString& name);

// The refusal for a map name typed into the box named caption, or an empty
// text when isConsoleSafeMapName holds (an empty name is the caller's to judge).
QString mapNameRefusal(const QString& caption, const QString& name);

} // namespace halvane
