// The Bots tab: reading botlist.txt, the count caption and tip, team and
// skill by position, Edit List and Refresh, and the snapshot the writers get.
#include "TestSupport.h"

#include "bots/BotListFile.h"
#include "bots/BotsController.h"
#include "config/ConfigController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

QString botList(TestPlatform& platform) {
    return platform.programFolder() + QStringLiteral("/botlist.txt");
}

QStringList names(const QListWidget* list) {
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result.append(list->item(i)->text());
    return result;
}

void check(QListWidget* list, std::initializer_list<int> positions) {
    for (int position : positions)
        list->item(position)->setCheckState(Qt::Checked);
}

void expectReadError(const TestPlatform& platform) {
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& m = platform.messages.shown.first();
    QCOMPARE(m.title, QStringLiteral("Halvane"));
    QCOMPARE(m.text, QStringLiteral("Error reading botlist.txt"));
    QCOMPARE(m.buttons, MsgButtons::Ok);
    QCOMPARE(m.icon, MsgIcon::None);
}

} // namespace

class TestBotList : public QObject {
    Q_OBJECT
private slots:
    void fileRules_data();
    void fileRules();
    void unreadableFiles_data();
    void unreadableFiles();
    void deliveredListHoldsTheGamesBots();
    void startupAppliesStoredSelection();
    void countCaptions_data();
    void countCaptions();
    void clickShowsAndChoiceStoresTeamAndSkill();
    void refreshUnselectsButKeepsTables();
    void positionsWithoutSlotsAreLeftAlone();
    void editList();
    void leavingRandomBots_data();
    void leavingRandomBots();
    void snapshotReadsTheControls();
    void controllerWritesConfigAndBotScript();
};

void TestBotList::fileRules_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("the five-line example")
        << QByteArray(" Sarge \r\n\r\n   \r\n// comment\r\n  //Visor\r\n")
        << QStringList{"Sarge", "//Visor"};
    QTest::newRow("LF-only line ends, no final line end")
        << QByteArray("Grunt\nMajor\n//x\nLucy") << QStringList{"Grunt", "Major", "Lucy"};
    QTest::newRow("inner blanks and case kept")
        << QByteArray("  Tank Jr  \r\nuRIEL\r\n") << QStringList{"Tank Jr", "uRIEL"};
    QTest::newRow("one byte per character") << QByteArray("Fr\xe9"
                                                          "d\xe9ric\r\n")
                                            << QStringList{QStringLiteral("Fr\u00e9d\u00e9ric")};
    QTest::newRow("comments only") << QByteArray("// nothing here\r\n") << QStringList{};
}

void TestBotList::fileRules() {
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    QCOMPARE(parseBotList(content), expected);

    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(botList(platform), content);
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCOMPARE(names(window.form().BotList), expected);
    QVERIFY(platform.messages.shown.isEmpty());
    for (int i = 0; i < window.form().BotList->count(); ++i)
        QCOMPARE(window.form().BotList->item(i)->checkState(), Qt::Unchecked);
}

void TestBotList::unreadableFiles_data() {
    QTest::addColumn<QString>("kind");
    QTest::newRow("missing") << "missing";
    QTest::newRow("empty") << "empty";
    QTest::newRow("a folder") << "folder";
}

void TestBotList::unreadableFiles() {
    QFETCH(QString, kind);
    TestPlatform platform;
    platform.makeGameFolder();
    QFile::remove(botList(platform));
    if (kind == QLatin1String("empty"))
        platform.writeFile(botList(platform), QByteArray());
    else if (kind == QLatin1String("folder"))
        QVERIFY(QDir().mkpath(botList(platform)));
    MainWindow window(*platform.app);
    window.showMainWindow();
    expectReadError(platform);
    QCOMPARE(window.form().BotList->count(), 0);
    QCOMPARE(window.form().lblBotCount->text(), QStringLiteral("No bots selected"));
    QVERIFY(window.isLoaded() && !window.hasEnded());
}

void TestBotList::deliveredListHoldsTheGamesBots() {
    QByteArray bytes = readAll(QStringLiteral(HALVANE_DATA_DIR "/delivered/botlist.txt"));
    QVERIFY(!bytes.replace("\r\n", "").contains('\n'));
    const QStringList bots =
        parseBotList(readAll(QStringLiteral(HALVANE_DATA_DIR "/delivered/botlist.txt")));
    // The bots of the original game, whose names its addbot command knows.
    const QStringList known{"Anarki", "Angel", "Biker", "Bitterman", "Bones",   "Cadavre", "Crash",
                            "Daemia", "Doom",  "Gorre", "Grunt",     "Hossman", "Hunter",  "Keel",
                            "Klesk",  "Lucy",  "Major", "Mynx",      "Orbb",    "Patriot", "Phobos",
                            "Ranger", "Razor", "Sarge", "Slash",     "Sorlag",  "Stripe",  "Tankjr",
                            "Uriel",  "Visor", "Wrack", "Xaero"};
    QCOMPARE(QSet<QString>(bots.begin(), bots.end()), QSet<QString>(known.begin(), known.end()));
    QCOMPARE(bots.size(), known.size());
    // It is also the one beside the built program.
    QCOMPARE(readAll(QStringLiteral(HALVANE_BIN_DIR "/botlist.txt")),
             readAll(QStringLiteral(HALVANE_DATA_DIR "/delivered/botlist.txt")));
}

void TestBotList::startupAppliesStoredSelection() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(botList(platform), "Sarge\r\nGrunt\r\nMajor\r\n");
    platform.ini->write("Bots", "Selected1", "True");
    platform.ini->write("Bots", "Selected2", "True");
    platform.ini->flush();
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCOMPARE(window.form().BotList->item(1)->checkState(), Qt::Checked);
    QCOMPARE(window.form().lblBotCount->text(), QStringLiteral("2 bots selected"));
}

void TestBotList::countCaptions_data() {
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<QString>("caption");
    QTest::newRow("none") << QList<int>{} << "No bots selected";
    QTest::newRow("one") << QList<int>{2} << "1 bot selected";
    QTest::newRow("three") << QList<int>{0, 3, 4} << "3 bots selected";
    QTest::newRow("twelve") << QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}
                            << "12 bots selected";
}

void TestBotList::countCaptions() {
    QFETCH(QList<int>, selected);
    QFETCH(QString, caption);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.txtTip->setText(QStringLiteral("an earlier tip"));
    for (int position : selected)
        ui.BotList->item(position)->setCheckState(Qt::Checked);
    QCOMPARE(window.bots().Countbots(), int(selected.size()));
    QCOMPARE(ui.lblBotCount->text(), caption);
    QCOMPARE(botCountCaption(int(selected.size())), caption);
    if (selected.isEmpty()) {
        QCOMPARE(ui.txtTip->text(),
                 QStringLiteral("No bots selected.  Select the bots you want to add to your "
                                "server, and then click the 'Create Bot Script' button."));
    } else {
        QCOMPARE(ui.txtTip->text(), QStringLiteral("an earlier tip"));
    }
}

void TestBotList::clickShowsAndChoiceStoresTeamAndSkill() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Bots", "Team 2", "1");
    platform.ini->write("Bots", "Strength 2", "4");
    platform.ini->flush();
    MainWindow window(*platform.app);
    window.showMainWindow();
    window.form().cmbBotType->setCurrentIndex(1); // user-defined: the tab is usable
    Ui::frmMain& ui = window.form();
    ui.BotList->setCurrentRow(2);
    QCOMPARE(ui.cmbBotTeam->currentIndex(), 1);
    QCOMPARE(ui.cmbBotSkill->currentIndex(), 4);
    ui.BotList->setCurrentRow(0);
    QCOMPARE(ui.cmbBotTeam->currentIndex(), 0);
    QCOMPARE(ui.cmbBotSkill->currentIndex(), 1);
    // Choices go to the current entry, selected or not.
    ui.cmbBotSkill->setCurrentIndex(3);
    ui.cmbBotTeam->setCurrentIndex(1);
    QCOMPARE(*window.botTables().skill(0), qint16(3));
    QCOMPARE(*window.botTables().team(0), qint16(1));
    QCOMPARE(*window.botTables().skill(2), qint16(4));
    // The click also counts.
    ui.BotList->item(1)->setCheckState(Qt::Checked);
    QTest::mouseClick(ui.BotList->viewport(), Qt::LeftButton, {},
                      ui.BotList->visualItemRect(ui.BotList->item(2)).center());
    QCOMPARE(ui.BotList->currentRow(), 2);
    QCOMPARE(ui.lblBotCount->text(), QStringLiteral("1 bot selected"));
}

void TestBotList::refreshUnselectsButKeepsTables() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    window.form().cmbBotType->setCurrentIndex(1); // user-defined: the tab is usable
    Ui::frmMain& ui = window.form();
    check(ui.BotList, {0, 5});
    window.botTables().setTeam(5, 1);
    window.botTables().setSkill(5, 0);
    platform.writeFile(botList(platform), "Sarge\r\nGrunt\r\nMajor\r\nVisor\r\nLucy\r\nOrbb\r\n");
    ui.btnBotRefresh->click();
    QCOMPARE(names(ui.BotList), QStringList({"Sarge", "Grunt", "Major", "Visor", "Lucy", "Orbb"}));
    for (int i = 0; i < ui.BotList->count(); ++i)
        QCOMPARE(ui.BotList->item(i)->checkState(), Qt::Unchecked);
    ui.BotList->setCurrentRow(5);
    QCOMPARE(ui.cmbBotTeam->currentIndex(), 1);
    QCOMPARE(ui.cmbBotSkill->currentIndex(), 0);
    QVERIFY(platform.messages.shown.isEmpty());
    // A refresh that cannot read the file says so.
    QFile::remove(botList(platform));
    ui.btnBotRefresh->click();
    expectReadError(platform);
    QCOMPARE(ui.BotList->count(), 0);
}

void TestBotList::positionsWithoutSlotsAreLeftAlone() {
    TestPlatform platform;
    platform.makeGameFolder();
    QByteArray many;
    for (int i = 0; i < 105; ++i)
        many += QStringLiteral("Bot%1\r\n").arg(i).toLatin1();
    platform.writeFile(botList(platform), many);
    MainWindow window(*platform.app);
    window.showMainWindow();
    // The settings load reports the positions without slots; nothing after it may.
    platform.messages.clear();
    Ui::frmMain& ui = window.form();
    ui.BotList->setCurrentRow(99);
    ui.cmbBotTeam->setCurrentIndex(1);
    QCOMPARE(*window.botTables().team(99), qint16(1));
    ui.BotList->setCurrentRow(102);
    ui.cmbBotTeam->setCurrentIndex(0);
    ui.cmbBotSkill->setCurrentIndex(4);
    QCOMPARE(*window.botTables().team(99), qint16(1));
    // No current entry at all.
    ui.BotList->setCurrentRow(-1);
    ui.cmbBotSkill->setCurrentIndex(2);
    ui.cmbBotTeam->setCurrentIndex(1);
    for (int i = 0; i < BotTables::Slots; ++i)
        QVERIFY(*window.botTables().skill(i) != 2);
    QVERIFY(platform.messages.shown.isEmpty());
}

void TestBotList::editList() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    window.form().cmbBotType->setCurrentIndex(1); // user-defined: the tab is usable
    const int before = window.form().BotList->count();
    window.form().btnEditBotList->click();
    QCOMPARE(platform.shell.edited, QStringList{botList(platform)});
    QVERIFY(platform.messages.shown.isEmpty());
    QCOMPARE(window.form().BotList->count(), before);

    platform.shell.succeed = false;
    window.form().btnEditBotList->click();
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& m = platform.messages.shown.first();
    QCOMPARE(m.title, QStringLiteral("Warning"));
    QCOMPARE(m.text, QStringLiteral("Error opening botlist.txt!"));
    QCOMPARE(m.buttons, MsgButtons::Ok);
    QCOMPARE(m.icon, MsgIcon::Information);
}

void TestBotList::leavingRandomBots_data() {
    QTest::addColumn<QString>("randomBots");
    QTest::addColumn<QString>("maxPlayers");
    QTest::addColumn<bool>("warned");
    QTest::newRow("more than players") << "9"
                                       << "8" << true;
    QTest::newRow("as many as players") << "8"
                                        << "8" << false;
    QTest::newRow("numbers, not texts, compared") << "10"
                                                  << "9" << true;
    QTest::newRow("no number") << ""
                               << "8" << false;
    QTest::newRow("players not a number") << "1"
                                          << "" << true;
}

void TestBotList::leavingRandomBots() {
    QFETCH(QString, randomBots);
    QFETCH(QString, maxPlayers);
    QFETCH(bool, warned);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    platform.messages.clear();
    Ui::frmMain& ui = window.form();
    ui.txtMaxPlayers->setText(maxPlayers);
    ui.txtRandomBots->setText(randomBots);
    ui.txtRandomBots->deselect();
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(ui.txtRandomBots, &leave);
    // Focus moving to another window is not leaving the box.
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(ui.txtRandomBots, &away);
    if (!warned) {
        QVERIFY(platform.messages.shown.isEmpty());
        return;
    }
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& m = platform.messages.shown.first();
    QCOMPARE(m.title, QStringLiteral("Warning"));
    QCOMPARE(m.text, QStringLiteral("This number exceeds the maximum number of players you have "
                                    "specified for the server (") +
                         maxPlayers +
                         QStringLiteral(").\r\rIt is suggested that this number be less than "
                                        "the maximum players."));
    QCOMPARE(m.buttons, MsgButtons::Ok);
    QCOMPARE(m.icon, MsgIcon::Information);
    QTRY_COMPARE(ui.txtRandomBots->selectedText(), randomBots);
    QCOMPARE(ui.txtRandomBots->text(), randomBots);
}

void TestBotList::snapshotReadsTheControls() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.txtServerName->setText(QStringLiteral(" My server "));
    ui.txtMaster_2->setText(QStringLiteral("m2"));
    ui.SelMap->addItems({QStringLiteral("q3dm1"), QStringLiteral("q3dm7")});
    check(ui.BotList, {1});
    window.botTables().setSkill(1, 4);
    ui.cmbGameType->setCurrentIndex(3);

    ui.Frame1->setEnabled(true);
    ServerSettings s = window.config().snapshot();
    QVERIFY(s.mastersEnabled);
    QCOMPARE(s.serverName, QStringLiteral(" My server "));
    QCOMPARE(s.masters[2], QStringLiteral("m2"));
    QCOMPARE(s.selectedMaps, QStringList({"q3dm1", "q3dm7"}));
    QCOMPARE(s.gameType, 3);
    QVERIFY(s.friendlyEnabled);
    QCOMPARE(s.versionCaption, QStringLiteral("Version 2.07"));
    QCOMPARE(s.gameExeName, QStringLiteral("quake3.exe"));
    QCOMPARE(s.bots.size(), size_t(ui.BotList->count()));
    QVERIFY(s.bots[1].selected && !s.bots[0].selected);
    QCOMPARE(s.bots[1].skill, qint16(4));

    // The controls' own state counts, not the window's.
    window.setEnabled(false);
    QVERIFY(window.config().snapshot().mastersEnabled);
    window.setEnabled(true);
    ui.cmbGameType->setCurrentIndex(0);
    ui.Frame1->setEnabled(false);
    s = window.config().snapshot();
    QVERIFY(!s.mastersEnabled);
    QVERIFY(!s.friendlyEnabled);
}

void TestBotList::controllerWritesConfigAndBotScript() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.txtServerName->setText(QStringLiteral("Through the window"));
    check(ui.BotList, {0});
    const QString cfg = platform.gameFolder() + QStringLiteral("/baseq3/halvane.cfg");
    QVERIFY(window.config().WriteConfig(cfg, true, QStringLiteral(" +exec halvane.cfg")));
    const QByteArray bytes = readAll(cfg);
    QVERIFY(bytes.contains("\r\nseta sv_hostname \"Through the window\"\r\n"));
    QVERIFY(bytes.endsWith(
        "\r\n// end of file \r\n// Command Line:  \"quake3.exe +exec halvane.cfg\"\r\n"));
    window.config().MakeBotScript();
    QVERIFY(readAll(platform.gameFolder() + QStringLiteral("/baseq3/srvbots.cfg"))
                .contains("\r\naddbot Sarge  2 red\r\n"));
    QVERIFY(platform.messages.shown.isEmpty());
}

QTEST_MAIN(TestBotList)
#include "tst_botlist.moc"
