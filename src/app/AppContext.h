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

    // Where the scripts Halvane writes go, when not into the game folder: a
    // server's own folder, which the game reads before its own (fs_homepath).
    QString ScriptFolder;

    // A file or folder below the game folder ("baseq3/halvane.cfg"), matched
    // without regard to letter case where it already exists.
    QString gameFile(const QString& relative) const {
        return findIgnoringCase(GameFolder, relative);
    }
    // The same for a script Halvane writes: below ScriptFolder when it is set.
    QString scriptFile(const QString& relative) const {
        return findIgnoringCase(ScriptFolder.isEmpty() ? GameFolder : ScriptFolder, relative);
    }
};

struct AppContext {
    Platform platform;
    AppState state;
};

} // namespace halvane
