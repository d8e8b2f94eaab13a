#include "launch/LaunchController.h"
#include "settings/Positions.h"

#include "app/AppContext.h"
#include "launch/CommandLine.h"
#include "settings/TextForms.h"

#include <QAbstractButton>

#include <QDir>
#include <QFileInfo>
#include <cerrno>

namespace halvane {

namespace {
using positions::UserDefinedBots;
} // namespace

LaunchController::LaunchController(const LaunchOptionsSource& form, QAbstractButton& startButton,
                                   AppContext& app, QWidget& window, LaunchSteps& steps,
                                   QObject* parent)
    : QObject(parent), m_form(form), m_app(app), m_window(window), m_steps(&steps) {
    connect(&startButton, &QAbstractButton::clicked, this, &LaunchController::cmdStart);
}

bool LaunchController::ServerRunning() {
    Desktop& desktop = m_app.platform.desktop;
    desktop.setBusy(true);
    const bool alive = ServerTaskID != 0 && m_app.platform.processes.activate(ServerTaskID);
    desktop.setBusy(false);
    return alive;
}

bool LaunchController::cmdStart() {
    // 1. Remember the parameter line, then offer the list as it now stands.
    m_steps->saveParameterList();
    m_steps->loadParameterList();

    // 2.
    m_steps->CommitShownMap();

    // 3.
    if (ServerRunning()) {
        if (!m_app.platform.messages.askYesNo(
                QStringLiteral("Duplicate Server Confirmation"),
                QStringLiteral("A server has already been launched, do you want to start another "
                               "server?\r\rThis will require that you enter another Port Number "
                               "on the advanced tab.\rIf no port is specified, the next available "
                               "port will be used by default."),
                MsgIcon::Information))
            return false;
    }

    // 4. Before validation: the fixed bot script is rewritten even when it fails.
    const LaunchOptions chosen = m_form.launchOptions();
    if (chosen.botType == UserDefinedBots && !chosen.autoSelectBots)
        m_steps->MakeBotScript();

    // 5. The validator tells the operator why it refused.
    if (!m_steps->ValidateAll())
        return false;

    // 6.
    Desktop& desktop = m_app.platform.desktop;
    desktop.setBusy(true);

    // 7.
    QString stepText;
    const QDateTime now = m_steps->now();
    LaunchOptions options = m_form.launchOptions();
    options.homePath = QDir::toNativeSeparators(m_app.state.ScriptFolder);
    const QString commandLine = buildCommandLine(options, now);

    // 8.
    const QString config = m_app.state.scriptFile(QStringLiteral("baseq3/halvane.cfg"));
    if (!m_steps->WriteConfig(config, true, commandLine)) {
        fail(stepText, configWriteErrorCode());
        return false;
    }

    // 9. Folders have no drive letters here: there is no drive to change to.
    const QString gameFolder = m_app.state.GameFolder;

    // 10. The game runs in its folder; the program's own directory stays.
    stepText = QStringLiteral("Error changing directories");
    if (gameFolder.isEmpty() || !QFileInfo(gameFolder).isDir()) {
        fail(stepText, ENOENT);
        return false;
    }

    // 11. Started without a shell: the command line becomes the arguments.
    const QString exeName = m_app.state.GameExeName.trimmed();
    stepText = m_app.state.GameExeName + commandLine;
    const QString program = QDir(gameFolder).filePath(exeName);
    const QStringList arguments = splitCommandLine(commandLine);
    const StartResult started =
        m_starter ? m_starter->startServer(program, arguments, gameFolder, commandLine)
                  : m_app.platform.processes.start(program, arguments, gameFolder, {});
    if (!started.started) {
        fail(stepText, started.errorCode != 0 ? started.errorCode : EIO);
        return false;
    }
    ServerTaskID = started.taskId;

    // 12. The command line's window is never shown, so it stays as it is.
    const LaunchOptions after = m_form.launchOptions();
    if (after.startState && m_window.isVisible()) {
        if (after.closeAfterStart)
            m_window.close(); // the shut-down stores everything
        else
            m_window.showMinimized();
    }

    // 13.
    desktop.setBusy(false);
    return true;
}

// The writer answers only yes or no; the code says what most likely stood
// in its way.
int LaunchController::configWriteErrorCode() const {
    const QFileInfo folder(m_app.state.GameFolder);
    if (m_app.state.GameFolder.isEmpty() || !folder.isDir())
        return ENOENT;
    const QFileInfo baseq3(m_app.state.scriptFile(QStringLiteral("baseq3")));
    if (baseq3.exists() && !baseq3.isWritable())
        return EACCES;
    return EIO;
}

void LaunchController::fail(const QString& stepText, int code) {
    m_app.platform.desktop.setBusy(false);
    m_app.platform.messages.tell(QStringLiteral("Warning!"),
                                 stepText + QStringLiteral("\r\rError: ") + signedText(code),
                                 MsgIcon::Critical);
}

} // namespace halvane
