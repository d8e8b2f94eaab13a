// The fixed bot script and the random bot sets of a rotation.
#include "ScriptedRandom.h"
#include "TestSupport.h"

#include "bots/BotScripts.h"
#include "bots/RandomSource.h"

#include <QDir>
#include <QSet>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

QString golden(const QString& name) {
    return QStringLiteral(HALVANE_TEST_DIR "/golden/") + name;
}

ServerSettings withBots(int count) {
    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.randomBots = QStringLiteral("2");
    for (int i = 0; i < count; ++i)
        s.bots.push_back({QStringLiteral("Bot%1").arg(i), false, 0, qint16(i % 5)});
    return s;
}

// One set script read back: the kicks and the adds, in file order.
struct BotSet {
    QStringList kicks;
    QStringList adds;  // names
    QStringList teams; // " blue" / " red"
    QList<int> levels;
    QStringList lines;
};

BotSet readSet(const QString& path) {
    BotSet set;
    const QByteArray bytes = readAll(path);
    set.lines = QString::fromLatin1(bytes).split(QStringLiteral("\r\n"));
    if (set.lines.last().isEmpty())
        set.lines.removeLast();
    for (const QString& line : set.lines) {
        if (line.startsWith(QLatin1String("kick "))) {
            set.kicks.append(line.mid(5));
        } else if (line.startsWith(QLatin1String("addbot "))) {
            // "addbot NAME  L team"
            const QStringList parts = line.mid(7).split(QLatin1Char(' '));
            set.adds.append(parts[0]);
            set.levels.append(parts[2].toInt());
            set.teams.append(QLatin1Char(' ') + parts[3]);
            if (parts[1] != QString())
                set.adds.last() = QStringLiteral("<bad skill text>");
        }
    }
    return set;
}

struct Fixture {
    explicit Fixture(RandomSource& random) : bots(platform.app->state, platform.messages, random) {
        platform.makeGameFolder();
        QDir().mkpath(baseq3(QStringLiteral("srvbots")));
    }
    QString baseq3(const QString& name) const {
        return platform.gameFolder() + QStringLiteral("/baseq3/") + name;
    }
    QString set(int n) const { return baseq3(QStringLiteral("srvbots/botset%1.cfg").arg(n)); }
    TestPlatform platform;
    BotScriptWriter bots;
};

QSet<QString> asSet(const QStringList& names) {
    return QSet<QString>(names.begin(), names.end());
}

} // namespace

class TestBotScripts : public QObject {
    Q_OBJECT
private slots:
    void skillAndTeamTexts();
    void fixedScriptOfThreeBots();
    void fixedScriptWithNoBots();
    void fixedScriptWithRandomSkill();
    void randomizedBotsLeaveFixedScriptAlone();
    void fixedScriptFailure();
    void rotationClosesIntoCycle_data();
    void rotationClosesIntoCycle();
    void singleSetKicksAndAddsItsPicks();
    void setSizes_data();
    void setSizes();
    void randomSetSkills();
    void randomSetFailure();
};

void TestBotScripts::skillAndTeamTexts() {
    QCOMPARE(BotScriptWriter::skillText(3), QStringLiteral("  3"));
    QCOMPARE(BotScriptWriter::TeamSuffix(1), QStringLiteral(" blue"));
    QCOMPARE(BotScriptWriter::TeamSuffix(0), QStringLiteral(" red"));
    QCOMPARE(BotScriptWriter::TeamSuffix(7), QStringLiteral(" red"));
}

void TestBotScripts::fixedScriptOfThreeBots() {
    ScriptedRandom random;
    Fixture f(random);
    ServerSettings s = withBots(0);
    s.bots = {{QStringLiteral("Sarge"), true, 1, 3},
              {QStringLiteral("Visor"), false, 1, 2},
              {QStringLiteral("Grunt"), true, 0, 0},
              {QStringLiteral("Major"), true, 7, 4}};
    f.bots.MakeBotScript(s);
    const QByteArray actual = readAll(f.baseq3(QStringLiteral("srvbots.cfg")));
    const QByteArray expected = readAll(golden(QStringLiteral("srvbots_three.cfg")));
    QVERIFY2(actual == expected, qPrintable(firstDifference(actual, expected)));
    QCOMPARE(random.draws, 0);
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void TestBotScripts::fixedScriptWithNoBots() {
    ScriptedRandom random;
    Fixture f(random);
    f.platform.writeFile(f.baseq3(QStringLiteral("srvbots.cfg")), "an older, longer script\n");
    f.bots.MakeBotScript(withBots(5));
    const QByteArray actual = readAll(f.baseq3(QStringLiteral("srvbots.cfg")));
    const QByteArray expected = readAll(golden(QStringLiteral("srvbots_none.cfg")));
    QVERIFY2(actual == expected, qPrintable(firstDifference(actual, expected)));
}

void TestBotScripts::fixedScriptWithRandomSkill() {
    ScriptedRandom random({0.0, 0.5, 0.999});
    Fixture f(random);
    ServerSettings s = withBots(3);
    s.randomBotSkill = true;
    for (BotEntry& bot : s.bots)
        bot.selected = true;
    f.bots.MakeBotScript(s);
    const BotSet script = readSet(f.baseq3(QStringLiteral("srvbots.cfg")));
    QCOMPARE(script.lines.mid(0, 3),
             QStringList({"// Bot script created by Version 2.07", "// Bot skill randomized", ""}));
    QCOMPARE(script.levels, QList<int>({1, 3, 5}));
    QCOMPARE(random.reseeds, 3); // once for every bot
}

void TestBotScripts::randomizedBotsLeaveFixedScriptAlone() {
    ScriptedRandom random;
    Fixture f(random);
    f.platform.writeFile(f.baseq3(QStringLiteral("srvbots.cfg")), "mine");
    ServerSettings s = withBots(3);
    s.bots[0].selected = true;
    s.autoSelectBots = true;
    f.bots.MakeBotScript(s);
    QCOMPARE(readAll(f.baseq3(QStringLiteral("srvbots.cfg"))), QByteArray("mine"));
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void TestBotScripts::fixedScriptFailure() {
    ScriptedRandom random;
    Fixture f(random);
    QVERIFY(QDir().mkpath(f.baseq3(QStringLiteral("srvbots.cfg"))));
    f.bots.MakeBotScript(withBots(2));
    QCOMPARE(f.platform.messages.shown.size(), 1);
    const ShownMessage& m = f.platform.messages.shown.first();
    QCOMPARE(m.title, QStringLiteral("Warning"));
    QCOMPARE(m.text, QStringLiteral("An error occured while creating the bot script"));
    QCOMPARE(m.buttons, MsgButtons::Ok);
    QCOMPARE(m.icon, MsgIcon::Information);
}

void TestBotScripts::rotationClosesIntoCycle_data() {
    QTest::addColumn<quint64>("seed");
    QTest::addColumn<int>("listSize");
    for (quint64 seed : {1ull, 2ull, 77ull, 4242ull})
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed << 6;
    QTest::newRow("two bots only") << quint64(9) << 2;
}

void TestBotScripts::rotationClosesIntoCycle() {
    QFETCH(quint64, seed);
    QFETCH(int, listSize);
    TimeSeededRandom random([] { return 43200.0; }, seed);
    Fixture f(random);
    const ServerSettings s = withBots(listSize);
    f.bots.startRotation();
    for (qint16 n = 0; n <= 2; ++n)
        f.bots.MakeRandomBotScript(s, n, 2);
    BotSet sets[3] = {readSet(f.set(0)), readSet(f.set(1)), readSet(f.set(2))};
    for (const BotSet& set : sets) {
        QCOMPARE(set.lines.first(),
                 QStringLiteral("// Automated Bot script created by Version 2.07"));
        QCOMPARE(set.lines[1], QString());
        QCOMPARE(set.lines.mid(set.lines.size() - 2), QStringList({"", "// end of file"}));
        QCOMPARE(set.lines.size(), 2 + 2 + 2 + 2); // no empty line between kicks and adds
        QCOMPARE(set.adds.size(), 2);
        QCOMPARE(set.teams, QStringList({" blue", " red"}));
        QCOMPARE(asSet(set.adds).size(), 2);
        for (int i = 0; i < 2; ++i) {
            // Without random skill a bot plays at its position's skill.
            const int position = set.adds[i].mid(3).toInt();
            QCOMPARE(set.levels[i], s.bots[size_t(position)].skill + 1);
        }
    }
    QCOMPARE(asSet(sets[0].kicks), asSet(sets[2].adds));
    QCOMPARE(asSet(sets[1].kicks), asSet(sets[0].adds));
    QCOMPARE(asSet(sets[2].kicks), asSet(sets[1].adds));
}

void TestBotScripts::singleSetKicksAndAddsItsPicks() {
    TimeSeededRandom random([] { return 1000.0; }, 5);
    Fixture f(random);
    ServerSettings s = withBots(8);
    s.randomBots = QStringLiteral("4");
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(s, 0, 0);
    const BotSet set = readSet(f.set(0));
    QVERIFY(set.kicks.size() >= 2 && set.kicks.size() <= 4);
    QCOMPARE(asSet(set.kicks), asSet(set.adds));
    QCOMPARE(asSet(set.adds).size(), set.adds.size());
}

void TestBotScripts::setSizes_data() {
    QTest::addColumn<QString>("maxBots");
    QTest::addColumn<int>("listSize");
    QTest::addColumn<double>("sizeDraw");
    QTest::addColumn<double>("pickDraw");
    QTest::addColumn<int>("expected");
    QTest::newRow("max 1 gives one bot") << "1" << 5 << 0.7 << 0.3 << 1;
    QTest::newRow("max 0 gives none") << "0" << 5 << 0.7 << 0.3 << 0;
    QTest::newRow("negative gives none") << "-3" << 5 << 0.7 << 0.3 << 0;
    QTest::newRow("no number gives none") << "lots" << 5 << 0.7 << 0.3 << 0;
    QTest::newRow("smallest draw gives two") << "6" << 8 << 0.0 << 0.5 << 2;
    QTest::newRow("largest draw gives max") << "6" << 8 << 0.999 << 0.5 << 6;
    QTest::newRow("more wanted than listed") << "10" << 3 << 0.999 << 0.5 << 3;
    QTest::newRow("huge number") << "999999999" << 4 << 0.999 << 0.5 << 4;
    QTest::newRow("empty list") << "4" << 0 << 0.5 << 0.5 << 0;
    // Draws that always land on the same slot still end.
    QTest::newRow("stuck generator") << "5" << 7 << 0.999 << 0.0 << 5;
    // Only the first 100 positions have slots.
    QTest::newRow("list past 100") << "5" << 150 << 0.999 << 0.9999 << 5;
    QTest::newRow("all of a 100+ list") << "200" << 150 << 0.999 << 0.9999 << 100;
}

void TestBotScripts::setSizes() {
    QFETCH(QString, maxBots);
    QFETCH(int, listSize);
    QFETCH(double, sizeDraw);
    QFETCH(double, pickDraw);
    QFETCH(int, expected);
    ScriptedRandom random({sizeDraw, pickDraw});
    Fixture f(random);
    ServerSettings s = withBots(listSize);
    s.randomBots = maxBots;
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(s, 0, 0);
    const BotSet set = readSet(f.set(0));
    QCOMPARE(set.kicks.size(), expected);
    QCOMPARE(asSet(set.adds), asSet(set.kicks));
    QCOMPARE(asSet(set.adds).size(), expected);
    for (const QString& name : set.adds)
        QVERIFY2(name.mid(3).toInt() < 100, qPrintable(name));
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void TestBotScripts::randomSetSkills() {
    // Size draw 0 (two bots), picks 0.1 and 0.9, skills 0.0 and 0.85.
    ScriptedRandom random({0.0, 0.1, 0.9, 0.1, 0.9, 0.0, 0.85});
    Fixture f(random);
    ServerSettings s = withBots(10);
    s.randomBotSkill = true;
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(s, 0, 0);
    const BotSet set = readSet(f.set(0));
    QCOMPARE(set.lines[1], QStringLiteral("// Bot skill randomized"));
    QCOMPARE(set.kicks, QStringList({"Bot1", "Bot9"}));
    QCOMPARE(set.adds, QStringList({"Bot1", "Bot9"}));
    QCOMPARE(set.levels, QList<int>({1, 5}));
}

void TestBotScripts::randomSetFailure() {
    ScriptedRandom random({0.5});
    Fixture f(random);
    QVERIFY(QDir(f.baseq3(QStringLiteral("srvbots"))).removeRecursively());
    f.platform.writeFile(f.baseq3(QStringLiteral("srvbots")), "a file");
    f.bots.startRotation();
    const ServerSettings s = withBots(4);
    f.bots.MakeRandomBotScript(s, 3, 5);
    QCOMPARE(f.platform.messages.shown.size(), 1);
    const ShownMessage& m = f.platform.messages.shown.first();
    QCOMPARE(m.title, QStringLiteral("Warning"));
    QCOMPARE(m.text, QStringLiteral("An error occured while creating the bot script srvbots3.cfg"));
    QCOMPARE(m.buttons, MsgButtons::Ok);
    QCOMPARE(m.icon, MsgIcon::Information);
}

QTEST_MAIN(TestBotScripts)
#include "tst_botscripts.moc"
