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
    void demoRecordingWarning();
};

void InterlocksTest::rules_data() {
    // In order: "control=value" sets a selector's position or a box (1/0);
    // "startup" leaves the flag the start-up sets for the first game type
    // change; "?control" must be usable, "?!control" not, either with "=1"/"=0"
    // for its check state; "?@panel" is the bot panel in front; "^button" clicks.
    QTest::addColumn<QString>("script");
    QTest::newRow("game types") << "cmbGameType=2 ?chkFriendly ?chkAutoJoin ?chkAutoBalance "
                                   "cmbGameType=1 ?!chkFriendly ?!chkAutoJoin ?!chkAutoBalance "
                                   "cmbGameType=3 ?chkFriendly ?chkAutoBalance";
    QTest::newRow("team boxes keep values") << "cmbGameType=2 chkFriendly=1 chkAutoJoin=0 "
                                               "cmbGameType=1 ?!chkFriendly=1 ?!chkAutoJoin=0";
    QTest::newRow("start-up change does nothing else")
        << "cmbGameType=0 startup cmbGameType=2 ?!chkFriendly cmbGameType=3 ?chkFriendly";
    QTest::newRow("server types") << "cmbServerType=0 ?!txtNetIP ?!txtNetPort ?!Label12 ?!Frame1 "
                                     "cmbServerType=1 ?txtNetIP ?Label12 ?!Frame1 "
                                     "cmbServerType=2 ?txtNetPort ?Frame1 ?txtMaster_2";
    QTest::newRow("warm-up") << "chkWarmUp=1 ?txtWarmUpTime chkWarmUp=0 ?!txtWarmUpTime";
    QTest::newRow("log file") << "chkLogFile=1 chkLogFile=0 ?!Frame11 ?!txtLogFile ?!chkDateLog "
                                 "chkLogFile=1 chkDateLog=1 ?chkDateLog ?!txtLogFile chkDateLog=0 "
                                 "?txtLogFile";
    QTest::newRow("minimize or close")
        << "chkStartState=1 optClose=1 optMinimize=1 ?optMinimize=1 ?optClose=0 ^optMinimize "
           "?optMinimize=1 ^optClose ?optClose=1 ?optMinimize=0 ^optClose ?optClose=1 optClose=0 "
           "?optMinimize=0 ?optClose=0 chkStartState=0 ?!optMinimize";
    QTest::newRow("password") << "chkRequirePassword=1 ?txtServerPW ?txtPrivateClients "
                                 "chkRequirePassword=0 ?!txtServerPW ?!lblPrivateClients";
    QTest::newRow("cd") << "chkSpecifyCD=1 ?txtCDROM chkSpecifyCD=0 ?!txtCDROM";
    QTest::newRow("automatic bots")
        << "cmbBotType=2 ?@picAutoBots ?picAutoBots ?cmbAutoBotSkill ?txtMinBots "
           "?!chkAutoSelectBots ?!txtRandomBots ?chkDisableBotChat ?chkNoBotJump ?chkRocketJump "
           "cmbBotType=0 ?@picAutoBots ?!picAutoBots";
    QTest::newRow("user bots") << "cmbBotType=1 chkAutoSelectBots=1 ?@picManualBots ?!BotList "
                                  "?txtRandomBots ?Label31 chkAutoSelectBots=0 ?BotList "
                                  "?!txtRandomBots ?!Label31 ?cmbBotTeam ?lblBotCount";
    QTest::newRow("bots disabled")
        << "cmbBotType=1 chkAutoSelectBots=1 cmbBotType=0 ?@picManualBots ?!BotList ?!cmbBotSkill "
           "?!txtRandomBots ?!chkDisableBotChat ?!txtMinBots ?chkNoBotJump ?chkRocketJump";
    QTest::newRow("random skill") << "cmbBotType=1 chkRandomBotSkill=1 ?!cmbBotSkill ?!Label16 "
                                     "cmbBotType=2 cmbBotType=1 ?!cmbBotSkill chkRandomBotSkill=0 "
                                     "?cmbBotSkill ?Label16";
}

void InterlocksTest::rules() {
    QFETCH(QString, script);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    for (const QString& token : script.split(' ')) {
        QString name = token.section('=', 0, 0);
        name.remove('?').remove('!').remove('@').remove('^');
        QObject* object = token == "startup" ? &window : window.findChild<QObject*>(name);
        QVERIFY2(object, qPrintable(token));
        auto* button = qobject_cast<QAbstractButton*>(object);
        if (token == "startup") {
            platform.app->state.StartupInProgress = true;
        } else if (token.startsWith('^')) {
            QTest::mouseClick(button, Qt::LeftButton);
        } else if (token.startsWith("?@")) {
            QCOMPARE(window.form().stkBotPanels->currentWidget()->objectName(), name);
        } else if (token.startsWith('?')) {
            const bool usable = static_cast<QWidget*>(object)->isEnabled();
            QVERIFY2(usable != token.startsWith("?!"), qPrintable(token));
            QVERIFY2(!token.contains('=') || button->isChecked() == token.endsWith("=1"),
                     qPrintable(token));
        } else if (auto* combo = qobject_cast<QComboBox*>(object)) {
            combo->setCurrentIndex(token.section('=', 1).toInt());
        } else {
            button->setChecked(token.endsWith("=1"));
        }
    }
}

void InterlocksTest::demoRecordingWarning() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCheckBox& demo = *window.form().chkDemoRecording;
    platform.messages.answers = {MsgAnswer::No, MsgAnswer::Yes};
    demo.setChecked(true); // "No" clears it again
    QVERIFY(!demo.isChecked());
    QCOMPARE(onlyMessage(platform.messages),
             message("Warning",
                     "Turning this feature on is likely to cause severe performance issues for "
                     "your clients.\r\rAre you sure you want to do this?",
                     MsgButtons::YesNo, MsgIcon::Question));
    demo.setChecked(true); // "Yes" keeps it
    QVERIFY(demo.isChecked());
    demo.setChecked(false); // clearing asks nothing
    QCOMPARE(platform.messages.shown.size(), 2);
}

QTEST_MAIN(InterlocksTest)
#include "tst_interlocks.moc"
