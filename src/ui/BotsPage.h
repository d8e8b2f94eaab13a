#pragma once

#include "settings/OptionPage.h"

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmBots;
}

namespace halvane {

class BotTables;

// The Bots tab: bot type, the bot list with team and skill, automatic bots. Its controls keep
// the object names that the option table and the tests find them by. It keeps its own
// controls usable to match the bot type and the two random choices.
class BotsPage : public QWidget, public OptionPage {
    Q_OBJECT
public:
    explicit BotsPage(QWidget* parent = nullptr);
    ~BotsPage() override;

    Ui::frmBots& form() { return *ui; }
    // The team and skill of each bot-list position, loaded and saved with the selections.
    void useBotTables(BotTables& bots) { m_bots = &bots; }

    void UpdateBotSkillControls();
    void UpdateRandomBotControls();
    void UpdateBotTypeControls();

    std::optional<bool> save(SettingsStore& store, const OptionKey& option) const override;

protected:
    QObject* holder(const OptionKey& option) const override;
    void loadOption(const SettingsStore& store, const OptionKey& option,
                    const Refused& refused) override;
    void loaded(const SettingsStore& store, int step, const Refused& refused) override;

private:
    void loadBots(const SettingsStore& store, const Refused& refused);
    bool saveBots(SettingsStore& store) const;

    QScopedPointer<Ui::frmBots> ui;
    BotTables* m_bots = nullptr;
};

} // namespace halvane
