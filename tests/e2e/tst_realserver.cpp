// Our scripts in a real dedicated server: a configuration written by the
// config writer for a rotation of OpenArena maps with random bots, run by
// the engine on the loopback interface, then checked over UDP.
#include "RealServer.h"
#include "TestSupport.h"

#include "bots/BotScripts.h"
#include "bots/RandomSource.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"

#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

using namespace halvane;
using namespace halvane::e2e;
using namespace std::chrono_literals;

namespace {

const QString Password = QStringLiteral("e2e-secret");

struct MapPlan {
    const char* name;
    const char* time;
    const char* frag;
};
// Limits high enough that no map ends by itself during the test.
const MapPlan Maps[] = {{"oa_dm1", "25", "90"}, {"oa_dm2", "30", "80"}, {"oa_dm3", "35", "70"}};

// The names a bot set script adds, in file order.
QStringList addedBots(const QString& path) {
    QStringList names;
    const QString text = QString::fromLatin1(test::readAll(path));
    for (const QString& line : text.split(QStringLiteral("\r\n"))) {
        if (line.startsWith(QLatin1String("addbot ")))
            names.append(line.mid(7).section(QLatin1Char(' '), 0, 0));
    }
    return names;
}

QSet<QString> asSet(const QStringList& names) {
    return QSet<QString>(names.begin(), names.end());
}

} // namespace

class TestRealServer : public QObject {
    Q_OBJECT
private slots:
    void rotationWithRandomBotsRunsInTheServer();
};

void TestRealServer::rotationWithRandomBotsRunsInTheServer() {
    const QString missing = missingEngine();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("dedicated server not installed: ") + missing));

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString game = dir.filePath(QStringLiteral("game"));
    const QString built = buildGameFolder(game);
    QVERIFY2(built.isEmpty(), qPrintable(built));

    // The catalogue, the bots and the settings, written by our own writers.
    const QString program = dir.filePath(QStringLiteral("program"));
    QVERIFY(QDir().mkpath(program));
    MapCatalogue catalogue(program);
    std::vector<MapRecord> records;
    for (const MapPlan& map : Maps) {
        records.push_back(
            makeMapRecord(QLatin1String(map.name), QLatin1String(map.name),
                          {QLatin1String(map.frag), QLatin1String(map.time), QStringLiteral("8"),
                           QStringLiteral("800"), QStringLiteral("320"), QStringLiteral("1000")}));
    }
    QVERIFY(catalogue.append(records));

    AppState state;
    state.GameFolder = game;
    state.GameExeName = QStringLiteral("quake3.exe");
    FakeMessageBoxes messages;
    TimeSeededRandom random;
    BotScriptWriter bots(state, messages, random);
    ConfigWriter writer(state, messages, catalogue, bots);

    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.takenAt = QDateTime::currentDateTime();
    s.gameExeName = state.GameExeName;
    s.gameType = 0;
    s.maxPlayers = QStringLiteral("10");
    s.serverName = QStringLiteral("Halvane e2e");
    s.motd = QStringLiteral("end to end");
    s.minPing = s.maxPing = QStringLiteral("0");
    s.playerRespawn = QStringLiteral("0");
    s.inactivity = QStringLiteral("0");
    s.consolePassword = Password;
    s.maxRate = QStringLiteral("25000");
    // Masters enabled and all empty: the server announces itself nowhere.
    s.mastersEnabled = true;
    s.weaponRespawn = QStringLiteral("5");
    s.quad = QStringLiteral("3");
    s.vote = true;
    s.botType = 1;
    s.autoSelectBots = true;
    s.randomBots = QStringLiteral("3");
    for (const char* name :
         {"Angelyss", "Arachna", "Major", "Sarge", "Grism", "Kyonshi", "Gargoyle"})
        s.bots.push_back({QLatin1String(name), false, 0, 1});
    for (const MapPlan& map : Maps)
        s.selectedMaps.append(QLatin1String(map.name));

    const QString cfg = game + QStringLiteral("/baseq3/halvane.cfg");
    QVERIFY(writer.WriteConfig(s, cfg, false, QString()));
    QVERIFY(messages.shown.isEmpty());
    const QStringList firstBots = addedBots(game + QStringLiteral("/baseq3/srvbots/botset0.cfg"));
    const QStringList secondBots = addedBots(game + QStringLiteral("/baseq3/srvbots/botset1.cfg"));
    QVERIFY(firstBots.size() >= 2 && firstBots.size() <= 3);
    QVERIFY(secondBots.size() >= 2 && secondBots.size() <= 3);

    const quint16 port = freeUdpPort();
    QVERIFY(port != 0);
    RealServer server;
    QVERIFY(server.start(game, {"+set", "dedicated", "2", "+set", "net_ip", "127.0.0.1", "+set",
                                "net_port", QString::number(port), "+exec", "halvane.cfg"}));

    // The first map with its limits and its bot set.
    auto status = server.waitForStatus(
        port,
        [&](const ServerStatus& st) {
            return st.info.value("mapname") == QLatin1String("oa_dm1") &&
                   asSet(st.playerNames()) == asSet(firstBots);
        },
        60s);
    QVERIFY2(status, qPrintable(QStringLiteral("no status; console:\n") + server.output()));
    QCOMPARE(status->info.value("sv_hostname"), QStringLiteral("Halvane e2e"));
    QCOMPARE(status->info.value("g_gametype"), QStringLiteral("0"));
    QCOMPARE(status->info.value("sv_maxclients"), QStringLiteral("10"));
    QCOMPARE(status->info.value("sv_maxRate"), QStringLiteral("25000"));
    QCOMPARE(status->info.value("mapname"), QStringLiteral("oa_dm1"));
    QCOMPARE(status->info.value("timelimit"), QStringLiteral("25"));
    QCOMPARE(status->info.value("fraglimit"), QStringLiteral("90"));
    QCOMPARE(asSet(status->playerNames()), asSet(firstBots));
    qInfo() << "first map" << status->info.value("mapname") << "bots" << status->playerNames();

    // The rotation: nextmap runs the second map's line, which kicks the
    // first set and adds the second.
    const auto answer = rcon(port, Password, QStringLiteral("vstr nextmap"));
    QVERIFY2(answer, "no answer to rcon");
    status = server.waitForStatus(
        port,
        [&](const ServerStatus& st) {
            return st.info.value("mapname") == QLatin1String("oa_dm2") &&
                   asSet(st.playerNames()) == asSet(secondBots);
        },
        60s);
    QVERIFY2(status, qPrintable(QStringLiteral("no status; console:\n") + server.output()));
    QCOMPARE(status->info.value("mapname"), QStringLiteral("oa_dm2"));
    QCOMPARE(status->info.value("timelimit"), QStringLiteral("30"));
    QCOMPARE(status->info.value("fraglimit"), QStringLiteral("80"));
    QVERIFY2(asSet(status->playerNames()) == asSet(secondBots),
             qPrintable(status->playerNames().join(',') + " vs " + secondBots.join(',')));

    qInfo() << "after nextmap" << status->info.value("mapname") << "bots" << status->playerNames();

    // A wrong password changes nothing.
    const auto refused = rcon(port, QStringLiteral("wrong"), QStringLiteral("vstr nextmap"));
    QVERIFY(refused && refused->contains(QLatin1String("Bad rconpassword")));

    server.stop();
    QVERIFY(!server.running());
}

QTEST_GUILESS_MAIN(TestRealServer)
#include "tst_realserver.moc"
