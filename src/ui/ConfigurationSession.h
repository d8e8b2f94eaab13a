#pragma once

#include "app/AppContext.h"

#include <QStringList>
#include <memory>

namespace halvane {

class MainWindow;
class ServerManager;

// The settings of one store (a profile's, or the program's own) in a main
// window that is never shown, so that its scripts are written and its server
// launched by the very code the operator's window runs: load, validation,
// WriteConfig, the command line and the start. Messages go to the platform's
// message boxes, whatever they are (the window's, or printed).
//
//   ConfigurationSession session(platform, profile.settings, app.state, name);
//   session.load(&profile.maps);
//   session.launch(ConfigurationSession::newScriptFolder(stateFolder, name), &manager);
class ConfigurationSession {
public:
    // platform.store is not used: settings is the store the session loads,
    // validates into and writes from. game gives the game's location.
    ConfigurationSession(const Platform& platform, SettingsStore& settings, const AppState& game,
                         QString profileName = {});
    ~ConfigurationSession();

    // Loads the window: the bot list, the maps (the given ones, otherwise
    // mapsel.txt), the lists and the settings with their interlocks. Returns
    // the given maps the catalogue does not know; they are left out.
    QStringList load(const QStringList* maps = nullptr);

    // The validation of a launch: the fixed bot script first when the bots
    // need it, then every check, which stores the settings on success. False
    // when refused; the operator has been told why.
    bool validate();
    // The game's command line (argument part, starting with a blank) for
    // scripts in scriptFolder (empty: the game folder).
    QString commandLine(const QString& scriptFolder = {});
    // Validates, then writes halvane.cfg with the rotation and bot scripts
    // into scriptFolder/baseq3 (empty: the game folder's baseq3), ending in
    // the command line of a launch. False after a message.
    bool writeConfig(const QString& scriptFolder = {});
    // The launch sequence of "Launch the Server" with the scripts in
    // scriptFolder (empty: the game folder). With a manager the server is
    // recorded there (folder and profile included), otherwise just started.
    // False when nothing was started; the operator has been told why.
    bool launch(const QString& scriptFolder, ServerManager* manager);

    // The task id of the server launch started, 0 before.
    qint64 taskId() const;
    MainWindow& window() { return *m_window; }
    const AppState& state() const { return m_app.state; }

    // A new folder for the scripts of one server started from a profile,
    // below stateFolder/servers. Empty, with reason set, when it cannot be
    // made or its path cannot be handed to the game.
    static QString newScriptFolder(const QString& stateFolder, const QString& profileName,
                                   QString* reason = nullptr);
    // Why the game cannot be told this folder on its command line, or empty.
    static QString scriptFolderProblem(const QString& folder);

private:
    bool prepareFolder(const QString& scriptFolder);

    AppContext m_app;
    QString m_profileName;
    std::unique_ptr<MainWindow> m_window;
};

} // namespace halvane
