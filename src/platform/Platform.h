#pragma once

#include "platform/Desktop.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBoxes.h"
#include "platform/Processes.h"
#include "platform/ProgramFolder.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"

namespace halvane {

// The seam to the operating system: everything the program asks of it goes
// through one of these. The program wires the Qt implementations; tests wire
// recording fakes and a real settings file.
struct Platform {
    MessageBoxes& messages;
    FileDialogs& dialogs;
    Processes& processes;
    Shell& shell;
    Desktop& desktop;
    SettingsStore& store;
    ProgramFolder& folder;
};

} // namespace halvane
