#pragma once

#include "platform/Platform.h"

#include <QString>

namespace halvane {

// Program-wide values, owned by the program and handed to whoever needs them.
struct AppState {
    QString GameFolder;  // folder of the game executable, no trailing separator
    QString GameExeName; // the executable's bare file name
    bool StartupInProgress = false;
    bool PathDialogRequested = false;
    bool ShowStoredPath = false;

    // A file or folder below the game folder ("baseq3/halvane.cfg"), matched
    // without regard to letter case where it already exists.
    QString gameFile(const QString& relative) const {
        return findIgnoringCase(GameFolder, relative);
    }
};

struct AppContext {
    Platform platform;
    AppState state;
};

} // namespace halvane
