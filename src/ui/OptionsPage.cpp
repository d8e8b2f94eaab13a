#include "ui/OptionsPage.h"

#include "ui_frmOptions.h"

namespace halvane {

OptionsPage::OptionsPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmOptions) {
    ui->setupUi(this);
    connect(ui->chkWarmUp, &QCheckBox::toggled, this, &OptionsPage::UpdateWarmUpControls);
    connect(ui->chkStartState, &QCheckBox::toggled, this, &OptionsPage::UpdateStartStateControls);

    // "Minimize" and "Close" exclude each other, yet both may be clear as
    // stored; Qt's auto-exclusive buttons could not be cleared again.
    ui->optMinimize->setAutoExclusive(false);
    ui->optClose->setAutoExclusive(false);
    // Without auto-exclusion a click would clear the selected one again: an
    // option button clicked while selected stays selected.
    for (const auto& pair :
         {std::pair{ui->optMinimize, ui->optClose}, std::pair{ui->optClose, ui->optMinimize}}) {
        QRadioButton* button = pair.first;
        QRadioButton* other = pair.second;
        connect(button, &QRadioButton::toggled, other, [other](bool on) {
            if (on)
                other->setChecked(false);
        });
        connect(button, &QRadioButton::clicked, button, [button](bool on) {
            if (!on)
                button->setChecked(true);
        });
    }
}

OptionsPage::~OptionsPage() = default;

void OptionsPage::UpdateWarmUpControls() {
    ui->txtWarmUpTime->setEnabled(ui->chkWarmUp->isChecked());
}

void OptionsPage::UpdateStartStateControls() {
    const bool wanted = ui->chkStartState->isChecked();
    ui->optMinimize->setEnabled(wanted);
    ui->optClose->setEnabled(wanted);
}

QObject* OptionsPage::holder(const OptionKey& option) const {
    return childHolder(*this, option);
}

void OptionsPage::loaded(const SettingsStore&, int step, const Refused&) {
    if (step == 24)
        UpdateStartStateControls();
    else if (step == 26)
        UpdateWarmUpControls();
}

} // namespace halvane
