#pragma once

#include "config/ConfigSteps.h"
#include "platform/Processes.h"

#include <QDateTime>
#include <QStringList>

namespace halvane {

// What "Launch the Server" asks of the other subsystems, in the order it
// asks, besides the checks and the configuration write.
class LaunchSteps : public ConfigSteps {
public:
    // Remembers the parameter line, and offers the list as it then stands.
    virtual void saveParameterList() = 0;
    virtual void loadParameterList() = 0;
    // The shown map's rules back into its record.
    virtual void CommitShownMap() = 0;
    // The fixed bot script for the bots chosen in the list.
    virtual void MakeBotScript() = 0;
    // Local time, for the N-0-P start stamp.
    virtual QDateTime now() { return QDateTime::currentDateTime(); }
};

// Starts the game in place of a plain process start, keeping a record and
// a log of the server.
class ServerStarter {
public:
    virtual ~ServerStarter() = default;
    virtual StartResult startServer(const QString& program, const QStringList& arguments,
                                    const QString& folder, const QString& commandLine) = 0;
};

} // namespace halvane
