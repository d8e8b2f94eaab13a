// The option store: defaults, round trips, the save order and garbled values;
// the enabling rules between options, the bot panels and the demo warning.
#include "TestSupport.h"

#include "platform/PrivateFiles.h"
#include "platform/WholeFile.h"
#include "settings/SettingsController.h"
#include "settings/Validation.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// A window loaded over a store holding these "Section/Key=value" entries,
// with a bot list of Bot0, Bot1, ... beside the program.
struct Loaded : WindowFixture {
    explicit Loaded(int bots, const QStringList& stored = {})
        : WindowFixture([&](TestPlatform& p) {
              QByteArray names;
              for (int i = 0; i < bots; ++i)
                  names += "Bot" + QByteArray::number(i) + "\r\n";
              p.writeFile(p.programFolder() + "/botlist.txt", names);
              for (const QString& entry : stored) {
                  const QString key = entry.section('=', 0, 0);
                  p.ini->write(key.section('/', 0, 0), key.section('/', 1), entry.section('=', 1));
              }
          }) {}
    // The writes of one save; empty when the save failed.
    QStringList save() {
        platform.store->writes.clear();
        return window->settings().SaveSettings() ? platform.store->writes : QStringList();
    }
};

} // namespace

// A stored Section/Key=value, what the next save writes for it (or ""), and the step's
// message ("" for none).
const std::tuple<const char*, QString, QString, QString> Stored[] = {
    {"game type 4 is CTF", "General/GameType=4", "General/GameType=3", ""},
    {"minimize true", "Options/StartMin=true", "Options/StartMin=True", ""},
    {"minimize 0", "Options/StartMin=0", "Options/StartMin=False", ""},
    {"empty master", "Options/Master0=", "Options/Master0=", ""},
    // A refused selector takes its default entry, so the next save heals the store.
    {"game type 7", "General/GameType=7", "General/GameType=0", "Error setting Game Type to  7"},
    {"game type text", "General/GameType=ffa", "", "Error setting console password"},
    {"tab 9", "Settings/LastTab=9", "", "Error setting last tab"},
    {"bot selection", "Bots/Selected3=yes", "", "Error setting Bot Properties"},
    {"check box 2", "Options/AllowVoting=2", "", "Error setting Vote checkbox"},
    {"server type 5", "Options/ServerType=5", "Options/ServerType=2",
     "Error setting server type value"},
    {"status bar", "Settings/StatusBar=maybe", "", "Error setting status bar visibility"},
    {"minimize text", "Options/StartMin=often", "", "Error setting Shutdown options"},
};

// The steps of a scenario, in order: "control=value" sets a selector's position or a box
// (1/0); "startup" leaves the flag the start-up sets for the first game type change;
// "?control" must be usable, "?!control" not, either with "=1"/"=0" for its check state;
// "?@panel" is the bot panel in front; "^button" clicks.
const std::pair<const char*, const char*> Rules[] = {
    {"game types",
     "cmbGameType=2 ?chkFriendly ?chkAutoJoin ?chkAutoBalance cmbGameType=1 ?!chkFriendly "
     "?!chkAutoJoin ?!chkAutoBalance cmbGameType=3 ?chkFriendly ?chkAutoBalance"},
    {"team boxes keep values",
     "cmbGameType=2 chkFriendly=1 chkAutoJoin=0 cmbGameType=1 ?!chkFriendly=1 ?!chkAutoJoin=0"},
    {"start-up change does nothing else",
     "cmbGameType=0 startup cmbGameType=2 ?!chkFriendly cmbGameType=3 ?chkFriendly"},
    {"server types",
     "cmbServerType=0 ?!txtNetIP ?!txtNetPort ?!Label12 ?!Frame1 cmbServerType=1 ?txtNetIP "
     "?Label12 ?!Frame1 cmbServerType=2 ?txtNetPort ?Frame1 ?txtMaster_2"},
    {"warm-up", "chkWarmUp=1 ?txtWarmUpTime chkWarmUp=0 ?!txtWarmUpTime"},
    {"log file", "chkLogFile=1 chkLogFile=0 ?!Frame11 ?!txtLogFile ?!chkDateLog chkLogFile=1 "
                 "chkDateLog=1 ?chkDateLog ?!txtLogFile chkDateLog=0 ?txtLogFile"},
    {"minimize or close",
     "chkStartState=1 optClose=1 optMinimize=1 ?optMinimize=1 ?optClose=0 ^optMinimize "
     "?optMinimize=1 ^optClose ?optClose=1 ?optMinimize=0 ^optClose ?optClose=1 optClose=0 "
     "?optMinimize=0 ?optClose=0 chkStartState=0 ?!optMinimize"},
    {"password", "chkRequirePassword=1 ?txtServerPW ?txtPrivateClients chkRequirePassword=0 "
                 "?!txtServerPW ?!lblPrivateClients"},
    {"cd", "chkSpecifyCD=1 ?txtCDROM chkSpecifyCD=0 ?!txtCDROM"},
    {"automatic bots", "cmbBotType=2 ?@picAutoBots ?picAutoBots ?cmbAutoBotSkill ?txtMinBots "
                       "?!chkAutoSelectBots ?!txtRandomBots ?chkDisableBotChat ?chkNoBotJump "
                       "?chkRocketJump cmbBotType=0 ?@picAutoBots ?!picAutoBots"},
    {"user bots",
     "cmbBotType=1 chkAutoSelectBots=1 ?@picManualBots ?!BotList ?txtRandomBots ?Label31 "
     "chkAutoSelectBots=0 ?BotList ?!txtRandomBots ?!Label31 ?cmbBotTeam ?lblBotCount"},
    {"bots disabled",
     "cmbBotType=1 chkAutoSelectBots=1 cmbBotType=0 ?@picManualBots ?!BotList ?!cmbBotSkill "
     "?!txtRandomBots ?!chkDisableBotChat ?!txtMinBots ?chkNoBotJump ?chkRocketJump"},
    {"random skill", "cmbBotType=1 chkRandomBotSkill=1 ?!cmbBotSkill ?!Label16 cmbBotType=2 "
                     "cmbBotType=1 ?!cmbBotSkill chkRandomBotSkill=0 ?cmbBotSkill ?Label16"},
};

class SettingsTest : public QObject {
    Q_OBJECT
private slots:
    void emptyStoreSavesEveryDefaultUntilARefusal();
    void saveThenLoadReproducesEveryValue();
    void storedValueLoads_data() { addRows(Stored); }
    void storedValueLoads();
    void enablingRules_data() { addRows(Rules); }
    void enablingRules();
    void secretsAreTheUsersAlone_data();
    void secretsAreTheUsersAlone();

private:
    QTemporaryDir m_home; // the user's configuration folder for the default store
};

void SettingsTest::emptyStoreSavesEveryDefaultUntilARefusal() {
    Loaded run(3);
    const QStringList writes = run.save();
    // Defaults as the operator first sees them, a bot's too; the start-state options are truths.
    for (const char* entry :
         {"General/Name=My Quake 3 Arena Server", "General/Password=", "Limits/MaxPlayers=6",
          "Options/ServerType=2", "Options/StartMin=True", "Options/StartClose=False",
          "Settings/CheckNewMaps=False", "Bots/Selected2=False", "Bots/Team 2=0",
          "Bots/Strength 2=1"})
        QVERIFY2(writes.contains(entry), entry);
    // A refused write ends the save there, and fails the checks before a launch
    // without a word (nor any from the start or the save before).
    run.platform.store->failAtKey = "AdminName";
    QVERIFY(run.save().isEmpty());
    QVERIFY(run.platform.store->writes.last().startsWith("General/AdminName="));
    QVERIFY(!run.window->validation().ValidateAll() && run.platform.messages.shown.isEmpty());
    // Closing says where and why the settings could not be stored, and still ends.
    run.platform.store->failAtKey.clear();
    QVERIFY(QFile::remove(run.platform.iniPath()) && QDir().mkpath(run.platform.iniPath()));
    run.window->close();
    QCOMPARE(onlyMessage(run.platform.messages),
             message("Warning!",
                     "Your settings could not be stored in " +
                         QDir::toNativeSeparators(run.platform.iniPath()) +
                         "\r\rReason: a folder of that name stands in its place.\r\rSettings "
                         "changed since they were last stored may be missing at the next start.",
                     MsgButtons::Ok, MsgIcon::Critical));
    QVERIFY(run.window->hasEnded());
}

void SettingsTest::saveThenLoadReproducesEveryValue() {
    Loaded run(5);
    MainForm& ui = run.ui();
    int i = 0;
    for (QLineEdit* edit : run.window->findChildren<QLineEdit*>())
        if (edit->objectName().startsWith("txt") && !edit->objectName().startsWith("txtMap"))
            edit->setText(QStringLiteral("v%1 x").arg(++i));
    for (QComboBox* combo : run.window->findChildren<QComboBox*>())
        combo->setCurrentIndex(combo->currentIndex() == 1 ? 2 : 1);
    ui.txtCfg->setEditText("server.cfg");
    // Turning demo recording on warns: "No" clears it again, "Yes" keeps it.
    run.platform.messages.answers = {MsgAnswer::No, MsgAnswer::Yes};
    ui.chkDemoRecording->setChecked(true);
    QVERIFY(!ui.chkDemoRecording->isChecked());
    for (QCheckBox* check : run.window->findChildren<QCheckBox*>())
        check->setChecked(!check->isChecked());
    QVERIFY(ui.chkDemoRecording->isChecked());
    QCOMPARE(described(run.platform.messages),
             QStringList(2, message("Warning",
                                    "Turning this feature on is likely to cause severe performance "
                                    "issues for your clients.\r\rAre you sure you want to do this?",
                                    MsgButtons::YesNo, MsgIcon::Question)));
    ui.optClose->setChecked(true);
    ui.mnuSettingsMapCheck->setChecked(true);
    ui.SSTab1->setCurrentIndex(4);
    ui.BotList->item(1)->setCheckState(Qt::Checked);
    run.window->botTables().setTeam(1, 1);
    run.window->botTables().setSkill(4, 3);
    const QStringList saved = run.save();
    run.platform.messages.answers = {MsgAnswer::Yes}; // the demo-recording question at load
    run.reopen();
    QCOMPARE(run.window->form().SSTab1->currentIndex(), 0); // every run opens on the first tab
    run.window->settings().LoadSettings(); // ... but the load selects the stored one
    QCOMPARE(run.save(), saved);
    run.platform.messages.clear();
    run.ui().chkDemoRecording->setChecked(false); // clearing asks nothing
    QCOMPARE(run.platform.messages.shown.size(), 0);
}

void SettingsTest::storedValueLoads() {
    const auto& [row, stored, saved, error] = fetchRow(Stored);
    Loaded run(5, {stored, "Bots/Team 3=1", "Advanced/LogName=srv.log"});
    const QString notice = "\r\rYou may continue, but please notify Brask of this error.";
    QCOMPARE(onlyMessage(run.platform.messages),
             error.isEmpty()
                 ? "0 messages"
                 : message("Error", error + notice, MsgButtons::Ok, MsgIcon::Information));
    // A failing value stops neither its step nor the steps after it.
    const QStringList writes = run.save();
    QVERIFY(writes.contains("Bots/Team 3=1") && writes.contains("Advanced/LogName=srv.log"));
    QVERIFY2(saved.isEmpty() || writes.contains(saved), qPrintable(saved));
    // Reported once: the next start takes what this save stored without a word.
    run.platform.messages.clear();
    run.reopen();
    QCOMPARE(onlyMessage(run.platform.messages), "0 messages");
}

void SettingsTest::enablingRules() {
    WindowFixture w;
    for (const QString& token : QString(fetchRow(Rules).second).split(' ')) {
        const QString name = token.section('=', 0, 0).remove(QRegularExpression("[?!@^]"));
        QObject* object = token == "startup" ? w.window.get() : w.window->findChild<QObject*>(name);
        QVERIFY2(object, qPrintable(token));
        auto* button = qobject_cast<QAbstractButton*>(object);
        if (token == "startup") {
            w.platform.app->state.StartupInProgress = true;
        } else if (token.startsWith('^')) {
            QTest::mouseClick(button, Qt::LeftButton);
        } else if (token.startsWith("?@")) {
            QCOMPARE(w.ui().stkBotPanels->currentWidget()->objectName(), name);
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

void SettingsTest::secretsAreTheUsersAlone_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("leftOpen"); // an earlier write left it (and its folder) open to all
    for (const char* file :
         {"settings", "halvane.cfg", "whole-file save", "copy of a private file"})
        for (const bool open : {false, true})
            QTest::addRow("%s, %s", file, open ? "left open" : "new") << QString(file) << open;
}

// Files holding passwords: read and write for the owner only; the settings
// folder the owner's alone. Modes as ls shows them: owner, group, others.
void SettingsTest::secretsAreTheUsersAlone() {
    QFETCH(QString, file);
    QFETCH(bool, leftOpen);
    qputenv("XDG_CONFIG_HOME", m_home.path().toLocal8Bit()); // read once, at the first use
    Loaded run(0);
    const QString settingsFolder = m_home.path() + "/Halvane";
    const QString path = file == "settings"      ? settingsFolder + "/Halvane.ini"
                         : file == "halvane.cfg" ? run.platform.gameFolder() + "/baseq3/halvane.cfg"
                                                 : run.platform.root() + "/profile";
    QDir(settingsFolder).removeRecursively();
    if (leftOpen) { // rw-r--r-- in a folder rwxr-xr-x
        run.platform.writeFile(path, "seta rconpassword \"old\"\r\n");
        QVERIFY(QFile::setPermissions(path, QFile::Permissions(0x6044)) &&
                QFile::setPermissions(QFileInfo(path).path(), QFile::Permissions(0x7055)));
    }
    if (file == "settings") {
        QtSettingsStore store;
        QVERIFY(store.write("Settings", "RconPassword", "secret") && store.flush());
        QCOMPARE(store.location(), path);
        QCOMPARE(QFileInfo(settingsFolder).permissions() & 0x7077, QFile::Permissions(0x7000));
    } else if (file == "halvane.cfg") {
        run.platform.messages.answers = {MsgAnswer::No};
        run.ui().txtConsolePW->setText("secret");
        run.ui().mnuFileMakeCfg->trigger();
        QVERIFY(readAll(path).contains("seta rconpassword \"secret\""));
    } else if (file == "whole-file save") {
        QVERIFY(savePrivateFile(path, "secret"));
    } else { // as a launch keeps the scripts it ran
        const QString from = run.platform.writeFile(run.platform.root() + "/from.cfg", "secret");
        QVERIFY(makeFilePrivate(from) && copyWholeFile(from, path));
    }
    QCOMPARE(QFileInfo(path).permissions() & 0x7077, QFile::Permissions(0x6000));
}

QTEST_MAIN(SettingsTest)
#include "tst_settings.moc"
