#include "export/ServerExport.h"

#include "app/AppContext.h"
#include "bots/BotScripts.h"
#include "config/ConfigController.h"
#include "config/ConfigWriter.h"
#include "config/ConsoleText.h"
#include "export/ExportFiles.h"
#include "launch/CommandLine.h"
#include "maps/MapsController.h"
#include "platform/WholeFile.h"
#include "server/ServerProtocol.h"
#include "settings/Positions.h"
#include "settings/Validation.h"
#include "ui/FormSettings.h"
#include "ui/MainForm.h"
#include "ui/MainWindow.h"
#include "ui/ProfileCommands.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>

namespace halvane {

namespace {
const QString Title = QStringLiteral("Export Server");

} // namespace

ServerExport::ServerExport(MainWindow& window, AppContext& app) : m_window(window), m_app(app) {
    auto* menu = window.findChild<QMenu*>(QStringLiteral("mnuServer"));
    if (!menu)
        return;
    QAction* action = menu->addAction(QStringLiteral("Export Server…"));
    action->setObjectName(QStringLiteral("mnuServerExport"));
    connect(action, &QAction::triggered, this, &ServerExport::mnuServerExport);
}

bool ServerExport::fail(const QString& text) {
    m_app.platform.messages.tell(Title, text, MsgIcon::Critical);
    return false;
}

void ServerExport::mnuServerExport() {
    const FileChoice choice =
        m_app.platform.dialogs.saveFile(QStringLiteral("Export Server to a new folder"),
                                        QStringLiteral("Folders|*"), QString(), QDir::homePath());
    if (!choice.chosen || choice.path.isEmpty())
        return;
    if (exportTo(choice.path, serverName()))
        m_app.platform.messages.tell(
            Title,
            QStringLiteral("The server's files were written to ") +
                QDir::toNativeSeparators(choice.path) +
                QStringLiteral(".\r\rREADME.md in it says how to run them."),
            MsgIcon::Information);
}

QString ServerExport::serverName() const {
    const ProfileCommands* profiles = m_window.profileCommands();
    const QString profile = profiles ? profiles->currentName() : QString();
    // The file names made of it keep letters and digits only (exporting::slug).
    return profile.isEmpty() ? protocol::withoutColours(m_window.form().txtServerName->text())
                             : profile;
}

bool ServerExport::exportTo(const QString& folder, const QString& name) {
    const QString target = QFileInfo(folder).absoluteFilePath();
    const QString shown = QDir::toNativeSeparators(target);
    if (QFileInfo(target).exists() || QFileInfo(target).isSymLink())
        return fail(QStringLiteral("The folder ") + shown +
                    QStringLiteral(" already exists.\r\rAn export goes into a new folder only."));
    const QString parent = QFileInfo(target).absolutePath();
    if (!QFileInfo(parent).isDir())
        return fail(QStringLiteral("The folder ") + QDir::toNativeSeparators(parent) +
                    QStringLiteral(" does not exist."));

    m_window.maps().CommitShownMap();
    if (!m_window.validation().ValidateAll())
        return false; // the validation said why
    // Read after the validation, which may correct a box.
    MainForm& ui = m_window.form();
    const LaunchOptions options = launchOptionsFrom(ui);
    const QString consolePassword = ui.txtConsolePW->text();
    // Both passwords go between double quotes into passwords.cfg.
    for (const auto& [caption, password] :
         {std::pair{QStringLiteral("Server Password"), options.serverPassword},
          std::pair{QStringLiteral("Console (rcon) Password"), consolePassword}}) {
        const QString refusal = consoleRefusal(caption, password, ConsolePlace::Quoted);
        if (!refusal.isEmpty())
            return fail(refusal);
    }

    // Made beside the target and renamed into its place once whole.
    QTemporaryDir staging(parent + QStringLiteral("/.halvane-export-XXXXXX"));
    if (!staging.isValid())
        return fail(QStringLiteral("The folder ") + shown + QStringLiteral(" cannot be made: ") +
                    staging.errorString());

    // The window's own writers, pointed at the new folder as the game folder.
    AppState state;
    state.GameFolder = staging.path();
    if (!QDir(staging.path()).mkdir(QStringLiteral("baseq3")))
        return fail(QStringLiteral("The folder ") + shown + QStringLiteral(" cannot be made."));
    ServerSettings settings = m_window.config().snapshot();
    settings.consolePassword.clear(); // kept in passwords.cfg instead
    BotScriptWriter bots(state, m_app.platform.messages, m_window.random());
    ConfigWriter writer(state, m_app.platform.messages, m_window.mapCatalogue(), bots);
    if (settings.botType == positions::UserDefinedBots && !settings.autoSelectBots)
        bots.MakeBotScript(settings);
    const QString config = state.gameFile(QStringLiteral("baseq3/halvane.cfg"));
    if (!writer.WriteConfig(settings, config, false, QString()))
        return fail(QStringLiteral("An error occured while creating the config file in ") + shown +
                    QLatin1Char('.'));

    ExportInput input;
    input.name = name;
    QString serverPassword;
    input.gameArguments = exporting::withoutPassword(
        splitCommandLine(buildCommandLine(options, QDateTime::currentDateTime())), &serverPassword);
    bool portOk = false;
    const uint port = options.netPort.trimmed().toUInt(&portOk);
    input.port = portOk && port > 0 && port <= 65535 ? quint16(port) : 27960;
    const QString baseq3 = staging.path() + QStringLiteral("/baseq3");
    QDirIterator scripts(baseq3, QDir::Files, QDirIterator::Subdirectories);
    while (scripts.hasNext()) {
        const QString path = scripts.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("Cannot read ") + QDir::toNativeSeparators(path) +
                        QStringLiteral(": ") + file.errorString());
        input.scripts.insert(QDir(baseq3).relativeFilePath(path), file.readAll());
    }
    QString passwords =
        QStringLiteral("// The passwords of the Halvane server %1, read after halvane.cfg.\r\n");
    passwords = passwords.arg(exporting::slug(name));
    if (options.requirePassword)
        passwords += QStringLiteral("set g_password \"%1\"\r\n").arg(serverPassword);
    passwords += QStringLiteral("set rconpassword \"%1\"\r\n").arg(consolePassword);
    input.passwords = passwords.toLatin1();

    for (const ExportFile& file : exporting::exportFiles(input)) {
        if (file.path.startsWith(QLatin1String("baseq3/")) &&
            input.scripts.contains(file.path.mid(7)))
            continue; // written there already
        const QString path = staging.path() + QLatin1Char('/') + file.path;
        QString reason;
        if (!saveWholeFile(path, file.bytes, &reason,
                           file.ownerOnly ? FileAccess::Private : FileAccess::Usual))
            return fail(QStringLiteral("Cannot write ") +
                        QDir::toNativeSeparators(target + QLatin1Char('/') + file.path) +
                        QStringLiteral(": ") + reason + QStringLiteral(". Nothing was kept."));
        QFileDevice::Permissions mode = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
        if (!file.ownerOnly)
            mode |= QFileDevice::ReadGroup | QFileDevice::ReadOther;
        if (file.executable)
            mode |= QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;
        QFile::setPermissions(path, mode);
    }
    QFile::setPermissions(staging.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                                              QFileDevice::ExeGroup | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther);
    if (QFileInfo(target).exists() || !QDir().rename(staging.path(), target))
        return fail(QStringLiteral("The folder ") + shown +
                    QStringLiteral(" cannot be made: another took its place or its folder "
                                   "cannot be written."));
    staging.setAutoRemove(false);
    return true;
}

} // namespace halvane
