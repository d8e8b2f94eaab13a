#pragma once

#include "platform/Processes.h"
#include "platform/UdpSocket.h"
#include "server/LaunchRecords.h"
#include "server/ServerProtocol.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace halvane {

struct AppContext;

// What the program knows of a server at this moment; not kept on disk.
struct ServerLive {
    std::optional<protocol::ServerStatus> status;
    QDateTime lastAnswer;
    QDateTime expectedSince; // from when an answer is due: its start, or when it was first watched
    bool fresh = false;      // started by this run of the program, so a silence counts as a hang
    QDateTime silentSince;   // first query left unanswered since the last answer
    int unanswered = 0;
    QString problem; // the last thing that went wrong, as one line
    enum class Stopping { No, Operator, Restart, Monitor } stopping = Stopping::No;
    QDateTime stopAsked;
    bool asked = false; // the process was asked to end
    bool killed = false;
    bool portRead = false; // the port the game opened was read from its log, or cannot be
};

// How long the monitor waits and how often it tries; tests shorten them.
struct MonitorLimits {
    int silenceSecs = 60;     // without an answer, once it has answered
    int firstAnswerSecs = 60; // without any answer after a start
    // A server that keeps ending, or not answering, this soon after its
    // start is not restarted again and again.
    int quickEndSecs = 30;
    int quickEndsAllowed = 3;
    int askGraceSecs = 5;   // after rcon quit, the process is asked to end
    int killGraceSecs = 10; // then it is killed
};

// What a launch starts; the launch of a profile names the folder its
// scripts were written to.
struct ServerStart {
    QString program;
    QStringList arguments;
    QString gameFolder; // the working folder
    QString commandLine;
    QString address; // the IP and port boxes as typed
    QString port;
    QString rconPassword;
    QString scriptFolder; // holds baseq3/ with the scripts; empty: the game folder
    QString profile;
    // Shown until the game answers with its own, and kept when the game
    // leaves it out of its answers (it drops a name holding a ';').
    QString hostName;
};

struct ServerEntry {
    LaunchRecord record;
    ServerLive live;
    int quickEnds = 0; // ends soon after a start, one after another
};

// The servers this program started and those the operator added by their
// address: their records in the user's state folder, their status over UDP,
// the monitor that restarts them, and the operator's actions. Everything
// runs on the window's thread without waiting: answers arrive as the
// socket's events.
class ServerManager : public QObject {
    Q_OBJECT
public:
    // Look only queries: nothing is restarted and the state file is not
    // written.
    enum class Role { Steer, Look };
    static constexpr int RefreshMs = 2000;
    static constexpr int KeptEnded = 10; // ended servers still listed
    static constexpr int KeptRuns = 100; // earlier runs of one server whose logs stay listed
    // A script folder no record names is removed once it is this old.
    static constexpr qint64 StrayFolderSecs = 24 * 3600;
    // Datagrams read in one pass over the socket: a flood waits in the
    // socket's queue (and overflows it) instead of holding up the window.
    static constexpr int MaxPacketsPerPass = 32;
    // A console answer still arriving this long after the command is cut.
    static constexpr int MaxAnswerMs = 5000;

    // What arrived on the socket, so that a look at a flood can count it.
    struct Traffic {
        qint64 questions = 0; // status queries sent
        qint64 packets = 0;   // datagrams read
        qint64 accepted = 0;  // status answers taken
        int largestPass = 0;  // datagrams read in one pass, at most
    };

    explicit ServerManager(AppContext& app, QObject* parent = nullptr, Role role = Role::Steer);
    ~ServerManager() override;

    // Reads the state file once; later calls do nothing.
    void load();
    const QList<ServerEntry>& servers();
    const ServerEntry* find(const QString& id);
    // Problems with the state file, or empty.
    QString fileProblem() const { return m_fileProblem; }
    // What of the last launch cannot be kept (its log, its record), for the
    // operator to be told at once; empty when everything is kept.
    QString launchProblem() const { return m_launchProblem; }

    // Starts the game with its output in a new log file, records it and
    // keeps a copy of the scripts it runs for its restarts.
    StartResult launch(const ServerStart& start);
    StartResult launch(const QString& program, const QStringList& arguments, const QString& folder,
                       const QString& commandLine, const QString& address, const QString& port,
                       const QString& rconPassword);
    void setLimits(const MonitorLimits& limits) { m_limits = limits; }
    const MonitorLimits& limits() const { return m_limits; }

    // A server on another host (or one started otherwise): status, players
    // and console, nothing of its process. Empty when added, otherwise why
    // not, as one line.
    QString add(const QString& address, const QString& port, const QString& rconPassword);

    using AnswerHandler = std::function<void(const protocol::RconAnswer&)>;
    void rcon(const QString& id, const QString& command, AnswerHandler done);
    void kick(const QString& id, const QString& playerName, AnswerHandler done);
    void stop(const QString& id);
    void restart(const QString& id);
    void setMonitor(const QString& id, bool on);
    // Takes an added server, or one of ours that has ended, off the list
    // for good; its log stays. False when it runs or is not listed.
    bool remove(const QString& id);
    static bool removable(const ServerEntry& server);
    // While watched, every running server is queried; otherwise only the
    // monitored ones.
    void setWatched(bool watched);
    // One round: liveness, the monitor and the status queries.
    void refresh();
    const Traffic& traffic() const { return m_traffic; }

signals:
    void serverChanged(const QString& id);
    void listChanged();
    void launched(const QString& id);
    void restarted(qint64 oldPid, qint64 newPid);

private:
    struct Exchange {
        QString id;
        QString command;
        QList<QByteArray> packets;
        AnswerHandler done;
        qsizetype bytes = 0;
        QElapsedTimer sent;
        bool overdue = false; // the timer runs to the end of the time allowed
    };

    ServerEntry* entry(const QString& id);
    void readDatagrams();
    void query(ServerEntry& server);
    void checkStopping();
    void finishStop(ServerEntry& server);
    void processEnded(ServerEntry& server, const QString& reason, bool mayRestart,
                      bool quick = false);
    bool startProcess(ServerEntry& server);
    bool alive(const LaunchRecord& record) const;
    bool polled(const ServerEntry& server) const;
    bool readOpenedPort(ServerEntry& server);
    // A new, empty log file in the state folder; empty, with problem saying
    // why, when none can be made.
    QString newLogFile(quint16 port, QString& problem) const;
    void save();
    // The folders under servers/ that a record names: the copy of its
    // scripts, and a profile's folder it was launched with.
    QSet<QString> scriptFoldersOf(const LaunchRecord& record) const;
    // Removes the folders of records that are gone, once the list without
    // them is safely written; those of servers this program never knew
    // (a launch cut short) once they are old enough not to be a launch
    // under way in another run of it.
    void removeScriptFolders(const QSet<QString>& folders);
    void removeStrayScriptFolders();
    // Another Halvane (the command line, another window) writes the same
    // file: records it added since the last look join the list, and one of
    // ours that it stopped ends with its reason.
    void takeOthersRecords();
    void noteFile();
    void sendNextExchange(const QString& id);
    void finishExchange(const QString& id, const QString& cut = QString());
    void takePrint(const QString& id, const QByteArray& datagram);
    static std::optional<quint32> addressOf(const LaunchRecord& record);

    AppContext& m_app;
    Role m_role;
    LaunchRecordFile m_file;
    MonitorLimits m_limits;
    QList<ServerEntry> m_servers;
    QSet<QString> m_droppedFolders; // of records left out, removed once the list is written
    bool m_loaded = false;
    bool m_watched = false;
    QString m_fileProblem;
    QString m_launchProblem;
    qint64 m_fileSize = -1; // the file as this manager last read or wrote it
    QDateTime m_fileTime;
    QSet<QString> m_removed; // never taken back from the file
    UdpSocket m_socket;
    Traffic m_traffic;
    QTimer m_tick;
    QTimer m_stopTick;
    std::map<QString, std::deque<Exchange>> m_exchanges;
    std::map<QString, std::unique_ptr<QTimer>> m_exchangeTimers;
};

// Every server of the state file, started and added, with its status as far
// as one query is answered within waitMs. No window: an application object
// and its event loop are enough. Nothing is started, restarted or written.
QList<ServerEntry> listServers(AppContext& app, int waitMs = 1500);

} // namespace halvane
