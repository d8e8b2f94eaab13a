#include "ui/OptionsPage.h"

#include "ui_frmOptions.h"

namespace halvane {

OptionsPage::OptionsPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmOptions) {
    ui->setupUi(this);
}

OptionsPage::~OptionsPage() = default;

} // namespace halvane
