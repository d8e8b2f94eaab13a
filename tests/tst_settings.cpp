// The option store: defaults, round trips, the save order and garbled values.
#include "TestSupport.h"

#include "settings/OptionCatalogue.h"
#include "settings/SettingsController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// The save order, written out apart from the key table. A word with a "/"
// starts a section; "#" stands for the keys of each bot position.
const char* const SaveOrder =
    "Settings/CheckNewMaps StatusBar LastTab General/Name Motd Password RconPassword GameType "
    "AdminName AdminEmail AdminURL Bots/Enabled Skill DisableChat RocketJump NoBotJumps "
    "AutoBotSkill AutoBotCount RandomSkill # AutoSelBots RandomBotNum Limits/MaxPlayers "
    "PlayerRespawn InactivityTimeout Options/QuadMultiplier WeaponRespawn AllowVoting "
    "AllowDemoRecording ServerType EnableCheats CheckClientPAKs FriendlyFire StartState "
    "StartClose StartMin AutoJoin AutoBalance WarmUp WarmUpTime Master0 Master1 Master2 Master3 "
    "Master4 Network/HunkMegs NetIP NetPort MaxRate Config Advanced/CDLine NOP SpecifyCD "
    "CDLetter RequirePW PrivateClients MinPing MaxPing SpecifyLog DateCodeLog LogName";

QStringList expectedSaveOrder(int bots) {
    QStringList keys;
    QString section;
    for (const QString& word : QString::fromLatin1(SaveOrder).split(' ')) {
        if (word.contains('/'))
            section = word.section('/', 0, 0);
        if (word != "#")
            keys << section + '/' + word.section('/', -1);
        for (int n = 0; word == "#" && n < bots; ++n) {
            keys << QStringLiteral("Bots/Selected%1").arg(n);
            if (n < 100) // the team and skill tables end there
                keys << QStringLiteral("Bots/Team %1").arg(n)
                     << QStringLiteral("Bots/Strength %1").arg(n);
        }
    }
    return keys;
}

QStringList keysOf(const QStringList& writes) {
    QStringList keys;
    for (const QString& write : writes)
        keys << write.section('=', 0, 0);
    return keys;
}

// A window loaded over a store holding these "Section/Key=value" entries,
// with a bot list of Bot0, Bot1, ... beside the program.
struct Loaded {
    TestPlatform platform;
    std::unique_ptr<MainWindow> window;
    explicit Loaded(int bots, const QStringList& stored = {}) {
        platform.makeGameFolder();
        QByteArray names;
        for (int i = 0; i < bots; ++i)
            names += "Bot" + QByteArray::number(i) + "\r\n";
        platform.writeFile(platform.programFolder() + "/botlist.txt", names);
        for (const QString& entry : stored) {
            const QString key = entry.section('=', 0, 0);
            platform.ini->write(key.section('/', 0, 0), key.section('/', 1), entry.section('=', 1));
        }
        window = std::make_unique<MainWindow>(*platform.app);
        window->showMainWindow();
    }
    // The writes of one save; empty when the save failed.
    QStringList save() {
        platform.store->writes.clear();
        return window->settings().SaveSettings() ? platform.store->writes : QStringList();
    }
};

} // namespace

class SettingsTest : public QObject {
    Q_OBJECT
private slots:
    void emptyStoreSavesEveryDefaultInOrderUntilARefusal();
    void saveThenLoadReproducesEveryValue();
    void storedValueLoads_data();
    void storedValueLoads();
    void botsPastTheTablesNeitherFailSaveNorWriteSlots();
};

void SettingsTest::emptyStoreSavesEveryDefaultInOrderUntilARefusal() {
    Loaded run(3);
    QVERIFY(run.platform.messages.shown.isEmpty());
    const QStringList writes = run.save();
    QCOMPARE(keysOf(writes), expectedSaveOrder(3));
    // Every value loaded from an empty store goes back as the key table's
    // default; bot positions have none there: unselected, team 0, skill 1.
    for (const QString& write : writes) {
        const QString key = write.section('=', 0, 0);
        QString expected = key.contains("Selected") ? "False" : key.contains("Team ") ? "0" : "1";
        if (const OptionKey* option = findOption(key.section('/', 0, 0), key.section('/', 1)))
            expected = QString::fromLatin1(option->defaultText);
        if (key == "Options/StartMin" || key == "Options/StartClose") // 1/0 saved as truths
            expected = expected == "1" ? "True" : "False";
        QCOMPARE(write, key + '=' + expected);
    }
    // A refused write ends the save there.
    run.platform.store->failAtKey = "AdminName";
    QVERIFY(run.save().isEmpty());
    QCOMPARE(keysOf(run.platform.store->writes), expectedSaveOrder(3).mid(0, 9));
}

void SettingsTest::saveThenLoadReproducesEveryValue() {
    auto first = std::make_unique<Loaded>(5);
    Ui::frmMain& ui = first->window->form();
    int i = 0;
    for (QLineEdit* edit : first->window->findChildren<QLineEdit*>()) {
        if (edit->objectName().startsWith("txt") && !edit->objectName().startsWith("txtMap"))
            edit->setText(QStringLiteral("v%1 x").arg(++i));
    }
    for (QComboBox* combo : first->window->findChildren<QComboBox*>())
        combo->setCurrentIndex(combo->currentIndex() == 1 ? 2 : 1);
    ui.txtCfg->setEditText("server.cfg");
    first->platform.messages.answers = {MsgAnswer::Yes}; // keep demo recording on
    for (QCheckBox* check : first->window->findChildren<QCheckBox*>())
        check->setChecked(!check->isChecked());
    ui.optClose->setChecked(true);
    ui.mnuSettingsMapCheck->setChecked(true);
    ui.SSTab1->setCurrentIndex(4);
    ui.BotList->item(1)->setCheckState(Qt::Checked);
    first->window->botTables().setTeam(1, 1);
    first->window->botTables().setSkill(4, 3);
    const QStringList saved = first->save();
    QVERIFY(!saved.isEmpty());

    TestPlatform& platform = first->platform;
    first->window.reset();
    platform.reopenStore();
    platform.messages.clear();
    platform.messages.answers = {MsgAnswer::Yes}; // the demo-recording question at load
    MainWindow window(*platform.app);
    window.showMainWindow();
    QCOMPARE(window.form().SSTab1->currentIndex(), 0); // every run opens on the first tab
    window.settings().LoadSettings();                  // ... but the load selects the stored one
    platform.store->writes.clear();
    QVERIFY(window.settings().SaveSettings());
    QCOMPARE(platform.store->writes, saved);
}

void SettingsTest::storedValueLoads_data() {
    QTest::addColumn<QString>("stored"); // Section/Key=value
    QTest::addColumn<QString>("saved");  // what the next save writes for it, or ""
    QTest::addColumn<QString>("error");  // the step's message, or "" for none
    const auto row = [](const char* name, const char* stored, const char* saved,
                        const char* error) {
        QTest::newRow(name) << QString(stored) << QString(saved) << QString(error);
    };
    row("game type 4 is CTF", "General/GameType=4", "General/GameType=3", "");
    row("minimize true", "Options/StartMin=true", "Options/StartMin=True", "");
    row("minimize 0", "Options/StartMin=0", "Options/StartMin=False", "");
    row("empty master", "Options/Master0=", "Options/Master0=", "");
    row("game type 7", "General/GameType=7", "", "Error setting Game Type to  7");
    row("game type text", "General/GameType=ffa", "", "Error setting console password");
    row("tab 9", "Settings/LastTab=9", "", "Error setting last tab");
    row("bot selection", "Bots/Selected3=yes", "", "Error setting Bot Properties");
    row("check box 2", "Options/AllowVoting=2", "", "Error setting Vote checkbox");
    row("server type 5", "Options/ServerType=5", "", "Error setting server type value");
    row("status bar", "Settings/StatusBar=maybe", "", "Error setting status bar visibility");
    row("minimize text", "Options/StartMin=often", "", "Error setting Shutdown options");
}

void SettingsTest::storedValueLoads() {
    QFETCH(QString, stored);
    QFETCH(QString, saved);
    QFETCH(QString, error);
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
}

void SettingsTest::botsPastTheTablesNeitherFailSaveNorWriteSlots() {
    Loaded run(102, {"Bots/Selected101=True", "Bots/Team 99=1"});
    // Positions 100 and 101: team and skill each fail once.
    QCOMPARE(run.platform.messages.shown.size(), 4);
    QVERIFY(run.platform.messages.shown.last().text.startsWith("Error setting Bot Properties"));
    QCOMPARE(run.window->form().BotList->item(101)->checkState(), Qt::Checked);
    QCOMPARE(*run.window->botTables().team(99), qint16(1));
    const QStringList writes = run.save();
    QCOMPARE(keysOf(writes), expectedSaveOrder(102));
    QVERIFY(writes.contains("Bots/Selected101=True"));
}

QTEST_MAIN(SettingsTest)
#include "tst_settings.moc"
