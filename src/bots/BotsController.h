#pragma once

#include "config/ServerSettings.h"

#include <QObject>
#include <functional>
#include <vector>

class QListWidget;

namespace halvane {

struct MainForm;
struct AppContext;
class BotTables;

// The Bots tab: the bot list read from botlist.txt, each position's team and
// skill, the count of selected bots, and the Edit List and Refresh buttons.
class BotsController : public QObject {
    Q_OBJECT
public:
    using TipSetter = std::function<void(const QString&)>;

    // tip puts a text on the tip line; by default it sets txtTip.
    BotsController(MainForm& ui, BotTables& tables, AppContext& app, TipSetter tip = {});

    // Empties BotList and fills it from botlist.txt beside the program.
    void LoadBotList();
    // Counts the selected entries and sets lblBotCount; returns the count.
    int Countbots();

    static const QString NoBotsTip;

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

    MainForm& ui;
    BotTables& m_tables;
    AppContext& m_app;
    TipSetter m_tip;
    bool m_warning = false;
};

// The bot list as the scripts see it: names, selection, and team and skill
// by position (positions without a slot take the defaults, Red and
// "Bring it on").
std::vector<BotEntry> botEntries(const QListWidget& list, const BotTables& tables);

} // namespace halvane
