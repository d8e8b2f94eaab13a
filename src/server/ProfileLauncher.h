#pragma once

#include <QStringList>

namespace halvane {

// What the server window needs of the profiles: their names, and the launch
// of one as a server of its own.
class ProfileLauncher {
public:
    virtual ~ProfileLauncher() = default;
    virtual QStringList profileNames() const = 0;
    // True when it started; asks first when a running server has its port,
    // and says itself why when it did not start.
    virtual bool launchProfile(const QString& name) = 0;
};

} // namespace halvane
