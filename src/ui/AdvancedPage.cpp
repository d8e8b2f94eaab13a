#include "ui/AdvancedPage.h"

#include "ui_frmAdvanced.h"

namespace halvane {

AdvancedPage::AdvancedPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmAdvanced) {
    ui->setupUi(this);
}

AdvancedPage::~AdvancedPage() = default;

} // namespace halvane
