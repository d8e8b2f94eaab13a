#pragma once

#include "config/ServerSettings.h"

#include <QObject>
#include <vector>

class QLineEdit;
class QListWidget;

namespace Ui {
class frmBots;
}

namespace halvane {

struct AppContext;
class BotTables;

// The Bots tab: the bot list read from botlist.txt, each position's team and
// skill, the count of selected bots, and the Edit List and Refresh buttons.
class BotsController : public QObject {
    Q_OBJECT
public:
    // ui is the Bots tab's form; maxPlayers the General tab's player limit,
    // which the number of random bots should not exceed.
    BotsController(Ui::frmBots& ui, const QLineEdit& maxPlayers, BotTables& tables,
                   AppContext& app);

    // Empties BotList and fills it from botlist.txt beside the program.
    void LoadBotList();
    // Counts the selected entries and sets lblBotCount; returns the count.
    int Countbots();

    static const QString NoBotsTip;

signals:
    // A text for the tip line.
    void tip(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Leaving "Max. number of bots" with more bots than players allowed warns
    // and brings the operator back to the box.
    void randomBotsLeft();
    void showCurrentBot();
    void storeTeam(int index);
    void storeSkill(int index);
    void editBotList();

    Ui::frmBots& ui;
    const QLineEdit& m_maxPlayers;
    BotTables& m_tables;
    AppContext& m_app;
    bool m_warning = false;
};

// The bot list as the scripts see it: names, selection, and team and skill
// by position (positions without a slot take the defaults, Red and
// "Bring it on").
std::vector<BotEntry> botEntries(const QListWidget& list, const BotTables& tables);

} // namespace halvane
