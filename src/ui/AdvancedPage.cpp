#include "ui/AdvancedPage.h"

#include "launch/ParameterMemory.h"
#include "ui_frmAdvanced.h"

namespace halvane {

namespace {
void enable(std::initializer_list<QWidget*> widgets, bool enabled) {
    for (QWidget* widget : widgets)
        widget->setEnabled(enabled);
}
} // namespace

AdvancedPage::AdvancedPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmAdvanced) {
    ui->setupUi(this);
    connect(ui->chkLogFile, &QCheckBox::toggled, this, &AdvancedPage::UpdateLogFileControls);
    connect(ui->chkDateLog, &QCheckBox::toggled, this, &AdvancedPage::UpdateLogFileControls);
    connect(ui->chkRequirePassword, &QCheckBox::toggled, this,
            &AdvancedPage::UpdatePasswordControls);
    connect(ui->chkSpecifyCD, &QCheckBox::toggled, this, &AdvancedPage::UpdateCdControls);
}

AdvancedPage::~AdvancedPage() = default;

void AdvancedPage::UpdateLogFileControls() {
    const bool wanted = ui->chkLogFile->isChecked();
    enable({ui->Frame11, ui->txtLogFile, ui->chkDateLog}, wanted);
    if (ui->chkDateLog->isChecked())
        ui->txtLogFile->setEnabled(false);
    else if (wanted)
        ui->txtLogFile->setEnabled(true);
}

void AdvancedPage::UpdatePasswordControls() {
    enable({ui->txtServerPW, ui->txtPrivateClients, ui->lblPrivateClients},
           ui->chkRequirePassword->isChecked());
}

void AdvancedPage::UpdateCdControls() {
    ui->txtCDROM->setEnabled(ui->chkSpecifyCD->isChecked());
}

QObject* AdvancedPage::holder(const OptionKey& option) const {
    return childHolder(*this, option);
}

void AdvancedPage::loaded(const SettingsStore& store, int step, const Refused&) {
    switch (step) {
    case 31:
        if (m_parameters)
            m_parameters->loadParameterList(store);
        break;
    case 37:
        UpdateLogFileControls();
        break;
    case 38:
        if (m_parameters)
            m_parameters->loadCdDrive(store);
        UpdatePasswordControls();
        break;
    default:
        break;
    }
}

} // namespace halvane
