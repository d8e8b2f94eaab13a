// The server configuration, the rotation scripts and the support files: the
// worked examples as golden files, each control-dependent branch as a small
// case, and the failures the caller must hear about.
#include "ScriptedRandom.h"
#include "TestSupport.h"

#include "bots/BotScripts.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QDir>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// The settings of the smallest configuration (43 lines).
ServerSettings baseSettings() {
    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.takenAt = QDateTime(QDate(2026, 3, 5), QTime(7, 9));
    s.gameExeName = QStringLiteral("quake3.exe");
    s.maxPlayers = QStringLiteral("12");
    s.serverName = QStringLiteral("Halvane Arena");
    s.motd = QStringLiteral("Have fun");
    s.minPing = QStringLiteral("0");
    s.maxPing = QStringLiteral("0");
    s.playerRespawn = QStringLiteral("20");
    s.inactivity = QStringLiteral("0");
    s.pureServer = true;
    s.masters = {QStringLiteral("master.quake3arena.com"), QString(), QString(), QString(),
                 QString()};
    s.rocketJump = true;
    s.friendlyFire = true; // disabled, so never written
    s.weaponRespawn = QStringLiteral("5");
    s.vote = true;
    s.quad = QStringLiteral("3");
    s.minBots = QStringLiteral("2");
    s.randomBots = QStringLiteral("2");
    for (const char* name : {"Sarge", "Grunt", "Major", "Visor"})
        s.bots.push_back({QLatin1String(name), false, 0, 1});
    return s;
}

// Sets one field by name: the branch table below names its changes as text.
void apply(ServerSettings& s, const QString& change) {
    const QString key = change.section('=', 0, 0);
    const QString value = change.section('=', 1);
    const bool truth = value == QLatin1String("1");
    const QHash<QString, std::function<void()>> setters{
        {"logFile", [&] { s.logFile = truth; }},
        {"dateLog", [&] { s.dateLog = truth; }},
        {"logFileName", [&] { s.logFileName = value; }},
        {"gameType", [&] { s.gameType = value.toInt(); }},
        {"serverName", [&] { s.serverName = value; }},
        {"minPing", [&] { s.minPing = value; }},
        {"maxPing", [&] { s.maxPing = value; }},
        {"friendlyEnabled", [&] { s.friendlyEnabled = truth; }},
        {"friendlyFire", [&] { s.friendlyFire = truth; }},
        {"botType", [&] { s.botType = value.toInt(); }},
        {"disableBotChat", [&] { s.disableBotChat = truth; }},
        {"autoSelectBots", [&] { s.autoSelectBots = truth; }},
        {"autoBotSkill", [&] { s.autoBotSkill = value.toInt(); }},
        {"minBots", [&] { s.minBots = value; }},
        {"extraConfig", [&] { s.extraConfig = value; }},
    };
    QVERIFY2(setters.contains(key), qPrintable(change));
    setters[key]();
}

// The lines of a file, without their line ends.
QStringList linesOf(const QString& path) {
    QStringList lines = QString::fromLatin1(readAll(path)).split("\r\n");
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

MapRules rules(const char* time, const char* frag, const char* capture = "8") {
    return {frag, time, capture, "800", "320", "1000"};
}

// A game folder, a catalogue and the writers over them.
struct Fixture {
    TestPlatform platform;
    MapCatalogue catalogue{platform.programFolder()};
    ScriptedRandom random{{0.0}};
    BotScriptWriter bots{platform.app->state, platform.messages, random};
    ConfigWriter writer{platform.app->state, platform.messages, catalogue, bots};

    Fixture() { platform.makeGameFolder(); }
    QString baseq3(const QString& name = QString()) const {
        return platform.gameFolder() + "/baseq3/" + name;
    }
    QString cfg() const { return baseq3("halvane.cfg"); }
    void addMap(const QString& name, const MapRules& mapRules) {
        QVERIFY(catalogue.append({makeMapRecord(name, name, mapRules)}));
    }
    bool write(const ServerSettings& s, const QString& commandLine = QString()) {
        return writer.WriteConfig(s, cfg(), !commandLine.isEmpty(), commandLine);
    }
};
} // namespace

class TestConfigWriter : public QObject {
    Q_OBJECT
private slots:
    void workedExamples_data();
    void workedExamples();
    void branches_data();
    void branches();
    void rotationWithCtfAndRandomBots();
    void failures_data();
    void failures();
    void startupScriptsAreNeverReplaced();
    void sameFileFromEveryTab_data();
    void sameFileFromEveryTab();
};

void TestConfigWriter::workedExamples_data() {
    QTest::addColumn<int>("maps"); // 2: q3dm1 and q3dm7; 11: arena0..arena10
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<QStringList>("files"); // written file = golden file
    QTest::newRow("43-line configuration")
        << 0 << ""
        << QStringList{"halvane.cfg=config_minimal.cfg", "default.cfg=startup_script.cfg",
                       "autoexec.cfg=startup_script.cfg"};
    QTest::newRow("two-map rotation")
        << 2 << " +set dedicated 2 +exec halvane.cfg"
        << QStringList{"halvane.cfg=config_twomaps.cfg", "srvmaps/mapset0.cfg=twomaps_mapset0.cfg",
                       "srvmaps/mapset1.cfg=twomaps_mapset1.cfg"};
    QTest::newRow("eleven maps numbered without leading zeros")
        << 11 << ""
        << QStringList{"halvane.cfg=config_elevenmaps.cfg",
                       "srvmaps/mapset9.cfg=elevenmaps_mapset9.cfg",
                       "srvmaps/mapset10.cfg=elevenmaps_mapset10.cfg"};
}

void TestConfigWriter::workedExamples() {
    QFETCH(int, maps);
    QFETCH(QString, commandLine);
    QFETCH(QStringList, files);
    Fixture f;
    ServerSettings s = baseSettings();
    for (int n = 0; n < maps; ++n) {
        const QString name =
            maps == 2 ? QStringList{"q3dm1", "q3dm7"}[n] : QString("arena%1").arg(n);
        f.addMap(name, maps == 2 ? rules("15", "20") : rules("10", "25"));
        s.selectedMaps.append(name);
    }
    if (maps == 11) // an old script named in capitals is replaced, not joined by a second
        f.platform.writeFile(f.baseq3("srvmaps/MAPSET3.CFG"), "old");
    // The second write replaces the files rather than adding to them.
    for (int run = 0; run < 2; ++run)
        QVERIFY(f.write(s, commandLine));
    for (const QString& pair : files) {
        const QByteArray actual = readAll(f.baseq3(pair.section('=', 0, 0)));
        const QByteArray expected = readAll(golden(pair.section('=', 1)));
        QVERIFY2(!expected.isEmpty() && actual == expected,
                 qPrintable(pair + ": " + firstDifference(actual, expected)));
    }
    QCOMPARE(QDir(f.baseq3("srvmaps")).entryList(QDir::Files).size(), maps < 2 ? 0 : maps);
    QVERIFY(QDir(f.baseq3("srvbots")).isEmpty()); // no random bots asked for
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void TestConfigWriter::branches_data() {
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QStringList>("block");  // consecutive lines the file must hold
    QTest::addColumn<QStringList>("absent"); // lines it must not hold
    const QStringList none;
    QTest::newRow("log with its name as typed")
        << QStringList{"logFile=1", "logFileName= server one.log"}
        << QStringList{"seta g_log \" server one.log\""} << none;
    QTest::newRow("date-coded log ignores the name")
        << QStringList{"logFile=1", "dateLog=1", "logFileName=mine.log"}
        << QStringList{"seta g_log \"20260305-0709.log\""} << none;
    QTest::newRow("team play is game 3")
        << QStringList{"gameType=2"} << QStringList{"seta g_gametype 3"} << none;
    QTest::newRow("blanks inside a ping count for nothing")
        << QStringList{"minPing=0 50"}
        << QStringList{"seta sv_minPing 0 50", "seta sv_maxPing 0", "", "seta g_forcerespawn 20"}
        << none;
    // The empty line follows the sum of the two numbers, not the lines written.
    QTest::newRow("ping limits not numeric")
        << QStringList{"minPing=abc", "maxPing=x100"}
        << QStringList{"", "seta sv_minPing 0", "seta sv_maxPing 0", "seta g_forcerespawn 20"}
        << none;
    QTest::newRow("capture the flag with friendly fire")
        << QStringList{"gameType=3", "friendlyEnabled=1", "friendlyFire=1"}
        << QStringList{"", "seta g_friendlyFire 1", "seta g_weaponrespawn 5"}
        << QStringList{"seta g_gametype 0"};
    QTest::newRow("automatic bots without chat")
        << QStringList{"botType=2", "disableBotChat=1", "autoBotSkill=4", "minBots=x"}
        << QStringList{"seta bot_nochat 1",
                       "",
                       "seta g_spskill 5",
                       "seta bot_minplayers x",
                       "",
                       "// Execute scripts...",
                       "",
                       "",
                       "// end of file "}
        << QStringList{"exec srvbots.cfg"};
    QTest::newRow("user-defined bots run the fixed script")
        << QStringList{"botType=1", "extraConfig=my \"x\".cfg "}
        << QStringList{"seta bot_minplayers 0", "", "// Execute scripts...", "", "exec srvbots.cfg",
                       "exec my \"x\".cfg ",    "", "// end of file "}
        << QStringList{"seta g_spskill 1"};
    QTest::newRow("random user-defined bots run no fixed script")
        << QStringList{"botType=1", "autoSelectBots=1"}
        << QStringList{"// Execute scripts...", "", "", "// end of file "}
        << QStringList{"exec srvbots.cfg"};
    QTest::newRow("one byte per character")
        << QStringList{"serverName=Caf\u00e9 \u00bbNord\u00ab"}
        << QStringList{"seta sv_hostname \"Caf\u00e9 \u00bbNord\u00ab\""} << none;
}

void TestConfigWriter::branches() {
    QFETCH(QStringList, changes);
    QFETCH(QStringList, block);
    QFETCH(QStringList, absent);
    Fixture f;
    ServerSettings s = baseSettings();
    for (const QString& change : changes)
        apply(s, change);
    QVERIFY(f.write(s));
    const QString text = linesOf(f.cfg()).join('\n');
    QVERIFY2(text.contains(block.join('\n')), qPrintable(text));
    for (const QString& line : absent)
        QVERIFY2(!linesOf(f.cfg()).contains(line), qPrintable(line));
}

void TestConfigWriter::rotationWithCtfAndRandomBots() {
    Fixture f;
    f.addMap("q3ctf1", rules("15", "20", "8"));
    f.addMap("q3ctf2", rules("20", "0", "5"));
    ServerSettings s = baseSettings();
    s.gameType = 3;
    s.botType = 1;
    s.autoSelectBots = true;
    s.selectedMaps = {" Q3CTF1 ", "q3ctf2"}; // the catalogue's spelling is written
    QVERIFY(f.write(s));
    QCOMPARE(linesOf(f.baseq3("srvmaps/mapset0.cfg"))[2],
             "set srv0 \"timelimit 15; fraglimit 20; capturelimit 8; map q3ctf1; exec "
             "srvbots\\botset0.cfg ; set g_speed 320; set g_gravity 800; set g_knockback 1000; "
             "set nextmap vstr srv1\"");
    QVERIFY(QFileInfo::exists(f.baseq3("srvbots/botset1.cfg")));
}

void TestConfigWriter::failures_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("linesKept"); // lines of the main file left, -1: no file
    QTest::addColumn<bool>("message");  // the subfolder error, or nothing
    QTest::newRow("game folder without baseq3") << "nobaseq3" << -1 << true;
    QTest::newRow("selected map missing from the catalogue") << "missingmap" << 32 << false;
}

void TestConfigWriter::failures() {
    QFETCH(QString, kind);
    QFETCH(int, linesKept);
    QFETCH(bool, message);
    Fixture f;
    f.addMap("q3dm1", rules("15", "20"));
    f.catalogue.CurrentMapRecord = 1;
    QVERIFY(f.catalogue.readRecord(1));
    const MapRecord shown = f.catalogue.RecordBuffer;
    ServerSettings s = baseSettings();
    s.selectedMaps = {"q3dm1", "nosuchmap"};
    const QString path = f.cfg();
    if (kind == "nobaseq3")
        QVERIFY(QDir(f.baseq3()).removeRecursively());
    QVERIFY(!f.writer.WriteConfig(s, path, false, QString()));
    QCOMPARE(onlyMessage(f.platform.messages),
             message ? halvane::test::message("Error",
                                              "An error has occured while attempting to create "
                                              "the subfolders required for Halvane to launch the "
                                              "server.",
                                              MsgButtons::Ok, MsgIcon::Critical)
                     : "0 messages");
    QCOMPARE(QFileInfo::exists(path), linesKept >= 0);
    if (linesKept >= 0) {
        // What was written before the failure stays, ending where it stopped.
        const QStringList kept = linesOf(path);
        QCOMPARE(kept.size(), linesKept);
        QCOMPARE(kept.mid(0, 30), linesOf(golden("config_minimal.cfg")).mid(0, 30));
    }
    QVERIFY(f.catalogue.RecordBuffer == shown);
}

void TestConfigWriter::startupScriptsAreNeverReplaced() {
    Fixture f;
    const QByteArray own = "// my own start-up\nexec mine.cfg\n";
    f.platform.writeFile(f.baseq3("autoexec.cfg"), own);
    f.platform.writeFile(f.baseq3("default.cfg"), "");
    QVERIFY(f.write(baseSettings()));
    QCOMPARE(readAll(f.baseq3("autoexec.cfg")), own);
    QCOMPARE(readAll(f.baseq3("default.cfg")), QByteArray());
}

// The last run stored a team game with friendly fire on a dedicated server
// with master servers; the operator shows tabs in turn and makes halvane.cfg
// from the last one. Only Frame1's own state follows the tab (usable while
// Options is shown); a frame the tab change disabled never counts.
void TestConfigWriter::sameFileFromEveryTab_data() {
    QTest::addColumn<int>("lastTab");    // stored by the last run
    QTest::addColumn<QString>("visits"); // tabs clicked in turn
    QTest::addColumn<bool>("masters");
    for (int tab = 0; tab < 6; ++tab)
        QTest::addRow("from tab %d", tab) << 0 << "012345" + QString::number(tab) << (tab == 3);
    QTest::newRow("fresh start") << 0 << QString() << true;
    QTest::newRow("last run closed on Options") << 3 << QString() << false;
}

void TestConfigWriter::sameFileFromEveryTab() {
    QFETCH(int, lastTab);
    QFETCH(QString, visits);
    QFETCH(bool, masters);
    TestPlatform platform;
    platform.makeGameFolder();
    const QString stored = "Settings/LastTab=" + QString::number(lastTab) +
                           ";General/Name=Halvane Arena;General/Motd=Have fun;General/GameType=2"
                           ";Limits/MaxPlayers=12;Limits/PlayerRespawn=20"
                           ";Limits/InactivityTimeout=0;Options/AllowVoting=1"
                           ";Options/FriendlyFire=1;Options/AutoJoin=0;Options/AutoBalance=0"
                           ";Options/Master0= m.example.net ;Options/Master1="
                           ";Options/Master3=q3.example.org;Network/MaxRate=";
    for (const QString& entry : stored.split(';'))
        platform.ini->write(entry.section('/', 0, 0), entry.section('/', 1).section('=', 0, 0),
                            entry.section('=', 1));
    MainWindow window(*platform.app);
    window.showMainWindow();
    QTabBar* tabs = window.form().SSTab1->tabBar();
    for (const QChar tab : visits)
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab.digitValue()).center());
    QCOMPARE(window.form().SSTab1->currentIndex(),
             visits.isEmpty() ? 0 : visits.back().digitValue());
    window.form().mnuFileMakeCfg->trigger();

    QByteArray expected = readAll(golden("config_minimal.cfg"));
    expected.replace("seta g_gametype 0", "seta g_gametype 3");
    expected.replace("seta g_weaponrespawn", "seta g_friendlyFire 1\r\nseta g_weaponrespawn");
    if (masters) {
        expected.replace("seta sv_maxRate \"\"\r\n\r\n",
                         "seta sv_maxRate \"\"\r\n\r\nseta sv_master1 m.example.net\r\n"
                         "seta sv_master2 \"\"\r\nseta sv_master3 \"\"\r\n"
                         "seta sv_master4 q3.example.org\r\nseta sv_master5 \"\"\r\n");
    }
    const QByteArray actual = readAll(platform.gameFolder() + "/baseq3/halvane.cfg");
    QVERIFY2(actual == expected, qPrintable(firstDifference(actual, expected)));
    QCOMPARE(platform.messages.shown.size(), 1); // "Success!" and nothing before it
}

QTEST_MAIN(TestConfigWriter)
#include "tst_configwriter.moc"
