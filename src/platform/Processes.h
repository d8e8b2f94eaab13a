#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace halvane {

struct StartResult {
    bool started = false;
    qint64 taskId = 0;
    int errorCode = 0; // system error number when not started
    // When the process began, as the system counts it; with the task id it
    // names this very process, even after the id has been reused.
    qint64 startTime = 0;
};

// Starting programs without a shell, and asking after them later.
class Processes {
public:
    virtual ~Processes() = default;
    // Standard output and error are appended to logFile (none when it is
    // empty). The process outlives the program.
    virtual StartResult start(const QString& program, const QStringList& arguments,
                              const QString& workingFolder, const QString& logFile) = 0;
    // The same, waited for by a supervisor that writes how the program
    // ended (see platform/Supervisor.h) to statusFile; the task id is the
    // supervisor's, which lives exactly as long as the program. Where there
    // is no supervisor the program starts as by start() and no status is written.
    virtual StartResult startSupervised(const QString& program, const QStringList& arguments,
                                        const QString& workingFolder, const QString& logFile,
                                        const QString& statusFile) {
        Q_UNUSED(statusFile);
        return start(program, arguments, workingFolder, logFile);
    }
    // True when the task still runs; brings its window forward where the platform allows.
    virtual bool activate(qint64 taskId) = 0;
    // The start time of the running task, 0 when no such task runs.
    virtual qint64 startTimeOf(qint64 taskId) = 0;
    // Asks the task to end, or ends it at once when force is set.
    virtual bool end(qint64 taskId, bool force) = 0;
    // The local ports of the task's IPv4 UDP sockets, and of its children's
    // (a supervised program's); empty where the system does not tell.
    virtual QList<quint16> udpPortsOf(qint64 taskId) {
        Q_UNUSED(taskId);
        return {};
    }
};

} // namespace halvane
