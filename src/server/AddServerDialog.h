#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmAddServer;
}

namespace halvane {

class ServerManager;

// Asks for a server that Halvane did not start, on this host or another:
// its address, port and console password. OK adds it to the manager's
// list, or says why not and stays open.
class AddServerDialog : public QDialog {
    Q_OBJECT
public:
    AddServerDialog(ServerManager& manager, QWidget* owner);
    ~AddServerDialog() override;

    Ui::frmAddServer& form() { return *ui; }

private:
    void tryAdd();

    ServerManager& m_manager;
    std::unique_ptr<Ui::frmAddServer> ui;
};

} // namespace halvane
