#pragma once

#include "server/LogTail.h"
#include "server/ServerProtocol.h"

#include <QTimer>
#include <QWidget>
#include <memory>

namespace Ui {
class frmServer;
}

class QTreeWidgetItem;

namespace halvane {

class ProfileLauncher;
class ServerManager;
struct ServerEntry;
class Shell;

// The servers this program started, for the operator to watch and steer.
// Not modal; everything it shows comes from the manager.
class ServerWindow : public QWidget {
    Q_OBJECT
public:
    ServerWindow(ServerManager& manager, Shell& shell, QWidget* owner);
    ~ServerWindow() override;

    Ui::frmServer& form() { return *ui; }
    QString currentId() const;
    // Offers its profiles to launch; none: the profile row is hidden.
    void setProfileLauncher(ProfileLauncher* profiles);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void rebuildList();
    void updateRow(const QString& id);
    void fillRow(QTreeWidgetItem& item, const ServerEntry& server) const;
    void showDetails();
    void everySecond();
    void readLog();
    void sendCommand();
    void kick();
    void reportAnswer(const QString& what, const protocol::RconAnswer& answer);
    void showProblem();
    void fillRuns(const ServerEntry* server);
    void followLog(const QString& path);
    void openLog();
    void fillProfiles();

    ServerManager& m_manager;
    Shell& m_shell;
    ProfileLauncher* m_profiles = nullptr;
    std::unique_ptr<Ui::frmServer> ui;
    QTimer m_timer;
    LogTail m_tail;
    QString m_logProblem;
    QString m_actionProblem;
    QString m_shownPlayers; // what the player list shows, to redraw only on change
    QString m_runsOf;       // the server and run the run list was filled for
    QString m_runsLog;
};

} // namespace halvane
