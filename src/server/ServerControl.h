#pragma once

#include <QObject>
#include <memory>

class QAction;
class QMainWindow;
class QPushButton;

namespace halvane {

struct MainForm;
struct AppContext;
class LaunchController;
class ServerManager;
class ServerWindow;

// Ties the servers to the main window: every launch goes through the
// manager, which records it, and the "Server" menu and the button open the
// server window.
class ServerControl : public QObject {
    Q_OBJECT
public:
    ServerControl(QMainWindow& window, MainForm& ui, AppContext& app, LaunchController& launch);
    ~ServerControl() override;

    ServerManager& manager() { return *m_manager; }
    // Made at its first showing.
    ServerWindow& serverWindow();
    void showServerWindow();

    QAction* statusAction = nullptr;
    QPushButton* statusButton = nullptr;

private:
    QMainWindow& m_window;
    AppContext& m_app;
    std::unique_ptr<ServerManager> m_manager;
    std::unique_ptr<ServerWindow> m_serverWindow;
};

} // namespace halvane
