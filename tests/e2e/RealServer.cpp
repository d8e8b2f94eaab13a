#include "RealServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QNetworkDatagram>
#include <QRegularExpression>
#include <QThread>
#include <QUdpSocket>

namespace halvane::e2e {

using namespace std::chrono_literals;

static const QByteArray OutOfBand("\xff\xff\xff\xff", 4);
static const QString Engine = QStringLiteral("/usr/lib/ioquake3/ioq3ded");
static const QString DataFolder = QStringLiteral("/usr/share/games/openarena/baseoa");
static const QString GameLibrary =
    QStringLiteral("/usr/lib/openarena-server/baseoa/qagamex86_64.so");

QString missingEngine() {
    if (!QFileInfo(Engine).isExecutable())
        return QStringLiteral("no dedicated server engine at ") + Engine;
    if (QDir(DataFolder).entryList({QStringLiteral("*.pk3")}, QDir::Files).isEmpty())
        return QStringLiteral("no OpenArena archives in ") + DataFolder;
    if (!QFileInfo::exists(GameLibrary))
        return QStringLiteral("no OpenArena game library at ") + GameLibrary;
    return QString();
}

QString buildGameFolder(const QString& folder) {
    const QDir root(folder);
    for (const char* sub : {"baseoa", "baseq3", "home"}) {
        if (!root.mkpath(QLatin1String(sub)))
            return QStringLiteral("cannot make ") + root.filePath(QLatin1String(sub));
    }
    QStringList links = {GameLibrary};
    for (const QFileInfo& archive : QDir(DataFolder).entryInfoList({"*.pk3"}, QDir::Files))
        links.append(archive.filePath());
    for (const QString& target : links) {
        const QString link =
            root.filePath(QStringLiteral("baseoa/") + QFileInfo(target).fileName());
        if (!QFile::exists(link) && !QFile::link(target, link))
            return QStringLiteral("cannot link ") + link;
    }

    const QString absolute = QFileInfo(folder).absoluteFilePath();
    const QString script =
        QStringLiteral("#!/bin/sh\n"
                       "exec %1 +set com_basegame baseoa +set fs_game baseq3 +set fs_basepath "
                       "'%2' +set fs_homepath '%2/home' +set com_legacyprotocol 71 +set "
                       "com_protocol 71 +set vm_game 0 \"$@\"\n")
            .arg(Engine, absolute);
    QFile exe(root.filePath(QStringLiteral("quake3.exe")));
    if (!exe.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        exe.write(script.toUtf8()) != script.toUtf8().size())
        return QStringLiteral("cannot write ") + exe.fileName();
    exe.close();
    exe.setPermissions(QFileDevice::Permissions(0x7050)); // the owner's, the group may run it
    return QString();
}

quint16 freeUdpPort() {
    QUdpSocket socket;
    return socket.bind(QHostAddress::LocalHost, 0) ? socket.localPort() : 0;
}

// "statusResponse", then \key\value\key\value..., then one line per player: score ping "name".
static ServerStatus parseStatus(const QByteArray& reply) {
    ServerStatus status;
    const QStringList lines = QString::fromLatin1(reply).split('\n');
    const QStringList pairs = lines.value(1).split('\\');
    for (qsizetype i = 1; i + 1 < pairs.size(); i += 2)
        status.info.insert(pairs[i], pairs[i + 1]);
    static const QRegularExpression player(QStringLiteral("^-?\\d+ +-?\\d+ +\"(.*)\"$"));
    for (const QString& line : lines.mid(2)) {
        const QRegularExpressionMatch m = player.match(line.trimmed());
        if (m.hasMatch())
            status.players.insert(m.captured(1));
    }
    return status;
}

// Sends one out-of-band packet and returns the first answer, if any in time.
static std::optional<QByteArray> query(quint16 port, const QByteArray& command,
                                       std::chrono::milliseconds timeout) {
    QUdpSocket socket;
    if (!socket.bind(QHostAddress::LocalHost, 0))
        return std::nullopt;
    const QByteArray packet = OutOfBand + command;
    if (socket.writeDatagram(packet, QHostAddress::LocalHost, port) != packet.size())
        return std::nullopt;
    for (QDeadlineTimer deadline(timeout); !deadline.hasExpired();) {
        if (!socket.hasPendingDatagrams() &&
            !socket.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
            continue;
        const QByteArray reply = socket.receiveDatagram().data();
        if (reply.startsWith(OutOfBand))
            return reply.mid(4);
    }
    return std::nullopt;
}

std::optional<ServerStatus> getStatus(quint16 port) {
    const auto reply = query(port, "getstatus", 1s);
    return reply && reply->startsWith("statusResponse") ? std::optional(parseStatus(*reply))
                                                        : std::nullopt;
}

std::optional<QString> rcon(quint16 port, const QString& password, const QString& command) {
    const auto reply =
        query(port, QStringLiteral("rcon %1 %2").arg(password, command).toLatin1(), 2s);
    return reply && reply->startsWith("print") ? std::optional(QString::fromLatin1(reply->mid(6)))
                                               : std::nullopt;
}

std::optional<ServerStatus> waitForMap(quint16 port, const QString& map,
                                       const std::function<bool()>& serverLives,
                                       const QSet<QString>& players) {
    for (QDeadlineTimer deadline(60s); !deadline.hasExpired() && serverLives();
         QThread::msleep(200)) {
        const auto status = getStatus(port);
        if (status && status->info.value("mapname") == map &&
            (players.isEmpty() || status->players == players))
            return status;
    }
    return std::nullopt;
}

} // namespace halvane::e2e
