#include "ui/GeneralPage.h"

#include "ui_frmGeneral.h"

namespace halvane {

GeneralPage::GeneralPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmGeneral) {
    ui->setupUi(this);
}

GeneralPage::~GeneralPage() = default;

} // namespace halvane
