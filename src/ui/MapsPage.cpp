#include "ui/MapsPage.h"

#include "ui_frmMaps.h"

namespace halvane {

MapsPage::MapsPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmMaps) {
    ui->setupUi(this);
}

MapsPage::~MapsPage() = default;

} // namespace halvane
