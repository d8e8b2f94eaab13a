#pragma once

#include <QString>
#include <vector>

namespace halvane {

struct AppContext;
class OptionPage;
class SettingsStore;

// Moves the option catalogue between the settings store and the parts of the
// main window that hold the options: step by step for a load, key by key for
// a save, each part doing its own controls.
class SettingsController {
public:
    // parts: the frame and the pages; an option is the first holder's.
    SettingsController(std::vector<OptionPage*> parts, AppContext& app);

    // Applies every stored option to its control, reporting a value that does
    // not convert with its step's message and going on.
    void LoadSettings();
    // Writes every option; false when the store refused a write.
    bool SaveSettings();
    // The same from and into another store, a profile's.
    void LoadSettings(const SettingsStore& store);
    bool SaveSettings(SettingsStore& store);

private:
    void report(const QString& stepMessage);

    std::vector<OptionPage*> m_parts;
    AppContext& m_app;
};

} // namespace halvane
