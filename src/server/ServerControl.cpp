#include "server/ServerControl.h"

#include "app/AppContext.h"
#include "config/ServerSettings.h"
#include "launch/CommandLine.h"
#include "launch/LaunchController.h"
#include "server/ServerManager.h"
#include "server/ServerWindow.h"
#include "ui_frmMain.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

namespace halvane {

ServerControl::ServerControl(QMainWindow& window, Ui::frmMain& ui,
                             const ServerSettingsSource& settings,
                             const LaunchOptionsSource& options, AppContext& app,
                             LaunchController& launch)
    : m_window(window), m_settings(settings), m_options(options), m_app(app),
      m_manager(std::make_unique<ServerManager>(app)) {
    auto* menu = new QMenu(QStringLiteral("Se&rver"), &window);
    menu->setObjectName(QStringLiteral("mnuServer"));
    statusAction = menu->addAction(QStringLiteral("Server Status"));
    statusAction->setObjectName(QStringLiteral("mnuServerStatus"));
    statusAction->setShortcut(QKeySequence(Qt::Key_F7));
    ui.menubar->insertMenu(ui.mnuHelp->menuAction(), menu);
    connect(statusAction, &QAction::triggered, this, &ServerControl::showServerWindow);

    statusButton = new QPushButton(QStringLiteral("Server Status"), ui.centralwidget);
    statusButton->setObjectName(QStringLiteral("cmdServerStatus"));
    statusButton->setToolTip(QStringLiteral("Shows the servers Halvane started and lets you "
                                            "steer them"));
    ui.boxButtons->insertWidget(ui.boxButtons->indexOf(ui.cmdSetPath) + 1, statusButton);
    QWidget::setTabOrder(ui.cmdSetPath, statusButton); // tabbing follows the row
    connect(statusButton, &QPushButton::clicked, this, &ServerControl::showServerWindow);

    launch.setServerStarter(this);
    // A restarted server is still the one launched last.
    connect(m_manager.get(), &ServerManager::restarted, this,
            [&launch](qint64 oldPid, qint64 newPid) {
                if (launch.ServerTaskID == oldPid)
                    launch.ServerTaskID = newPid;
            });
    // Once the program runs, so a second copy that ends at once never reads it.
    QTimer::singleShot(0, m_manager.get(), &ServerManager::load);
}

ServerControl::~ServerControl() = default;

StartResult ServerControl::startServer(const QString& program, const QStringList& arguments,
                                       const QString& folder, const QString& commandLine) {
    const ServerSettings settings = m_settings.serverSettings();
    const LaunchOptions options = m_options.launchOptions();
    const StartResult started = m_manager->launch({program,
                                                   arguments,
                                                   folder,
                                                   commandLine,
                                                   options.netIp,
                                                   options.netPort,
                                                   settings.consolePassword,
                                                   {},
                                                   {},
                                                   settings.serverName});
    if (started.started && !m_manager->launchProblem().isEmpty())
        m_app.platform.messages.tell(QStringLiteral("Halvane"), m_manager->launchProblem(),
                                     MsgIcon::Information);
    return started;
}

ServerWindow& ServerControl::serverWindow() {
    if (!m_serverWindow)
        m_serverWindow =
            std::make_unique<ServerWindow>(*m_manager, m_app.platform.shell, &m_window);
    m_serverWindow->setProfileLauncher(m_profiles);
    return *m_serverWindow;
}

void ServerControl::setProfileLauncher(ProfileLauncher* profiles) {
    m_profiles = profiles;
    if (m_serverWindow)
        m_serverWindow->setProfileLauncher(profiles);
}

void ServerControl::showServerWindow() {
    ServerWindow& window = serverWindow();
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace halvane
