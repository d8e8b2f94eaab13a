// The operator's way to a real server: the main window driven offscreen,
// the game location chosen in the path dialog, options, random bots and a
// two-map rotation set in the window, "Launch the Server" pressed, and the
// server that answers on the loopback interface checked over UDP, through
// the rotation to the second map and its bot set.
#include "RealServer.h"
#include "TestSupport.h"

#include "launch/LaunchController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"
#include "ui_frmPath.h"

#include <QSet>
#include <QtTest>
#include <csignal>

using namespace halvane;
using namespace halvane::e2e;
using namespace std::chrono_literals;

namespace {

// Stops every server the test started, also when a check fails half way.
struct StartedServers {
    QList<qint64> tasks;
    ~StartedServers() { stop(); }
    static bool alive(qint64 task) { return QFileInfo::exists("/proc/" + QString::number(task)); }
    void stop() {
        for (qint64 task : tasks)
            ::kill(pid_t(task), SIGTERM);
        QDeadlineTimer deadline(10s);
        for (qint64 task : tasks) {
            while (alive(task) && !deadline.hasExpired())
                QTest::qWait(50);
            if (alive(task))
                ::kill(pid_t(task), SIGKILL);
        }
    }
};

QSet<QString> asSet(const QStringList& names) {
    return QSet<QString>(names.begin(), names.end());
}

// The bots a bot set script adds.
QSet<QString> addedBots(const QString& path) {
    QStringList names;
    for (const QString& line : QString::fromLatin1(test::readAll(path)).split("\r\n")) {
        if (line.startsWith("addbot "))
            names.append(line.section(' ', 1, 1));
    }
    return asSet(names);
}

void chooseMap(Ui::frmMain& ui, const QString& name, const QString& time, const QString& frag) {
    const QList<QListWidgetItem*> found = ui.SelMap->findItems(name, Qt::MatchExactly);
    QVERIFY2(found.size() == 1, qPrintable(name));
    ui.SelMap->setCurrentItem(found.first());
    ui.txtMapTimeLimit->setText(time);
    ui.txtMapFragLimit->setText(frag);
}

} // namespace

class TestLaunchWindow : public QObject {
    Q_OBJECT
private slots:
    void operatorLaunchesTwoServers();
};

void TestLaunchWindow::operatorLaunchesTwoServers() {
    const QString missing = missingEngine();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("dedicated server not installed: ") + missing));

    test::TestPlatform platform; // no game location stored yet
    const QString game = platform.root() + QStringLiteral("/oa");
    const QString built = buildGameFolder(game);
    QVERIFY2(built.isEmpty(), qPrintable(built));
    // The free game's maps, named for import at start-up, and a bot list of
    // the free game's bots, as the operator would edit it.
    platform.writeFile(platform.programFolder() + "/maplist.txt", "oa_dm1\r\noa_dm2\r\n");
    platform.writeFile(platform.programFolder() + "/botlist.txt",
                       "Sarge\r\nMajor\r\nGrism\r\nKyonshi\r\nGargoyle\r\n");
    platform.dialogs.choices = {{true, game + "/quake3.exe", "quake3.exe"}};

    QtProcesses processes; // the game really starts
    AppContext app{{platform.messages, platform.dialogs, processes, platform.shell,
                    platform.desktop, *platform.store, *platform.folder},
                   {}};
    MainWindow window(app);
    window.start();
    QVERIFY(window.pathDialog().isVisible());
    window.pathDialog().form().cmdBrowse->click();
    window.pathDialog().form().cmdOkay->click();
    QVERIFY(window.isVisible());
    QVERIFY2(platform.messages.shown.isEmpty(), qPrintable(test::onlyMessage(platform.messages)));

    Ui::frmMain& ui = window.form();
    ui.txtServerName->setText("Halvane window e2e");
    ui.cmbGameType->setCurrentIndex(2); // Team Play
    ui.cmbServerType->setCurrentIndex(2);
    ui.txtMaxPlayers->setText("12");
    ui.txtHunkMegs->setText("32");
    ui.chkStartState->setChecked(false); // stay open after the launch
    ui.txtConsolePW->setText("e2e-window");
    for (QLineEdit* master :
         {ui.txtMaster_0, ui.txtMaster_1, ui.txtMaster_2, ui.txtMaster_3, ui.txtMaster_4})
        master->clear(); // announce to nobody
    ui.cmbBotType->setCurrentIndex(1);
    ui.chkAutoSelectBots->setChecked(true); // a random set of bots per map
    ui.txtRandomBots->setText("3");

    ui.MapList->clearSelection();
    for (const char* map : {"oa_dm1", "oa_dm2"}) {
        const QList<QListWidgetItem*> found = ui.MapList->findItems(map, Qt::MatchExactly);
        QVERIFY2(found.size() == 1, map);
        found.first()->setSelected(true);
    }
    ui.cmdAddSelMap->click();
    chooseMap(ui, "oa_dm2", "30", "70");
    chooseMap(ui, "oa_dm1", "25", "60");

    const quint16 port = freeUdpPort();
    ui.txtNetIP->setText("127.0.0.1");
    ui.txtNetPort->setText(QString::number(port));
    StartedServers started;
    ui.cmdStart->click();
    QVERIFY2(platform.messages.shown.isEmpty(), qPrintable(test::onlyMessage(platform.messages)));
    QVERIFY(window.launch().ServerRunning());
    started.tasks << window.launch().ServerTaskID;

    const QString srvbots = game + "/baseq3/srvbots/botset%1.cfg";
    const QSet<QString> firstBots = addedBots(srvbots.arg(0));
    const QSet<QString> secondBots = addedBots(srvbots.arg(1));
    QVERIFY(firstBots.size() >= 2 && secondBots.size() >= 2);
    const auto lives = [&] { return window.launch().ServerRunning(); };
    auto status = waitForStatus(
        port, [&](const ServerStatus& st) { return asSet(st.playerNames()) == firstBots; }, 60s,
        lives);
    QVERIFY2(status, "the launched server does not answer");
    QCOMPARE(asSet(status->playerNames()), firstBots);
    QCOMPARE(status->info.value("sv_hostname"), QStringLiteral("Halvane window e2e"));
    QCOMPARE(status->info.value("g_gametype"), QStringLiteral("3"));
    QCOMPARE(status->info.value("sv_maxclients"), QStringLiteral("12"));
    QCOMPARE(status->info.value("mapname"), QStringLiteral("oa_dm1"));
    QCOMPARE(status->info.value("timelimit"), QStringLiteral("25"));
    QCOMPARE(status->info.value("fraglimit"), QStringLiteral("60"));

    // The rotation: the next map's line kicks the first set and adds its own.
    QVERIFY(rcon(port, "e2e-window", "vstr nextmap"));
    status = waitForStatus(
        port,
        [&](const ServerStatus& st) {
            return st.info.value("mapname") == "oa_dm2" && asSet(st.playerNames()) == secondBots;
        },
        60s, lives);
    QVERIFY2(status, "no answer after the rotation");
    QCOMPARE(status->info.value("mapname"), QStringLiteral("oa_dm2"));
    QCOMPARE(status->info.value("timelimit"), QStringLiteral("30"));
    QCOMPARE(status->info.value("fraglimit"), QStringLiteral("70"));
    QCOMPARE(asSet(status->playerNames()), secondBots);
    const auto refused = rcon(port, "wrong", "vstr nextmap");
    QVERIFY(refused && refused->contains("Bad rconpassword"));

    // A second server while the first runs: the question, then another port.
    const quint16 second = freeUdpPort();
    QVERIFY(second != port);
    ui.txtNetPort->setText(QString::number(second));
    platform.messages.answers = {MsgAnswer::Yes};
    ui.cmdStart->click();
    QCOMPARE(test::onlyMessage(platform.messages),
             test::message("Duplicate Server Confirmation",
                           "A server has already been launched, do you want to start another "
                           "server?\r\rThis will require that you enter another Port Number on "
                           "the advanced tab.\rIf no port is specified, the next available port "
                           "will be used by default.",
                           MsgButtons::YesNo, MsgIcon::Information));
    QVERIFY(window.launch().ServerTaskID != started.tasks.first());
    started.tasks << window.launch().ServerTaskID;
    status = waitForStatus(
        second, [](const ServerStatus& st) { return st.info.value("mapname") == "oa_dm1"; }, 60s,
        lives);
    QVERIFY2(status, "the second server does not answer");
    QCOMPARE(status->info.value("sv_hostname"), QStringLiteral("Halvane window e2e"));
    QVERIFY(getStatus(port)); // and the first still does

    started.stop();
    for (qint64 task : started.tasks)
        QVERIFY(!StartedServers::alive(task));
    QTRY_VERIFY_WITH_TIMEOUT(!window.launch().ServerRunning(), 5000);
}

QTEST_MAIN(TestLaunchWindow)
#include "tst_launchwindow.moc"
