#pragma once

#include <QString>

namespace halvane {

// Halvane/profiles in the user's configuration folder (beside the settings
// file on Linux), where the profiles are kept.
QString userProfileFolder();

} // namespace halvane
