// The server configuration, the rotation scripts and the support files: the
// worked examples as golden files, each control-dependent branch as a small
// case, and the failures the caller must hear about.
#include "ScriptedRandom.h"
#include "TestSupport.h"

#include "bots/BotScripts.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"

#include <QDir>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

QString golden(const QString& name) {
    return QStringLiteral(HALVANE_TEST_DIR "/golden/") + name;
}

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
    const qsizetype eq = change.indexOf(QLatin1Char('='));
    const QString key = change.left(eq);
    const QString value = change.mid(eq + 1);
    const bool truth = value == QLatin1String("1");
    const QHash<QString, std::function<void()>> setters{
        {"logFile", [&] { s.logFile = truth; }},
        {"dateLog", [&] { s.dateLog = truth; }},
        {"logFileName", [&] { s.logFileName = value; }},
        {"gameType", [&] { s.gameType = value.toInt(); }},
        {"serverName", [&] { s.serverName = value; }},
        {"minPing", [&] { s.minPing = value; }},
        {"maxPing", [&] { s.maxPing = value; }},
        {"autoJoin", [&] { s.autoJoin = truth; }},
        {"autoBalance", [&] { s.autoBalance = truth; }},
        {"warmUp", [&] { s.warmUp = truth; }},
        {"warmUpTime", [&] { s.warmUpTime = value; }},
        {"consolePassword", [&] { s.consolePassword = value; }},
        {"pureServer", [&] { s.pureServer = truth; }},
        {"maxRate", [&] { s.maxRate = value; }},
        {"mastersEnabled", [&] { s.mastersEnabled = truth; }},
        {"master0", [&] { s.masters[0] = value; }},
        {"master3", [&] { s.masters[3] = value; }},
        {"noBotJump", [&] { s.noBotJump = truth; }},
        {"friendlyEnabled", [&] { s.friendlyEnabled = truth; }},
        {"friendlyFire", [&] { s.friendlyFire = truth; }},
        {"vote", [&] { s.vote = truth; }},
        {"syncClients", [&] { s.syncClients = truth; }},
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

QList<QByteArray> linesOf(const QByteArray& bytes) {
    QList<QByteArray> lines = bytes.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (QByteArray& line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    return lines;
}

QList<QByteArray> latin1(const QStringList& lines) {
    QList<QByteArray> bytes;
    for (const QString& line : lines)
        bytes.append(line.toLatin1());
    return bytes;
}

bool containsBlock(const QList<QByteArray>& lines, const QList<QByteArray>& block) {
    for (qsizetype i = 0; i + block.size() <= lines.size(); ++i) {
        if (lines.mid(i, block.size()) == block)
            return true;
    }
    return false;
}

MapRules rules(const char* time, const char* frag, const char* capture = "8",
               const char* speed = "320") {
    return {QLatin1String(frag),   QLatin1String(time),  QLatin1String(capture),
            QStringLiteral("800"), QLatin1String(speed), QStringLiteral("1000")};
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
        return platform.gameFolder() + QStringLiteral("/baseq3/") + name;
    }
    QString cfg() const { return baseq3(QStringLiteral("halvane.cfg")); }
    void addMap(const QString& name, const MapRules& mapRules) {
        QVERIFY(catalogue.append({makeMapRecord(name, name, mapRules)}));
    }
    bool write(const ServerSettings& s, bool withCommandLine = false,
               const QString& commandLine = QString()) {
        return writer.WriteConfig(s, cfg(), withCommandLine, commandLine);
    }
};

#define COMPARE_FILE(path, goldenName)                                                             \
    do {                                                                                           \
        const QByteArray actual_ = readAll(path);                                                  \
        const QByteArray expected_ = readAll(golden(goldenName));                                  \
        QVERIFY2(!expected_.isEmpty(), qPrintable(QStringLiteral("no golden ") + goldenName));     \
        QVERIFY2(actual_ == expected_, qPrintable(firstDifference(actual_, expected_)));           \
    } while (0)

} // namespace

class TestConfigWriter : public QObject {
    Q_OBJECT
private slots:
    void smallestConfigurationHas43Lines();
    void twoMapRotation();
    void elevenMapsNumberWithoutLeadingZeros();
    void branches_data();
    void branches();
    void singleCtfMapWithCheatsAndRandomBots();
    void rotationWithCtfAndRandomBots();
    void catalogueNamesAndBlankFields();
    void restoresShownRecordAndClearsFirstSetKicks();
    void failures_data();
    void failures();
    void startupScriptsAreNeverReplaced();
    void missingSupportFolderIsMade();
    void folderFailureIsReportedAndWriteGoesOn();
    void scriptsFromEarlierRunsStay();
};

void TestConfigWriter::smallestConfigurationHas43Lines() {
    Fixture f;
    QVERIFY(f.write(baseSettings()));
    COMPARE_FILE(f.cfg(), QStringLiteral("config_minimal.cfg"));
    QCOMPARE(linesOf(readAll(f.cfg())).size(), 43);
    // The first write also makes the support folders and start-up scripts.
    QVERIFY(QFileInfo(f.baseq3(QStringLiteral("srvbots"))).isDir());
    QVERIFY(QFileInfo(f.baseq3(QStringLiteral("srvmaps"))).isDir());
    COMPARE_FILE(f.baseq3(QStringLiteral("default.cfg")), QStringLiteral("startup_script.cfg"));
    COMPARE_FILE(f.baseq3(QStringLiteral("autoexec.cfg")), QStringLiteral("startup_script.cfg"));
    QVERIFY(f.platform.messages.shown.isEmpty());
    // A second write replaces the file rather than adding to it.
    QVERIFY(f.write(baseSettings()));
    COMPARE_FILE(f.cfg(), QStringLiteral("config_minimal.cfg"));
}

void TestConfigWriter::twoMapRotation() {
    Fixture f;
    f.addMap(QStringLiteral("q3dm1"), rules("15", "20"));
    f.addMap(QStringLiteral("q3dm7"), rules("15", "20"));
    ServerSettings s = baseSettings();
    s.selectedMaps = {QStringLiteral("q3dm1"), QStringLiteral("q3dm7")};
    QVERIFY(f.write(s, true, QStringLiteral(" +set dedicated 2 +exec halvane.cfg")));
    COMPARE_FILE(f.cfg(), QStringLiteral("config_twomaps.cfg"));
    COMPARE_FILE(f.baseq3(QStringLiteral("srvmaps/mapset0.cfg")),
                 QStringLiteral("twomaps_mapset0.cfg"));
    COMPARE_FILE(f.baseq3(QStringLiteral("srvmaps/mapset1.cfg")),
                 QStringLiteral("twomaps_mapset1.cfg"));
    // No random bots were asked for: no bot sets.
    QVERIFY(QDir(f.baseq3(QStringLiteral("srvbots"))).isEmpty());
}

void TestConfigWriter::elevenMapsNumberWithoutLeadingZeros() {
    Fixture f;
    ServerSettings s = baseSettings();
    for (int n = 0; n <= 10; ++n) {
        f.addMap(QStringLiteral("arena%1").arg(n), rules("10", "25"));
        s.selectedMaps.append(QStringLiteral("arena%1").arg(n));
    }
    QVERIFY(f.write(s));
    COMPARE_FILE(f.cfg(), QStringLiteral("config_elevenmaps.cfg"));
    COMPARE_FILE(f.baseq3(QStringLiteral("srvmaps/mapset9.cfg")),
                 QStringLiteral("elevenmaps_mapset9.cfg"));
    COMPARE_FILE(f.baseq3(QStringLiteral("srvmaps/mapset10.cfg")),
                 QStringLiteral("elevenmaps_mapset10.cfg"));
    QCOMPARE(QDir(f.baseq3(QStringLiteral("srvmaps"))).entryList(QDir::Files).size(), 11);
}

void TestConfigWriter::branches_data() {
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QStringList>("block");  // consecutive lines the file must hold
    QTest::addColumn<QStringList>("absent"); // lines it must not hold

    QTest::newRow("log unchecked ignores the name")
        << QStringList{"logFileName=mine.log", "dateLog=1"}
        << QStringList{"", "seta g_log \"games.log\"", "// Set the type of game: "}
        << QStringList{"seta g_log \"mine.log\""};
    QTest::newRow("log with its name as typed")
        << QStringList{"logFile=1", "logFileName= server one.log"}
        << QStringList{"seta g_log \" server one.log\""} << QStringList{};
    QTest::newRow("date-coded log ignores the name")
        << QStringList{"logFile=1", "dateLog=1", "logFileName=mine.log"}
        << QStringList{"seta g_log \"20260305-0709.log\""}
        << QStringList{"seta g_log \"mine.log\""};
    QTest::newRow("tournament") << QStringList{"gameType=1"} << QStringList{"seta g_gametype 1"}
                                << QStringList{};
    QTest::newRow("team play is game 3")
        << QStringList{"gameType=2"} << QStringList{"seta g_gametype 3"} << QStringList{};
    QTest::newRow("max ping only")
        << QStringList{"maxPing=250"}
        << QStringList{"seta sv_minPing 0", "seta sv_maxPing 250", "", "seta g_forcerespawn 20"}
        << QStringList{};
    QTest::newRow("ping limits not numeric")
        << QStringList{"minPing=abc", "maxPing=x100"}
        << QStringList{"", "seta sv_minPing 0", "seta sv_maxPing 0", "seta g_forcerespawn 20"}
        << QStringList{};
    QTest::newRow("min ping as typed, blank and all")
        << QStringList{"minPing= 50"}
        << QStringList{"seta sv_minPing  50", "seta sv_maxPing 0", "", "seta g_forcerespawn 20"}
        << QStringList{};
    // The empty line follows the sum of the two numbers, not the lines written.
    QTest::newRow("negative min ping outweighs max ping")
        << QStringList{"minPing=-5", "maxPing=3"}
        << QStringList{"seta sv_minPing 0", "seta sv_maxPing 3", "seta g_forcerespawn 20"}
        << QStringList{};
    QTest::newRow("team options written whatever the game type")
        << QStringList{"autoJoin=1", "autoBalance=1"}
        << QStringList{"seta g_teamAutoJoin 1", "seta g_teamForceBalance 1"} << QStringList{};
    QTest::newRow("warm-up") << QStringList{"warmUp=1", "warmUpTime=30"}
                             << QStringList{"seta g_doWarmup \"1\"", "seta g_warmup \"30\"",
                                            "seta rconpassword \"\""}
                             << QStringList{};
    QTest::newRow("rcon password and rate")
        << QStringList{"consolePassword=se\"cret", "maxRate=8000", "pureServer=0"}
        << QStringList{"seta rconpassword \"se\"cret\"", "", "seta sv_pure 0",
                       "seta sv_maxRate 8000", ""}
        << QStringList{};
    QTest::newRow("masters disabled")
        << QStringList{} << QStringList{"seta sv_maxRate \"\"", "", "", "seta bot_groundonly 0"}
        << QStringList{"seta sv_master1 master.quake3arena.com"};
    QTest::newRow("masters enabled")
        << QStringList{"mastersEnabled=1", "master0=  master.example.net  ",
                       "master3= q3.example.org"}
        << QStringList{"seta sv_maxRate \"\"",
                       "",
                       "seta sv_master1 master.example.net",
                       "seta sv_master2 \"\"",
                       "seta sv_master3 \"\"",
                       "seta sv_master4 q3.example.org",
                       "seta sv_master5 \"\"",
                       "",
                       "seta bot_groundonly 0"}
        << QStringList{};
    QTest::newRow("no bot jumps") << QStringList{"noBotJump=1"}
                                  << QStringList{"seta bot_groundonly 1", "seta bot_rocketjump 1"}
                                  << QStringList{};
    QTest::newRow("friendly fire disabled is not written")
        << QStringList{"gameType=0"} << QStringList{"", "seta g_weaponrespawn 5"}
        << QStringList{"seta g_friendlyFire 1", "seta g_friendlyFire 0"};
    QTest::newRow("capture the flag with friendly fire")
        << QStringList{"gameType=3", "friendlyEnabled=1", "friendlyFire=1"}
        << QStringList{"// Parse the post-map loading commands... ", "", "seta g_friendlyFire 1",
                       "seta g_weaponrespawn 5"}
        << QStringList{"seta g_gametype 0"};
    QTest::newRow("friendly fire enabled, unchecked")
        << QStringList{"gameType=2", "friendlyEnabled=1", "friendlyFire=0"}
        << QStringList{"seta g_friendlyFire 0", "seta g_weaponrespawn 5"} << QStringList{};
    QTest::newRow("voting and synchronous clients")
        << QStringList{"vote=0", "syncClients=1"}
        << QStringList{"seta g_allowvote 0", "seta g_quadfactor 3", "seta g_syncronousClients 1"}
        << QStringList{};
    QTest::newRow("bots disabled")
        << QStringList{"botType=0", "disableBotChat=1"}
        << QStringList{"seta g_syncronousClients 0", "seta bot_minplayers 0", ""}
        << QStringList{"seta bot_nochat 1", "seta bot_nochat 0", "exec srvbots.cfg"};
    QTest::newRow("automatic bots") << QStringList{"botType=2", "autoBotSkill=2", "minBots=4"}
                                    << QStringList{"seta g_syncronousClients 0",
                                                   "seta bot_nochat 0",
                                                   "",
                                                   "seta g_spskill 3",
                                                   "seta bot_minplayers 4",
                                                   "",
                                                   "// Execute scripts...",
                                                   "",
                                                   "",
                                                   "// end of file "}
                                    << QStringList{"exec srvbots.cfg"};
    QTest::newRow("automatic bots without chat, top skill")
        << QStringList{"botType=2", "disableBotChat=1", "autoBotSkill=4", "minBots=x"}
        << QStringList{"seta bot_nochat 1", "", "seta g_spskill 5", "seta bot_minplayers x"}
        << QStringList{};
    QTest::newRow("user-defined bots run the fixed script") << QStringList{"botType=1"}
                                                            << QStringList{"seta bot_nochat 0",
                                                                           "seta bot_minplayers 0",
                                                                           "",
                                                                           "// Execute scripts...",
                                                                           "",
                                                                           "exec srvbots.cfg",
                                                                           "",
                                                                           "// end of file "}
                                                            << QStringList{"seta g_spskill 1"};
    QTest::newRow("random user-defined bots run no fixed script")
        << QStringList{"botType=1", "autoSelectBots=1"}
        << QStringList{"// Execute scripts...", "", "", "// end of file "}
        << QStringList{"exec srvbots.cfg"};
    QTest::newRow("extra script after the bot script")
        << QStringList{"botType=1", "extraConfig=Server.cfg"}
        << QStringList{"exec srvbots.cfg", "exec Server.cfg", "", "// end of file "}
        << QStringList{};
    QTest::newRow("extra script alone, as typed")
        << QStringList{"extraConfig=my \"x\".cfg "}
        << QStringList{"// Execute scripts...", "", "exec my \"x\".cfg ", "", "// end of file "}
        << QStringList{};
    QTest::newRow("one byte per character")
        << QStringList{"serverName=Caf\u00e9 \u00bbNord\u00ab"}
        << QStringList{"seta sv_hostname \"Caf\u00e9 \u00bbNord\u00ab\""} << QStringList{};
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
    QByteArray bytes = readAll(f.cfg());
    QVERIFY2(!bytes.replace("\r\n", "").contains('\n'), "a line without CR LF");
    const QList<QByteArray> lines = linesOf(readAll(f.cfg()));
    QVERIFY2(containsBlock(lines, latin1(block)),
             qPrintable(QString::fromLatin1(readAll(f.cfg()))));
    for (const QByteArray& line : latin1(absent))
        QVERIFY2(!lines.contains(line), line.constData());
    QCOMPARE(lines.last(), QByteArray("// end of file "));
}

void TestConfigWriter::singleCtfMapWithCheatsAndRandomBots() {
    Fixture f;
    f.addMap(QStringLiteral("q3ctf1"), rules("15", "20", "8"));
    ServerSettings s = baseSettings();
    s.gameType = 3;
    s.cheating = true;
    s.botType = 1;
    s.autoSelectBots = true;
    s.selectedMaps = {QStringLiteral("q3ctf1")};
    QVERIFY(f.write(s));
    const QList<QByteArray> lines = linesOf(readAll(f.cfg()));
    QVERIFY2(containsBlock(lines,
                           latin1({"seta bot_rocketjump 1", "", "// Only one map selected ...",
                                   "seta timelimit 15", "seta fraglimit 20", "seta capturelimit 8",
                                   "devmap  q3ctf1", "seta g_speed 320", "seta g_gravity 800",
                                   "seta g_knockback 1000", "exec srvbots\\botset0.cfg", "", "",
                                   "// Parse the post-map loading commands... "})),
             qPrintable(QString::fromLatin1(readAll(f.cfg()))));
    QVERIFY(QDir(f.baseq3(QStringLiteral("srvmaps"))).isEmpty());
    QVERIFY(QFileInfo::exists(f.baseq3(QStringLiteral("srvbots/botset0.cfg"))));
}

void TestConfigWriter::rotationWithCtfAndRandomBots() {
    Fixture f;
    f.addMap(QStringLiteral("q3ctf1"), rules("15", "20", "8"));
    f.addMap(QStringLiteral("q3ctf2"), rules("20", "0", "5"));
    ServerSettings s = baseSettings();
    s.gameType = 3;
    s.botType = 1;
    s.autoSelectBots = true;
    s.selectedMaps = {QStringLiteral("q3ctf1"), QStringLiteral("q3ctf2")};
    QVERIFY(f.write(s));
    QCOMPARE(linesOf(readAll(f.baseq3(QStringLiteral("srvmaps/mapset0.cfg"))))[2],
             QByteArray("set srv0 \"timelimit 15; fraglimit 20; capturelimit 8; map q3ctf1; exec "
                        "srvbots\\botset0.cfg ; set g_speed 320; set g_gravity 800; set "
                        "g_knockback 1000; set nextmap vstr srv1\""));
    QCOMPARE(linesOf(readAll(f.baseq3(QStringLiteral("srvmaps/mapset1.cfg"))))[2],
             QByteArray("set srv1 \"timelimit 20; fraglimit 0; capturelimit 5; map q3ctf2; exec "
                        "srvbots\\botset1.cfg ; set g_speed 320; set g_gravity 800; set "
                        "g_knockback 1000; set nextmap vstr srv0\""));
    QVERIFY(QFileInfo::exists(f.baseq3(QStringLiteral("srvbots/botset0.cfg"))));
    QVERIFY(QFileInfo::exists(f.baseq3(QStringLiteral("srvbots/botset1.cfg"))));
}

void TestConfigWriter::catalogueNamesAndBlankFields() {
    Fixture f;
    f.addMap(QStringLiteral("Other"), rules("1", "1"));
    f.addMap(QStringLiteral("q3dm17"), rules("15", "20", "8", ""));
    ServerSettings s = baseSettings();
    s.selectedMaps = {QStringLiteral("  Q3DM17 "), QStringLiteral("other")};
    QVERIFY(f.write(s));
    // The catalogue's spelling is written, and a blank speed stays empty.
    QCOMPARE(linesOf(readAll(f.baseq3(QStringLiteral("srvmaps/mapset0.cfg"))))[2],
             QByteArray("set srv0 \"timelimit 15; fraglimit 20; map q3dm17; set g_speed ; set "
                        "g_gravity 800; set g_knockback 1000; set nextmap vstr srv1\""));
}

void TestConfigWriter::restoresShownRecordAndClearsFirstSetKicks() {
    Fixture f;
    f.addMap(QStringLiteral("one"), rules("1", "1"));
    f.addMap(QStringLiteral("shown"), rules("2", "2"));
    f.addMap(QStringLiteral("three"), rules("3", "3"));
    QVERIFY(f.catalogue.readRecord(2));
    f.catalogue.CurrentMapRecord = 2;
    const MapRecord shown = f.catalogue.RecordBuffer;
    f.bots.FirstSetKicks.fill(true);
    ServerSettings s = baseSettings();
    s.selectedMaps = {QStringLiteral("one"), QStringLiteral("three")};
    QVERIFY(f.write(s));
    QVERIFY(f.catalogue.RecordBuffer == shown);
    for (bool kick : f.bots.FirstSetKicks)
        QVERIFY(!kick);
}

void TestConfigWriter::failures_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("linesKept");           // lines of the main file left, -1: no file
    QTest::addColumn<QString>("expectedMessage"); // the one message allowed, if any
    QTest::newRow("game folder without baseq3")
        << "nobaseq3" << -1
        << "An error has occured while attempting to create the subfolders required for "
           "Halvane to launch the server.";
    QTest::newRow("output folder is a file") << "blockedpath" << -1 << "";
    QTest::newRow("selected map missing from the catalogue") << "missingmap" << 32 << "";
    QTest::newRow("rotation folder cannot be made")
        << "blockedsrvmaps" << 31
        << "An error has occured while attempting to create the subfolders required for "
           "Halvane to launch the server.";
    QTest::newRow("single map missing") << "missingsingle" << 31 << "";
}

void TestConfigWriter::failures() {
    QFETCH(QString, kind);
    QFETCH(int, linesKept);
    QFETCH(QString, expectedMessage);
    Fixture f;
    f.addMap(QStringLiteral("q3dm1"), rules("15", "20"));
    f.catalogue.CurrentMapRecord = 1;
    QVERIFY(f.catalogue.readRecord(1));
    const MapRecord shown = f.catalogue.RecordBuffer;
    ServerSettings s = baseSettings();
    s.selectedMaps = {QStringLiteral("q3dm1"), QStringLiteral("nosuchmap")};
    QString path = f.cfg();
    if (kind == QLatin1String("nobaseq3")) {
        QVERIFY(QDir(f.baseq3()).removeRecursively());
    } else if (kind == QLatin1String("blockedpath")) {
        f.platform.writeFile(f.platform.gameFolder() + QStringLiteral("/blocker"), "x");
        path = f.platform.gameFolder() + QStringLiteral("/blocker/halvane.cfg");
    } else if (kind == QLatin1String("blockedsrvmaps")) {
        f.platform.writeFile(f.baseq3(QStringLiteral("srvmaps")), "not a folder");
        s.selectedMaps = {QStringLiteral("q3dm1"), QStringLiteral("q3dm1")};
    } else if (kind == QLatin1String("missingsingle")) {
        s.selectedMaps = {QStringLiteral("nosuchmap")};
    }
    QVERIFY(!f.writer.WriteConfig(s, path, false, QString()));

    if (expectedMessage.isEmpty()) {
        QVERIFY(f.platform.messages.shown.isEmpty());
    } else {
        QCOMPARE(f.platform.messages.shown.size(), 1);
        const ShownMessage& m = f.platform.messages.shown.first();
        QCOMPARE(m.title, QStringLiteral("Error"));
        QCOMPARE(m.text, expectedMessage);
        QCOMPARE(m.buttons, MsgButtons::Ok);
        QCOMPARE(m.icon, MsgIcon::Critical);
    }
    if (linesKept < 0) {
        QVERIFY(!QFileInfo::exists(path));
    } else {
        // What was written before the failure stays, ending where it stopped.
        const QList<QByteArray> kept = linesOf(readAll(path));
        QCOMPARE(kept.size(), linesKept);
        QCOMPARE(kept.mid(0, 30),
                 linesOf(readAll(golden(QStringLiteral("config_minimal.cfg")))).mid(0, 30));
        // The next write can create the file again.
        s.selectedMaps = {QStringLiteral("q3dm1")};
        QFile::remove(f.baseq3(QStringLiteral("srvmaps")));
        QVERIFY(f.writer.WriteConfig(s, path, false, QString()));
    }
    QVERIFY(f.catalogue.RecordBuffer == shown);
}

void TestConfigWriter::startupScriptsAreNeverReplaced() {
    Fixture f;
    const QByteArray own = "// my own start-up\nexec mine.cfg\n";
    f.platform.writeFile(f.baseq3(QStringLiteral("autoexec.cfg")), own);
    QVERIFY(f.write(baseSettings()));
    QCOMPARE(readAll(f.baseq3(QStringLiteral("autoexec.cfg"))), own);
    COMPARE_FILE(f.baseq3(QStringLiteral("default.cfg")), QStringLiteral("startup_script.cfg"));
    // An existing script, even one the write made, is left as it is.
    f.platform.writeFile(f.baseq3(QStringLiteral("default.cfg")), "");
    QVERIFY(f.write(baseSettings()));
    QCOMPARE(readAll(f.baseq3(QStringLiteral("default.cfg"))), QByteArray());
}

void TestConfigWriter::missingSupportFolderIsMade() {
    Fixture f;
    QVERIFY(QDir().mkpath(f.baseq3(QStringLiteral("srvbots"))));
    f.platform.writeFile(f.baseq3(QStringLiteral("srvbots/botset7.cfg")), "kept");
    f.writer.MakeSubFolders();
    QVERIFY(QFileInfo(f.baseq3(QStringLiteral("srvmaps"))).isDir());
    QCOMPARE(readAll(f.baseq3(QStringLiteral("srvbots/botset7.cfg"))), QByteArray("kept"));
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void TestConfigWriter::folderFailureIsReportedAndWriteGoesOn() {
    Fixture f;
    f.platform.writeFile(f.baseq3(QStringLiteral("srvbots")), "a file, not a folder");
    // No random bots need the folder, so the configuration itself succeeds.
    QVERIFY(f.write(baseSettings()));
    QCOMPARE(f.platform.messages.shown.size(), 1);
    QCOMPARE(f.platform.messages.shown.first().icon, MsgIcon::Critical);
    COMPARE_FILE(f.cfg(), QStringLiteral("config_minimal.cfg"));
}

void TestConfigWriter::scriptsFromEarlierRunsStay() {
    Fixture f;
    ServerSettings s = baseSettings();
    for (const char* name : {"a", "b", "c"}) {
        f.addMap(QLatin1String(name), rules("5", "5"));
        s.selectedMaps.append(QLatin1String(name));
    }
    QVERIFY(f.write(s));
    s.selectedMaps = {QStringLiteral("c"), QStringLiteral("a")};
    QVERIFY(f.write(s));
    // mapset2 is left from the longer rotation; mapset1 now closes the cycle.
    QVERIFY(QFileInfo::exists(f.baseq3(QStringLiteral("srvmaps/mapset2.cfg"))));
    QVERIFY(readAll(f.baseq3(QStringLiteral("srvmaps/mapset1.cfg"))).contains("vstr srv0\r\n"));
    QVERIFY(!readAll(f.cfg()).contains("mapset2"));
}

QTEST_MAIN(TestConfigWriter)
#include "tst_configwriter.moc"
