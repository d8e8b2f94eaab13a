#include "ui/GeneralPage.h"

#include "platform/SettingsStore.h"
#include "settings/TextForms.h"
#include "ui_frmGeneral.h"

namespace halvane {

namespace {
bool isGameType(const OptionKey& option) {
    return QLatin1String(option.key) == QLatin1String("GameType");
}
} // namespace

GeneralPage::GeneralPage(QWidget* parent) : QWidget(parent), ui(new Ui::frmGeneral) {
    ui->setupUi(this);
}

GeneralPage::~GeneralPage() = default;

QObject* GeneralPage::holder(const OptionKey& option) const {
    return childHolder(*this, option);
}

void GeneralPage::loadOption(const SettingsStore& store, const OptionKey& option,
                             const Refused& refused) {
    if (!isGameType(option)) {
        OptionPage::loadOption(store, option, refused);
        return;
    }
    // Stored as the game's own numbering in old stores: 4 is Capture the Flag.
    const int position = m_gameType == 4 ? 3 : m_gameType;
    apply(option, QString::number(position), refused, signedText(m_gameType));
}

void GeneralPage::loaded(const SettingsStore& store, int step, const Refused& refused) {
    // The game type is read with the console password and applied by the next step.
    if (step != 6)
        return;
    const auto gameType = parseWholeNumber(store.read(
        QStringLiteral("General"), QStringLiteral("GameType"), defaultOf("General", "GameType")));
    if (gameType)
        m_gameType = *gameType;
    else
        refused(QString());
}

} // namespace halvane
