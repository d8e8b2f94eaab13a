#include "server/ServerManager.h"

#include "app/AppContext.h"
#include "platform/Supervisor.h"
#include "server/ScriptCopy.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace halvane {

namespace {
constexpr int FirstPacketMs = 3000; // the console's first answer
constexpr int QuietMs = 300;        // after the last packet of an answer
constexpr int StopTickMs = 250;
constexpr quint16 GamePort = 27960; // what the game takes without a port

// How a run ended is written beside its log.
QString statusFileOf(const QString& logFile) {
    if (logFile.isEmpty())
        return QString();
    QString stem = logFile;
    if (stem.endsWith(QLatin1String(".log")))
        stem.chop(4);
    return stem + QStringLiteral(".exit");
}

QString serverId(const QDateTime& started, qint64 pid) {
    return started.toString(QStringLiteral("yyyyMMddHHmmsszzz")) + QLatin1Char('-') +
           QString::number(pid);
}
} // namespace

ServerManager::ServerManager(AppContext& app, QObject* parent, Role role)
    : QObject(parent), m_app(app), m_role(role),
      m_file(app.platform.folder.stateFolder() + QStringLiteral("/servers.jsonl")) {
    m_tick.setInterval(RefreshMs);
    connect(&m_tick, &QTimer::timeout, this, &ServerManager::refresh);
    m_stopTick.setInterval(StopTickMs);
    connect(&m_stopTick, &QTimer::timeout, this, &ServerManager::checkStopping);
    connect(&m_socket, &UdpSocket::readyRead, this, &ServerManager::readDatagrams);
}

ServerManager::~ServerManager() = default;

void ServerManager::load() {
    if (m_loaded)
        return;
    m_loaded = true;
    const LoadedRecords loaded = m_file.load();
    if (!loaded.problems.isEmpty())
        m_fileProblem = QStringLiteral("Damaged server list %1: %2")
                            .arg(QDir::toNativeSeparators(m_file.path()),
                                 loaded.problems.join(QStringLiteral("; ")));
    bool changed = !loaded.problems.isEmpty();
    const QDateTime now = QDateTime::currentDateTime();
    for (const LaunchRecord& record : loaded.records) {
        m_servers.append({record, {}});
        ServerEntry& server = m_servers.last();
        server.live.expectedSince = now;
        server.live.portRead = record.port != 0;
        if (record.running() && !record.added && !alive(record)) {
            processEnded(server, QStringLiteral("ended while Halvane was not running"), true);
            changed = true;
        }
    }
    if (changed)
        save();
    else
        noteFile();
    // Only from a list read whole: a line lost to damage would leave its
    // server's folders looking unused.
    if (loaded.problems.isEmpty() && QFileInfo::exists(m_file.path()))
        removeStrayScriptFolders();
    m_tick.start();
    emit listChanged();
}

void ServerManager::noteFile() {
    const QFileInfo info(m_file.path());
    m_fileSize = info.exists() ? info.size() : -1;
    m_fileTime = info.lastModified();
}

void ServerManager::takeOthersRecords() {
    const QFileInfo info(m_file.path());
    if (m_role == Role::Look || !info.exists() ||
        (info.size() == m_fileSize && info.lastModified() == m_fileTime))
        return;
    noteFile();
    const QDateTime now = QDateTime::currentDateTime();
    QList<ServerEntry> others;
    for (const LaunchRecord& record : m_file.peek()) {
        if (m_removed.contains(record.id))
            continue;
        ServerEntry* known = entry(record.id);
        if (!known) {
            others.append({record, {}});
            others.last().live.expectedSince = now;
            others.last().live.portRead = record.port != 0;
        } else if (!record.running() && known->record.running() && !known->record.added &&
                   known->live.stopping == ServerLive::Stopping::No && !alive(known->record)) {
            known->record.ended = record.ended;
            known->record.endReason = record.endReason;
            known->record.exitStatus = record.exitStatus;
            known->live.status.reset();
            emit serverChanged(record.id);
        }
    }
    if (others.isEmpty())
        return;
    m_servers = others + m_servers; // newer than what this one read before
    emit listChanged();
}

const QList<ServerEntry>& ServerManager::servers() {
    load();
    return m_servers;
}

const ServerEntry* ServerManager::find(const QString& id) {
    load();
    return entry(id);
}

ServerEntry* ServerManager::entry(const QString& id) {
    for (ServerEntry& server : m_servers) {
        if (server.record.id == id)
            return &server;
    }
    return nullptr;
}

bool ServerManager::alive(const LaunchRecord& record) const {
    // Without its start time a process id could be anyone's.
    return record.processStart != 0 &&
           m_app.platform.processes.startTimeOf(record.pid) == record.processStart;
}

QString ServerManager::newLogFile(quint16 port, QString& problem) const {
    const QString folder = m_app.platform.folder.stateFolder() + QStringLiteral("/logs");
    const QDir logs(folder);
    if (!logs.mkpath(QStringLiteral("."))) {
        problem = QStringLiteral("cannot make the folder ") + QDir::toNativeSeparators(folder);
        return QString();
    }
    const QString stem = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss")) +
                         QStringLiteral("-%1").arg(port);
    QString path = logs.filePath(stem + QStringLiteral(".log"));
    for (int n = 2; QFile::exists(path); ++n)
        path = logs.filePath(stem + QStringLiteral("-%1.log").arg(n));
    QFile probe(path);
    if (!probe.open(QIODevice::WriteOnly | QIODevice::Append)) {
        problem = QDir::toNativeSeparators(path) + QStringLiteral(": ") + probe.errorString();
        return QString();
    }
    return path;
}

StartResult ServerManager::launch(const QString& program, const QStringList& arguments,
                                  const QString& folder, const QString& commandLine,
                                  const QString& address, const QString& port,
                                  const QString& rconPassword) {
    return launch(
        {program, arguments, folder, commandLine, address, port, rconPassword, {}, {}, {}});
}

StartResult ServerManager::launch(const ServerStart& start) {
    load();
    LaunchRecord record;
    record.program = start.program;
    record.arguments = start.arguments;
    record.commandLine = start.commandLine;
    record.gameFolder = start.gameFolder;
    record.profile = start.profile;
    record.hostName = start.hostName;
    const QString ip = start.address.trimmed();
    // A server bound to every address answers on the loopback one.
    record.address =
        ip.isEmpty() || ip == QLatin1String("0.0.0.0") ? QStringLiteral("127.0.0.1") : ip;
    // Only a hint: a taken port moves the game on, and text that is no
    // number makes it take any free port. Where it listens comes from its log.
    bool portOk = false;
    const QString port = start.port.trimmed();
    const uint number = port.toUInt(&portOk);
    record.portAsked = portOk && number > 0 && number <= 65535 ? quint16(number)
                       : port.isEmpty()                        ? GamePort
                                                               : 0;
    record.rconPassword = start.rconPassword;
    m_launchProblem.clear();
    QString logProblem;
    record.logFile = newLogFile(record.portAsked, logProblem);
    const StartResult started = m_app.platform.processes.startSupervised(
        record.program, record.arguments, record.gameFolder, record.logFile,
        statusFileOf(record.logFile));
    if (!started.started) {
        if (!record.logFile.isEmpty())
            QFile::remove(record.logFile); // the empty file made for it
        return started;
    }
    record.pid = started.taskId;
    record.processStart = started.startTime;
    record.started = QDateTime::currentDateTime();
    record.id = serverId(record.started, record.pid);
    // Taken now, before a later launch rewrites the game folder's scripts.
    QStringList sources{record.gameFolder};
    if (!start.scriptFolder.isEmpty())
        sources.prepend(start.scriptFolder);
    const QString copies = m_app.platform.folder.stateFolder() + QStringLiteral("/servers");
    QDir().mkpath(copies);
    // Its scripts hold the console passwords: for the user alone.
    QFile::setPermissions(copies,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    record.scripts = copies + QLatin1Char('/') + record.id;
    const QString copyProblem = copyServerScripts(sources, record.arguments, record.scripts);
    m_servers.prepend({record, {}});
    ServerEntry& server = m_servers.first();
    server.live.expectedSince = record.started;
    server.live.fresh = true;
    // The last ones that ended stay listed, the older ones go.
    int ended = 0;
    m_servers.removeIf([&](const ServerEntry& entry) {
        if (entry.record.running() || ++ended <= KeptEnded)
            return false;
        m_droppedFolders.unite(scriptFoldersOf(entry.record));
        return true;
    });
    QStringList problems;
    if (record.logFile.isEmpty())
        problems << QStringLiteral("No log: ") + logProblem;
    if (!copyProblem.isEmpty())
        problems << QStringLiteral("No copy of its scripts for a restart: ") + copyProblem;
    m_servers.first().live.problem = problems.join(QLatin1Char('\n'));
    save();
    // Said at the launch, not only in the server window.
    QStringList lost;
    if (record.logFile.isEmpty())
        lost << QStringLiteral("Its output is not logged: ") + logProblem + QLatin1Char('.');
    if (!copyProblem.isEmpty())
        lost << QStringLiteral("Restart cannot use the scripts it was started with: ") +
                    copyProblem + QLatin1Char('.');
    if (m_fileProblem.startsWith(QLatin1String("Could not write")))
        lost << QStringLiteral("It is not recorded, so the server window forgets it when "
                               "Halvane closes. ") +
                    m_fileProblem + QLatin1Char('.');
    if (!lost.isEmpty())
        m_launchProblem =
            QStringLiteral("The server was started.\r\r") + lost.join(QStringLiteral("\r\r"));
    m_tick.start();
    emit listChanged();
    emit launched(record.id);
    return started;
}

QString ServerManager::add(const QString& address, const QString& port,
                           const QString& rconPassword) {
    load();
    const auto number = parseIpv4(address);
    if (!number || *number == 0)
        return QStringLiteral("The address must be a numeric IPv4 address, such as 192.0.2.10");
    bool portOk = false;
    const uint portNumber = port.trimmed().toUInt(&portOk);
    if (!portOk || portNumber == 0 || portNumber > 65535)
        return QStringLiteral("The port must be a number from 1 to 65535");
    for (const QChar c : rconPassword) {
        if (c.isSpace() || c.unicode() < 0x20 || c.unicode() > 0xff)
            return QStringLiteral("The console password cannot hold blanks, control characters "
                                  "or characters beyond Latin-1");
    }
    for (const ServerEntry& server : std::as_const(m_servers)) {
        if (server.record.running() && addressOf(server.record) == number &&
            server.record.port == portNumber)
            return QStringLiteral("%1:%2 is listed already")
                .arg(server.record.address)
                .arg(portNumber);
    }
    LaunchRecord record;
    record.added = true;
    record.address = address.trimmed();
    record.port = quint16(portNumber);
    record.rconPassword = rconPassword;
    record.started = QDateTime::currentDateTime();
    record.id = QStringLiteral("added-") + serverId(record.started, m_servers.size());
    m_servers.prepend({record, {}});
    m_servers.first().live.portRead = true; // the one given: no log of ours tells another
    save();
    m_tick.start();
    emit listChanged();
    if (polled(m_servers.first()))
        query(m_servers.first());
    return QString();
}

bool ServerManager::startProcess(ServerEntry& server) {
    LaunchRecord& r = server.record;
    // Never from what the game folder holds now: the copy, or nothing.
    const QFileInfo folder(r.gameFolder);
    QString problem;
    if (!folder.exists())
        problem = QStringLiteral("the game folder %1 does not exist any more");
    else if (!folder.isDir())
        problem = QStringLiteral("the game folder %1 is not a folder");
    if (!problem.isEmpty())
        problem = problem.arg(QDir::toNativeSeparators(r.gameFolder));
    else if (!r.scripts.isEmpty() &&
             !QFileInfo(r.scripts + QLatin1Char('/') + ScriptGameFolder).isDir())
        problem = QStringLiteral("the copy of the scripts it was launched with, %1, is missing")
                      .arg(QDir::toNativeSeparators(r.scripts));
    else if (const QString copy = r.scripts.isEmpty() ? QString() : scriptCopyProblem(r.scripts);
             !copy.isEmpty())
        problem =
            QStringLiteral("the copy of the scripts it was launched with, %1, is incomplete: %2")
                .arg(QDir::toNativeSeparators(r.scripts), copy);
    if (!problem.isEmpty()) {
        server.live.problem = QStringLiteral("Could not start the server again: ") + problem;
        return false;
    }
    QString logProblem;
    const QString log = newLogFile(r.portAsked, logProblem);
    // Servers recorded before their scripts were copied start as they were.
    const QStringList arguments =
        r.scripts.isEmpty() ? r.arguments : argumentsWithScripts(r.arguments, r.scripts);
    const StartResult started = m_app.platform.processes.startSupervised(
        r.program, arguments, r.gameFolder, log, statusFileOf(log));
    if (!started.started) {
        if (!log.isEmpty())
            QFile::remove(log); // the empty file made for it
        server.live.problem =
            QStringLiteral("Could not start the server again: %1: %2")
                .arg(QDir::toNativeSeparators(r.program), qt_error_string(started.errorCode));
        return false;
    }
    const qint64 oldPid = r.pid;
    if (r.started.isValid())
        r.runs.append({r.logFile, r.started, r.ended, r.endReason, r.exitStatus});
    while (r.runs.size() > KeptRuns)
        r.runs.removeFirst();
    r.pid = started.taskId;
    r.processStart = started.startTime;
    r.started = QDateTime::currentDateTime();
    r.logFile = log;
    r.port = 0; // it may open another one this time
    r.ended = QDateTime();
    r.endReason.clear();
    r.exitStatus.clear();
    server.live = ServerLive();
    server.live.expectedSince = r.started;
    server.live.fresh = true;
    if (log.isEmpty())
        server.live.problem = QStringLiteral("No log: ") + logProblem;
    emit restarted(oldPid, r.pid);
    return true;
}

void ServerManager::processEnded(ServerEntry& server, const QString& reason, bool mayRestart,
                                 bool quick) {
    const QDateTime now = QDateTime::currentDateTime();
    quick = quick || server.record.started.secsTo(now) < m_limits.quickEndSecs;
    server.quickEnds = mayRestart && quick ? server.quickEnds + 1 : 0;
    server.record.ended = now;
    server.record.endReason = reason;
    if (!server.record.added)
        server.record.exitStatus = supervisedEnd(statusFileOf(server.record.logFile));
    server.live.status.reset();
    server.live.silentSince = QDateTime();
    server.live.unanswered = 0;
    server.live.stopping = ServerLive::Stopping::No;
    if (!mayRestart || !server.record.monitor || m_role == Role::Look)
        return;
    if (server.quickEnds > m_limits.quickEndsAllowed) {
        server.record.endReason =
            QStringLiteral("gave up: %1 times in a row it ended within %2 seconds of its start "
                           "or did not answer within %3 seconds")
                .arg(server.quickEnds)
                .arg(m_limits.quickEndSecs)
                .arg(m_limits.firstAnswerSecs);
        server.live.problem.clear(); // the reason above says it all
        return;
    }
    if (startProcess(server)) {
        ++server.record.monitorRestarts;
        server.record.lastMonitorRestart = server.record.started;
    }
}

bool ServerManager::polled(const ServerEntry& server) const {
    return server.record.running() && (m_watched || server.record.monitor);
}

void ServerManager::setWatched(bool watched) {
    m_watched = watched;
    for (ServerEntry& server : m_servers) {
        if (!polled(server)) {
            server.live.silentSince = QDateTime();
            server.live.unanswered = 0;
        }
    }
    if (watched)
        refresh();
}

void ServerManager::refresh() {
    load();
    takeOthersRecords();
    const QDateTime now = QDateTime::currentDateTime();
    bool changed = false;
    for (ServerEntry& server : m_servers) {
        if (!server.record.running() || server.live.stopping != ServerLive::Stopping::No)
            continue;
        if (!server.record.added && !alive(server.record)) {
            processEnded(server, QStringLiteral("ended without a Stop"), true);
            changed = true;
            emit serverChanged(server.record.id);
            continue;
        }
        // Silent for too long, or never answered since its start: hung.
        const bool answered = server.live.lastAnswer.isValid();
        const bool silent =
            answered ? server.live.silentSince.isValid() &&
                           server.live.silentSince.secsTo(now) >= m_limits.silenceSecs
                     : server.live.expectedSince.isValid() &&
                           server.live.expectedSince.secsTo(now) >= m_limits.firstAnswerSecs;
        if (server.record.monitor && m_role == Role::Steer && silent) {
            server.live.problem =
                answered ? QStringLiteral("No answer for %1 seconds: restarting")
                               .arg(m_limits.silenceSecs)
                         : QStringLiteral("No answer within %1 seconds of its start: restarting")
                               .arg(m_limits.firstAnswerSecs);
            server.live.stopping = ServerLive::Stopping::Monitor;
            server.live.stopAsked = now;
            server.live.asked = m_app.platform.processes.end(server.record.pid, false);
            m_stopTick.start();
            emit serverChanged(server.record.id);
            continue;
        }
        if (!server.live.portRead && !server.record.added)
            changed |= readOpenedPort(server);
        if (polled(server))
            query(server);
    }
    if (changed)
        save();
}

// Queries go where the game really listens, which the port box alone does
// not tell: an empty box or a taken port moves it on, text that is no
// number has it take any free port. Until then it is asked nothing, so
// another server's answer is never taken for its own. True when it is known.
bool ServerManager::readOpenedPort(ServerEntry& server) {
    constexpr qint64 Scanned = 64 * 1024; // the line comes within the first few lines
    LaunchRecord& r = server.record;
    std::optional<quint16> port;
    bool logDone = true; // the log will tell no more
    QFile log(r.logFile);
    // A pipe would never end a read, and block the window.
    if (QFileInfo(r.logFile).isFile() && log.open(QIODevice::ReadOnly)) {
        const QByteArray start = log.read(Scanned);
        port = protocol::openedPort(start);
        logDone = port || start.size() >= Scanned;
    }
    if (!port || *port == 0) {
        if (!logDone)
            return false;
        // The system knows the socket; failing that the port asked for,
        // unless it asked for any.
        const QList<quint16> open = m_app.platform.processes.udpPortsOf(r.pid);
        if (!open.isEmpty())
            port = open.first();
        else if (!port && r.portAsked != 0)
            port = r.portAsked;
        else
            return false;
    }
    server.live.portRead = true;
    r.port = *port;
    return true;
}

std::optional<quint32> ServerManager::addressOf(const LaunchRecord& record) {
    return parseIpv4(record.address);
}

void ServerManager::query(ServerEntry& server) {
    if (server.record.port == 0)
        return; // not known yet
    const auto address = addressOf(server.record);
    if (!address) {
        server.live.problem = QStringLiteral("Cannot ask %1 for its status: not a numeric address")
                                  .arg(server.record.address);
        return;
    }
    m_socket.bind();
    if (!server.live.silentSince.isValid())
        server.live.silentSince = QDateTime::currentDateTime();
    ++server.live.unanswered;
    ++m_traffic.questions;
    m_socket.send(protocol::statusRequest(), *address, server.record.port);
    // The previous query went unanswered for a whole round.
    if (server.live.unanswered == 2)
        emit serverChanged(server.record.id);
}

void ServerManager::readDatagrams() {
    int pass = 0;
    for (; pass < MaxPacketsPerPass; ++pass) {
        auto received = m_socket.receive();
        if (!received)
            break;
        ++m_traffic.packets;
        const QByteArray& datagram = received->data;
        ServerEntry* server = nullptr;
        for (ServerEntry& candidate : m_servers) {
            if (candidate.record.running() && candidate.record.port != 0 &&
                candidate.record.port == received->port &&
                addressOf(candidate.record) == received->address) {
                server = &candidate;
                break;
            }
        }
        if (!server)
            continue;
        const QString id = server->record.id;
        if (protocol::kindOf(datagram) == protocol::PacketKind::Print) {
            takePrint(id, datagram);
            continue;
        }
        // Only the answer to a question that is open: more of them would
        // each be parsed and shown.
        if (server->live.unanswered == 0)
            continue;
        ++m_traffic.accepted;
        // Any answer shows the server is there, even one we cannot read.
        server->live.lastAnswer = QDateTime::currentDateTime();
        server->live.silentSince = QDateTime();
        server->live.unanswered = 0;
        QString error;
        auto status = protocol::parseStatus(datagram, &error);
        if (status) {
            server->live.status = std::move(status);
            server->live.problem.clear();
            // Kept for the list once it has ended.
            const auto& info = server->live.status->info;
            const QString hostName = info.value(QStringLiteral("sv_hostname"));
            if (info.contains(QStringLiteral("sv_hostname")) &&
                hostName != server->record.hostName) {
                server->record.hostName = hostName;
                save();
            }
        } else {
            server->live.problem = QStringLiteral("The server ") + error;
        }
        emit serverChanged(id);
    }
    m_traffic.largestPass = std::max(m_traffic.largestPass, pass);
}

// A print packet belongs to the command the console was last sent, if any.
void ServerManager::takePrint(const QString& id, const QByteArray& datagram) {
    auto exchanges = m_exchanges.find(id);
    if (exchanges == m_exchanges.end() || exchanges->second.empty())
        return;
    Exchange& exchange = exchanges->second.front();
    if (exchange.bytes > protocol::MaxAnswer)
        return; // finished below, once
    exchange.packets.append(datagram);
    exchange.bytes += datagram.size();
    if (exchange.bytes > protocol::MaxAnswer) {
        finishExchange(id, QStringLiteral("longer than %1 KB").arg(protocol::MaxAnswer / 1024));
        return;
    }
    // An answer ends when the server falls quiet, or when its time is up
    // however much still arrives.
    const qint64 left = MaxAnswerMs - exchange.sent.elapsed();
    exchange.overdue = left <= QuietMs;
    m_exchangeTimers[id]->start(int(std::clamp<qint64>(left, 0, QuietMs)));
}

void ServerManager::rcon(const QString& id, const QString& command, AnswerHandler done) {
    ServerEntry* server = entry(id);
    const auto address = server ? addressOf(server->record) : std::nullopt;
    QString problem;
    if (!server || !server->record.running())
        problem = QStringLiteral("the server is not running");
    else if (!address)
        problem = QStringLiteral("%1 is not a numeric address").arg(server->record.address);
    else if (server->record.port == 0)
        problem = QStringLiteral("the port it listens on is not known yet");
    else
        problem = protocol::rconPasswordProblem(server->record.rconPassword);
    if (!problem.isEmpty()) {
        if (done)
            done({QString(), problem, QString()});
        return;
    }
    auto& queue = m_exchanges[id];
    Exchange exchange;
    exchange.id = id;
    exchange.command = command;
    exchange.done = std::move(done);
    queue.push_back(std::move(exchange));
    if (queue.size() == 1)
        sendNextExchange(id);
}

void ServerManager::sendNextExchange(const QString& id) {
    auto& timer = m_exchangeTimers[id];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        timer->setSingleShot(true);
        connect(timer.get(), &QTimer::timeout, this, [this, id] {
            const auto& queue = m_exchanges[id];
            const bool overdue = !queue.empty() && queue.front().overdue;
            finishExchange(
                id, overdue
                        ? QStringLiteral("still arriving after %1 seconds").arg(MaxAnswerMs / 1000)
                        : QString());
        });
    }
    ServerEntry* server = entry(id);
    const auto address = server ? addressOf(server->record) : std::nullopt;
    if (!address) {
        finishExchange(id);
        return;
    }
    m_socket.bind();
    Exchange& exchange = m_exchanges[id].front();
    exchange.sent.start();
    m_socket.send(protocol::rconRequest(server->record.rconPassword, exchange.command), *address,
                  server->record.port);
    timer->start(FirstPacketMs);
}

void ServerManager::finishExchange(const QString& id, const QString& cut) {
    auto& queue = m_exchanges[id];
    if (queue.empty())
        return;
    Exchange done = std::move(queue.front());
    queue.pop_front();
    m_exchangeTimers[id]->stop();
    if (!queue.empty())
        sendNextExchange(id);
    protocol::RconAnswer answer = protocol::rconAnswer(done.packets);
    if (answer.cut.isEmpty())
        answer.cut = cut;
    if (done.done)
        done.done(answer);
}

void ServerManager::kick(const QString& id, const QString& playerName, AnswerHandler done) {
    // The status query names players but not their client numbers; the
    // console's status table has both.
    rcon(id, QStringLiteral("status"),
         [this, id, playerName, done](const protocol::RconAnswer& table) {
             if (!table.error.isEmpty()) {
                 done(table);
                 return;
             }
             const int client = protocol::clientNumber(table.text, playerName);
             if (client < 0) {
                 done({QString(),
                       QStringLiteral("%1 is no longer on the server")
                           .arg(protocol::cutForDisplay(protocol::withoutColours(playerName), 36)),
                       QString()});
                 return;
             }
             rcon(id, QStringLiteral("clientkick %1").arg(client),
                  [this, id, done](const protocol::RconAnswer& answer) {
                      if (ServerEntry* server = entry(id); server && polled(*server))
                          query(*server);
                      done(answer);
                  });
         });
}

void ServerManager::stop(const QString& id) {
    ServerEntry* server = entry(id);
    if (!server || server->record.added || !server->record.running() ||
        server->live.stopping != ServerLive::Stopping::No)
        return;
    server->live.stopping = ServerLive::Stopping::Operator;
    server->live.stopAsked = QDateTime::currentDateTime();
    if (!alive(server->record)) {
        finishStop(*server);
        return;
    }
    if (protocol::rconPasswordProblem(server->record.rconPassword).isEmpty() &&
        server->record.port != 0)
        rcon(id, QStringLiteral("quit"), [this, id](const protocol::RconAnswer& answer) {
            // Refused: no need to wait for a quit that will not come.
            ServerEntry* refused = entry(id);
            if (answer.text.isEmpty() || answer.error.isEmpty() || !refused ||
                refused->live.stopping == ServerLive::Stopping::No || refused->live.asked ||
                !alive(refused->record))
                return;
            refused->live.problem = QStringLiteral("Stop: ") + answer.error;
            refused->live.asked = true;
            m_app.platform.processes.end(refused->record.pid, false);
            emit serverChanged(id);
        });
    else
        server->live.asked = m_app.platform.processes.end(server->record.pid, false);
    m_stopTick.start();
    emit serverChanged(id);
}

void ServerManager::restart(const QString& id) {
    ServerEntry* server = entry(id);
    if (!server || server->record.added || server->live.stopping != ServerLive::Stopping::No)
        return;
    if (server->record.running() && alive(server->record)) {
        stop(id);
        server->live.stopping = ServerLive::Stopping::Restart;
        return;
    }
    if (server->record.running())
        processEnded(*server, QStringLiteral("ended without a Stop"), false);
    startProcess(*server);
    save();
    emit serverChanged(id);
}

void ServerManager::checkStopping() {
    const QDateTime now = QDateTime::currentDateTime();
    bool any = false;
    for (ServerEntry& server : m_servers) {
        ServerLive& live = server.live;
        if (live.stopping == ServerLive::Stopping::No)
            continue;
        if (!alive(server.record)) {
            finishStop(server);
            continue;
        }
        any = true;
        const qint64 waited = live.stopAsked.secsTo(now);
        // Only our own process: alive() has just matched its start time.
        if (!live.asked && waited >= m_limits.askGraceSecs) {
            live.asked = true;
            m_app.platform.processes.end(server.record.pid, false);
        }
        if (!live.killed && waited >= m_limits.killGraceSecs) {
            live.killed = true;
            m_app.platform.processes.end(server.record.pid, true);
        }
    }
    if (!any)
        m_stopTick.stop();
}

void ServerManager::finishStop(ServerEntry& server) {
    const ServerLive::Stopping why = server.live.stopping;
    // An operator's Stop is never undone by the monitor.
    if (why == ServerLive::Stopping::Operator)
        processEnded(server, QStringLiteral("stopped"), false);
    else if (why == ServerLive::Stopping::Monitor) {
        // A start that never answered counts like one that ended at once.
        const bool hung = server.live.fresh && !server.live.lastAnswer.isValid();
        processEnded(server,
                     hung ? QStringLiteral("did not answer after its start")
                          : QStringLiteral("stopped answering"),
                     true, hung);
    } else {
        processEnded(server, QStringLiteral("restarted"), false);
        startProcess(server);
    }
    save();
    emit serverChanged(server.record.id);
}

void ServerManager::setMonitor(const QString& id, bool on) {
    ServerEntry* server = entry(id);
    if (!server || server->record.added || server->record.monitor == on)
        return;
    server->record.monitor = on;
    // An answer is due from now, not from a start the monitor did not watch.
    if (on && !server->live.lastAnswer.isValid())
        server->live.expectedSince = QDateTime::currentDateTime();
    save();
    emit serverChanged(id);
}

bool ServerManager::removable(const ServerEntry& server) {
    return (server.record.added || !server.record.running()) &&
           server.live.stopping == ServerLive::Stopping::No;
}

bool ServerManager::remove(const QString& id) {
    const ServerEntry* server = entry(id);
    if (!server || !removable(*server))
        return false;
    m_removed.insert(id);
    m_droppedFolders.unite(scriptFoldersOf(server->record));
    m_servers.removeIf([&id](const ServerEntry& entry) { return entry.record.id == id; });
    save();
    emit listChanged();
    return true;
}

void ServerManager::save() {
    if (m_role == Role::Look)
        return;
    // Running servers, and the last ones that ended.
    QList<LaunchRecord> kept;
    int ended = 0;
    for (const ServerEntry& server : std::as_const(m_servers)) {
        if (server.record.running() || ended++ < KeptEnded)
            kept.append(server.record);
        else
            m_droppedFolders.unite(scriptFoldersOf(server.record));
    }
    // What another Halvane recorded since the last look is written on as it
    // is; the next refresh takes it into the list.
    QList<LaunchRecord> others;
    const QFileInfo info(m_file.path());
    if (info.exists() && (info.size() != m_fileSize || info.lastModified() != m_fileTime)) {
        for (const LaunchRecord& record : m_file.peek()) {
            if (!m_removed.contains(record.id) && !entry(record.id))
                others.append(record);
        }
    }
    const QString error = m_file.save(others + kept);
    if (others.isEmpty())
        noteFile();
    if (!error.isEmpty()) {
        m_fileProblem = QStringLiteral("Could not write the server list %1: %2")
                            .arg(QDir::toNativeSeparators(m_file.path()), error);
        return;
    }
    if (m_fileProblem.startsWith(QLatin1String("Could not write")))
        m_fileProblem.clear();
    for (const LaunchRecord& record : others + kept)
        m_droppedFolders.subtract(scriptFoldersOf(record));
    removeScriptFolders(m_droppedFolders);
    m_droppedFolders.clear();
}

QSet<QString> ServerManager::scriptFoldersOf(const LaunchRecord& record) const {
    const QString root =
        QDir::cleanPath(m_app.platform.folder.stateFolder() + QStringLiteral("/servers")) +
        QLatin1Char('/');
    QSet<QString> folders;
    for (const QString& named : record.arguments + QStringList{record.scripts}) {
        const QString path = QDir::cleanPath(QDir::fromNativeSeparators(named));
        const QString first = path.mid(root.size()).section(QLatin1Char('/'), 0, 0);
        if (path.startsWith(root) && !first.isEmpty() && first != QLatin1String(".."))
            folders.insert(root + first);
    }
    return folders;
}

void ServerManager::removeScriptFolders(const QSet<QString>& folders) {
    const QString state = QFileInfo(m_app.platform.folder.stateFolder()).canonicalFilePath();
    for (const QString& folder : folders) {
        // Never through a link, never outside the state folder.
        const QFileInfo info(folder);
        if (state.isEmpty() || info.isSymLink() || !info.isDir() ||
            !info.canonicalFilePath().startsWith(state + QStringLiteral("/servers/")))
            continue;
        QDir(folder).removeRecursively();
    }
}

void ServerManager::removeStrayScriptFolders() {
    if (m_role == Role::Look)
        return;
    const QDir root(m_app.platform.folder.stateFolder() + QStringLiteral("/servers"));
    QSet<QString> named;
    for (const ServerEntry& server : std::as_const(m_servers))
        named.unite(scriptFoldersOf(server.record));
    const QDateTime before = QDateTime::currentDateTime().addSecs(-StrayFolderSecs);
    QSet<QString> stray;
    for (const QFileInfo& folder :
         root.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks | QDir::Hidden)) {
        const QString path = QDir::cleanPath(folder.absoluteFilePath());
        if (!named.contains(path) && folder.lastModified() < before)
            stray.insert(path);
    }
    removeScriptFolders(stray);
}

QList<ServerEntry> listServers(AppContext& app, int waitMs) {
    ServerManager manager(app, nullptr, ServerManager::Role::Look);
    QEventLoop loop;
    const auto allAnswered = [&manager] {
        return std::none_of(manager.servers().cbegin(), manager.servers().cend(),
                            [](const ServerEntry& server) { return server.live.unanswered > 0; });
    };
    QObject::connect(&manager, &ServerManager::serverChanged, &loop, [&] {
        if (allAnswered())
            loop.quit();
    });
    QTimer::singleShot(waitMs, &loop, &QEventLoop::quit);
    manager.setWatched(true); // a query to every one that runs
    if (!allAnswered())
        loop.exec();
    return manager.servers();
}

} // namespace halvane
