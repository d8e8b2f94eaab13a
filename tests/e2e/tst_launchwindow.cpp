// The operator's way to a real server: the main window driven offscreen,
// the game location chosen in the path dialog, options, random bots and a
// two-map rotation set in the window, "Launch the Server" pressed, and the
// server that answers on the loopback interface checked over UDP, through
// the rotation to the second map and its bot set; then the same server
// watched and steered from the server window, and found again by the next
// run of the program.
#include "RealServer.h"
#include "TestSupport.h"

#include "launch/LaunchController.h"
#include "server/LaunchRecords.h"
#include "server/ServerControl.h"
#include "server/ServerManager.h"
#include "server/ServerWindow.h"
#include "ui/MainWindow.h"
#include "ui/ProfileCommands.h"
#include "ui_frmMain.h"
#include "ui_frmPath.h"
#include "ui_frmServer.h"

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
    // Also those the program recorded, restarts included.
    void addRecorded(const QString& stateFile) {
        for (const LaunchRecord& record : LaunchRecordFile(stateFile).load().records)
            tasks << record.pid;
    }
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
    const qsizetype row = test::entries(ui.SelMap).indexOf(name);
    QVERIFY2(row >= 0, qPrintable(name));
    test::clickEntry(ui.SelMap, int(row));
    ui.txtMapTimeLimit->setText(time);
    ui.txtMapFragLimit->setText(frag);
}

// The operator's first run: the game location chosen in the path dialog,
// then a dedicated team game with random bots and a two-map rotation on a
// free loopback port, announced to no master server, launched.
struct Operator {
    StartedServers started;
    test::TestPlatform platform; // no game location stored yet
    QString game = platform.root() + QStringLiteral("/oa");
    QtProcesses processes; // the game really starts
    AppContext app{{platform.messages, platform.dialogs, processes, platform.shell,
                    platform.desktop, *platform.store, *platform.folder},
                   {}};
    std::unique_ptr<MainWindow> window;
    quint16 port = freeUdpPort();

    // Before the temporary folders go: every server that was started ends,
    // also when a check failed half way.
    ~Operator() {
        window.reset(); // and its monitor with it
        started.addRecorded(platform.root() + "/state/servers.jsonl");
        started.stop();
    }
    Ui::frmMain& ui() { return window->form(); }
    void openHalvane() {
        window = std::make_unique<MainWindow>(app);
        window->pathDialog().freeGameFolder = game; // the free game itself is Debian's
        window->start();
    }
    // Sets everything up, presses "Launch the Server" and reads the bot sets.
    // The game is the free game: a game folder made over it and chosen with
    // Browse, or set up by the path dialog's button, as a new user would.
    void launch(bool freeGameButton = false);
    QSet<QString> firstBots, secondBots; // of the two maps
};

void Operator::launch(bool freeGameButton) {
    // A bot list of the free game's bots, as the operator would edit it.
    platform.writeFile(platform.programFolder() + "/botlist.txt",
                       "Sarge\r\nMajor\r\nGrism\r\nKyonshi\r\nGargoyle\r\n");
    if (!freeGameButton) {
        const QString built = buildGameFolder(game);
        QVERIFY2(built.isEmpty(), qPrintable(built));
        // The free game's maps, named for import at start-up.
        platform.writeFile(platform.programFolder() + "/maplist.txt", "oa_dm1\r\noa_dm2\r\n");
        platform.dialogs.choices = {{true, game + "/quake3.exe", "quake3.exe"}};
    }
    openHalvane();
    QVERIFY(window->pathDialog().isVisible());
    QAbstractButton* button = window->pathDialog().form().cmdFreeGame;
    QVERIFY(button->isVisible());
    (freeGameButton ? button : window->pathDialog().form().cmdBrowse)->click();
    window->pathDialog().form().cmdOkay->click();
    QVERIFY(window->isVisible());
    QVERIFY2(platform.messages.shown.isEmpty(), qPrintable(test::onlyMessage(platform.messages)));

    Ui::frmMain& ui = window->form();
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
        const qsizetype row = test::entries(ui.MapList).indexOf(map);
        QVERIFY2(row >= 0, map);
        test::clickEntry(ui.MapList, int(row), Qt::ControlModifier);
    }
    if (!freeGameButton) // which chose the free game's first maps already
        ui.cmdAddSelMap->click();
    chooseMap(ui, "oa_dm2", "30", "70");
    chooseMap(ui, "oa_dm1", "25", "60");
    ui.txtNetIP->setText("127.0.0.1");
    ui.txtNetPort->setText(QString::number(port));
    ui.cmdStart->click();
    QVERIFY2(platform.messages.shown.isEmpty(), qPrintable(test::onlyMessage(platform.messages)));
    const QString srvbots = game + "/baseq3/srvbots/botset%1.cfg";
    firstBots = addedBots(srvbots.arg(0));
    secondBots = addedBots(srvbots.arg(1));
}

} // namespace

class TestLaunchWindow : public QObject {
    Q_OBJECT
private slots:
    void init();
    void operatorLaunchesTwoServers();
    void serverWindowSteersTheServer();
    void profilesRunSideBySide();
};

void TestLaunchWindow::init() {
    const QString missing = missingEngine();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("dedicated server not installed: ") + missing));
}

void TestLaunchWindow::operatorLaunchesTwoServers() {
    Operator op;
    op.launch();
    if (QTest::currentTestFailed())
        return;
    MainWindow& window = *op.window;
    test::TestPlatform& platform = op.platform;
    const quint16 port = op.port;
    StartedServers& started = op.started;
    const QSet<QString>&firstBots = op.firstBots, &secondBots = op.secondBots;
    QVERIFY(window.launch().ServerRunning());
    started.tasks << window.launch().ServerTaskID;
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
    op.ui().txtNetPort->setText(QString::number(second));
    platform.messages.answers = {MsgAnswer::Yes};
    op.ui().cmdStart->click();
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

// A new user's server, the free game set up by the path dialog's button,
// seen and steered from the server window, kept alive
// by the monitor, and found again by the next run of the program.
void TestLaunchWindow::serverWindowSteersTheServer() {
    Operator op;
    op.launch(true);
    if (QTest::currentTestFailed())
        return;
    const QSet<QString>&firstBots = op.firstBots, &secondBots = op.secondBots;
    QVERIFY(secondBots.size() >= 2); // one to kick, one to stay

    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    ServerWindow& window = op.window->servers().serverWindow();
    QVERIFY(window.isVisible() && !window.isModal());
    Ui::frmServer& ui = window.form();
    const auto row = [&](int column) {
        return ui.lstServers->currentItem() ? ui.lstServers->currentItem()->text(column) : "";
    };
    const auto players = [&] {
        QStringList names;
        for (int i = 0; i < ui.lstPlayers->topLevelItemCount(); ++i)
            names << ui.lstPlayers->topLevelItem(i)->text(0);
        return asSet(names);
    };
    const auto pid = [&] { return op.window->servers().manager().servers().value(0).record.pid; };
    enum { Name, Address, Map, Type, Players, Uptime, State };

    QTRY_VERIFY_WITH_TIMEOUT(row(Map) == "oa_dm1" && players() == firstBots, 60000);
    QCOMPARE(row(Name), QStringLiteral("Halvane window e2e"));
    QCOMPARE(row(Type), QStringLiteral("Team Play"));
    QCOMPARE(row(Players), QStringLiteral("%1 / 12").arg(firstBots.size()));
    QCOMPARE(row(State), QStringLiteral("running"));
    QCOMPARE(ui.lstPlayers->topLevelItem(0)->text(2), QStringLiteral("0")); // a bot's ping

    ui.cmbCommand->setEditText("status");
    ui.cmdSend->click();
    QTRY_VERIFY_WITH_TIMEOUT(ui.txtConsole->toPlainText().contains("map: oa_dm1"), 10000);
    QCOMPARE(ui.cmbCommand->itemText(0), QStringLiteral("status"));

    ui.cmdNextMap->click();
    QTRY_VERIFY_WITH_TIMEOUT(row(Map) == "oa_dm2" && players() == secondBots, 60000);
    ui.lstPlayers->setCurrentItem(ui.lstPlayers->topLevelItem(1));
    const QString kicked = ui.lstPlayers->currentItem()->text(0);
    ui.cmdKick->click();
    QTRY_VERIFY_WITH_TIMEOUT(players() == QSet<QString>(secondBots).subtract({kicked}), 30000);

    const qint64 first = pid();
    ui.cmdStop->click();
    QTRY_VERIFY_WITH_TIMEOUT(row(State).endsWith("(stopped)"), 30000);
    QCOMPARE(op.processes.startTimeOf(first), 0);
    QVERIFY(!ui.cmdNextMap->isEnabled() && row(Map).isEmpty());
    ui.cmdRestart->click();
    QVERIFY(pid() != first);
    QTRY_VERIFY_WITH_TIMEOUT(row(State) == "running" && row(Map) == "oa_dm1", 60000);

    ui.chkMonitor->click();
    const qint64 killed = pid();
    QCOMPARE(::kill(pid_t(killed), SIGKILL), 0);
    QTRY_VERIFY_WITH_TIMEOUT(pid() != killed && row(State) == "running", 60000);
    QVERIFY2(ui.lblMonitor->text().startsWith("Restarted 1 time, last at "),
             qPrintable(ui.lblMonitor->text()));

    const qint64 survivor = pid();
    op.window->close();
    QVERIFY(op.window->hasEnded());
    op.openHalvane();
    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    QTreeWidget* list = op.window->servers().serverWindow().form().lstServers;
    QTRY_VERIFY_WITH_TIMEOUT(list->currentItem() && list->currentItem()->text(State) == "running",
                             30000);
    QCOMPARE(op.window->servers().manager().servers().value(0).record.pid, survivor);
}

// Two profiles with their own names, maps, random bot counts and ports,
// saved from the window and launched one after the other: each server's
// next map and bots come from its own rotation, not from the later launch.
void TestLaunchWindow::profilesRunSideBySide() {
    Operator op;
    QVERIFY(buildGameFolder(op.game).isEmpty());
    test::TestPlatform& platform = op.platform;
    platform.writeFile(platform.programFolder() + "/maplist.txt",
                       "oa_dm1\r\noa_dm2\r\noa_dm3\r\noa_dm4\r\n");
    platform.writeFile(platform.programFolder() + "/botlist.txt",
                       "Sarge\r\nMajor\r\nGrism\r\nKyonshi\r\nGargoyle\r\n");
    platform.dialogs.choices = {{true, op.game + "/quake3.exe", "quake3.exe"}};
    op.openHalvane();
    op.window->pathDialog().form().cmdBrowse->click();
    op.window->pathDialog().form().cmdOkay->click();
    ProfileCommands& profiles = op.window->profiles();
    profiles.setStore(ProfileStore(platform.root() + "/profiles"));
    FakePrompts prompts;
    profiles.setPrompts(prompts);

    Ui::frmMain& ui = op.ui();
    for (QLineEdit* master :
         {ui.txtMaster_0, ui.txtMaster_1, ui.txtMaster_2, ui.txtMaster_3, ui.txtMaster_4})
        master->clear();
    ui.cmbServerType->setCurrentIndex(2);
    ui.txtHunkMegs->setText("32");
    ui.chkStartState->setChecked(false);
    ui.txtNetIP->setText("127.0.0.1");
    ui.cmbBotType->setCurrentIndex(1);
    ui.chkAutoSelectBots->setChecked(true);
    quint16 second = freeUdpPort();
    while (second == op.port)
        second = freeUdpPort();
    struct Side {
        QString name;
        quint16 port;
        QStringList maps;
        int bots;        // random bots per map: these two counts give sets of exactly that size
        QString scripts; // its own folder, once launched
        qint64 pid = 0;
    } sides[] = {{"A", op.port, {"oa_dm1", "oa_dm2"}, 2, {}},
                 {"B", second, {"oa_dm3", "oa_dm4"}, 1, {}}};
    for (const Side& side : sides) {
        ui.txtServerName->setText("Side " + side.name);
        ui.txtNetPort->setText(QString::number(side.port));
        ui.txtConsolePW->setText("e2e-" + side.name);
        ui.txtRandomBots->setText(QString::number(side.bots));
        ui.cmdMapClearAll->click();
        ui.MapList->clearSelection();
        for (const QString& map : side.maps)
            test::clickEntry(ui.MapList, int(test::entries(ui.MapList).indexOf(map)),
                             Qt::ControlModifier);
        ui.cmdAddSelMap->click();
        prompts.answers = {side.name};
        op.window->findChild<QAction*>("mnuProfileSave")->trigger();
    }
    for (Side& side : sides) {
        prompts.answers = {side.name};
        op.window->findChild<QAction*>("mnuProfileLaunch")->trigger();
        QVERIFY2(platform.messages.shown.isEmpty(),
                 qPrintable(test::onlyMessage(platform.messages)));
        const LaunchRecord& record = op.window->servers().manager().servers().value(0).record;
        QCOMPARE(record.profile, side.name);
        side.scripts = record.scriptFolder;
        side.pid = record.pid;
        op.started.tasks << side.pid;
    }
    QVERIFY(!QFileInfo::exists(op.game + "/baseq3/halvane.cfg"));

    for (const Side& side : sides) {
        const auto lives = [&] { return StartedServers::alive(side.pid); };
        auto status = waitForStatus(
            side.port,
            [&](const ServerStatus& st) { return st.info.value("mapname") == side.maps[0]; }, 60s,
            lives);
        QVERIFY2(status, qPrintable("profile " + side.name + " does not answer"));
        QCOMPARE(status->info.value("sv_hostname"), "Side " + side.name);
        QVERIFY(rcon(side.port, "e2e-" + side.name, "vstr nextmap"));
        const QSet<QString> bots = addedBots(side.scripts + "/baseq3/srvbots/botset1.cfg");
        QCOMPARE(bots.size(), side.bots);
        status = waitForStatus(
            side.port,
            [&](const ServerStatus& st) {
                return st.info.value("mapname") == side.maps[1] && asSet(st.playerNames()) == bots;
            },
            60s, lives);
        QVERIFY2(status, qPrintable("profile " + side.name + " left its rotation"));
    }
}

QTEST_MAIN(TestLaunchWindow)
#include "tst_launchwindow.moc"
