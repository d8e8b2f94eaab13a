#pragma once

#include "launch/LaunchSteps.h"

#include <QObject>
#include <memory>

class QAction;
class QMainWindow;
class QPushButton;

namespace Ui {
class frmMain;
} // namespace Ui

namespace halvane {

struct AppContext;
class LaunchController;
class LaunchOptionsSource;
class ProfileLauncher;
class ServerManager;
class ServerSettingsSource;
class ServerWindow;

// Ties the servers to the main window: every launch goes through the
// manager, which records it, and the "Server" menu and the button open the
// server window. The server's name, address and console password are
// recorded as the options read at the launch.
class ServerControl : public QObject, public ServerStarter {
    Q_OBJECT
public:
    ServerControl(QMainWindow& window, Ui::frmMain& frame, const ServerSettingsSource& settings,
                  const LaunchOptionsSource& options, AppContext& app, LaunchController& launch);
    ~ServerControl() override;

    ServerManager& manager() { return *m_manager; }
    // Made at its first showing.
    ServerWindow& serverWindow();
    void showServerWindow();
    // The profiles the server window offers to launch.
    void setProfileLauncher(ProfileLauncher* profiles);

    StartResult startServer(const QString& program, const QStringList& arguments,
                            const QString& folder, const QString& commandLine) override;

    QAction* statusAction = nullptr;
    QPushButton* statusButton = nullptr;

private:
    QMainWindow& m_window;
    const ServerSettingsSource& m_settings;
    const LaunchOptionsSource& m_options;
    AppContext& m_app;
    std::unique_ptr<ServerManager> m_manager;
    std::unique_ptr<ServerWindow> m_serverWindow;
    ProfileLauncher* m_profiles = nullptr;
};

} // namespace halvane
