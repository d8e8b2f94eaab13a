#include "ui/BotsPage.h"

#include "bots/BotTables.h"
#include "platform/SettingsStore.h"
#include "settings/Positions.h"
#include "settings/TextForms.h"
#include "ui_frmBots.h"

namespace halvane {

namespace {
using namespace positions;

const QString BotsSection = QStringLiteral("Bots");
QString selectedKey(int n) {
    return QStringLiteral("Selected") + QString::number(n);
}
QString teamKey(int n) {
    return QStringLiteral("Team ") + QString::number(n);
}
QString strengthKey(int n) {
    return QStringLiteral("Strength ") + QString::number(n);
}
bool isBotKeys(const OptionKey& option) {
    return QLatin1String(option.holder) == QLatin1String(HolderBots);
}

void enable(std::initializer_list<QWidget*> widgets, bool enabled) {
    for (QWidget* widget : widgets)
        widget->setEnabled(enabled);
}
} // namespace

BotsPage::BotsPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmBots) {
    ui->setupUi(this);
    // On toggled/currentIndexChanged, so values the program sets run the same
    // rules as the operator's clicks.
    connect(ui->chkRandomBotSkill, &QCheckBox::toggled, this, &BotsPage::UpdateBotSkillControls);
    connect(ui->chkAutoSelectBots, &QCheckBox::toggled, this, &BotsPage::UpdateRandomBotControls);
    connect(ui->cmbBotType, &QComboBox::currentIndexChanged, this,
            &BotsPage::UpdateBotTypeControls);
}

BotsPage::~BotsPage() = default;

void BotsPage::UpdateBotSkillControls() {
    enable({ui->cmbBotSkill, ui->Label16}, !ui->chkRandomBotSkill->isChecked());
}

void BotsPage::UpdateRandomBotControls() {
    if (ui->cmbBotType->currentIndex() == UserDefinedBots) {
        ui->chkAutoSelectBots->setEnabled(true);
        const bool random = ui->chkAutoSelectBots->isChecked();
        enable({ui->txtRandomBots, ui->Label31}, random);
        ui->BotList->setEnabled(!random);
    } else {
        enable({ui->chkAutoSelectBots, ui->txtRandomBots, ui->Label31}, false);
        ui->BotList->setEnabled(true);
    }
}

void BotsPage::UpdateBotTypeControls() {
    switch (ui->cmbBotType->currentIndex()) {
    case NoBots:
        enable({ui->BotList, ui->cmbBotSkill, ui->cmbBotTeam, ui->Label16, ui->Label24,
                ui->lblBotCount, ui->picManualBots, ui->picAutoBots, ui->Label33, ui->Label34,
                ui->cmbAutoBotSkill, ui->txtMinBots, ui->chkDisableBotChat, ui->chkAutoSelectBots,
                ui->Label31, ui->txtRandomBots},
               false);
        break;
    case UserDefinedBots:
        ui->stkBotPanels->setCurrentWidget(ui->picManualBots);
        enable({ui->picManualBots, ui->BotList, ui->cmbBotSkill, ui->cmbBotTeam, ui->Label16,
                ui->Label24, ui->lblBotCount, ui->chkDisableBotChat},
               true);
        break;
    case AutomaticBots:
        ui->stkBotPanels->setCurrentWidget(ui->picAutoBots);
        enable({ui->picAutoBots, ui->Label33, ui->Label34, ui->cmbAutoBotSkill, ui->txtMinBots,
                ui->chkDisableBotChat},
               true);
        enable({ui->chkAutoSelectBots, ui->Label31, ui->txtRandomBots}, false);
        break;
    default:
        break;
    }
    UpdateBotSkillControls();
    UpdateRandomBotControls();
}

QObject* BotsPage::holder(const OptionKey& option) const {
    // The per-position keys belong to the entries of the bot list.
    if (isBotKeys(option))
        return ui->BotList;
    return childHolder(*this, option);
}

void BotsPage::loadOption(const SettingsStore& store, const OptionKey& option,
                          const Refused& refused) {
    if (isBotKeys(option))
        loadBots(store, refused);
    else
        OptionPage::loadOption(store, option, refused);
}

void BotsPage::loaded(const SettingsStore&, int step, const Refused&) {
    if (step == 10) {
        UpdateRandomBotControls();
    } else if (step == 11) {
        UpdateBotSkillControls();
        UpdateBotTypeControls();
    }
}

void BotsPage::loadBots(const SettingsStore& store, const Refused& refused) {
    QListWidget& list = *ui->BotList;
    for (int n = 0; n < list.count(); ++n) {
        const auto selected = parseTruth(store.read(BotsSection, selectedKey(n), truthText(false)));
        if (selected)
            list.item(n)->setCheckState(*selected ? Qt::Checked : Qt::Unchecked);
        else
            refused(QString());

        // Positions past the tables are refused, each of their two values.
        const auto team =
            parseWholeNumber(store.read(BotsSection, teamKey(n), QStringLiteral("0")));
        if (!team || !m_bots || !m_bots->setTeam(n, *team))
            refused(QString());

        const auto skill =
            parseWholeNumber(store.read(BotsSection, strengthKey(n), QStringLiteral("1")));
        if (!skill || !m_bots || !m_bots->setSkill(n, *skill))
            refused(QString());
    }
}

std::optional<bool> BotsPage::save(SettingsStore& store, const OptionKey& option) const {
    if (isBotKeys(option))
        return saveBots(store);
    return OptionPage::save(store, option);
}

bool BotsPage::saveBots(SettingsStore& store) const {
    const QListWidget& list = *ui->BotList;
    for (int n = 0; n < list.count(); ++n) {
        const bool selected = list.item(n)->checkState() == Qt::Checked;
        if (!store.write(BotsSection, selectedKey(n), truthText(selected)))
            return false;
        // Positions past the tables have no team or skill to keep.
        if (!m_bots || !BotTables::hasSlot(n))
            continue;
        if (!store.write(BotsSection, teamKey(n), QString::number(*m_bots->team(n))) ||
            !store.write(BotsSection, strengthKey(n), QString::number(*m_bots->skill(n))))
            return false;
    }
    return true;
}

} // namespace halvane
