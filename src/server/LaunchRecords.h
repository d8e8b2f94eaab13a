#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace halvane {

// One earlier run of a server, so that its log can still be found.
struct ServerRun {
    QString logFile;
    QDateTime started;
    QDateTime ended;
    QString endReason;
    QString exitStatus;
};

// What one launch started, kept in the user's state folder so that a later
// run of the program finds the server again; or a server on another host
// that the operator added, which has no process, program or log of ours.
struct LaunchRecord {
    QString id; // stays the same across restarts
    qint64 pid = 0;
    qint64 processStart = 0; // with pid, names the very process we started
    QString program;
    QStringList arguments;
    QString commandLine;
    QString gameFolder;
    QString address;
    quint16 port = 0;      // where the game listens; 0 until its log (or the system) says
    quint16 portAsked = 0; // what the port box named, 0 when it held no port
    QString scripts;       // the copy of its scripts a restart runs (the engine's home path)
    QString profile;       // the profile it was launched from, empty for the main window's
    QString hostName;      // as it last answered, kept once it has ended
    QString rconPassword;
    QDateTime started; // of the process that runs now
    QString logFile;
    bool monitor = false; // restart it when it stops
    int monitorRestarts = 0;
    QDateTime lastMonitorRestart;
    QDateTime ended; // invalid while it runs
    QString endReason;
    QString exitStatus;    // "exit 1", "signal SIGSEGV"; empty when nobody saw it end
    QList<ServerRun> runs; // the earlier ones, oldest first
    bool added = false;    // by the operator, by its address

    bool running() const { return !ended.isValid(); }
};

struct LoadedRecords {
    QList<LaunchRecord> records;
    QStringList problems; // one line per record or file that could not be read
};

// One record per line, so that damage costs only the damaged lines.
LoadedRecords parseLaunchRecords(const QByteArray& bytes);
QByteArray launchRecordBytes(const QList<LaunchRecord>& records);

// The file itself. A damaged file is copied aside before it is ever
// replaced, so nothing in it is lost.
class LaunchRecordFile {
public:
    explicit LaunchRecordFile(QString path) : m_path(std::move(path)) {}
    const QString& path() const { return m_path; }
    LoadedRecords load() const;
    // The records as another program may be writing them: whole lines only,
    // and nothing reported or set aside.
    QList<LaunchRecord> peek() const;
    // Empty on success, otherwise why the file was not written.
    QString save(const QList<LaunchRecord>& records) const;

private:
    QString m_path;
};

} // namespace halvane
