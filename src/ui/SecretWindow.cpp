#include "ui/SecretWindow.h"

#include "ui_frmSecret.h"

namespace halvane {

SecretWindow::SecretWindow(QWidget& owner)
    : QDialog(&owner), ui(std::make_unique<Ui::frmSecret>()) {
    ui->setupUi(this);
    setModal(false);
}

SecretWindow::~SecretWindow() = default;

void SecretWindow::done(int result) {
    QDialog::done(result);
    emit closed();
}

} // namespace halvane
