#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <optional>

// The game's connectionless queries over UDP: the status query and the
// remote console. Plain functions of bytes, so they are tested without a
// network.
namespace halvane::protocol {

// The largest message the engine sends; anything longer is not its answer.
constexpr int MaxPacket = 16384;

QByteArray statusRequest();
// The engine takes the password up to the first blank and the rest of the
// packet as the command.
QByteArray rconRequest(const QString& password, const QString& command);

enum class PacketKind { Status, Print, Other };
PacketKind kindOf(const QByteArray& datagram);

struct Player {
    int score = 0;
    int ping = 0;
    QString name; // as the game sends it, colour codes included
};

struct ServerStatus {
    QMap<QString, QString> info; // server variables by name
    QList<Player> players;
    QString value(const char* key) const { return info.value(QLatin1String(key)); }
};

// A status answer; nothing and the reason when the datagram is none.
std::optional<ServerStatus> parseStatus(const QByteArray& datagram, QString* error = nullptr);

// The text of a remote console answer, which the engine sends in as many
// print packets as it needs. A real answer is far shorter than the cap; a
// longer one is cut there.
constexpr qsizetype MaxAnswer = 64 * 1024;
struct RconAnswer {
    QString text;
    QString error; // empty when the server ran the command
    QString cut;   // why the text is not all the server sent, empty when it is
};
RconAnswer rconAnswer(const QList<QByteArray>& datagrams);

// Why a password cannot be used on the remote console; empty when it can.
QString rconPasswordProblem(const QString& password);

// The client number of the named player in the remote console's "status"
// table, -1 when none.
int clientNumber(const QString& statusText, const QString& name);

// Colour codes are a caret and a letter or digit. Control characters other
// than line ends and tabs go too.
QString withoutColours(const QString& text);
QString colouredHtml(const QString& text);
// At most visible characters that show (colour codes kept), and an ellipsis
// when text was longer: names from the network are any length.
QString cutForDisplay(const QString& text, qsizetype visible);

QString gameTypeName(const QString& gameType);

// The UDP port the game opened, from the start of its console output: it
// tries the next port while one is taken, whatever port it was given, and
// says so ("Opening IP socket: 0.0.0.0:27961"). Nothing until a line after
// the last such line shows that attempt was not refused. 0 when it asked
// the system for any free port (a port box that held no number), which it
// does not print.
std::optional<quint16> openedPort(const QByteArray& consoleOutput);

} // namespace halvane::protocol
