#pragma once

#include "bots/BotTables.h"
#include "launch/LaunchSteps.h"
#include "launch/PathDialog.h"
#include "settings/SettingsController.h"

#include <QMainWindow>
#include <memory>

namespace halvane {

struct MainForm;
struct AppContext;
class BotsController;
class ConfigController;
class FormSettings;
class MapCatalogue;
class MapsController;
class ConfigFileCommands;
class LaunchController;
class OptionInterlocks;
class RandomSource;
class ParameterMemory;
class SettingsController;
class FrameOptions;
class StatusPanel;
class TipLine;
class TabFrames;
class HelpMenu;
class ServerControl;
class ServerExport;
class Validation;
class ProfileCommands;
struct Profile;

// A main window is the operator's, or one that is never shown: a profile's
// settings loaded to write its scripts and launch it, without a server
// window or profile menu of its own.
enum class WindowRole { Main, Unshown };

// The main window: owns the frame with its pages and the per-subsystem
// controllers, runs the start-up and shut-down sequences, and is what the
// launch and the settings reach the other subsystems through.
class MainWindow : public QMainWindow, public PathDialogHost, public LaunchSteps {
    Q_OBJECT
public:
    explicit MainWindow(AppContext& app, WindowRole role = WindowRole::Main);
    ~MainWindow() override;

    // Runs the first window of the program: the path dialog.
    void start();
    // The start of the command line: the stored game location and the same
    // load as a start, with no path dialog and no archive search; the window
    // is never shown. False when no usable game location is stored.
    bool loadWithoutWindow();

    void showMainWindow() override;
    void endProgram() override;

    MainForm& form() { return *ui; }
    PathDialog& pathDialog() { return *m_pathDialog; }
    SettingsController& settings() { return *m_settings; }
    OptionInterlocks& interlocks() { return *m_interlocks; }
    StatusPanel& statusPanel() { return *m_statusPanel; }
    TipLine& tipLine() { return *m_tips; }
    HelpMenu& helpMenu() { return *m_help; }
    BotTables& botTables() { return m_botTables; }
    MapCatalogue& mapCatalogue() { return *m_catalogue; }
    MapsController& maps() { return *m_maps; }
    BotsController& bots() { return *m_bots; }
    ConfigController& config() { return *m_config; }
    RandomSource& random() { return *m_random; }
    Validation& validation() { return *m_validation; }
    ConfigFileCommands& configCommands() { return *m_configCommands; }
    LaunchController& launch() { return *m_launch; }
    ServerControl& servers() { return *m_servers; }
    ProfileCommands& profiles() { return *m_profiles; }
    // None in a window that holds one profile's settings.
    const ProfileCommands* profileCommands() const { return m_profiles.get(); }
    WindowRole role() const { return m_role; }
    ServerExport& serverExport() { return *m_export; }
    bool isLoaded() const { return m_loaded; }
    bool hasEnded() const { return m_ended; }

    void LoadControls();

    // Every option of the store and the selected maps as the window holds
    // them now, the way SaveSettings stores them.
    void saveProfile(Profile& profile);
    // Puts a profile into the window through the settings load, with the
    // interlocks run as at a start; returns its maps the catalogue does not
    // know, left out.
    QStringList openProfile(const Profile& profile);
    // The start-up of a window that is never shown, from the store of its
    // context: the lists, the bots, the maps (mapsel.txt, or the given ones)
    // and the settings with their interlocks. Closing it later stores nothing.
    // Returns the given maps the catalogue does not know, left out.
    QStringList loadUnshown(const QStringList* selectedMaps = nullptr);

    bool SkipSaveOnClose = false;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    bool ValidateAll() override;
    bool consoleTextIsSafe() override;
    bool WriteConfig(const QString& path, bool withCommandLine,
                     const QString& commandLine) override;
    void saveParameterList() override;
    void loadParameterList() override;
    void CommitShownMap() override;
    void MakeBotScript() override;

    void load();
    // Steps 5 to 15 of the start: the map data, the bots, the maps, the
    // selector lists and the settings with their interlocks, in that order,
    // for the operator's window and a window that is never shown alike. The
    // game folder's new maps and their menu check (6 and 7) only with
    // lookInGameFolder; selectedMaps in place of mapsel.txt, when given.
    // Returns those of them the catalogue does not know, left out.
    QStringList loadSteps(bool lookInGameFolder, const QStringList* selectedMaps);
    void unload();
    void cmdSetPath();
    void connectMenus();

    AppContext& m_app;
    WindowRole m_role;
    std::unique_ptr<MainForm> ui;
    BotTables m_botTables;
    std::unique_ptr<OptionInterlocks> m_interlocks;
    std::unique_ptr<StatusPanel> m_statusPanel;
    std::unique_ptr<TipLine> m_tips;
    std::unique_ptr<TabFrames> m_tabFrames;
    std::unique_ptr<HelpMenu> m_help;
    std::unique_ptr<ParameterMemory> m_parameters;
    std::unique_ptr<FrameOptions> m_frameOptions;
    std::unique_ptr<SettingsController> m_settings;
    std::unique_ptr<PathDialog> m_pathDialog;
    std::unique_ptr<RandomSource> m_random;
    std::unique_ptr<MapCatalogue> m_catalogue;
    std::unique_ptr<BotsController> m_bots;
    std::unique_ptr<FormSettings> m_formSettings;
    std::unique_ptr<ConfigController> m_config;
    std::unique_ptr<MapsController> m_maps;
    std::unique_ptr<Validation> m_validation;
    std::unique_ptr<ConfigFileCommands> m_configCommands;
    std::unique_ptr<LaunchController> m_launch;
    std::unique_ptr<ServerControl> m_servers;
    std::unique_ptr<ProfileCommands> m_profiles;
    std::unique_ptr<ServerExport> m_export;
    bool m_loaded = false;
    bool m_unloaded = false;
    bool m_ended = false;
    // The archive search of the start-up, when its menu item is checked: the
    // window's, not a command line's.
    bool m_searchArchivesAtStart = true;
};

} // namespace halvane
