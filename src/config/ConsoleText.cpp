#include "config/ConsoleText.h"

namespace halvane {

namespace {

bool isControl(QChar c) {
    return c.unicode() < 0x20 || c.unicode() == 0x7f || (c.unicode() >= 0x80 && c.unicode() < 0xa0);
}

bool breaks(QChar c, ConsolePlace place) {
    if (isControl(c))
        return true;
    switch (place) {
    case ConsolePlace::Quoted:
        return c == QLatin1Char('"');
    case ConsolePlace::Unquoted:
    case ConsolePlace::Rotation:
        // A bare quote would also make the console read the rest of the line
        // as one quoted text, hiding what follows.
        return c == QLatin1Char('"') || c == QLatin1Char(';');
    case ConsolePlace::CommandLine:
        return c == QLatin1Char('"') || c == QLatin1Char(';') || c == QLatin1Char('+');
    case ConsolePlace::Parameters:
        return c == QLatin1Char(';');
    }
    return false;
}

// "/*" hides everything up to the next "*/", line breaks included, and what
// follows a "*/" is read as a command of its own; between quotes neither counts.
bool isCommentMark(const QString& text, qsizetype at) {
    const QStringView pair = QStringView(text).mid(at, 2);
    return pair == QLatin1String("/*") || pair == QLatin1String("*/");
}

} // namespace

qsizetype firstConsoleBreak(const QString& text, ConsolePlace place) {
    qsizetype lastQuote = -1;
    bool open = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (breaks(c, place) || (place != ConsolePlace::Quoted && isCommentMark(text, i)))
            return i;
        if (c == QLatin1Char('"')) {
            open = !open;
            lastQuote = i;
        }
    }
    // The parameters may quote a value with blanks; a quote left open would
    // swallow the "+exec halvane.cfg" that follows them.
    if (place == ConsolePlace::Parameters && open)
        return lastQuote;
    return -1;
}

QString consoleCharacterName(QChar c) {
    switch (c.unicode()) {
    case '"':
        return QStringLiteral("a double quote (\")");
    case ';':
        return QStringLiteral("a semicolon (;)");
    case '+':
        return QStringLiteral("a plus sign (+)");
    case '\r':
    case '\n':
        return QStringLiteral("a line break");
    case ' ':
        return QStringLiteral("a blank");
    default:
        if (isControl(c))
            return QStringLiteral("a control character (code %1)").arg(c.unicode());
        return QStringLiteral("the character ") + c;
    }
}

QString consoleRefusal(const QString& caption, QChar c) {
    return caption + QStringLiteral(" cannot hold ") + consoleCharacterName(c) +
           QStringLiteral(": the game would read the rest as another command.");
}

QString consoleRefusal(const QString& caption, const QString& text, ConsolePlace place) {
    const qsizetype at = firstConsoleBreak(text, place);
    if (at >= 0 && isCommentMark(text, at))
        return caption + QStringLiteral(" cannot hold a comment mark (") + text.mid(at, 2) +
               QStringLiteral("): the game would read the rest as another command.");
    return at < 0 ? QString() : consoleRefusal(caption, text[at]);
}

QString mapNameRefusal(const QString& caption, const QString& name) {
    for (const QChar c : name) {
        if (isControl(c) || c.isSpace() || c == QLatin1Char('"') || c == QLatin1Char(';'))
            return consoleRefusal(caption, c);
    }
    for (const char* mark : {"//", "/*", "*/"}) {
        if (name.contains(QLatin1String(mark)))
            return caption + QStringLiteral(" cannot hold a comment mark (") + QLatin1String(mark) +
                   QStringLiteral("): the game would not read the rest.");
    }
    return QString();
}

bool isConsoleSafeMapName(const QString& name) {
    return !name.isEmpty() && mapNameRefusal(QString(), name).isEmpty();
}

} // namespace halvane
