#include "server/ServerProtocol.h"

#include <QRegularExpression>

namespace halvane::protocol {

namespace {
const QByteArray OutOfBand("\xff\xff\xff\xff", 4);
const QByteArray StatusHeader = OutOfBand + "statusResponse";
const QByteArray PrintHeader = OutOfBand + "print\n";

bool isColourCode(const QString& text, qsizetype at) {
    if (text.at(at) != QLatin1Char('^') || at + 1 >= text.size())
        return false;
    const char16_t next = text.at(at + 1).unicode();
    return (next >= '0' && next <= '9') || (next >= 'a' && next <= 'z') ||
           (next >= 'A' && next <= 'Z');
}

bool setError(QString* error, const QString& text) {
    if (error)
        *error = text;
    return false;
}
} // namespace

QByteArray statusRequest() {
    return OutOfBand + "getstatus";
}

QByteArray rconRequest(const QString& password, const QString& command) {
    QString line = command;
    line.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return OutOfBand + "rcon " + password.toLatin1() + ' ' + line.toLatin1();
}

PacketKind kindOf(const QByteArray& datagram) {
    if (datagram.startsWith(StatusHeader))
        return PacketKind::Status;
    if (datagram.startsWith(PrintHeader))
        return PacketKind::Print;
    return PacketKind::Other;
}

std::optional<ServerStatus> parseStatus(const QByteArray& datagram, QString* error) {
    if (datagram.size() > MaxPacket) {
        setError(error, QStringLiteral("answered with %1 bytes, more than a status answer can "
                                       "hold")
                            .arg(datagram.size()));
        return std::nullopt;
    }
    if (kindOf(datagram) != PacketKind::Status) {
        setError(error, QStringLiteral("answered with something that is not a status (%1 bytes)")
                            .arg(datagram.size()));
        return std::nullopt;
    }
    const QList<QByteArray> lines = datagram.mid(StatusHeader.size()).split('\n');
    if (lines.size() < 2 || !lines[1].startsWith('\\')) {
        setError(error, QStringLiteral("sent a status answer that was cut short"));
        return std::nullopt;
    }
    ServerStatus status;
    const QList<QByteArray> pairs = lines[1].split('\\');
    // A key without its value is what is left of a cut answer.
    for (qsizetype i = 1; i + 1 < pairs.size(); i += 2)
        status.info.insert(QString::fromLatin1(pairs[i]), QString::fromLatin1(pairs[i + 1]));
    for (qsizetype i = 2; i < lines.size(); ++i) {
        // score ping "name"; the name runs to the last quote, or to the end
        // of a cut line.
        const QByteArray& line = lines[i];
        const qsizetype open = line.indexOf('"');
        if (open < 0)
            continue;
        const QList<QByteArray> numbers = line.left(open).simplified().split(' ');
        bool scoreOk = false, pingOk = false;
        Player player;
        player.score = numbers.value(0).toInt(&scoreOk);
        player.ping = numbers.value(1).toInt(&pingOk);
        if (numbers.size() != 2 || !scoreOk || !pingOk)
            continue;
        const qsizetype close = line.lastIndexOf('"');
        player.name = QString::fromLatin1(close > open ? line.mid(open + 1, close - open - 1)
                                                       : line.mid(open + 1));
        status.players.append(player);
    }
    return status;
}

RconAnswer rconAnswer(const QList<QByteArray>& datagrams) {
    RconAnswer answer;
    bool any = false;
    for (const QByteArray& datagram : datagrams) {
        if (kindOf(datagram) != PacketKind::Print)
            continue;
        any = true;
        answer.text += QString::fromLatin1(datagram.mid(PrintHeader.size()));
        if (answer.text.size() > MaxAnswer) {
            answer.text.truncate(MaxAnswer);
            answer.cut = QStringLiteral("longer than %1 KB").arg(MaxAnswer / 1024);
            break;
        }
    }
    const QString trimmed = answer.text.trimmed();
    if (!any)
        answer.error = QStringLiteral("no answer from the server's console");
    else if (trimmed == QLatin1String("Bad rconpassword."))
        answer.error = QStringLiteral("the server refused the Console (rcon) Password");
    else if (trimmed == QLatin1String("No rconpassword set on the server."))
        answer.error = QStringLiteral("the server has no Console (rcon) Password");
    return answer;
}

QString rconPasswordProblem(const QString& password) {
    if (password.isEmpty())
        return QStringLiteral("Set a \"Console (rcon) Password\" on the Advanced tab and launch "
                              "the server again to use this");
    for (const QChar c : password) {
        if (c.isSpace())
            return QStringLiteral("The \"Console (rcon) Password\" (Advanced tab) holds a blank, "
                                  "which the game's remote console cannot take");
    }
    return QString();
}

int clientNumber(const QString& statusText, const QString& name) {
    // "num score ping name ...": the ping may read CNCT or ZMBI, and the
    // name, which may hold blanks, is followed by a colour reset or blanks.
    static const QRegularExpression row(
        QStringLiteral("^\\s*(\\d+)\\s+-?\\d+\\s+(?:\\d+|CNCT|ZMBI) (.*)$"));
    if (name.isEmpty())
        return -1;
    for (const QString& line : statusText.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch match = row.match(line);
        if (!match.hasMatch())
            continue;
        const QString rest = match.captured(2);
        const QString after = rest.mid(name.size());
        if (rest.startsWith(name) && (after.isEmpty() || after.startsWith(QLatin1Char(' ')) ||
                                      after.startsWith(QLatin1String("^7"))))
            return match.captured(1).toInt();
    }
    return -1;
}

QString withoutColours(const QString& text) {
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (isColourCode(text, i))
            ++i;
        else if (c >= 0x20 || c == '\n' || c == '\t')
            plain.append(text.at(i));
    }
    return plain;
}

QString colouredHtml(const QString& text) {
    // Readable on a light window: white is the normal text colour.
    static const char* const colours[8] = {"#000000", "#cc0000", "#008800", "#b8860b",
                                           "#0000cc", "#008b8b", "#aa00aa", nullptr};
    QString html;
    QString run;
    const char* colour = nullptr;
    const auto flush = [&] {
        if (run.isEmpty())
            return;
        const QString escaped = run.toHtmlEscaped();
        html += colour ? QStringLiteral("<span style=\"color:%1\">%2</span>")
                             .arg(QLatin1String(colour), escaped)
                       : escaped;
        run.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isColourCode(text, i)) {
            flush();
            colour = colours[(text.at(i + 1).unicode() - '0') & 7];
            ++i;
        } else if (text.at(i).unicode() >= 0x20) {
            run.append(text.at(i));
        }
    }
    flush();
    return html;
}

QString cutForDisplay(const QString& text, qsizetype visible) {
    qsizetype shown = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isColourCode(text, i)) {
            ++i;
            continue;
        }
        if (text.at(i).unicode() >= 0x20 && ++shown > visible)
            return text.left(i) + QChar(0x2026);
    }
    return text;
}

QString gameTypeName(const QString& gameType) {
    static const char* const names[] = {"Free for all",    "Tournament",        "Single Player",
                                        "Team Play",       "Capture the Flag",  "One Flag CTF",
                                        "Overload",        "Harvester",         "Elimination",
                                        "CTF Elimination", "Last Man Standing", "Double Domination",
                                        "Domination"};
    bool ok = false;
    const int index = gameType.toInt(&ok);
    if (ok && index >= 0 && index < int(std::size(names)))
        return QLatin1String(names[index]);
    return gameType.isEmpty() ? QString() : QStringLiteral("type ") + gameType;
}

std::optional<quint16> openedPort(const QByteArray& consoleOutput) {
    std::optional<quint16> opened;
    bool confirmed = false;
    const QList<QByteArray> lines = consoleOutput.split('\n');
    // The last piece is a line still being written.
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        if (line.startsWith("Opening IP socket: ")) {
            bool ok = false;
            const uint port = line.mid(line.lastIndexOf(':') + 1).toUInt(&ok);
            opened = ok && port <= 65535 ? std::optional(quint16(port)) : std::nullopt;
            confirmed = false;
        } else if (opened && !confirmed) {
            confirmed = !line.startsWith("WARNING: NET_IPSocket");
            if (!confirmed)
                opened.reset();
        }
    }
    return confirmed ? opened : std::nullopt;
}

} // namespace halvane::protocol
