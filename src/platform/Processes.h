#pragma once

#include <QString>
#include <QStringList>

namespace halvane {

struct StartResult {
    bool started = false;
    qint64 taskId = 0;
    int errorCode = 0; // system error number when not started
};

// Starting programs without a shell, and asking after them later.
class Processes {
public:
    virtual ~Processes() = default;
    virtual StartResult start(const QString& program, const QStringList& arguments,
                              const QString& workingFolder) = 0;
    // True when the task still runs; brings its window forward where the platform allows.
    virtual bool activate(qint64 taskId) = 0;
};

} // namespace halvane
