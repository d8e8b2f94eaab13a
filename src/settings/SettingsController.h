#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

class QListWidget;
class QTabWidget;

namespace halvane {

struct AppContext;
class BotTables;
class OptionInterlocks;
struct OptionKey;
class SettingsStore;

// What the settings load and save reach outside the option controls; the
// main window provides it.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;
    virtual void RollOut() = 0;               // open the status panel
    virtual void Rollin() = 0;                // close the status panel
    virtual bool statusPanelOpen() const = 0; // is the window tall enough to count as open
    // The remembered parameter lines and the CD drive box, from the store
    // being loaded.
    virtual void loadParameterList(const SettingsStore& store) = 0;
    virtual void loadCdDrive(const SettingsStore& store) = 0;
};

// Moves the option catalogue between the settings store and the main
// window's controls.
class SettingsController {
public:
    SettingsController(QObject& window, QTabWidget& tabs, QListWidget& botList, BotTables& bots,
                       OptionInterlocks& interlocks, AppContext& app, SettingsWindow& parts);

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
    SettingsWindow& m_parts;
    qint16 m_gameType = 0;
    const SettingsStore* m_loading = nullptr; // the store LoadSettings reads now
    // The window's objects by name, made at the first look-up: one pass
    // over the window instead of one search per option. A name two objects
    // share is left out and searched for as before.
    mutable QHash<QString, QPointer<QObject>> m_holders;
};

} // namespace halvane
