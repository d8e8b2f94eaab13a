#include "settings/OptionInterlocks.h"
#include "settings/Positions.h"

#include "app/AppContext.h"
#include "ui/MainForm.h"

namespace halvane {

namespace {
using namespace positions;

void enable(std::initializer_list<QWidget*> widgets, bool enabled) {
    for (QWidget* widget : widgets)
        widget->setEnabled(enabled);
}
} // namespace

OptionInterlocks::OptionInterlocks(MainForm& ui, AppContext& app, QObject* parent)
    : QObject(parent), ui(ui), m_app(app) {
    connect(ui.cmbGameType, &QComboBox::currentIndexChanged, this,
            &OptionInterlocks::gameTypeClicked);
    connect(ui.cmbServerType, &QComboBox::currentIndexChanged, this,
            &OptionInterlocks::UpdateServerTypeControls);
    connect(ui.chkWarmUp, &QCheckBox::toggled, this, &OptionInterlocks::UpdateWarmUpControls);
    connect(ui.chkLogFile, &QCheckBox::toggled, this, &OptionInterlocks::UpdateLogFileControls);
    connect(ui.chkDateLog, &QCheckBox::toggled, this, &OptionInterlocks::UpdateLogFileControls);
    connect(ui.chkStartState, &QCheckBox::toggled, this,
            &OptionInterlocks::UpdateStartStateControls);
    connect(ui.chkRequirePassword, &QCheckBox::toggled, this,
            &OptionInterlocks::UpdatePasswordControls);
    connect(ui.chkSpecifyCD, &QCheckBox::toggled, this, &OptionInterlocks::UpdateCdControls);
    connect(ui.chkRandomBotSkill, &QCheckBox::toggled, this,
            &OptionInterlocks::UpdateBotSkillControls);
    connect(ui.chkAutoSelectBots, &QCheckBox::toggled, this,
            &OptionInterlocks::UpdateRandomBotControls);
    connect(ui.cmbBotType, &QComboBox::currentIndexChanged, this,
            &OptionInterlocks::UpdateBotTypeControls);
    connect(ui.chkDemoRecording, &QCheckBox::toggled, this,
            &OptionInterlocks::demoRecordingClicked);

    // "Minimize" and "Close" exclude each other, yet both may be clear as
    // stored; Qt's auto-exclusive buttons could not be cleared again.
    ui.optMinimize->setAutoExclusive(false);
    ui.optClose->setAutoExclusive(false);
    // Without auto-exclusion a click would clear the selected one again: an
    // option button clicked while selected stays selected.
    for (const auto& pair :
         {std::pair{ui.optMinimize, ui.optClose}, std::pair{ui.optClose, ui.optMinimize}}) {
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

void OptionInterlocks::SetGameType() {
    const int game = ui.cmbGameType->currentIndex();
    const bool team = game == 2 || game == 3;
    enable({ui.chkFriendly, ui.chkAutoJoin, ui.chkAutoBalance}, team);
    ui.Frame1->setEnabled(ui.cmbServerType->currentIndex() == DedicatedServer);
}

void OptionInterlocks::gameTypeClicked() {
    if (m_app.state.StartupInProgress) {
        m_app.state.StartupInProgress = false;
        return;
    }
    SetGameType();
    emit gameTypeChosen(ui.cmbGameType->currentIndex());
    m_app.state.StartupInProgress = false;
}

void OptionInterlocks::UpdateServerTypeControls() {
    const int server = ui.cmbServerType->currentIndex();
    enable({ui.txtNetIP, ui.txtNetPort, ui.Label13, ui.Label14, ui.Label12},
           server != ListenServer);
    ui.Frame1->setEnabled(server == DedicatedServer);
}

void OptionInterlocks::UpdateWarmUpControls() {
    ui.txtWarmUpTime->setEnabled(ui.chkWarmUp->isChecked());
}

void OptionInterlocks::UpdateLogFileControls() {
    const bool wanted = ui.chkLogFile->isChecked();
    enable({ui.Frame11, ui.txtLogFile, ui.chkDateLog}, wanted);
    if (ui.chkDateLog->isChecked())
        ui.txtLogFile->setEnabled(false);
    else if (wanted)
        ui.txtLogFile->setEnabled(true);
}

void OptionInterlocks::UpdateStartStateControls() {
    enable({ui.optMinimize, ui.optClose}, ui.chkStartState->isChecked());
}

void OptionInterlocks::UpdatePasswordControls() {
    enable({ui.txtServerPW, ui.txtPrivateClients, ui.lblPrivateClients},
           ui.chkRequirePassword->isChecked());
}

void OptionInterlocks::UpdateCdControls() {
    ui.txtCDROM->setEnabled(ui.chkSpecifyCD->isChecked());
}

void OptionInterlocks::UpdateBotSkillControls() {
    enable({ui.cmbBotSkill, ui.Label16}, !ui.chkRandomBotSkill->isChecked());
}

void OptionInterlocks::UpdateRandomBotControls() {
    if (ui.cmbBotType->currentIndex() == UserDefinedBots) {
        ui.chkAutoSelectBots->setEnabled(true);
        const bool random = ui.chkAutoSelectBots->isChecked();
        enable({ui.txtRandomBots, ui.Label31}, random);
        ui.BotList->setEnabled(!random);
    } else {
        enable({ui.chkAutoSelectBots, ui.txtRandomBots, ui.Label31}, false);
        ui.BotList->setEnabled(true);
    }
}

void OptionInterlocks::UpdateBotTypeControls() {
    switch (ui.cmbBotType->currentIndex()) {
    case NoBots:
        enable({ui.BotList, ui.cmbBotSkill, ui.cmbBotTeam, ui.Label16, ui.Label24, ui.lblBotCount,
                ui.picManualBots, ui.picAutoBots, ui.Label33, ui.Label34, ui.cmbAutoBotSkill,
                ui.txtMinBots, ui.chkDisableBotChat, ui.chkAutoSelectBots, ui.Label31,
                ui.txtRandomBots},
               false);
        break;
    case UserDefinedBots:
        ui.stkBotPanels->setCurrentWidget(ui.picManualBots);
        enable({ui.picManualBots, ui.BotList, ui.cmbBotSkill, ui.cmbBotTeam, ui.Label16, ui.Label24,
                ui.lblBotCount, ui.chkDisableBotChat},
               true);
        break;
    case AutomaticBots:
        ui.stkBotPanels->setCurrentWidget(ui.picAutoBots);
        enable({ui.picAutoBots, ui.Label33, ui.Label34, ui.cmbAutoBotSkill, ui.txtMinBots,
                ui.chkDisableBotChat},
               true);
        enable({ui.chkAutoSelectBots, ui.Label31, ui.txtRandomBots}, false);
        break;
    default:
        break;
    }
    UpdateBotSkillControls();
    UpdateRandomBotControls();
}

void OptionInterlocks::demoRecordingClicked(bool checked) {
    if (!checked)
        return;
    const QString text =
        QStringLiteral("Turning this feature on is likely to cause severe performance issues for "
                       "your clients.\r\rAre you sure you want to do this?");
    if (!m_app.platform.messages.askYesNo(QStringLiteral("Warning"), text, MsgIcon::Question))
        ui.chkDemoRecording->setChecked(false);
}

} // namespace halvane
