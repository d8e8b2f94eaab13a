// The server configuration, the rotation scripts, the bot scripts and the
// support files: the worked examples as golden files, each control-dependent
// branch as a small case, and the failures the caller must hear about.
#include "ConfigBranches.h"
#include "TestSupport.h"

#include "bots/BotScripts.h"
#include "bots/RandomSource.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// Hands out the draws a test chose, in order, repeating the last one.
struct ScriptedRandom : RandomSource {
    double draw() override { return draws.size() > 1 ? draws.takeFirst() : draws.value(0); }
    void reseed() override {}
    QList<double> draws;
};

// The settings of the smallest configuration (43 lines).
ServerSettings baseSettings() {
    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.takenAt = QDateTime(QDate(2026, 3, 5), QTime(7, 9));
    s.gameExeName = QStringLiteral("quake3.exe");
    s.maxPlayers = QStringLiteral("12");
    s.serverName = QStringLiteral("Halvane Arena");
    s.motd = QStringLiteral("Have fun");
    s.minPing = s.maxPing = s.inactivity = QStringLiteral("0");
    s.playerRespawn = QStringLiteral("20");
    s.masters[0] = QStringLiteral("master.quake3arena.com");
    s.pureServer = s.rocketJump = s.vote = true;
    s.friendlyFire = true; // disabled, so never written
    s.weaponRespawn = QStringLiteral("5");
    s.quad = QStringLiteral("3");
    s.minBots = s.randomBots = QStringLiteral("2");
    s.bots = {{"Sarge"}, {"Grunt"}, {"Major"}, {"Visor"}};
    return s;
}

// The same with bots Bot0, Bot1, ... of the skills 0 to 4 in turn, none selected.
ServerSettings withBots(int count) {
    ServerSettings s = baseSettings();
    s.bots.clear();
    for (int i = 0; i < count; ++i)
        s.bots.push_back({QStringLiteral("Bot%1").arg(i), false, 0, qint16(i % 5)});
    return s;
}

// The lines of a file, without their line ends.
QStringList linesOf(const QString& path) {
    QStringList lines = QString::fromLatin1(readAll(path)).split("\r\n");
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// The names a set script kicks and adds ("kick X" / "addbot X  L team").
QSet<QString> namesAfter(const QString& path, const QString& command) {
    QSet<QString> names;
    for (const QString& line : linesOf(path).filter(QRegularExpression('^' + command)))
        names.insert(line.mid(command.size()).section(' ', 0, 0));
    return names;
}

void sameAsGolden(const QString& path, const QString& name) {
    const QByteArray actual = readAll(path), expected = readAll(golden(name));
    QVERIFY2(!expected.isEmpty() && actual == expected,
             qPrintable(name + ": " + firstDifference(actual, expected)));
}

QString botScriptError(const char* script) {
    return message("Warning", QString("An error occured while creating the bot script") + script,
                   MsgButtons::Ok, MsgIcon::Information);
}

MapRules rules(const char* time, const char* frag, const char* capture = "8") {
    return {frag, time, capture, "800", "320", "1000"};
}

// A game folder, a catalogue and the writers over them.
struct Fixture {
    TestPlatform platform;
    MapCatalogue catalogue{platform.programFolder()};
    ScriptedRandom random;
    BotScriptWriter bots{platform.app->state, platform.messages, random};
    ConfigWriter writer{platform.app->state, platform.messages, catalogue, bots};

    explicit Fixture(QList<double> draws = {0.0}) {
        random.draws = std::move(draws);
        platform.makeGameFolder();
    }
    QString baseq3(const QString& name = QString()) const {
        return platform.gameFolder() + "/baseq3/" + name;
    }
    QString cfg() const { return baseq3("halvane.cfg"); }
    QString set(int n) const { return baseq3(QStringLiteral("srvbots/botset%1.cfg").arg(n)); }
    void addMap(const QString& name, const MapRules& mapRules) {
        QVERIFY(catalogue.append({makeMapRecord(name, name, mapRules)}));
    }
    bool write(const ServerSettings& s, const QString& commandLine = QString()) {
        return writer.WriteConfig(s, cfg(), !commandLine.isEmpty(), commandLine);
    }
};

// The maps (2: q3dm1 and q3dm7; 11: arena0..arena10), the command line, and each file written
// as its golden file.
const std::tuple<const char*, int, QString, QStringList> Examples[] = {
    {"43-line configuration", 0, "",
     QStringList{"halvane.cfg=config_minimal.cfg", "default.cfg=startup_script.cfg",
                 "autoexec.cfg=startup_script.cfg"}},
    {"two-map rotation", 2, " +set dedicated 2 +exec halvane.cfg",
     QStringList{"halvane.cfg=config_twomaps.cfg", "srvmaps/mapset0.cfg=twomaps_mapset0.cfg",
                 "srvmaps/mapset1.cfg=twomaps_mapset1.cfg"}},
    {"eleven maps numbered without leading zeros", 11, "",
     QStringList{"halvane.cfg=config_elevenmaps.cfg", "srvmaps/mapset9.cfg=elevenmaps_mapset9.cfg",
                 "srvmaps/mapset10.cfg=elevenmaps_mapset10.cfg"}},
};
} // namespace

// The most bots a set may hold, the bots listed, the draws for the set's
// size and for its picks, and the bots the set adds.
const std::tuple<const char*, QString, int, double, double, int> BotSets[] = {
    {"max 1 gives one bot", "1", 5, 0.7, 0.3, 1},
    {"no number gives none", "lots", 5, 0.7, 0.3, 0},
    {"smallest draw gives two", "6", 8, 0.0, 0.5, 2},
    {"more wanted than listed", "10", 3, 0.999, 0.5, 3},
    {"empty list", "4", 0, 0.5, 0.5, 0},
    {"stuck generator", "5", 7, 0.999, 0.0, 5}, // draws always on the same slot still end
    {"all of a 100+ list", "200", 150, 0.999, 0.9999, 100}, // only 100 positions have slots
};

class TestConfigWriter : public QObject {
    Q_OBJECT
private slots:
    void workedExamples_data() { addRows(Examples); }
    void workedExamples();
    void branches_data() { addRows(Branches); }
    void branches();
    void failures();
    void fixedBotScript();
    void botRotationClosesIntoCycle();
    void botSetSizes_data() { addRows(BotSets); }
    void botSetSizes();
};

void TestConfigWriter::workedExamples() {
    const auto& [name, maps, commandLine, files] = fetchRow(Examples);
    Fixture f;
    ServerSettings s = baseSettings();
    for (int n = 0; n < maps; ++n) {
        const QString map =
            maps == 2 ? QStringList{"q3dm1", "q3dm7"}[n] : QString("arena%1").arg(n);
        f.addMap(map, maps == 2 ? rules("15", "20") : rules("10", "25"));
        s.selectedMaps.append(n == 0 ? " " + map.toUpper() + " "
                                     : map); // the catalogue's spelling is written
    }
    if (maps == 11) // an old script named in capitals is replaced, not joined by a second
        f.platform.writeFile(f.baseq3("srvmaps/MAPSET3.CFG"), "old");
    // The operator's own start-up scripts are never replaced, not even an empty one.
    const QByteArray own = "// my own start-up\nexec mine.cfg\n";
    if (maps == 2) {
        f.platform.writeFile(f.baseq3("autoexec.cfg"), own);
        f.platform.writeFile(f.baseq3("default.cfg"), "");
    }
    // The second write replaces the files rather than adding to them.
    for (int run = 0; run < 2; ++run)
        QVERIFY(f.write(s, commandLine));
    for (const QString& pair : files)
        sameAsGolden(f.baseq3(pair.section('=', 0, 0)), pair.section('=', 1));
    if (maps == 2)
        QVERIFY(readAll(f.baseq3("autoexec.cfg")) == own && readAll(f.baseq3("default.cfg")) == "");
    QCOMPARE(QDir(f.baseq3("srvmaps")).entryList(QDir::Files).size(), maps < 2 ? 0 : maps);
    // No random bots asked for.
    QVERIFY(QDir(f.baseq3("srvbots")).isEmpty() && f.platform.messages.shown.isEmpty());
}

void TestConfigWriter::branches() {
    const auto& [name, change, block, absent, stored] = fetchRow(Branches);
    Fixture f;
    ServerSettings s = baseSettings();
    change(s);
    QVERIFY(f.write(s));
    const QString text = linesOf(f.cfg()).join('\n');
    QVERIFY2(text.contains(block.join('\n')), qPrintable(text));
    for (const QString& line : absent)
        QVERIFY2(!linesOf(f.cfg()).contains(line), qPrintable(line));
}

void TestConfigWriter::failures() {
    Fixture f;
    f.addMap("q3dm1", rules("15", "20"));
    f.addMap("q3dm7", rules("15", "20"));
    f.catalogue.CurrentMapRecord = 1;
    QVERIFY(f.catalogue.readRecord(1));
    const MapRecord shown = f.catalogue.RecordBuffer;
    ServerSettings s = baseSettings();
    s.selectedMaps = {"q3dm7", "nosuchmap"}; // the search reads q3dm7 into the buffer
    // A selected map missing from the catalogue: what was written before it
    // stays, ending where it stopped, and the shown map stays in the buffer.
    QVERIFY(!f.write(s));
    QCOMPARE(onlyMessage(f.platform.messages), "0 messages");
    const QStringList kept = linesOf(f.cfg());
    QCOMPARE(kept.size(), 32);
    QCOMPARE(kept.mid(0, 30), linesOf(golden("config_minimal.cfg")).mid(0, 30));
    QVERIFY(f.catalogue.RecordBuffer == shown);
    // A record that would break out of its rotation line (a damaged or
    // hand-made data file) stops the write the same way: no script for it.
    f.addMap("q3;quit", rules("15", "20"));
    f.addMap("speedy", {"20", "15", "0", "800", "320\"; quit; \"", "1000"});
    for (const char* hostile : {"q3;quit", "speedy"}) {
        s.selectedMaps = {"q3dm7", hostile};
        QFile::remove(f.baseq3("srvmaps/mapset1.cfg"));
        QVERIFY2(!f.write(s), hostile);
        QVERIFY(!QFileInfo::exists(f.baseq3("srvmaps/mapset1.cfg")));
    }
    // A game folder without baseq3: the subfolders cannot be made.
    QVERIFY(QDir(f.baseq3()).removeRecursively());
    QVERIFY(!f.write(s));
    QCOMPARE(onlyMessage(f.platform.messages),
             message("Error",
                     "An error has occured while attempting to create the subfolders required "
                     "for Halvane to launch the server.",
                     MsgButtons::Ok, MsgIcon::Critical));
    QVERIFY(!QFileInfo::exists(f.cfg()));
    QVERIFY(f.catalogue.RecordBuffer == shown);
}

// The fixed script replaces a longer file; bots not selected are left out; a
// folder in its place is reported.
void TestConfigWriter::fixedBotScript() {
    Fixture f;
    ServerSettings s = withBots(5);
    for (const QString goldenName : {"srvbots_none.cfg", "srvbots_three.cfg"}) {
        f.platform.writeFile(f.baseq3("srvbots.cfg"), QByteArray(2000, 'x'));
        f.bots.MakeBotScript(s);
        sameAsGolden(f.baseq3("srvbots.cfg"), goldenName);
        s.bots = {{"Sarge", true, 1, 3},       {"Visor", false, 1, 2},
                  {"Evil\";quit", true, 0, 0}, // a name the console would split: left out
                  {"Two Words", true, 0, 0},   {"Grunt", true, 0, 0},
                  {"Major", true, 7, 4}};
    }
    QVERIFY(QFile::remove(f.baseq3("srvbots.cfg")) && QDir().mkpath(f.baseq3("srvbots.cfg")));
    f.bots.MakeBotScript(s);
    QCOMPARE(onlyMessage(f.platform.messages), botScriptError(""));
}

void TestConfigWriter::botRotationClosesIntoCycle() {
    for (quint64 seed : {1ull, 77ull, 4242ull}) {
        TimeSeededRandom random([] { return 43200.0; }, seed);
        Fixture f;
        BotScriptWriter bots(f.platform.app->state, f.platform.messages, random);
        QDir().mkpath(f.baseq3("srvbots"));
        bots.startRotation();
        for (qint16 n = 0; n <= 2; ++n)
            bots.MakeRandomBotScript(withBots(6), n, 2);
        // Each set kicks what the one before it added; the first kicks the last's.
        for (int n = 0; n <= 2; ++n) {
            QCOMPARE(namesAfter(f.set(n), "addbot ").size(), 2);
            QCOMPARE(namesAfter(f.set(n), "kick "), namesAfter(f.set((n + 2) % 3), "addbot "));
        }
    }
    // A file where the sets' folder goes: each set is reported by name.
    Fixture f;
    f.platform.writeFile(f.baseq3("srvbots"), "a file");
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(withBots(4), 3, 5);
    QCOMPARE(onlyMessage(f.platform.messages), botScriptError(" srvbots3.cfg"));
}

void TestConfigWriter::botSetSizes() {
    const auto& [name, maxBots, listSize, sizeDraw, pickDraw, expected] = fetchRow(BotSets);
    Fixture f({sizeDraw, pickDraw});
    QDir().mkpath(f.baseq3("srvbots"));
    ServerSettings s = withBots(listSize);
    s.randomBots = maxBots;
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(s, 0, 0);
    const QSet<QString> added = namesAfter(f.set(0), "addbot ");
    QCOMPARE(added.size(), expected);
    QCOMPARE(namesAfter(f.set(0), "kick "), added); // a set of one map closes on itself
    for (const QString& name : added)
        QVERIFY2(name.mid(3).toInt() < 100, qPrintable(name));
}

QTEST_MAIN(TestConfigWriter)
#include "tst_configwriter.moc"
