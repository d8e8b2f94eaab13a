#pragma once

#include "bots/BotTables.h"
#include "launch/PathDialog.h"

#include <QMainWindow>
#include <memory>

namespace Ui {
class frmMain;
}

namespace halvane {

struct AppContext;
class ConfigFileCommands;
class LaunchController;
class OptionInterlocks;
class ParameterMemory;
class SettingsController;
class StatusPanel;
class Validation;

// The main window: owns the form and the per-subsystem controllers, and runs
// the start-up and shut-down sequences.
class MainWindow : public QMainWindow, public PathDialogHost {
    Q_OBJECT
public:
    explicit MainWindow(AppContext& app);
    ~MainWindow() override;

    // Runs the first window of the program: the path dialog.
    void start();

    void showMainWindow() override;
    void endProgram() override;

    Ui::frmMain& form() { return *ui; }
    PathDialog& pathDialog() { return *m_pathDialog; }
    SettingsController& settings() { return *m_settings; }
    OptionInterlocks& interlocks() { return *m_interlocks; }
    StatusPanel& statusPanel() { return *m_statusPanel; }
    BotTables& botTables() { return m_botTables; }
    Validation& validation() { return *m_validation; }
    ConfigFileCommands& configCommands() { return *m_configCommands; }
    LaunchController& launch() { return *m_launch; }
    bool isLoaded() const { return m_loaded; }
    bool hasEnded() const { return m_ended; }

    void LoadControls();

    bool SkipSaveOnClose = false;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void load();
    void unload();
    void cmdSetPath();
    void connectMenus();

    AppContext& m_app;
    std::unique_ptr<Ui::frmMain> ui;
    BotTables m_botTables;
    std::unique_ptr<OptionInterlocks> m_interlocks;
    std::unique_ptr<StatusPanel> m_statusPanel;
    std::unique_ptr<ParameterMemory> m_parameters;
    std::unique_ptr<SettingsController> m_settings;
    std::unique_ptr<PathDialog> m_pathDialog;
    std::unique_ptr<Validation> m_validation;
    std::unique_ptr<ConfigFileCommands> m_configCommands;
    std::unique_ptr<LaunchController> m_launch;
    bool m_loaded = false;
    bool m_unloaded = false;
    bool m_ended = false;
};

} // namespace halvane
