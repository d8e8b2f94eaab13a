#pragma once

#include <QString>

namespace halvane {

// Halvane/profiles in the user's configuration folder (beside the settings
// file on Linux), where the profiles are kept.
QString userProfileFolder();

// Makes the folder (with its parents) readable by the user alone; false when
// it cannot be made.
bool makeUserOnlyFolder(const QString& path);
// Leaves the file readable and writable by the user alone.
bool makeUserOnlyFile(const QString& path);

} // namespace halvane
