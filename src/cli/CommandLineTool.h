#pragma once

#include <QStringList>

namespace halvane {

// The commands of `halvane COMMAND ...`, which need no display: the same
// settings load, validation and writers as the window, with messages on
// standard error.
namespace cli {

// How a command ends; the manual page lists them.
enum ExitCode {
    Done = 0,
    Failed = 1,     // the command was refused or failed; a message said why
    Usage = 2,      // unknown command or argument, or one missing
    NotFound = 3,   // no such profile or server
    NoLocation = 4, // no usable game location is stored
};

// True when the program's arguments ask for a command rather than the window.
bool isCommand(const QStringList& arguments);

// Runs the command in arguments (the program's, without its own name).
// Needs a QApplication on any platform, "offscreen" included.
int run(const QStringList& arguments);

QString helpText();

} // namespace cli
} // namespace halvane
