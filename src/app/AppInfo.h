#pragma once

#include <QString>

namespace halvane {

// Fixed facts about this build and the addresses it points operators to,
// kept in one place.
namespace AppInfo {

constexpr int VersionMajor = HALVANE_VERSION_MAJOR;
constexpr int VersionMinor = HALVANE_VERSION_MINOR;
constexpr int VersionRevision = HALVANE_VERSION_REVISION;

// "Version 2.07": minor and revision stand side by side.
inline QString versionNumber() {
    return QStringLiteral("%1.%2%3").arg(VersionMajor).arg(VersionMinor).arg(VersionRevision);
}
inline QString versionCaption() {
    return QStringLiteral("Version ") + versionNumber();
}

inline QString productSiteAddress() {
    return QStringLiteral("https://halvane.example.org");
}
inline QString authorMailAddress() {
    return QStringLiteral("halvane@example.org");
}
inline QString nopSiteAddress() {
    return QStringLiteral("https://nop.example.org");
}
inline QString supportContact() {
    return authorMailAddress();
}

// Public master servers of the game, offered as the first two defaults.
inline QString masterServer0() {
    return QStringLiteral("master.quake3arena.com");
}
inline QString masterServer1() {
    return QStringLiteral("master.ioquake3.org");
}

inline QString trademarkNotice() {
    return QStringLiteral("Quake III Arena is a trademark of id Software, Inc.  Halvane is not "
                          "affiliated with id Software.");
}

} // namespace AppInfo
} // namespace halvane
