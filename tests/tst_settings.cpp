// The option store: defaults, round trips, the save order and garbled values.
#include "TestSupport.h"

#include "settings/OptionCatalogue.h"
#include "settings/SettingsController.h"
#include "ui/MainWindow.h"
#include "ui/StatusPanel.h"
#include "ui_frmMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// The bot list the start-up reads: botlist.txt beside the program.
void addBots(TestPlatform& platform, int count) {
    QByteArray names;
    for (int i = 0; i < count; ++i)
        names += QStringLiteral("Bot%1\r\n").arg(i).toLatin1();
    platform.writeFile(platform.programFolder() + QStringLiteral("/botlist.txt"), names);
}

// The key order the store must see, written out independently of the table.
QStringList expectedSaveOrder(int bots) {
    QStringList keys{"Settings/CheckNewMaps",
                     "Settings/StatusBar",
                     "Settings/LastTab",
                     "General/Name",
                     "General/Motd",
                     "General/Password",
                     "General/RconPassword",
                     "General/GameType",
                     "General/AdminName",
                     "General/AdminEmail",
                     "General/AdminURL",
                     "Bots/Enabled",
                     "Bots/Skill",
                     "Bots/DisableChat",
                     "Bots/RocketJump",
                     "Bots/NoBotJumps",
                     "Bots/AutoBotSkill",
                     "Bots/AutoBotCount",
                     "Bots/RandomSkill"};
    for (int n = 0; n < bots; ++n) {
        keys << QStringLiteral("Bots/Selected%1").arg(n);
        if (n < 100)
            keys << QStringLiteral("Bots/Team %1").arg(n)
                 << QStringLiteral("Bots/Strength %1").arg(n);
    }
    keys << "Bots/AutoSelBots"
         << "Bots/RandomBotNum"
         << "Limits/MaxPlayers"
         << "Limits/PlayerRespawn"
         << "Limits/InactivityTimeout"
         << "Options/QuadMultiplier"
         << "Options/WeaponRespawn"
         << "Options/AllowVoting"
         << "Options/AllowDemoRecording"
         << "Options/ServerType"
         << "Options/EnableCheats"
         << "Options/CheckClientPAKs"
         << "Options/FriendlyFire"
         << "Options/StartState"
         << "Options/StartClose"
         << "Options/StartMin"
         << "Options/AutoJoin"
         << "Options/AutoBalance"
         << "Options/WarmUp"
         << "Options/WarmUpTime"
         << "Options/Master0"
         << "Options/Master1"
         << "Options/Master2"
         << "Options/Master3"
         << "Options/Master4"
         << "Network/HunkMegs"
         << "Network/NetIP"
         << "Network/NetPort"
         << "Network/MaxRate"
         << "Network/Config"
         << "Advanced/CDLine"
         << "Advanced/NOP"
         << "Advanced/SpecifyCD"
         << "Advanced/CDLetter"
         << "Advanced/RequirePW"
         << "Advanced/PrivateClients"
         << "Advanced/MinPing"
         << "Advanced/MaxPing"
         << "Advanced/SpecifyLog"
         << "Advanced/DateCodeLog"
         << "Advanced/LogName";
    return keys;
}

QStringList keysOf(const QStringList& writes) {
    QStringList keys;
    for (const QString& write : writes)
        keys << write.section(QLatin1Char('='), 0, 0);
    return keys;
}

QString valueOf(const QStringList& writes, const QString& key) {
    for (const QString& write : writes) {
        if (write.startsWith(key + QLatin1Char('=')))
            return write.mid(key.size() + 1);
    }
    return QStringLiteral("<not written>");
}

} // namespace

class SettingsTest : public QObject {
    Q_OBJECT
private slots:
    void emptyStoreGivesDefaults_data();
    void emptyStoreGivesDefaults();
    void emptyStoreStartsOnFirstTabWithPanelOpen();
    void saveWritesEveryKeyInOrder();
    void roundTripReproducesEveryValue();
    void garbledValueReportsItsStep_data();
    void garbledValueReportsItsStep();
    void gameTypeOfFourSelectsCaptureTheFlag();
    void minimizeReadsTruthForms_data();
    void minimizeReadsTruthForms();
    void botsPastTheTablesNeitherFailSaveNorWriteSlots();
    void statusBarSavedByHeight_data();
    void statusBarSavedByHeight();
    void emptyStoredMasterStaysEmpty();
    void refusedWriteStopsSave();
    void garbageSettingsFileNeverStopsLoad();
};

void SettingsTest::emptyStoreGivesDefaults_data() {
    QTest::addColumn<QString>("holder");
    QTest::addColumn<QString>("expected");
    for (const OptionKey& option : optionCatalogue()) {
        const QString holder = QString::fromLatin1(option.holder);
        if (holder.isEmpty() || holder.startsWith(QLatin1Char('@')) || option.step == 0)
            continue;
        QTest::newRow(option.key) << holder << QString::fromLatin1(option.defaultText);
    }
}

void SettingsTest::emptyStoreGivesDefaults() {
    QFETCH(QString, holder);
    QFETCH(QString, expected);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();

    QObject* control = window.findChild<QObject*>(holder);
    QVERIFY2(control, qPrintable(holder));
    QString actual;
    if (auto* edit = qobject_cast<QLineEdit*>(control))
        actual = edit->text();
    else if (auto* combo = qobject_cast<QComboBox*>(control))
        actual = QString::number(combo->currentIndex());
    else if (auto* radio = qobject_cast<QRadioButton*>(control))
        actual = radio->isChecked() ? "1" : "0";
    else if (auto* check = qobject_cast<QCheckBox*>(control))
        actual = check->isChecked() ? "1" : "0";
    QCOMPARE(actual, expected);
    QVERIFY(platform.messages.shown.isEmpty());
}

void SettingsTest::emptyStoreStartsOnFirstTabWithPanelOpen() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    addBots(platform, 3);
    window.showMainWindow();
    QCOMPARE(window.form().SSTab1->currentIndex(), 0);
    QVERIFY(window.statusPanel().isOpen());
    QCOMPARE(window.form().cmbServerType->currentText(), QStringLiteral("Dedicated Server"));
    QVERIFY(window.form().optMinimize->isChecked());
    QVERIFY(!window.form().optClose->isChecked());
    for (int n = 0; n < 3; ++n) {
        QCOMPARE(window.form().BotList->item(n)->checkState(), Qt::Unchecked);
        QCOMPARE(*window.botTables().team(n), qint16(0));
        QCOMPARE(*window.botTables().skill(n), qint16(1));
    }
    QVERIFY(!platform.app->state.StartupInProgress);
}

void SettingsTest::saveWritesEveryKeyInOrder() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    addBots(platform, 3);
    window.showMainWindow();
    platform.store->writes.clear();
    QVERIFY(window.settings().SaveSettings());
    QCOMPARE(keysOf(platform.store->writes), expectedSaveOrder(3));
    QCOMPARE(valueOf(platform.store->writes, "Options/StartMin"), QStringLiteral("True"));
    QCOMPARE(valueOf(platform.store->writes, "Options/StartClose"), QStringLiteral("False"));
    QCOMPARE(valueOf(platform.store->writes, "Bots/Selected0"), QStringLiteral("False"));
    QCOMPARE(valueOf(platform.store->writes, "Options/ServerType"), QStringLiteral("2"));
    QCOMPARE(valueOf(platform.store->writes, "Options/CheckClientPAKs"), QStringLiteral("1"));
}

void SettingsTest::roundTripReproducesEveryValue() {
    TestPlatform platform;
    platform.makeGameFolder();
    QMap<QString, QString> chosen;
    {
        MainWindow window(*platform.app);
        addBots(platform, 5);
        window.showMainWindow();
        Ui::frmMain& ui = window.form();
        int i = 0;
        for (QLineEdit* edit : window.findChildren<QLineEdit*>()) {
            if (edit->objectName().startsWith(QLatin1String("txt")) &&
                !edit->objectName().startsWith(QLatin1String("txtMap")) &&
                edit->objectName() != QLatin1String("qt_spinbox_lineedit")) {
                edit->setText(QStringLiteral("v%1 x").arg(++i));
            }
        }
        ui.txtCfg->setEditText("server.cfg");
        ui.cmbGameType->setCurrentIndex(2);
        ui.cmbServerType->setCurrentIndex(1);
        ui.cmbBotType->setCurrentIndex(1);
        ui.cmbBotSkill->setCurrentIndex(4);
        ui.cmbAutoBotSkill->setCurrentIndex(0);
        platform.messages.answers = {MsgAnswer::Yes};
        for (QCheckBox* check : window.findChildren<QCheckBox*>())
            check->setChecked(!check->isChecked());
        ui.optClose->setChecked(true);
        ui.mnuSettingsMapCheck->setChecked(true);
        ui.SSTab1->setCurrentIndex(4);
        ui.BotList->item(1)->setCheckState(Qt::Checked);
        ui.BotList->item(4)->setCheckState(Qt::Checked);
        window.botTables().setTeam(1, 1);
        window.botTables().setSkill(4, 3);
        window.botTables().setSkill(0, 0);
        QVERIFY(window.settings().SaveSettings());
        for (const OptionKey& option : optionCatalogue()) {
            const QString holder = QString::fromLatin1(option.holder);
            if (!holder.isEmpty() && !holder.startsWith(QLatin1Char('@')))
                chosen[holder] = valueOf(platform.store->writes,
                                         QString::fromLatin1(option.section) + "/" + option.key);
        }
    }
    platform.reopenStore();
    platform.messages.clear();
    platform.messages.answers = {MsgAnswer::Yes}; // the demo-recording question at load
    MainWindow window(*platform.app);
    addBots(platform, 5);
    window.showMainWindow();
    platform.store->writes.clear();
    QVERIFY(window.settings().SaveSettings());
    for (auto it = chosen.cbegin(); it != chosen.cend(); ++it) {
        const OptionKey* option = nullptr;
        for (const OptionKey& candidate : optionCatalogue())
            if (QString::fromLatin1(candidate.holder) == it.key())
                option = &candidate;
        const QString key = QString::fromLatin1(option->section) + "/" + option->key;
        QCOMPARE(valueOf(platform.store->writes, key), it.value());
    }
    QCOMPARE(window.form().BotList->item(1)->checkState(), Qt::Checked);
    QCOMPARE(window.form().BotList->item(4)->checkState(), Qt::Checked);
    QCOMPARE(window.form().BotList->item(0)->checkState(), Qt::Unchecked);
    QCOMPARE(*window.botTables().team(1), qint16(1));
    QCOMPARE(*window.botTables().skill(4), qint16(3));
    QCOMPARE(*window.botTables().skill(0), qint16(0));
    // Every run opens on the first tab; the stored tab is what the load selects.
    QCOMPARE(window.form().SSTab1->currentIndex(), 0);
    QCOMPARE(platform.ini->read("Settings", "LastTab", ""), QStringLiteral("0"));
    platform.ini->write("Settings", "LastTab", "4");
    platform.messages.answers = {MsgAnswer::Yes};
    window.settings().LoadSettings();
    QCOMPARE(window.form().SSTab1->currentIndex(), 4);
}

void SettingsTest::garbledValueReportsItsStep_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("nextKeyHolder"); // a later value that must still load
    QTest::newRow("game type 7") << "General/GameType"
                                 << "7"
                                 << "Error setting Game Type to  7"
                                 << "txtAdminName";
    QTest::newRow("game type text") << "General/GameType"
                                    << "ffa"
                                    << "Error setting console password"
                                    << "txtAdminName";
    QTest::newRow("tab 9") << "Settings/LastTab"
                           << "9"
                           << "Error setting last tab"
                           << "txtServerName";
    QTest::newRow("bot selection yes") << "Bots/Selected3"
                                       << "yes"
                                       << "Error setting Bot Properties"
                                       << "txtRandomBots";
    QTest::newRow("check box 2") << "Options/AllowVoting"
                                 << "2"
                                 << "Error setting Vote checkbox"
                                 << "txtMaxRate";
    QTest::newRow("server type 5") << "Options/ServerType"
                                   << "5"
                                   << "Error setting server type value"
                                   << "txtMaxRate";
    QTest::newRow("status bar maybe") << "Settings/StatusBar"
                                      << "maybe"
                                      << "Error setting status bar visibility"
                                      << "txtServerName";
    QTest::newRow("minimize text") << "Options/StartMin"
                                   << "often"
                                   << "Error setting Shutdown options"
                                   << "txtMaster_0";
    QTest::newRow("log flag") << "Advanced/SpecifyLog"
                              << "x"
                              << "Error setting log filename information"
                              << "txtLogFile";
}

void SettingsTest::garbledValueReportsItsStep() {
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, message);
    QFETCH(QString, nextKeyHolder);
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write(key.section('/', 0, 0), key.section('/', 1), value);
    platform.ini->write("Bots", "Team 3", "1");
    platform.ini->write("General", "Name", "Later name");
    platform.ini->write("General", "AdminName", "Later admin");
    platform.ini->write("Bots", "RandomBotNum", "7");
    platform.ini->write("Options", "Master0", "m0");
    platform.ini->write("Network", "MaxRate", "9000");
    platform.ini->write("Advanced", "LogName", "srv.log");
    platform.ini->flush();
    MainWindow window(*platform.app);
    addBots(platform, 5);
    window.showMainWindow();

    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage shown = platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Error"));
    QCOMPARE(shown.text, message + "\r\rYou may continue, but please notify Brask of this error.");
    QCOMPARE(shown.icon, MsgIcon::Information);
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    auto* next = window.findChild<QLineEdit*>(nextKeyHolder);
    QVERIFY(next);
    QVERIFY2(!next->text().isEmpty(), "loading stopped after the failing value");
    QCOMPARE(*window.botTables().team(3), qint16(1)); // the bot's team still loads
}

void SettingsTest::gameTypeOfFourSelectsCaptureTheFlag() {
    for (const QString& stored : {QStringLiteral("4"), QStringLiteral("3")}) {
        TestPlatform platform;
        platform.makeGameFolder();
        platform.ini->write("General", "GameType", stored);
        MainWindow window(*platform.app);
        window.showMainWindow();
        QCOMPARE(window.form().cmbGameType->currentIndex(), 3);
        QVERIFY(window.form().chkFriendly->isEnabled());
        QVERIFY(platform.messages.shown.isEmpty());
    }
}

void SettingsTest::minimizeReadsTruthForms_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("checked");
    QTest::newRow("1") << "1" << true;
    QTest::newRow("True") << "True" << true;
    QTest::newRow("true") << "true" << true;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("False") << "False" << false;
}

void SettingsTest::minimizeReadsTruthForms() {
    QFETCH(QString, stored);
    QFETCH(bool, checked);
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Options", "StartMin", stored);
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCOMPARE(window.form().optMinimize->isChecked(), checked);
    QVERIFY(!window.form().optClose->isChecked());
}

void SettingsTest::botsPastTheTablesNeitherFailSaveNorWriteSlots() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Bots", "Selected101", "True");
    platform.ini->write("Bots", "Team 99", "1");
    MainWindow window(*platform.app);
    addBots(platform, 102);
    window.showMainWindow();
    // Positions 100 and 101: team and skill each fail once.
    QCOMPARE(platform.messages.shown.size(), 4);
    for (const ShownMessage& shown : platform.messages.shown)
        QVERIFY(shown.text.startsWith("Error setting Bot Properties\r\r"));
    QCOMPARE(window.form().BotList->item(101)->checkState(), Qt::Checked);
    QCOMPARE(*window.botTables().team(99), qint16(1));

    platform.store->writes.clear();
    QVERIFY(window.settings().SaveSettings());
    QCOMPARE(keysOf(platform.store->writes), expectedSaveOrder(102));
    QCOMPARE(valueOf(platform.store->writes, "Bots/Selected101"), QStringLiteral("True"));
}

void SettingsTest::statusBarSavedByHeight_data() {
    QTest::addColumn<int>("twips");
    QTest::addColumn<QString>("stored");
    QTest::newRow("6249") << 6249 << "False";
    QTest::newRow("6250") << 6250 << "True";
    QTest::newRow("closed") << 5790 << "False";
}

void SettingsTest::statusBarSavedByHeight() {
    QFETCH(int, twips);
    QFETCH(QString, stored);
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    // Pixels hold whole twips only at 1440/dpi steps; pick the height the
    // screen can show that is nearest below or at the threshold.
    window.statusPanel().setHeightTwips(twips);
    const int actual = window.statusPanel().heightTwips();
    platform.store->writes.clear();
    QVERIFY(window.settings().SaveSettings());
    QCOMPARE(valueOf(platform.store->writes, "Settings/StatusBar"),
             actual >= StatusPanel::OpenThresholdTwips ? QStringLiteral("True")
                                                       : QStringLiteral("False"));
    if (actual == twips)
        QCOMPARE(valueOf(platform.store->writes, "Settings/StatusBar"), stored);
}

void SettingsTest::emptyStoredMasterStaysEmpty() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Options", "Master0", "");
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCOMPARE(window.form().txtMaster_0->text(), QString());
    QVERIFY(!window.form().txtMaster_1->text().isEmpty());
}

void SettingsTest::refusedWriteStopsSave() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    platform.store->writes.clear();
    platform.store->failAtKey = "AdminName";
    QVERIFY(!window.settings().SaveSettings());
    QCOMPARE(keysOf(platform.store->writes).last(), QStringLiteral("General/AdminName"));
    QVERIFY(!keysOf(platform.store->writes).contains("General/AdminEmail"));
}

void SettingsTest::garbageSettingsFileNeverStopsLoad() {
    TestPlatform platform;
    platform.makeGameFolder();
    QByteArray garbage("[General]\nName=Kept name\n");
    for (int i = 0; i < 4096; ++i)
        garbage.append(char((i * 7919) % 256));
    platform.writeFile(platform.iniPath(), garbage);
    platform.reopenStore();
    MainWindow window(*platform.app);
    window.showMainWindow();
    QVERIFY(window.isLoaded());
    QVERIFY(!window.hasEnded());
}

QTEST_MAIN(SettingsTest)
#include "tst_settings.moc"
