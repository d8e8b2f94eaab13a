#include "ui/ConfigurationSession.h"

#include "config/ConfigController.h"
#include "config/ConsoleText.h"
#include "launch/CommandLine.h"
#include "launch/LaunchController.h"
#include "platform/PrivateFiles.h"
#include "server/ServerManager.h"
#include "settings/Positions.h"
#include "settings/Validation.h"
#include "ui/FormSettings.h"
#include "ui/MainWindow.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace halvane {

namespace {
Platform withStore(const Platform& platform, SettingsStore& store) {
    return {platform.messages, platform.dialogs, platform.processes,
            platform.shell,    platform.desktop, store,
            platform.folder};
}

AppState gameOnly(const AppState& game) {
    AppState state;
    state.GameFolder = game.GameFolder;
    state.GameExeName = game.GameExeName;
    return state;
}

// Starts a profile's server through the server manager, which records it with
// the address, port and console password shown, the script folder and the
// profile.
class RecordedStart : public ServerStarter {
public:
    RecordedStart(ServerManager& manager, const FormSettings& form, const QString& scriptFolder,
                  const QString& profileName)
        : m_manager(manager), m_form(form), m_scriptFolder(scriptFolder),
          m_profileName(profileName) {}

    StartResult startServer(const QString& program, const QStringList& arguments,
                            const QString& folder, const QString& commandLine) override {
        const LaunchOptions options = m_form.launchOptions();
        const ServerSettings settings = m_form.serverSettings();
        return m_manager.launch({program, arguments, folder, commandLine, options.netIp,
                                 options.netPort, settings.consolePassword, m_scriptFolder,
                                 m_profileName, settings.serverName});
    }

private:
    ServerManager& m_manager;
    const FormSettings& m_form;
    const QString& m_scriptFolder;
    const QString& m_profileName;
};
} // namespace

ConfigurationSession::ConfigurationSession(const Platform& platform, SettingsStore& settings,
                                           const AppState& game, QString profileName)
    : m_app{withStore(platform, settings), gameOnly(game)}, m_profileName(std::move(profileName)),
      m_window(std::make_unique<MainWindow>(m_app, WindowRole::Unshown)) {}

ConfigurationSession::~ConfigurationSession() = default;

QStringList ConfigurationSession::load(const QStringList* maps) {
    return m_window->loadUnshown(maps);
}

bool ConfigurationSession::validate() {
    const LaunchOptions options = m_window->formSettings().launchOptions();
    if (options.botType == positions::UserDefinedBots && !options.autoSelectBots)
        m_window->config().MakeBotScript();
    return m_window->validation().ValidateAll();
}

QString ConfigurationSession::commandLine(const QString& scriptFolder) {
    LaunchOptions options = m_window->formSettings().launchOptions();
    options.homePath = QDir::toNativeSeparators(scriptFolder);
    return buildCommandLine(options, QDateTime::currentDateTime());
}

QString ConfigurationSession::scriptFolderProblem(const QString& folder) {
    for (const QChar c : folder) {
        if (c == QLatin1Char('"') || c == QLatin1Char(';') || c == QLatin1Char('+') ||
            c.unicode() < 0x20)
            return QStringLiteral("The folder ") + QDir::toNativeSeparators(folder) +
                   QStringLiteral(" cannot be handed to the game: its path holds ") +
                   consoleCharacterName(c) +
                   QStringLiteral(", which the game's command line would split at.");
    }
    return {};
}

bool ConfigurationSession::prepareFolder(const QString& scriptFolder) {
    m_app.state.ScriptFolder = scriptFolder;
    if (scriptFolder.isEmpty())
        return true;
    QString problem = scriptFolderProblem(scriptFolder);
    // Its scripts may hold the console password.
    if (problem.isEmpty() && !makePrivateFolder(scriptFolder + QStringLiteral("/baseq3")))
        problem = QStringLiteral("The folder ") + QDir::toNativeSeparators(scriptFolder) +
                  QStringLiteral("/baseq3 for the server's scripts cannot be made.");
    if (problem.isEmpty())
        return true;
    m_app.platform.messages.tell(QStringLiteral("Warning!"), problem, MsgIcon::Critical);
    return false;
}

bool ConfigurationSession::writeConfig(const QString& scriptFolder) {
    if (!validate() || !prepareFolder(scriptFolder))
        return false;
    const QString target = m_app.state.scriptFile(QStringLiteral("baseq3/halvane.cfg"));
    if (!m_window->config().WriteConfig(target, true, commandLine(scriptFolder))) {
        m_app.platform.messages.tell(
            QStringLiteral("Warning!"),
            QStringLiteral("An error occured while creating the config file ") +
                QDir::toNativeSeparators(target) + QLatin1Char('.'),
            MsgIcon::Critical);
        return false;
    }
    return true;
}

bool ConfigurationSession::launch(const QString& scriptFolder, ServerManager* manager) {
    if (!prepareFolder(scriptFolder))
        return false;
    LaunchController& launch = m_window->launch();
    if (!manager)
        return launch.cmdStart();
    // The profile's server is started through the manager, which records it
    // (folder and profile included); the window's own starter comes back after.
    RecordedStart starter(*manager, m_window->formSettings(), m_app.state.ScriptFolder,
                          m_profileName);
    ServerStarter* const previous = launch.serverStarter();
    launch.setServerStarter(&starter);
    const bool started = launch.cmdStart();
    launch.setServerStarter(previous);
    return started;
}

qint64 ConfigurationSession::taskId() const {
    return m_window->launch().ServerTaskID;
}

QString ConfigurationSession::newScriptFolder(const QString& stateFolder,
                                              const QString& profileName, QString* reason) {
    const QString base = stateFolder + QStringLiteral("/servers/") + profileName +
                         QLatin1Char('-') +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString folder = base;
    for (int n = 2; QFileInfo::exists(folder); ++n)
        folder = base + QLatin1Char('-') + QString::number(n);
    QString problem = scriptFolderProblem(folder);
    if (problem.isEmpty() && !makePrivateFolder(folder))
        problem = QStringLiteral("The folder ") + QDir::toNativeSeparators(folder) +
                  QStringLiteral(" for the server's scripts cannot be made.");
    if (!problem.isEmpty()) {
        if (reason)
            *reason = problem;
        return {};
    }
    return folder;
}

} // namespace halvane
