#include "ui/AboutPage.h"

#include "ui_frmAbout.h"

namespace halvane {

AboutPage::AboutPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmAbout) {
    ui->setupUi(this);
}

AboutPage::~AboutPage() = default;

} // namespace halvane
