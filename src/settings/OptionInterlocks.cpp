#include "settings/OptionInterlocks.h"
#include "settings/Positions.h"

#include "app/AppContext.h"
#include "ui_frmAdvanced.h"
#include "ui_frmGeneral.h"
#include "ui_frmOptions.h"

namespace halvane {

namespace {
using namespace positions;

void enable(std::initializer_list<QWidget*> widgets, bool enabled) {
    for (QWidget* widget : widgets)
        widget->setEnabled(enabled);
}
} // namespace

OptionInterlocks::OptionInterlocks(Ui::frmGeneral& general, Ui::frmOptions& options,
                                   Ui::frmAdvanced& advanced, AppContext& app, QObject* parent)
    : QObject(parent), m_general(general), m_options(options), m_advanced(advanced), m_app(app) {
    connect(general.cmbGameType, &QComboBox::currentIndexChanged, this,
            &OptionInterlocks::gameTypeClicked);
    connect(general.cmbServerType, &QComboBox::currentIndexChanged, this,
            &OptionInterlocks::UpdateServerTypeControls);
    connect(options.chkDemoRecording, &QCheckBox::toggled, this,
            &OptionInterlocks::demoRecordingClicked);
}

void OptionInterlocks::SetGameType() {
    const int game = m_general.cmbGameType->currentIndex();
    const bool team = game == 2 || game == 3;
    enable({m_options.chkFriendly, m_options.chkAutoJoin, m_options.chkAutoBalance}, team);
    m_options.Frame1->setEnabled(m_general.cmbServerType->currentIndex() == DedicatedServer);
}

void OptionInterlocks::gameTypeClicked() {
    if (m_app.state.StartupInProgress) {
        m_app.state.StartupInProgress = false;
        return;
    }
    SetGameType();
    emit gameTypeChosen(m_general.cmbGameType->currentIndex());
    m_app.state.StartupInProgress = false;
}

void OptionInterlocks::UpdateServerTypeControls() {
    const int server = m_general.cmbServerType->currentIndex();
    enable({m_advanced.txtNetIP, m_advanced.txtNetPort, m_advanced.Label13, m_advanced.Label14,
            m_advanced.Label12},
           server != ListenServer);
    m_options.Frame1->setEnabled(server == DedicatedServer);
}

void OptionInterlocks::demoRecordingClicked(bool checked) {
    if (!checked)
        return;
    const QString text =
        QStringLiteral("Turning this feature on is likely to cause severe performance issues for "
                       "your clients.\r\rAre you sure you want to do this?");
    if (!m_app.platform.messages.askYesNo(QStringLiteral("Warning"), text, MsgIcon::Question))
        m_options.chkDemoRecording->setChecked(false);
}

} // namespace halvane
