// The enabling rules between options, the bot panels and the demo warning.
#include "TestSupport.h"

#include "settings/OptionInterlocks.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

using Settings = QList<QPair<QString, int>>;  // control, value (index or check state)
using Expected = QList<QPair<QString, bool>>; // control, usable

Q_DECLARE_METATYPE(Settings)
Q_DECLARE_METATYPE(Expected)

namespace {
void applySettings(QObject& window, const Settings& settings) {
    for (const auto& [name, value] : settings) {
        QObject* control = window.findChild<QObject*>(name);
        QVERIFY2(control, qPrintable(name));
        if (auto* combo = qobject_cast<QComboBox*>(control))
            combo->setCurrentIndex(value);
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            button->setChecked(value != 0);
    }
}
} // namespace

class InterlocksTest : public QObject {
    Q_OBJECT
private slots:
    void rules_data();
    void rules();
    void teamBoxesKeepTheirValues();
    void botPanelInFront_data();
    void botPanelInFront();
    void demoRecordingWarning_data();
    void demoRecordingWarning();
    void firstGameTypeClickOnlyEndsStartup();
    void minimizeAndCloseExcludeEachOther();
};

void InterlocksTest::rules_data() {
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<Expected>("expected");
    QTest::newRow("team play") << Settings{{"cmbGameType", 0}, {"cmbGameType", 2}}
                               << Expected{{"chkFriendly", true},
                                           {"chkAutoJoin", true},
                                           {"chkAutoBalance", true}};
    QTest::newRow("ctf") << Settings{{"cmbGameType", 3}}
                         << Expected{{"chkFriendly", true}, {"chkAutoBalance", true}};
    QTest::newRow("tournament") << Settings{{"cmbGameType", 2}, {"cmbGameType", 1}}
                                << Expected{{"chkFriendly", false},
                                            {"chkAutoJoin", false},
                                            {"chkAutoBalance", false}};
    QTest::newRow("listen") << Settings{{"cmbServerType", 0}}
                            << Expected{{"txtNetIP", false}, {"txtNetPort", false},
                                        {"Label13", false},  {"Label14", false},
                                        {"Label12", false},  {"Frame1", false}};
    QTest::newRow("private") << Settings{{"cmbServerType", 0}, {"cmbServerType", 1}}
                             << Expected{{"txtNetIP", true},
                                         {"txtNetPort", true},
                                         {"Label12", true},
                                         {"Frame1", false}};
    QTest::newRow("dedicated") << Settings{{"cmbServerType", 0}, {"cmbServerType", 2}}
                               << Expected{
                                      {"txtNetIP", true}, {"Frame1", true}, {"txtMaster_2", true}};
    QTest::newRow("warm-up on") << Settings{{"chkWarmUp", 1}} << Expected{{"txtWarmUpTime", true}};
    QTest::newRow("warm-up off") << Settings{{"chkWarmUp", 1}, {"chkWarmUp", 0}}
                                 << Expected{{"txtWarmUpTime", false}};
    QTest::newRow("no log file") << Settings{{"chkLogFile", 1}, {"chkLogFile", 0}}
                                 << Expected{{"Frame11", false},
                                             {"txtLogFile", false},
                                             {"chkDateLog", false}};
    QTest::newRow("log, date coded") << Settings{{"chkLogFile", 1}, {"chkDateLog", 1}}
                                     << Expected{{"chkDateLog", true}, {"txtLogFile", false}};
    QTest::newRow("log, named") << Settings{{"chkDateLog", 1}, {"chkLogFile", 1}, {"chkDateLog", 0}}
                                << Expected{{"txtLogFile", true}};
    QTest::newRow("start state on")
        << Settings{{"chkStartState", 1}} << Expected{{"optMinimize", true}, {"optClose", true}};
    QTest::newRow("start state off") << Settings{{"chkStartState", 1}, {"chkStartState", 0}}
                                     << Expected{{"optMinimize", false}, {"optClose", false}};
    QTest::newRow("password on") << Settings{{"chkRequirePassword", 1}}
                                 << Expected{{"txtServerPW", true},
                                             {"txtPrivateClients", true},
                                             {"lblPrivateClients", true}};
    QTest::newRow("password off") << Settings{{"chkRequirePassword", 1}, {"chkRequirePassword", 0}}
                                  << Expected{{"txtServerPW", false},
                                              {"txtPrivateClients", false},
                                              {"lblPrivateClients", false}};
    QTest::newRow("cd on") << Settings{{"chkSpecifyCD", 1}} << Expected{{"txtCDROM", true}};
    QTest::newRow("cd off") << Settings{{"chkSpecifyCD", 1}, {"chkSpecifyCD", 0}}
                            << Expected{{"txtCDROM", false}};
    QTest::newRow("automatic bots")
        << Settings{{"cmbBotType", 2}}
        << Expected{{"picAutoBots", true},    {"cmbAutoBotSkill", true},
                    {"txtMinBots", true},     {"chkAutoSelectBots", false},
                    {"txtRandomBots", false}, {"chkDisableBotChat", true},
                    {"chkNoBotJump", true},   {"chkRocketJump", true}};
    QTest::newRow("user bots, random") << Settings{{"cmbBotType", 1}, {"chkAutoSelectBots", 1}}
                                       << Expected{{"BotList", false},
                                                   {"txtRandomBots", true},
                                                   {"Label31", true},
                                                   {"chkAutoSelectBots", true}};
    QTest::newRow("user bots, chosen")
        << Settings{{"cmbBotType", 1}, {"chkAutoSelectBots", 1}, {"chkAutoSelectBots", 0}}
        << Expected{{"BotList", true},
                    {"txtRandomBots", false},
                    {"Label31", false},
                    {"cmbBotTeam", true},
                    {"lblBotCount", true}};
    QTest::newRow("bots disabled")
        << Settings{{"cmbBotType", 1}, {"chkAutoSelectBots", 1}, {"cmbBotType", 0}}
        << Expected{{"BotList", false},           {"cmbBotSkill", false}, {"txtRandomBots", false},
                    {"chkDisableBotChat", false}, {"txtMinBots", false},  {"chkNoBotJump", true},
                    {"chkRocketJump", true}};
    QTest::newRow("random skill, user bots")
        << Settings{{"cmbBotType", 1}, {"chkRandomBotSkill", 1}}
        << Expected{{"cmbBotSkill", false}, {"Label16", false}};
    QTest::newRow("random skill off, user bots")
        << Settings{{"cmbBotType", 1}, {"chkRandomBotSkill", 1}, {"chkRandomBotSkill", 0}}
        << Expected{{"cmbBotSkill", true}, {"Label16", true}};
    QTest::newRow("random skill, bot type changed")
        << Settings{{"chkRandomBotSkill", 1}, {"cmbBotType", 2}, {"cmbBotType", 1}}
        << Expected{{"cmbBotSkill", false}};
}

void InterlocksTest::rules() {
    QFETCH(Settings, settings);
    QFETCH(Expected, expected);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    window.form().SSTab1->setCurrentIndex(0);
    applySettings(window, settings);
    for (const auto& [name, usable] : expected) {
        auto* control = window.findChild<QWidget*>(name);
        QVERIFY2(control, qPrintable(name));
        QVERIFY2(control->isEnabled() == usable,
                 qPrintable(
                     QStringLiteral("%1 should be %2").arg(name, usable ? "usable" : "unusable")));
    }
}

void InterlocksTest::teamBoxesKeepTheirValues() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.cmbGameType->setCurrentIndex(2);
    ui.chkFriendly->setChecked(true);
    ui.chkAutoJoin->setChecked(false);
    ui.cmbGameType->setCurrentIndex(1);
    QVERIFY(!ui.chkFriendly->isEnabled());
    QVERIFY(ui.chkFriendly->isChecked());
    QVERIFY(!ui.chkAutoJoin->isChecked());
}

void InterlocksTest::botPanelInFront_data() {
    QTest::addColumn<int>("botType");
    QTest::addColumn<QString>("front");
    QTest::newRow("user") << 1 << "picManualBots";
    QTest::newRow("automatic") << 2 << "picAutoBots";
}

void InterlocksTest::botPanelInFront() {
    QFETCH(int, botType);
    QFETCH(QString, front);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    window.form().cmbBotType->setCurrentIndex(botType);
    QCOMPARE(window.form().stkBotPanels->currentWidget()->objectName(), front);
    // Disabling keeps the panel in front as it was.
    window.form().cmbBotType->setCurrentIndex(0);
    QCOMPARE(window.form().stkBotPanels->currentWidget()->objectName(), front);
}

void InterlocksTest::demoRecordingWarning_data() {
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes keeps it") << true;
    QTest::newRow("no clears it") << false;
}

void InterlocksTest::demoRecordingWarning() {
    QFETCH(bool, yes);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    platform.messages.answers = {yes ? MsgAnswer::Yes : MsgAnswer::No};
    window.form().chkDemoRecording->setChecked(true);
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& shown = platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Warning"));
    QCOMPARE(shown.text, QStringLiteral("Turning this feature on is likely to cause severe "
                                        "performance issues for your clients.\r\rAre you sure you "
                                        "want to do this?"));
    QCOMPARE(shown.buttons, MsgButtons::YesNo);
    QCOMPARE(shown.icon, MsgIcon::Question);
    QCOMPARE(window.form().chkDemoRecording->isChecked(), yes);
    window.form().chkDemoRecording->setChecked(false);
    QCOMPARE(platform.messages.shown.size(), 1); // clearing asks nothing
}

void InterlocksTest::firstGameTypeClickOnlyEndsStartup() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.cmbGameType->setCurrentIndex(0);
    platform.app->state.StartupInProgress = true;
    ui.cmbGameType->setCurrentIndex(2); // cleared, nothing else
    QVERIFY(!platform.app->state.StartupInProgress);
    QVERIFY(!ui.chkFriendly->isEnabled());
    ui.cmbGameType->setCurrentIndex(3);
    QVERIFY(ui.chkFriendly->isEnabled());
}

void InterlocksTest::minimizeAndCloseExcludeEachOther() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    ui.optClose->setChecked(true);
    QVERIFY(!ui.optMinimize->isChecked());
    ui.optMinimize->setChecked(true);
    QVERIFY(!ui.optClose->isChecked());
    ui.optMinimize->setChecked(false);
    QVERIFY(!ui.optClose->isChecked() && !ui.optMinimize->isChecked());
}

QTEST_MAIN(InterlocksTest)
#include "tst_interlocks.moc"
