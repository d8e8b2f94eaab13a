#pragma once

#include <QObject>
#include <functional>

class QListWidget;
class QTabWidget;

namespace halvane {

struct AppContext;
class BotTables;
class OptionInterlocks;
struct OptionKey;
class SettingsStore;

// What the settings load and save reach outside the option controls.
struct SettingsHooks {
    std::function<void()> RollOut;         // open the status panel
    std::function<void()> Rollin;          // close the status panel
    std::function<bool()> statusPanelOpen; // is the window tall enough to count as open
    // The remembered parameter lines and the CD drive box, from the store
    // being loaded.
    std::function<void(const SettingsStore&)> loadParameterList;
    std::function<void(const SettingsStore&)> loadCdDrive;
};

// Moves the option catalogue between the settings store and the main
// window's controls.
class SettingsController {
public:
    SettingsController(QObject& window, QTabWidget& tabs, QListWidget& botList, BotTables& bots,
                       OptionInterlocks& interlocks, AppContext& app, SettingsHooks hooks);

    // Applies every stored option to its control, reporting a value that does
    // not convert with its step's message and going on.
    void LoadSettings();
    // Writes every option; false when the store refused a write.
    bool SaveSettings();
    // The same from and into another store, a profile's.
    void LoadSettings(const SettingsStore& store);
    bool SaveSettings(SettingsStore& store);

private:
    QString read(const OptionKey& option) const;
    void report(const QString& stepMessage);
    void refuse(const OptionKey& option, const QString& stepMessage);
    void loadStep(int step);
    void loadBots(const QString& message);
    bool saveBots(SettingsStore& store);
    QObject* holder(const OptionKey& option) const;

    QObject& m_window;
    QTabWidget& m_tabs;
    QListWidget& m_botList;
    BotTables& m_bots;
    OptionInterlocks& m_interlocks;
    AppContext& m_app;
    SettingsHooks m_hooks;
    qint16 m_gameType = 0;
    const SettingsStore* m_loading = nullptr; // the store LoadSettings reads now
};

} // namespace halvane
