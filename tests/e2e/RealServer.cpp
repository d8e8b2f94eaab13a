#include "RealServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QRegularExpression>
#include <QThread>
#include <QUdpSocket>

namespace halvane::e2e {

static const QByteArray OutOfBand("\xff\xff\xff\xff", 4);

QString missingEngine(const EngineFiles& files) {
    if (!QFileInfo(files.engine).isExecutable())
        return QStringLiteral("no dedicated server engine at ") + files.engine;
    if (QDir(files.dataFolder).entryList({QStringLiteral("*.pk3")}, QDir::Files).isEmpty())
        return QStringLiteral("no OpenArena archives in ") + files.dataFolder;
    if (!QFileInfo::exists(files.gameLibrary))
        return QStringLiteral("no OpenArena game library at ") + files.gameLibrary;
    return QString();
}

QString buildGameFolder(const QString& folder, const EngineFiles& files) {
    const QDir root(folder);
    for (const char* sub : {"baseoa", "baseq3", "home"}) {
        if (!root.mkpath(QLatin1String(sub)))
            return QStringLiteral("cannot make ") + root.filePath(QLatin1String(sub));
    }
    QStringList links;
    const QDir data(files.dataFolder);
    for (const QString& archive : data.entryList({QStringLiteral("*.pk3")}, QDir::Files))
        links.append(data.filePath(archive));
    links.append(files.gameLibrary);
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
            .arg(files.engine, absolute);
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

QStringList ServerStatus::playerNames() const {
    QStringList names;
    for (const Player& player : players)
        names.append(player.name);
    return names;
}

// "statusResponse", then \key\value\key\value..., then one line per player: score ping "name".
ServerStatus parseStatus(const QByteArray& reply) {
    ServerStatus status;
    const QStringList lines = QString::fromLatin1(reply).split('\n');
    const QStringList pairs = lines.value(1).split('\\');
    for (qsizetype i = 1; i + 1 < pairs.size(); i += 2)
        status.info.insert(pairs[i], pairs[i + 1]);
    static const QRegularExpression player(QStringLiteral("^(-?\\d+) +(-?\\d+) +\"(.*)\"$"));
    for (const QString& line : lines.mid(2)) {
        const QRegularExpressionMatch m = player.match(line.trimmed());
        if (m.hasMatch())
            status.players.append({m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3)});
    }
    return status;
}

std::optional<QByteArray> query(quint16 port, const QByteArray& command,
                                std::chrono::milliseconds timeout) {
    QUdpSocket socket;
    if (!socket.bind(QHostAddress::LocalHost, 0))
        return std::nullopt;
    const QByteArray packet = OutOfBand + command;
    if (socket.writeDatagram(packet, QHostAddress::LocalHost, port) != packet.size())
        return std::nullopt;
    QDeadlineTimer deadline(timeout);
    while (!deadline.hasExpired()) {
        if (!socket.hasPendingDatagrams() &&
            !socket.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
            continue;
        while (socket.hasPendingDatagrams()) {
            QByteArray reply(int(socket.pendingDatagramSize()), '\0');
            const qint64 size = socket.readDatagram(reply.data(), reply.size());
            if (size >= 4 && reply.startsWith(OutOfBand))
                return reply.mid(4, size - 4);
        }
    }
    return std::nullopt;
}

std::optional<ServerStatus> getStatus(quint16 port, std::chrono::milliseconds timeout) {
    const auto reply = query(port, "getstatus", timeout);
    return reply && reply->startsWith("statusResponse") ? std::optional(parseStatus(*reply))
                                                        : std::nullopt;
}

std::optional<QString> rcon(quint16 port, const QString& password, const QString& command,
                            std::chrono::milliseconds timeout) {
    const auto reply =
        query(port, QStringLiteral("rcon %1 %2").arg(password, command).toLatin1(), timeout);
    return reply && reply->startsWith("print") ? std::optional(QString::fromLatin1(reply->mid(6)))
                                               : std::nullopt;
}

std::optional<ServerStatus> waitForStatus(quint16 port,
                                          const std::function<bool(const ServerStatus&)>& ok,
                                          std::chrono::milliseconds timeout,
                                          const std::function<bool()>& serverLives) {
    std::optional<ServerStatus> last;
    QDeadlineTimer deadline(timeout);
    while (!deadline.hasExpired() && serverLives()) {
        if (auto status = getStatus(port, std::chrono::milliseconds(500))) {
            last = status;
            if (ok(*status))
                return last;
        }
        QThread::msleep(200);
    }
    return last;
}

} // namespace halvane::e2e
