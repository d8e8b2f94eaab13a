#include "server/AddServerDialog.h"

#include "server/ServerManager.h"
#include "ui/Accessibility.h"
#include "ui_frmAddServer.h"

#include <QPushButton>

namespace halvane {

AddServerDialog::AddServerDialog(ServerManager& manager, QWidget* owner)
    : QDialog(owner), m_manager(manager), ui(std::make_unique<Ui::frmAddServer>()) {
    ui->setupUi(this);
    nameControls(*this);
    ui->txtAddAddress->setToolTip(QStringLiteral("The server's numeric IPv4 address"));
    ui->txtAddPort->setToolTip(QStringLiteral("The server's UDP port"));
    ui->txtAddPassword->setToolTip(QStringLiteral("The server's console password, for Next Map, "
                                                  "Kick and console commands; may stay empty"));
    connect(ui->btnAddServer, &QDialogButtonBox::accepted, this, &AddServerDialog::tryAdd);
    connect(ui->btnAddServer, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

AddServerDialog::~AddServerDialog() = default;

void AddServerDialog::tryAdd() {
    const QString problem = m_manager.add(ui->txtAddAddress->text(), ui->txtAddPort->text(),
                                          ui->txtAddPassword->text());
    ui->lblAddProblem->setText(problem);
    if (problem.isEmpty())
        accept();
}

} // namespace halvane
