#include "export/ServerExport.h"

#include "app/AppContext.h"
#include "bots/BotScripts.h"
#include "config/ConfigWriter.h"
#include "config/ConsoleText.h"
#include "export/ExportFiles.h"
#include "launch/CommandLine.h"
#include "launch/LaunchSteps.h"
#include "platform/WholeFile.h"
#include "profiles/Profile.h"
#include "server/ServerProtocol.h"
#include "settings/Positions.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMenu>
#include <QTemporaryDir>

namespace halvane {

namespace {
const QString Title = QStringLiteral("Export Server");

} // namespace

ServerExport::ServerExport(QMenu* serverMenu, LaunchSteps& steps,
                           const ServerSettingsSource& settings, const LaunchOptionsSource& launch,
                           MapCatalogue& catalogue, RandomSource& random, AppContext& app)
    : m_steps(steps), m_settings(settings), m_launch(launch), m_catalogue(catalogue),
      m_random(random), m_app(app) {
    if (!serverMenu)
        return;
    QAction* action = serverMenu->addAction(QStringLiteral("Export Server…"));
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
    const QString profile = m_profile ? m_profile->currentName() : QString();
    // The file names made of it keep letters and digits only (exporting::slug).
    return profile.isEmpty() ? protocol::withoutColours(m_settings.serverSettings().serverName)
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

    m_steps.CommitShownMap();
    if (!m_steps.ValidateAll())
        return false; // the validation said why
    // Read after the validation, which may correct a box.
    const LaunchOptions options = m_launch.launchOptions();
    ServerSettings settings = m_settings.serverSettings();
    const QString consolePassword = settings.consolePassword;
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
    settings.consolePassword.clear(); // kept in passwords.cfg instead
    BotScriptWriter bots(state, m_app.platform.messages, m_random);
    ConfigWriter writer(state, m_app.platform.messages, m_catalogue, bots);
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
