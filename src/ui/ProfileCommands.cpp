#include "ui/ProfileCommands.h"

#include "app/AppContext.h"
#include "platform/UserFiles.h"
#include "server/ServerControl.h"
#include "server/ServerManager.h"
#include "ui/ConfigurationSession.h"
#include "ui/MainWindow.h"

#include <QAction>
#include <QDir>
#include <QMenu>

namespace halvane {

namespace {
const QString SaveTitle = QStringLiteral("Save as Profile");
const QString OpenTitle = QStringLiteral("Open Profile");
const QString LaunchTitle = QStringLiteral("Launch Profile");
const QString RenameTitle = QStringLiteral("Rename Profile");
const QString DeleteTitle = QStringLiteral("Delete Profile");
constexpr quint16 GamePort = 27960; // what the game takes without a port

QString quoted(const QString& name) {
    return QLatin1Char('"') + name + QLatin1Char('"');
}
} // namespace

ProfileCommands::ProfileCommands(MainWindow& window, AppContext& app, ServerControl& servers)
    : QObject(&window), m_window(window), m_app(app), m_servers(servers),
      m_store(userProfileFolder()) {
    QMenu* menu = window.findChild<QMenu*>(QStringLiteral("mnuServer"));
    if (!menu)
        return;
    menu->addSeparator();
    const auto add = [menu, this](const char* name, const QString& caption,
                                  void (ProfileCommands::*slot)()) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    saveAction = add("mnuProfileSave", QStringLiteral("Save Settings as Profile..."),
                     &ProfileCommands::saveAsProfile);
    openAction =
        add("mnuProfileOpen", QStringLiteral("Open Profile..."), &ProfileCommands::openProfile);
    launchAction = add("mnuProfileLaunch", QStringLiteral("Launch Profile..."),
                       qOverload<>(&ProfileCommands::launchProfile));
    renameAction = add("mnuProfileRename", QStringLiteral("Rename Profile..."),
                       &ProfileCommands::renameProfile);
    deleteAction = add("mnuProfileDelete", QStringLiteral("Delete Profile..."),
                       &ProfileCommands::deleteProfile);
}

void ProfileCommands::tell(const QString& title, const QString& text, bool failure) {
    m_app.platform.messages.tell(title, text, failure ? MsgIcon::Critical : MsgIcon::Information);
}

std::optional<QString> ProfileCommands::chooseProfile(const QString& title) {
    const QStringList names = m_store.names();
    if (names.isEmpty()) {
        tell(title,
             QStringLiteral("There is no profile in ") +
                 QDir::toNativeSeparators(m_store.folder()) +
                 QStringLiteral(" yet.\r\rSave the settings as a profile first (Server, Save "
                                "Settings as Profile)."),
             false);
        return std::nullopt;
    }
    return m_prompts->choose(title, QStringLiteral("Profile:"), names);
}

void ProfileCommands::saveAsProfile() {
    const auto name =
        m_prompts->askText(SaveTitle, QStringLiteral("Name of the profile:"), m_lastName);
    if (!name)
        return;
    if (!profileNameProblem(*name).isEmpty()) {
        tell(SaveTitle, profileNameRefusal(*name));
        return;
    }
    if (m_store.exists(*name) &&
        !m_app.platform.messages.askYesNo(SaveTitle,
                                          QStringLiteral("The profile ") + quoted(*name) +
                                              QStringLiteral(" exists already.\r\rReplace it "
                                                             "with the settings shown now?"),
                                          MsgIcon::Question))
        return;
    Profile profile;
    m_window.saveProfile(profile);
    const QString problem = m_store.save(*name, profile);
    if (!problem.isEmpty()) {
        tell(SaveTitle, problem);
        return;
    }
    m_lastName = *name;
}

void ProfileCommands::openProfile() {
    const auto name = chooseProfile(OpenTitle);
    if (!name)
        return;
    Profile profile;
    const QString problem = m_store.load(*name, profile);
    if (!problem.isEmpty()) {
        tell(OpenTitle, problem);
        return;
    }
    const QStringList unknown = m_window.openProfile(profile);
    m_lastName = *name;
    if (!unknown.isEmpty())
        tell(OpenTitle,
             QStringLiteral("The map catalogue does not know these maps of the profile ") +
                 quoted(*name) + QStringLiteral(", so they were left out:\r\r") +
                 unknown.join(QStringLiteral(", ")),
             false);
}

void ProfileCommands::launchProfile() {
    if (const auto name = chooseProfile(LaunchTitle))
        launchProfile(*name);
}

bool ProfileCommands::launchProfile(const QString& name) {
    Profile profile;
    const QString problem = m_store.load(name, profile);
    if (!problem.isEmpty()) {
        tell(LaunchTitle, problem);
        return false;
    }

    // A port a server of ours already has: the game would move on to the
    // next free one, and the operator may not want that.
    ServerManager& manager = m_servers.manager();
    const QString portText =
        profile.settings.read(QStringLiteral("Network"), QStringLiteral("NetPort"), {}).trimmed();
    bool ok = false;
    const uint number = portText.toUInt(&ok);
    const quint16 port = ok && number > 0 && number <= 65535 ? quint16(number) : GamePort;
    for (const ServerEntry& server : manager.servers()) {
        // The port it opened, or before its log says so, the one it asked for.
        const quint16 has = server.record.port != 0 ? server.record.port : server.record.portAsked;
        if (!server.record.running() || has != port)
            continue;
        const QString which =
            server.record.profile.isEmpty()
                ? QStringLiteral("A server Halvane started")
                : QStringLiteral("The server of the profile ") + quoted(server.record.profile);
        if (!m_app.platform.messages.askYesNo(
                LaunchTitle,
                which + QStringLiteral(" already uses port ") + QString::number(port) +
                    QStringLiteral(".\r\rLaunch the profile ") + quoted(name) +
                    QStringLiteral(" all the same? The game then takes the next free port."),
                MsgIcon::Question))
            return false;
        break;
    }

    QString reason;
    const QString folder =
        ConfigurationSession::newScriptFolder(m_app.platform.folder.stateFolder(), name, &reason);
    if (folder.isEmpty()) {
        tell(LaunchTitle, reason);
        return false;
    }
    ConfigurationSession session(m_app.platform, profile.settings, m_app.state, name);
    const QStringList unknown = session.load(&profile.maps);
    if (!unknown.isEmpty())
        tell(LaunchTitle,
             QStringLiteral("The map catalogue does not know these maps of the profile ") +
                 quoted(name) + QStringLiteral(", so they are left out:\r\r") +
                 unknown.join(QStringLiteral(", ")),
             false);
    return session.launch(folder, &manager);
}

void ProfileCommands::renameProfile() {
    const auto from = chooseProfile(RenameTitle);
    if (!from)
        return;
    const auto to = m_prompts->askText(
        RenameTitle, QStringLiteral("New name of the profile ") + quoted(*from) + QLatin1Char(':'),
        *from);
    if (!to)
        return;
    const QString problem = m_store.rename(*from, *to);
    if (!problem.isEmpty()) {
        tell(RenameTitle, problem);
        return;
    }
    if (m_lastName == *from)
        m_lastName = *to;
}

void ProfileCommands::deleteProfile() {
    const auto name = chooseProfile(DeleteTitle);
    if (!name)
        return;
    if (!m_app.platform.messages.askYesNo(
            DeleteTitle,
            QStringLiteral("Delete the profile ") + quoted(*name) + QStringLiteral(" (") +
                QDir::toNativeSeparators(m_store.filePath(*name)) + QStringLiteral(")?"),
            MsgIcon::Question))
        return;
    const QString problem = m_store.remove(*name);
    if (!problem.isEmpty())
        tell(DeleteTitle, problem);
}

} // namespace halvane
