// The enabling rules between options, the bot panels and the demo warning.
#include "TestSupport.h"

#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class InterlocksTest : public QObject {
    Q_OBJECT
private slots:
    void rules_data();
    void rules();
    void demoRecordingWarning_data();
    void demoRecordingWarning();
};

void InterlocksTest::rules_data() {
    // Steps: "control=value" in order, a position for a selector, 1/0 for a
    // box; "startup" as the start-up leaves the first game type change.
    // Expected: "control" usable, "!control" unusable, either with "=1"/"=0"
    // for its check state; "@panel" the bot panel in front.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* steps, const char* expected) {
        QTest::newRow(name) << QString(steps) << QString(expected);
    };
    row("team play", "cmbGameType=0 cmbGameType=2", "chkFriendly chkAutoJoin chkAutoBalance");
    row("ctf", "cmbGameType=3", "chkFriendly chkAutoBalance");
    row("start-up change does nothing else", "cmbGameType=0 startup cmbGameType=2", "!chkFriendly");
    row("start-up ends at one change", "cmbGameType=0 startup cmbGameType=2 cmbGameType=3",
        "chkFriendly");
    row("tournament", "cmbGameType=2 cmbGameType=1", "!chkFriendly !chkAutoJoin !chkAutoBalance");
    row("team boxes keep values", "cmbGameType=2 chkFriendly=1 chkAutoJoin=0 cmbGameType=1",
        "!chkFriendly=1 !chkAutoJoin=0");
    row("listen", "cmbServerType=0", "!txtNetIP !txtNetPort !Label13 !Label14 !Label12 !Frame1");
    row("private", "cmbServerType=0 cmbServerType=1", "txtNetIP txtNetPort Label12 !Frame1");
    row("dedicated", "cmbServerType=0 cmbServerType=2", "txtNetIP Frame1 txtMaster_2");
    row("warm-up on", "chkWarmUp=1", "txtWarmUpTime");
    row("warm-up off", "chkWarmUp=1 chkWarmUp=0", "!txtWarmUpTime");
    row("no log file", "chkLogFile=1 chkLogFile=0", "!Frame11 !txtLogFile !chkDateLog");
    row("log, date coded", "chkLogFile=1 chkDateLog=1", "chkDateLog !txtLogFile");
    row("log, named", "chkDateLog=1 chkLogFile=1 chkDateLog=0", "txtLogFile");
    row("start state on", "chkStartState=1", "optMinimize optClose");
    row("start state off", "chkStartState=1 chkStartState=0", "!optMinimize !optClose");
    row("minimize clears close", "chkStartState=1 optClose=1 optMinimize=1",
        "optMinimize=1 optClose=0");
    row("close clears minimize", "chkStartState=1 optMinimize=1 optClose=1",
        "optMinimize=0 optClose=1");
    row("both may be clear", "chkStartState=1 optMinimize=1 optMinimize=0",
        "optMinimize=0 optClose=0");
    row("password on", "chkRequirePassword=1", "txtServerPW txtPrivateClients lblPrivateClients");
    row("password off", "chkRequirePassword=1 chkRequirePassword=0",
        "!txtServerPW !txtPrivateClients !lblPrivateClients");
    row("cd on", "chkSpecifyCD=1", "txtCDROM");
    row("cd off", "chkSpecifyCD=1 chkSpecifyCD=0", "!txtCDROM");
    row("automatic bots", "cmbBotType=2",
        "@picAutoBots picAutoBots cmbAutoBotSkill txtMinBots !chkAutoSelectBots !txtRandomBots "
        "chkDisableBotChat chkNoBotJump chkRocketJump");
    row("user bots, random", "cmbBotType=1 chkAutoSelectBots=1",
        "@picManualBots !BotList txtRandomBots Label31 chkAutoSelectBots");
    row("user bots, chosen", "cmbBotType=1 chkAutoSelectBots=1 chkAutoSelectBots=0",
        "BotList !txtRandomBots !Label31 cmbBotTeam lblBotCount");
    row("bots disabled", "cmbBotType=1 chkAutoSelectBots=1 cmbBotType=0",
        "@picManualBots !BotList !cmbBotSkill !txtRandomBots !chkDisableBotChat !txtMinBots "
        "chkNoBotJump chkRocketJump");
    row("automatic then disabled", "cmbBotType=2 cmbBotType=0", "@picAutoBots !picAutoBots");
    row("random skill", "cmbBotType=1 chkRandomBotSkill=1", "!cmbBotSkill !Label16");
    row("random skill off", "cmbBotType=1 chkRandomBotSkill=1 chkRandomBotSkill=0",
        "cmbBotSkill Label16");
    row("random skill, bot type changed", "chkRandomBotSkill=1 cmbBotType=2 cmbBotType=1",
        "!cmbBotSkill");
}

void InterlocksTest::rules() {
    QFETCH(QString, steps);
    QFETCH(QString, expected);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    for (const QString& step : steps.split(' ')) {
        if (step == "startup") {
            platform.app->state.StartupInProgress = true;
            continue;
        }
        QObject* control = window.findChild<QObject*>(step.section('=', 0, 0));
        QVERIFY2(control, qPrintable(step));
        if (auto* combo = qobject_cast<QComboBox*>(control))
            combo->setCurrentIndex(step.section('=', 1).toInt());
        else
            qobject_cast<QAbstractButton*>(control)->setChecked(step.endsWith("=1"));
    }
    for (const QString& check : expected.split(' ')) {
        const QString name = check.section('=', 0, 0).remove('!').remove('@');
        if (check.startsWith('@')) {
            QCOMPARE(window.form().stkBotPanels->currentWidget()->objectName(), name);
            continue;
        }
        auto* control = window.findChild<QWidget*>(name);
        QVERIFY2(control, qPrintable(name));
        QVERIFY2(control->isEnabled() != check.startsWith('!'), qPrintable(check));
        if (check.contains('='))
            QVERIFY2(qobject_cast<QAbstractButton*>(control)->isChecked() == check.endsWith("=1"),
                     qPrintable(check));
    }
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
    QCOMPARE(onlyMessage(platform.messages),
             message("Warning",
                     "Turning this feature on is likely to cause severe performance issues for "
                     "your clients.\r\rAre you sure you want to do this?",
                     MsgButtons::YesNo, MsgIcon::Question));
    QCOMPARE(window.form().chkDemoRecording->isChecked(), yes);
    window.form().chkDemoRecording->setChecked(false);
    QCOMPARE(platform.messages.shown.size(), 1); // clearing asks nothing
}

QTEST_MAIN(InterlocksTest)
#include "tst_interlocks.moc"
