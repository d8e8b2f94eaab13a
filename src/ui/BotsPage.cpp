#include "ui/BotsPage.h"

#include "ui_frmBots.h"

namespace halvane {

BotsPage::BotsPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmBots) {
    ui->setupUi(this);
}

BotsPage::~BotsPage() = default;

} // namespace halvane
