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
ServerSettings withBots(int count) {
    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.randomBots = QStringLiteral("2");
    for (int i = 0; i < count; ++i)
        s.bots.push_back({QStringLiteral("Bot%1").arg(i), false, 0, qint16(i % 5)});
    return s;
}

// The names a set script kicks and adds ("kick X" / "addbot X  L team").
QSet<QString> namesAfter(const QString& path, const QString& command) {
    QSet<QString> names;
    for (const QString& line : QString::fromLatin1(readAll(path)).split("\r\n")) {
        if (line.startsWith(command))
            names.insert(line.mid(command.size()).section(' ', 0, 0));
    }
    return names;
}

struct Fixture {
    explicit Fixture(RandomSource& random) : bots(platform.app->state, platform.messages, random) {
        platform.makeGameFolder();
        QDir().mkpath(baseq3("srvbots"));
    }
    QString baseq3(const QString& name) const { return platform.gameFolder() + "/baseq3/" + name; }
    QString set(int n) const { return baseq3(QStringLiteral("srvbots/botset%1.cfg").arg(n)); }
    TestPlatform platform;
    BotScriptWriter bots;
};
} // namespace

class TestBotScripts : public QObject {
    Q_OBJECT
private slots:
    void fixedScript_data();
    void fixedScript();
    void rotationClosesIntoCycle();
    void setSizes_data();
    void setSizes();
    void writeFailures();
};

void TestBotScripts::fixedScript_data() {
    QTest::addColumn<bool>("withBots");
    QTest::addColumn<QString>("goldenName");
    QTest::newRow("three bots") << true << "srvbots_three.cfg";
    QTest::newRow("no bots, longer file before") << false << "srvbots_none.cfg";
}

void TestBotScripts::fixedScript() {
    QFETCH(bool, withBots);
    QFETCH(QString, goldenName);
    ScriptedRandom random;
    Fixture f(random);
    f.platform.writeFile(f.baseq3("srvbots.cfg"), QByteArray(2000, 'x'));
    ServerSettings s = ::withBots(5);
    if (withBots) {
        s.bots = {{"Sarge", true, 1, 3},
                  {"Visor", false, 1, 2},
                  {"Grunt", true, 0, 0},
                  {"Major", true, 7, 4}};
    }
    f.bots.MakeBotScript(s);
    const QByteArray actual = readAll(f.baseq3("srvbots.cfg"));
    const QByteArray expected = readAll(golden(goldenName));
    QVERIFY2(actual == expected, qPrintable(firstDifference(actual, expected)));
    QCOMPARE(random.draws, 0);
}

void TestBotScripts::rotationClosesIntoCycle() {
    for (quint64 seed : {1ull, 77ull, 4242ull}) {
        TimeSeededRandom random([] { return 43200.0; }, seed);
        Fixture f(random);
        f.bots.startRotation();
        for (qint16 n = 0; n <= 2; ++n)
            f.bots.MakeRandomBotScript(withBots(6), n, 2);
        // Each set kicks what the one before it added; the first kicks the last's.
        for (int n = 0; n <= 2; ++n) {
            QCOMPARE(namesAfter(f.set(n), "addbot ").size(), 2);
            QCOMPARE(namesAfter(f.set(n), "kick "), namesAfter(f.set((n + 2) % 3), "addbot "));
        }
    }
}

void TestBotScripts::setSizes_data() {
    QTest::addColumn<QString>("maxBots");
    QTest::addColumn<int>("listSize");
    QTest::addColumn<double>("sizeDraw");
    QTest::addColumn<double>("pickDraw");
    QTest::addColumn<int>("expected");
    QTest::newRow("max 1 gives one bot") << "1" << 5 << 0.7 << 0.3 << 1;
    QTest::newRow("no number gives none") << "lots" << 5 << 0.7 << 0.3 << 0;
    QTest::newRow("smallest draw gives two") << "6" << 8 << 0.0 << 0.5 << 2;
    QTest::newRow("more wanted than listed") << "10" << 3 << 0.999 << 0.5 << 3;
    QTest::newRow("empty list") << "4" << 0 << 0.5 << 0.5 << 0;
    // Draws that always land on the same slot still end.
    QTest::newRow("stuck generator") << "5" << 7 << 0.999 << 0.0 << 5;
    // Only the first 100 positions have slots.
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
    const QSet<QString> added = namesAfter(f.set(0), "addbot ");
    QCOMPARE(added.size(), expected);
    QCOMPARE(namesAfter(f.set(0), "kick "), added); // a set of one map closes on itself
    for (const QString& name : added)
        QVERIFY2(name.mid(3).toInt() < 100, qPrintable(name));
}

void TestBotScripts::writeFailures() {
    ScriptedRandom random({0.5});
    Fixture f(random);
    QVERIFY(QDir(f.baseq3("srvbots")).removeRecursively());
    f.platform.writeFile(f.baseq3("srvbots"), "a file");
    QVERIFY(QDir().mkpath(f.baseq3("srvbots.cfg")));
    f.bots.MakeBotScript(withBots(2));
    QCOMPARE(onlyMessage(f.platform.messages),
             message("Warning", "An error occured while creating the bot script", MsgButtons::Ok,
                     MsgIcon::Information));
    f.platform.messages.clear();
    f.bots.startRotation();
    f.bots.MakeRandomBotScript(withBots(4), 3, 5);
    QCOMPARE(onlyMessage(f.platform.messages),
             message("Warning", "An error occured while creating the bot script srvbots3.cfg",
                     MsgButtons::Ok, MsgIcon::Information));
}

QTEST_MAIN(TestBotScripts)
#include "tst_botscripts.moc"
