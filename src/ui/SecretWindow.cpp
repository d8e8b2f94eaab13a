#include "ui/SecretWindow.h"

#include "ui_frmSecret.h"

#include <QApplication>
#include <QIcon>

namespace halvane {

SecretWindow::SecretWindow(QWidget& owner)
    : QDialog(&owner), ui(std::make_unique<Ui::frmSecret>()) {
    ui->setupUi(this);
    setModal(false);
    // The program's own icon is the picture.
    const QIcon icon = QApplication::windowIcon();
    if (!icon.isNull())
        ui->imgSecret->setPixmap(icon.pixmap(ui->imgSecret->minimumSize()));
}

SecretWindow::~SecretWindow() = default;

void SecretWindow::done(int result) {
    QDialog::done(result);
    emit closed();
}

} // namespace halvane
