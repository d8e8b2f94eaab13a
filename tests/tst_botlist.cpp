// The Bots tab: reading botlist.txt, the count caption and tip, team and
// skill by position, Edit List and Refresh.
#include "TestSupport.h"

#include "bots/BotListFile.h"
#include "bots/BotsController.h"
#include "config/ConfigController.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
// A main window over a game folder; botlist.txt as given, or removed (null).
struct Window : WindowFixture {
    explicit Window(const QByteArray* list)
        : WindowFixture([&](TestPlatform& p) {
              QFile::remove(p.programFolder() + "/botlist.txt");
              if (list)
                  p.writeFile(p.programFolder() + "/botlist.txt", *list);
          }) {
        ui().cmbBotType->setCurrentIndex(1); // user-defined: the tab is usable
    }
    QString path() const { return platform.programFolder() + "/botlist.txt"; }
    QStringList names() const { return entries(ui().BotList); }
};

const QString ReadError =
    message("Halvane", "Error reading botlist.txt", MsgButtons::Ok, MsgIcon::None);

// "Bot0" and on.
QStringList bots(int count) {
    QStringList names;
    for (int i = 0; i < count; ++i)
        names << "Bot" + QString::number(i);
    return names;
}
} // namespace

// botlist.txt ("-": no file), the bots offered ("|" between two) and the only message.
const QString NoMessage = "0 messages";
const std::tuple<const char*, QByteArray, QString, QString> Files[] = {
    {"the five-line example", " Sarge \r\n\r\n   \r\n// comment\r\n  //Visor\r\n", "Sarge|//Visor",
     NoMessage},
    {"LF only, no final line end, inner blanks kept, one byte per character",
     "Tank Jr\n//x\nuRIEL\nFr\351d\351ric", QStringLiteral("Tank Jr|uRIEL|Fr\u00e9d\u00e9ric"),
     NoMessage},
    {"empty", "", "", ReadError},
    {"missing", "-", "", ReadError},
    {"only as many as have a team and skill slot", bots(500).join("\r\n").toLatin1(),
     bots(100).join('|'),
     message("Halvane",
             "botlist.txt lists 500 bots, but only the first 100 can be offered.\r\r400 "
             "bots were left out.",
             MsgButtons::Ok, MsgIcon::Information)},
};

// The random bots and the most players when leaving the box; whether that is warned about.
const std::tuple<const char*, QString, QString, bool> Leavings[] = {
    {"as many as players", "8", "8", false},
    {"numbers, not texts, compared", "10", "9", true},
    {"no number", "", "8", false},
    {"players not a number", "1", "", true},
};

class TestBotList : public QObject {
    Q_OBJECT
private slots:
    void fileRules_data() { addRows(Files); }
    void fileRules();
    void countCaptionTipTeamSkillAndRefresh();
    void leavingRandomBots_data() { addRows(Leavings); }
    void leavingRandomBots();
};

void TestBotList::fileRules() {
    const auto& [name, content, expected, told] = fetchRow(Files);
    Window w(content == "-" ? nullptr : &content);
    QCOMPARE(w.names().join('|'), expected);
    QCOMPARE(onlyMessage(w.platform.messages), told);
    QVERIFY(w.window->isLoaded() && !w.window->hasEnded());
}

void TestBotList::countCaptionTipTeamSkillAndRefresh() {
    const QByteArray list = "Sarge\r\nGrunt\r\nMajor\r\n";
    Window w(&list);
    QCOMPARE(w.ui().lblBotCount->text(), QStringLiteral("No bots selected"));
    QCOMPARE(w.ui().txtTip->text(),
             QStringLiteral("No bots selected.  Select the bots you want to add to your "
                            "server, and then click the 'Create Bot Script' button."));
    w.ui().BotList->item(2)->setCheckState(Qt::Checked);
    QCOMPARE(w.ui().lblBotCount->text(), QStringLiteral("1 bot selected"));
    w.ui().BotList->item(0)->setCheckState(Qt::Checked);
    QCOMPARE(w.ui().lblBotCount->text(), QStringLiteral("2 bots selected"));
    QCOMPARE(w.window->bots().Countbots(), 2);

    // Team and skill by position.
    w.window->botTables().setTeam(2, 1);
    w.window->botTables().setSkill(2, 4);
    w.ui().BotList->setCurrentRow(2);
    QCOMPARE(std::pair(w.ui().cmbBotTeam->currentIndex(), w.ui().cmbBotSkill->currentIndex()),
             std::pair(1, 4));
    // Choices go to the current entry, selected or not; none current changes nothing.
    w.ui().BotList->setCurrentRow(0);
    w.ui().cmbBotTeam->setCurrentIndex(1);
    w.ui().BotList->setCurrentRow(-1);
    w.ui().cmbBotTeam->setCurrentIndex(0);
    QCOMPARE(*w.window->botTables().team(0), qint16(1));
    // Refresh reads the edited file; the tables survive it.
    w.platform.writeFile(w.path(), "Bones\r\nSarge\r\n");
    w.ui().btnBotRefresh->click();
    QCOMPARE(w.names(), QStringList({"Bones", "Sarge"}));
    w.ui().BotList->setCurrentRow(0);
    QCOMPARE(w.ui().cmbBotTeam->currentIndex(), 1);
    w.ui().btnEditBotList->click();
    QCOMPARE(w.platform.shell.edited, QStringList{w.path()});
    QVERIFY(w.platform.messages.shown.isEmpty());
    w.platform.shell.succeed = false;
    w.ui().btnEditBotList->click();
    QCOMPARE(onlyMessage(w.platform.messages), message("Warning", "Error opening botlist.txt!",
                                                       MsgButtons::Ok, MsgIcon::Information));
}

void TestBotList::leavingRandomBots() {
    const auto& [row, randomBots, maxPlayers, warned] = fetchRow(Leavings);
    Window w(nullptr);
    w.platform.messages.clear();
    w.ui().txtMaxPlayers->setText(maxPlayers);
    w.ui().txtRandomBots->setText(randomBots);
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(w.ui().txtRandomBots, &leave);
    // Focus moving to another window is not leaving the box.
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(w.ui().txtRandomBots, &away);
    const QString text = "This number exceeds the maximum number of players you have specified "
                         "for the server (" +
                         maxPlayers +
                         ").\r\rIt is suggested that this number be less than the maximum players.";
    QCOMPARE(onlyMessage(w.platform.messages),
             warned ? message("Warning", text, MsgButtons::Ok, MsgIcon::Information)
                    : "0 messages");
    if (warned)
        QTRY_COMPARE(w.ui().txtRandomBots->selectedText(), randomBots);
}

QTEST_MAIN(TestBotList)
#include "tst_botlist.moc"
