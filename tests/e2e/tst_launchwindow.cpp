// The operator's way to a real server: the main window driven offscreen, the game location chosen
// in the path dialog, options, random bots and a two-map rotation set in the window, "Launch the
// Server" pressed, and the server that answers on the loopback interface checked over UDP and in
// the server window, through the rotation to the second map and its bot set; then the same server
// steered from the server window, and found again by the next run of the program.
#include "RealServer.h"
#include "TestSupport.h"

#include "launch/LaunchController.h"
#include "server/AddServerDialog.h"
#include "server/LaunchRecords.h"
#include "server/ServerControl.h"
#include "server/ServerManager.h"
#include "server/ServerWindow.h"
#include "ui/MainForm.h"
#include "ui/MainWindow.h"
#include "ui/ProfileCommands.h"
#include "ui_frmAddServer.h"
#include "ui_frmPath.h"
#include "ui_frmServer.h"

#include <QSet>
#include <QtTest>
#include <csignal>
#include <unistd.h>

using namespace halvane;
using namespace halvane::e2e;
using namespace std::chrono_literals;

namespace {

bool alive(qint64 task) {
    return QFileInfo::exists("/proc/" + QString::number(task));
}

// The game a server's supervisor waits for; 0 before it has started it.
pid_t gameOf(qint64 supervisor) {
    QFile children(QString("/proc/%1/task/%1/children").arg(supervisor));
    return children.open(QIODevice::ReadOnly) ? pid_t(children.read(64).split(' ')[0].toLongLong())
                                              : 0;
}

QSet<QString> asSet(const QStringList& names) {
    return QSet<QString>(names.begin(), names.end());
}

// The values of a server's status for these keys, in their order.
QStringList infoOf(const std::optional<ServerStatus>& status, const QStringList& keys) {
    QStringList values;
    for (const QString& key : keys)
        values << (status ? status->info.value(key) : "(no answer)");
    return values;
}

// The bots a bot set script adds.
QSet<QString> addedBots(const QString& path) {
    QSet<QString> names;
    for (const QString& line : QString::fromLatin1(test::readAll(path)).split("\r\n")) {
        if (line.startsWith("addbot "))
            names.insert(line.section(' ', 1, 1));
    }
    return names;
}

// The server window's columns, and a column of the row of the server with that ID, or of the row
// chosen.
enum Column { Name, Address, Map, Type, Players, Uptime, State };
QString rowOf(const Ui::frmServer& ui, int column, const QString& id = {}) {
    for (int i = 0; i < ui.lstServers->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = ui.lstServers->topLevelItem(i);
        if (id.isEmpty() ? item == ui.lstServers->currentItem() : item->data(0, Qt::UserRole) == id)
            return item->text(column);
    }
    return QString();
}

// Chooses these maps, and only these, in the list of maps to add.
void selectMaps(MainForm& ui, const QStringList& maps) {
    ui.MapList->clearSelection();
    for (const QString& map : maps) {
        const qsizetype row = test::entries(ui.MapList).indexOf(map);
        QVERIFY2(row >= 0, qPrintable(map));
        test::clickEntry(ui.MapList, int(row), Qt::ControlModifier);
    }
}

void chooseMap(MainForm& ui, const QString& name, const QString& time, const QString& frag) {
    const qsizetype row = test::entries(ui.SelMap).indexOf(name);
    QVERIFY2(row >= 0, qPrintable(name));
    test::clickEntry(ui.SelMap, int(row));
    ui.txtMapTimeLimit->setText(time);
    ui.txtMapFragLimit->setText(frag);
}

struct Operator {
    test::TestPlatform platform; // no game location stored yet
    QString game = platform.root() + QStringLiteral("/oa");
    QtProcesses processes{HALVANE_EXECUTABLE}; // the game really starts
    AppContext app{{platform.messages, platform.dialogs, processes, platform.shell,
                    platform.desktop, *platform.store, *platform.folder},
                   {}};
    std::unique_ptr<MainWindow> window;
    quint16 port = freeUdpPort();

    // Before the temporary folders go: every server the program recorded ends, restarts included,
    // also when a check failed half way.
    ~Operator() {
        window.reset(); // and its monitor with it
        const QList<LaunchRecord> records =
            LaunchRecordFile(platform.root() + "/state/servers.jsonl").load().records;
        for (const LaunchRecord& record : records)
            ::kill(pid_t(record.pid), SIGTERM);
        QDeadlineTimer deadline(10s);
        for (const LaunchRecord& record : records) {
            while (alive(record.pid) && !deadline.hasExpired())
                QTest::qWait(50);
            if (alive(record.pid))
                ::kill(pid_t(record.pid), SIGKILL);
        }
    }
    MainForm& ui() { return window->form(); }
    void openHalvane() {
        window = std::make_unique<MainWindow>(app);
        window->pathDialog().freeGameFolder = game; // the free game itself is Debian's
        window->start();
    }
    // Opens Halvane on the free game: a game folder made over it (its maps named
    // for import) and chosen with Browse, or set up by the path dialog's button,
    // as a new user would; then a dedicated server with random bots per map on
    // the loopback interface, announced to no master server.
    void open(bool freeGameButton, const QByteArray& maps = "oa_dm1\r\noa_dm2\r\n");
    // Sets the rest up, presses "Launch the Server" and reads the bot sets.
    void launch(bool freeGameButton = false);
    QSet<QString> firstBots, secondBots; // of the two maps
};

void Operator::open(bool freeGameButton, const QByteArray& maps) {
    // A bot list of the free game's bots, as the operator would edit it.
    platform.writeFile(platform.programFolder() + "/botlist.txt",
                       "Sarge\r\nMajor\r\nGrism\r\nKyonshi\r\nGargoyle\r\n");
    if (!freeGameButton) {
        QCOMPARE(buildGameFolder(game), QString());
        platform.writeFile(platform.programFolder() + "/maplist.txt", maps);
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
    MainForm& ui = window->form();
    ui.cmbServerType->setCurrentIndex(2);
    ui.txtHunkMegs->setText("32");
    ui.chkStartState->setChecked(false); // stay open after the launch
    for (QLineEdit* master :
         {ui.txtMaster_0, ui.txtMaster_1, ui.txtMaster_2, ui.txtMaster_3, ui.txtMaster_4})
        master->clear();
    ui.cmbBotType->setCurrentIndex(1);
    ui.chkAutoSelectBots->setChecked(true); // a random set of bots per map
    ui.txtNetIP->setText("127.0.0.1");
}

void Operator::launch(bool freeGameButton) {
    open(freeGameButton);
    if (QTest::currentTestFailed())
        return;
    MainForm& ui = window->form();
    ui.txtServerName->setText("Halvane window e2e");
    ui.cmbGameType->setCurrentIndex(2); // Team Play
    ui.txtMaxPlayers->setText("12");
    ui.txtConsolePW->setText("e2e-window");
    ui.txtRandomBots->setText("3");

    selectMaps(ui, {"oa_dm1", "oa_dm2"});
    if (!freeGameButton) // which chose the free game's first maps already
        ui.cmdAddSelMap->click();
    chooseMap(ui, "oa_dm2", "30", "70");
    chooseMap(ui, "oa_dm1", "25", "60");
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
    void serverWindowSteersTheServer();
    void profilesRunSideBySide();
    void serverOnAnotherHost();
    void restartsKeepTheirServer();
};

void TestLaunchWindow::init() {
    const QString missing = missingEngine();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("dedicated server not installed: ") + missing));
}

// A new user's server, the free game set up by the path dialog's button: each map with its own
// limits and bots, seen and steered from the server window, kept alive by the monitor, and found
// again by the next run of the program.
void TestLaunchWindow::serverWindowSteersTheServer() {
    Operator op;
    op.launch(true);
    if (QTest::currentTestFailed())
        return;
    const QSet<QString>&firstBots = op.firstBots, &secondBots = op.secondBots;
    QVERIFY(firstBots.size() >= 2 && secondBots.size() >= 2); // one to kick, one to stay

    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    ServerWindow& window = op.window->servers().serverWindow();
    QVERIFY(window.isVisible() && !window.isModal());
    Ui::frmServer& ui = window.form();
    const auto row = [&](int column) { return rowOf(ui, column); };
    const auto players = [&] { return asSet(test::entries(ui.lstPlayers)); };
    const auto pid = [&] { return op.window->servers().manager().servers().value(0).record.pid; };

    QTRY_VERIFY_WITH_TIMEOUT(row(Map) == "oa_dm1" && players() == firstBots, 60000);
    QCOMPARE(QStringList({row(Name), row(Type), row(Players), row(State)}),
             QStringList({"Halvane window e2e", "Team Play",
                          QStringLiteral("%1 / 12").arg(firstBots.size()), "running"}));
    QCOMPARE(ui.lstPlayers->topLevelItem(0)->text(2), QStringLiteral("0")); // a bot's ping
    QCOMPARE(infoOf(getStatus(op.port), {"timelimit", "fraglimit"}), QStringList({"25", "60"}));
    const auto refused = rcon(op.port, "wrong", "status");
    QVERIFY(refused && refused->contains("Bad rconpassword"));

    ui.cmbCommand->setEditText("status");
    ui.cmdSend->click();
    QTRY_VERIFY_WITH_TIMEOUT(ui.txtConsole->toPlainText().contains("map: oa_dm1"), 10000);
    QCOMPARE(ui.cmbCommand->itemText(0), QStringLiteral("status"));

    ui.cmdNextMap->click();
    QTRY_VERIFY_WITH_TIMEOUT(row(Map) == "oa_dm2" && players() == secondBots, 60000);
    QCOMPARE(infoOf(getStatus(op.port), {"timelimit", "fraglimit"}), QStringList({"30", "70"}));
    ui.lstPlayers->setCurrentItem(ui.lstPlayers->topLevelItem(1));
    const QString kicked = ui.lstPlayers->currentItem()->text(0);
    ui.cmdKick->click();
    QTRY_VERIFY_WITH_TIMEOUT(players() == QSet<QString>(secondBots).subtract({kicked}), 30000);

    const qint64 first = pid();
    ui.cmdStop->click();
    QTRY_VERIFY_WITH_TIMEOUT(row(State).endsWith("(stopped, exit 0)"), 30000);
    QCOMPARE(op.processes.startTimeOf(first), 0);
    QVERIFY(!op.window->launch().ServerRunning());
    QVERIFY(!ui.cmdNextMap->isEnabled() && row(Map).isEmpty());
    ui.cmdRestart->click();
    QVERIFY(pid() != first);
    QTRY_VERIFY_WITH_TIMEOUT(row(State) == "running" && row(Map) == "oa_dm1", 60000);

    ui.chkMonitor->click();
    const qint64 killed = pid();
    const pid_t game = gameOf(killed); // the engine turns a SIGSEGV into an exit
    QVERIFY(game > 0);
    QCOMPARE(::kill(game, SIGKILL), 0);
    QTRY_VERIFY_WITH_TIMEOUT(pid() != killed && row(State) == "running", 60000);
    QVERIFY2(ui.cmbRun->itemText(1).endsWith("(ended without a Stop, signal SIGKILL)"),
             qPrintable(ui.cmbRun->itemText(1)));
    QVERIFY2(ui.lblMonitor->text().startsWith("Restarted 1 time, last at "),
             qPrintable(ui.lblMonitor->text()));

    const qint64 survivor = pid();
    op.window->close();
    QVERIFY(op.window->hasEnded());
    op.openHalvane();
    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(rowOf(op.window->servers().serverWindow().form(), State), "running",
                              30000);
    QCOMPARE(op.window->servers().manager().servers().value(0).record.pid, survivor);
}

// Two profiles with their own names, maps, random bot counts and ports,
// saved from the window and launched one after the other: each server's
// next map and bots come from its own rotation, not from the later launch.
void TestLaunchWindow::profilesRunSideBySide() {
    Operator op;
    op.open(false, "oa_dm1\r\noa_dm2\r\noa_dm3\r\noa_dm4\r\n");
    if (QTest::currentTestFailed())
        return;
    ProfileCommands& profiles = op.window->profiles();
    profiles.setStore(ProfileStore(op.platform.root() + "/profiles"));
    FakePrompts prompts;
    profiles.setPrompts(prompts);
    MainForm& ui = op.ui();
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
        selectMaps(ui, side.maps);
        ui.cmdAddSelMap->click();
        prompts.answers = {side.name};
        op.window->findChild<QAction*>("mnuProfileSave")->trigger();
    }
    // The first from the menu, the second from the server window's list.
    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    Ui::frmServer& list = op.window->servers().serverWindow().form();
    for (Side& side : sides) {
        prompts.answers = {side.name};
        list.cmbProfile->setCurrentText(side.name);
        if (side.name == "A")
            op.window->findChild<QAction*>("mnuProfileLaunch")->trigger();
        else
            list.cmdLaunchProfile->click();
        QVERIFY2(op.platform.messages.shown.isEmpty(),
                 qPrintable(test::onlyMessage(op.platform.messages)));
        const LaunchRecord& record = op.window->servers().manager().servers().value(0).record;
        QCOMPARE(record.profile, side.name);
        QCOMPARE(list.lstServers->currentItem()->text(7), side.name); // its Profile column
        const QDir servers(op.platform.root() + "/state/servers");
        const QStringList own = servers.entryList({side.name + "-*"}, QDir::Dirs);
        QCOMPARE(own.size(), 1);
        side.scripts = servers.filePath(own.first());
        side.pid = record.pid;
    }
    QVERIFY(!QFileInfo::exists(op.game + "/baseq3/halvane.cfg"));
    list.cmbProfile->setCurrentText("A"); // its port taken: asked first, a No launches nothing
    list.cmdLaunchProfile->click();
    QVERIFY(test::onlyMessage(op.platform.messages).contains("already uses port"));
    QCOMPARE(op.window->servers().manager().servers().size(), 2);

    for (const Side& side : sides) {
        const auto lives = [&] { return alive(side.pid); };
        const auto status = waitForMap(side.port, side.maps[0], lives);
        QCOMPARE(infoOf(status, {"sv_hostname"}), QStringList("Side " + side.name));
        QVERIFY(rcon(side.port, "e2e-" + side.name, "vstr nextmap"));
        const QSet<QString> bots = addedBots(side.scripts + "/baseq3/srvbots/botset1.cfg");
        QCOMPARE(bots.size(), side.bots);
        QVERIFY2(waitForMap(side.port, side.maps[1], lives, bots),
                 qPrintable("profile " + side.name + " left its rotation"));
    }
}

// Another host of the test's own: a network namespace joined to this one by a veth pair, with
// addresses of its own. Removed when the test ends, however it ends; the server in it ends first.
struct OtherHost {
    const qint64 id = QCoreApplication::applicationPid();
    const QString name = QStringLiteral("halvane-e2e-%1").arg(id);
    const QString near = QStringLiteral("hv%1a").arg(id % 10000000);
    const QString far = QStringLiteral("hv%1b").arg(id % 10000000);
    // A /30 of its own in 10.213/16 for each test process.
    const QString net = QStringLiteral("10.213.%1.%2").arg(id / 64 % 256);
    const QString nearAddress = net.arg(id % 64 * 4 + 1);
    const QString farAddress = net.arg(id % 64 * 4 + 2);
    QProcess server;
    bool made = false;

    static bool ip(const QStringList& arguments) {
        return QProcess::execute(QStringLiteral("ip"), arguments) == 0;
    }
    // Empty when made, otherwise why not.
    QString make() {
        made = ip({"netns", "add", name});
        if (!made)
            return "cannot make a network namespace (ip netns add " + name + ")";
        const bool linked =
            ip({"link", "add", near, "type", "veth", "peer", "name", far}) &&
            ip({"link", "set", far, "netns", name}) &&
            ip({"addr", "add", nearAddress + "/30", "dev", near}) &&
            ip({"link", "set", near, "up"}) &&
            ip({"netns", "exec", name, "ip", "addr", "add", farAddress + "/30", "dev", far}) &&
            ip({"netns", "exec", name, "ip", "link", "set", far, "up"}) &&
            ip({"netns", "exec", name, "ip", "link", "set", "lo", "up"});
        return linked ? QString() : "cannot join it by a veth pair " + near + " and " + far;
    }
    ~OtherHost() {
        server.kill();
        server.waitForFinished(10000);
        if (made)
            ip({"netns", "del", name}); // and the veth pair with it
        ip({"link", "del", near});      // should it not have been moved yet
    }
};

// A server Halvane did not start, on another host: added in the server window by its address there,
// its status, console and Next Map read and used across the link.
void TestLaunchWindow::serverOnAnotherHost() {
    if (::geteuid() != 0)
        QSKIP("only root can make the network namespace and veth pair this test runs in");
    OtherHost host;
    const QString made = host.make();
    if (!made.isEmpty())
        QSKIP(qPrintable(made));
    test::TestPlatform platform;
    const QString game = platform.root() + "/oa";
    QCOMPARE(buildGameFolder(game), QString());
    // Announced to no master server: nothing but this namespace is contacted.
    QStringList arguments = {"netns", "exec", host.name, game + "/quake3.exe"};
    for (const QString& set :
         QStringList{"net_ip " + host.farAddress, "dedicated 1", "net_port 27960",
                     "rconpassword e2e-far", "sv_hostname Far e2e", "com_hunkmegs 64",
                     "sv_master1 ", "sv_master2 ", "sv_master3 ", "sv_master4 ", "sv_master5 "})
        arguments << "+set" << set.section(' ', 0, 0) << set.section(' ', 1);
    arguments << QStringList{"+map", "oa_dm1"};
    host.server.setStandardOutputFile(QProcess::nullDevice());
    host.server.setStandardErrorFile(QProcess::nullDevice());
    host.server.start("ip", arguments);
    QVERIFY(host.server.waitForStarted());

    ServerManager manager(*platform.app);
    ServerWindow window(manager, platform.shell, nullptr);
    Ui::frmServer& ui = window.form();
    window.show();
    ui.cmdAddServer->click();
    auto* dialog = window.findChild<AddServerDialog*>();
    QVERIFY(dialog);
    dialog->form().txtAddAddress->setText(host.farAddress);
    dialog->form().txtAddPort->setText("27960");
    dialog->form().txtAddPassword->setText("e2e-far");
    dialog->form().btnAddServer->button(QDialogButtonBox::Ok)->click();
    const auto row = [&](int column) { return rowOf(ui, column); };
    QTRY_VERIFY_WITH_TIMEOUT(row(Map) == "oa_dm1", 60000);
    QCOMPARE(QStringList({row(Name), row(Address)}),
             QStringList({"Far e2e", host.farAddress + ":27960"}));
    QVERIFY(!ui.cmdStop->isEnabled() && !ui.cmdRestart->isEnabled());

    ui.cmbCommand->setEditText("status");
    ui.cmdSend->click();
    QTRY_VERIFY_WITH_TIMEOUT(ui.txtConsole->toPlainText().contains("map: oa_dm1"), 10000);
    // The map's start set nextmap to a restart.
    ui.cmbCommand->setEditText("set nextmap \"map oa_dm2\"");
    ui.cmdSend->click();
    ui.cmdNextMap->click();
    QTRY_VERIFY2_WITH_TIMEOUT(row(Map) == "oa_dm2",
                              qPrintable(ui.txtConsole->toPlainText().right(600)), 60000);
    // Listed, with its status, without the window.
    const QList<ServerEntry> listed = listServers(*platform.app, 5000);
    QCOMPARE(listed.size(), 1);
    QVERIFY(listed[0].record.added && listed[0].live.status);
    QCOMPARE(listed[0].live.status->value("mapname"), QStringLiteral("oa_dm2"));
}

// Two servers from one game folder: the second launched with text in the port box and every box at
// the most hostile value validation lets through; the first restarted as it was launched, then
// hung until the monitor gives up, then its game folder gone.
void TestLaunchWindow::restartsKeepTheirServer() {
    Operator op;
    op.launch();
    if (QTest::currentTestFailed())
        return;
    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    ServerWindow& window = op.window->servers().serverWindow();
    ServerManager& manager = op.window->servers().manager();
    Ui::frmServer& ui = window.form();
    const QString first = manager.servers().value(0).record.id;
    const auto problem = [&] { return ui.lblProblem->text(); };
    const auto record = [&](const QString& id) { return manager.find(id)->record; };
    const auto row = [&](const QString& id, int column) { return rowOf(ui, column, id); };
    QTRY_VERIFY_WITH_TIMEOUT(row(first, Map) == "oa_dm1", 60000);
    // The columns grow to fit what the server answered.
    QVERIFY(ui.lstServers->columnWidth(Name) >
            ui.lstServers->fontMetrics().horizontalAdvance(row(first, Name)));
    ui.chkMonitor->click();
    QVERIFY(record(first).monitor);

    MainForm& form = op.ui();
    form.txtServerName->setText("Arena; sets inj_host yes // /* x */ sets inj_host2 yes");
    form.txtMOTD->setText("+sets inj_motd yes; sets inj_motd2 yes */ sets inj_motd3 yes");
    form.txtConsolePW->setText("e2e; sets inj_rcon yes");
    form.chkRequirePassword->setChecked(true);
    form.txtServerPW->setText("pw&sets inj_pw yes//x");
    form.txtAdminName->setText("Bob // sets inj_admin yes");
    form.txtAdminEmail->setText("a@b 'c' $(sets inj_mail yes)");
    form.txtAdminURL->setText("http://a/b?c=d&e=f");
    form.txtCmdParameters->setEditText("+set sv_fps 20 +sets e2e_param \"ok\"");
    chooseMap(form, "oa_dm1", "25", "60");
    form.cmdRemSelMap->click();      // oa_dm2 alone
    form.txtNetPort->setText("abc"); // the game takes any free port
    op.platform.messages.answers = {MsgAnswer::Yes};
    form.cmdStart->click();
    const QString second = manager.servers().value(0).record.id;
    QVERIFY(second != first);
    QTRY_COMPARE_WITH_TIMEOUT(row(second, Map), "oa_dm2", 60000);
    QCOMPARE(window.currentId(), second); // the new one chosen
    const quint16 opened = record(second).port;
    QVERIFY(opened != 0 && opened != op.port);
    // halvane.cfg ran to its end (the map), the parameters ran as two commands, nothing else ran.
    const auto status = getStatus(opened);
    QCOMPARE(infoOf(status, {"e2e_param", "admin_name"}), QStringList({"ok", "Bob"}));
    QCOMPARE(status->info.keys().filter(QRegularExpression("^inj")), QStringList());
    for (const QString& secret : {op.game + "/baseq3/halvane.cfg", op.platform.iniPath()})
        QCOMPARE(QFileInfo(secret).permissions() & 0x7077, QFile::Permissions(0x6000));
    QCOMPARE(row(first, Name), QStringLiteral("Halvane window e2e"));
    // The game leaves a name with a ';' out of its answers: the one launched is shown.
    QVERIFY2(row(second, Name).startsWith("Arena; sets inj_host"), qPrintable(row(second, Name)));
    QCOMPARE(record(first).monitorRestarts, 0); // the healthy one left alone

    ui.lstServers->setCurrentItem(ui.lstServers->topLevelItem(1));
    QCOMPARE(window.currentId(), first);
    const qint64 before = record(first).pid;
    ui.cmdRestart->click();
    QTRY_VERIFY_WITH_TIMEOUT(record(first).pid != before && row(first, State) == "running", 60000);
    QCOMPARE(QStringList({row(first, Name), row(first, Map)}),
             QStringList({"Halvane window e2e", "oa_dm1"}));
    // The log of this run shown, the one before it still there to choose.
    QCOMPARE(std::pair(ui.cmbRun->count(), ui.cmbRun->currentData().toString()),
             std::pair(2, record(first).logFile));
    ui.cmbRun->setCurrentIndex(1);
    const QString earlier = record(first).runs.value(0).logFile;
    QTRY_COMPARE(ui.txtLog->toPlainText().section('\n', 0, 0),
                 QString(test::readAll(earlier)).section('\n', 0, 0).trimmed());
    op.platform.shell.succeed = false;
    ui.cmdOpenLog->click();
    QCOMPARE(op.platform.shell.opened.value(0), earlier);
    QVERIFY2(problem().contains("the log file " + earlier + " could not be opened"),
             qPrintable(problem()));

    // Hung: every start of it stopped before it can answer.
    manager.setLimits({3, 5, 1, 1, 1, 2});
    QSet<qint64> hung;
    const auto hangEach = [&] {
        const LaunchRecord now = record(first);
        const pid_t game = now.running() ? gameOf(now.pid) : 0;
        if (game > 0 && !hung.contains(now.pid) && ::kill(game, SIGSTOP) == 0)
            hung.insert(now.pid);
        return !now.running();
    };
    QTRY_VERIFY_WITH_TIMEOUT(hangEach(), 120000);
    QVERIFY2(row(first, State).contains("(gave up: 2 times in a row"),
             qPrintable(row(first, State)));
    QCOMPARE(hung.size(), 3); // the start that had answered, then two that never did
    QCOMPARE(row(first, Name), QStringLiteral("Halvane window e2e"));
    QVERIFY2(problem().contains("Its log " + record(first).logFile), qPrintable(problem()));
    QCOMPARE(record(second).monitorRestarts, 0);
    QVERIFY(getStatus(opened));

    QVERIFY(QDir().rename(op.game, op.game + "-gone"));
    ui.cmdRestart->click();
    const QString gone =
        "Could not start the server again: the game folder " + op.game + " does not exist any more";
    QVERIFY2(problem().split('\n').contains(gone), qPrintable(problem()));
    QVERIFY(!record(first).running());
    QVERIFY(QDir().rename(op.game + "-gone", op.game)); // back, but a script of the copy gone
    const QString scripts = record(first).scripts;
    QVERIFY(QFile::remove(scripts + "/baseq3/halvane.cfg"));
    ui.cmdRestart->click();
    QVERIFY2(problem().contains("the copy of the scripts it was launched with, " + scripts +
                                ", is incomplete: " + scripts + "/baseq3/halvane.cfg is missing"),
             qPrintable(problem()));
    QVERIFY(!record(first).running() && getStatus(opened));
    ui.cmdRemove->click(); // its scripts go with it, the other's stay
    QVERIFY(!QFileInfo::exists(scripts) && QFileInfo::exists(record(second).scripts));
    ui.cmdClose->click();
    QVERIFY(!window.isVisible());
    op.window->findChild<QAction*>("mnuServerStatus")->trigger();
    QVERIFY(window.isVisible());
    QTest::keyClick(&window, Qt::Key_Escape);
    QVERIFY(!window.isVisible());
}

QTEST_MAIN(TestLaunchWindow)
#include "tst_launchwindow.moc"
