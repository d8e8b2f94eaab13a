// "Launch the Server": the command line, its splitting into arguments, the duplicate question,
// failures, and a real start of a stand-in game executable that records how it was started.
#include "TestSupport.h"

#include "launch/CommandLine.h"
#include "launch/LaunchController.h"
#include "server/ServerControl.h"
#include "server/ServerManager.h"

#include <QtTest>
#include <cerrno>
#include <sys/wait.h>

using namespace halvane;
using namespace halvane::test;

namespace {

// The window's own launch steps, the configuration write watched (or broken) and the clock fixed.
struct StandInSteps : LaunchSteps {
    explicit StandInSteps(LaunchSteps& wired) : wired(wired) {}
    void saveParameterList() override { wired.saveParameterList(); }
    void loadParameterList() override { wired.loadParameterList(); }
    void CommitShownMap() override { wired.CommitShownMap(); }
    void MakeBotScript() override { wired.MakeBotScript(); }
    bool ValidateAll() override { return wired.ValidateAll(); }
    bool consoleTextIsSafe() override { return wired.consoleTextIsSafe(); }
    bool WriteConfig(const QString& path, bool withCommandLine, const QString& line) override {
        return write(path, withCommandLine, line);
    }
    QDateTime now() override { return QDateTime(QDate(2000, 2, 5), QTime(5, 3)); }
    LaunchSteps& wired;
    std::function<bool(const QString&, bool, const QString&)> write;
};

// A game executable that writes its working folder and arguments, then ends.
void makeStandInGame(TestPlatform& platform) {
    const QString script = platform.gameFolder() + "/quake3.exe";
    platform.writeFile(script, QStringLiteral("#!/bin/sh\n{ pwd; for a in \"$@\"; do printf "
                                              "'[%s]\\n' \"$a\"; done; } > '%1.tmp'\n"
                                              "mv '%1.tmp' '%1'\n")
                                   .arg(platform.root() + "/started.txt")
                                   .toUtf8());
    QFile::setPermissions(script, QFileDevice::Permissions(0x7000)); // the owner's alone
}

// Whether this test has a child process, living or zombie: a failed start must leave none behind.
// __WALL also sees children that signal their end other than by SIGCHLD, as Qt's may.
bool anyChildProcess() {
    return ::waitpid(-1, nullptr, WNOHANG | __WALL) != -1 || errno != ECHILD;
}

} // namespace

// A line and the arguments it splits into.
const std::tuple<const char*, const char*, QStringList> Splits[] = {
    {"blanks only", "   \t ", {}},
    {"runs of blanks and tabs, backslashes", " a  D:\\Q3\\\t\tc ", {"a", "D:\\Q3\\", "c"}},
    {"quotes inside a word", "a\"b c\"d e", {"ab cd", "e"}},
    {"empty quotes", "a \"\" b", {"a", "", "b"}},
    {"unclosed quote runs to the end", "a \"b  c", {"a", "b  c"}},
};

// A fault and the message it gives, "<exe>" standing for the whole command.
const std::tuple<const char*, const char*> Failures[] = {
    {"folder vanishes after the write", "Error changing directories\r\rError:  2"},
    {"folder vanishes before the write", "\r\rError:  2"},
    {"writer fails", "\r\rError:  5"},
    {"executable not executable", "<exe>\r\rError:  13"},
    {"executable missing", "<exe>\r\rError:  2"},
    {"executable cannot run", "<exe>\r\rError:  5"}, // executable by its mode, but no program
    // Refused before anything is written; the fixed bot script is written all the same.
    {"validation refuses", "Server name is required"},
};

// After the start: stay, minimise or close; the bots, and whether the fixed bot script is
// written, as it is for user-defined bots that are not random. A window left open then starts a
// second server.
const std::tuple<const char*, bool, bool, int, bool, bool> Afters[] = {
    {"stay, though close is chosen; user-defined bots", false, false, 1, false, true},
    {"stay; automatic bots", false, true, 2, false, false},
    {"minimise; user-defined random bots", true, true, 1, true, false},
    {"close; bots disabled", true, false, 0, false, false},
};

class LaunchTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void split_data() { addRows(Splits); }
    void split();
    void afterTheStart_data() { addRows(Afters); }
    void afterTheStart();
    void realStartRunsTheWrittenLine();
    void failures_data() { addRows(Failures); }
    void failures();
    void stateThatCannotBeKept();

private:
    // A new user's window, ready to launch with the choices a test does not make itself.
    void makeWindow(Processes& processes);
    // Servers started, the last one's task, messages shown, busy pointers left.
    std::tuple<int, int, int, int> quiet() const {
        return {int(platform->processes.started.size()), int(window->launch().ServerTaskID),
                int(platform->messages.shown.size()), platform->desktop.busyDepth};
    }

    // Declared before the window, which uses them to its end.
    QtProcesses realProcesses;
    std::unique_ptr<StandInSteps> steps;
    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<AppContext> app; // the test platform, but with a chosen process starter
    std::unique_ptr<MainWindow> window;
    MainForm* ui = nullptr;
    QStringList writtenCommandLines;
};

void LaunchTest::init() {
    window.reset(); // the last test's, before what it was made over
    app.reset();
    platform = std::make_unique<TestPlatform>();
    platform->makeGameFolder();
    writtenCommandLines.clear();
}

void LaunchTest::makeWindow(Processes& processes) {
    app.reset(new AppContext{{platform->messages, platform->dialogs, processes, platform->shell,
                              platform->desktop, *platform->store, *platform->folder},
                             platform->app->state});
    window = std::make_unique<MainWindow>(*app);
    window->showMainWindow();
    ui = &window->form();
    ui->cmbBotType->setCurrentIndex(1);
    ui->txtNetPort->setText("27960");
    steps = std::make_unique<StandInSteps>(window->launch().steps());
    window->launch().setSteps(*steps);
    steps->write = [this](const QString& path, bool withCommandLine, const QString& line) {
        writtenCommandLines << (withCommandLine ? line : "(without) " + line);
        return steps->wired.WriteConfig(path, withCommandLine, line);
    };
    platform->messages.clear();
    platform->store->writes.clear();
}

void LaunchTest::split() {
    const auto& [name, line, arguments] = fetchRow(Splits);
    QCOMPARE(splitCommandLine(line), arguments);
}

void LaunchTest::afterTheStart() {
    const auto& [name, startState, minimize, botType, randomBots, botScript] = fetchRow(Afters);
    makeWindow(platform->processes);
    ui->chkStartState->setChecked(startState);
    (minimize ? ui->optMinimize : ui->optClose)->setChecked(true);
    ui->cmbBotType->setCurrentIndex(botType);
    ui->chkAutoSelectBots->setChecked(randomBots);
    ui->txtCmdParameters->setEditText("+set typed 1");
    ui->cmdStart->click();

    // What is written and started, and where, is the real start's test.
    QCOMPARE(writtenCommandLines.size(), 1);
    QCOMPARE(QFileInfo::exists(platform->gameFolder() + "/baseq3/srvbots.cfg"), botScript);
    QCOMPARE(quiet(), std::tuple(1, 1000, 0, 0));
    // The settings were stored by the validation, the line remembered; no server ran before, so
    // nothing was asked.
    QVERIFY(platform->store->writes.contains("General/Name=My Quake 3 Arena Server"));
    QCOMPARE(platform->store->read("Advanced", "Parameter0", ""), QStringLiteral("+set typed 1"));
    QCOMPARE(ui->txtCmdParameters->count(), 1);
    QCOMPARE(platform->processes.activated, QList<qint64>{});
    // Closing runs the shut-down: everything stored, the program ended.
    const bool closed = startState && !minimize;
    QCOMPARE(std::tuple(window->isVisible(), window->isMinimized(), window->hasEnded()),
             std::tuple(!closed, startState && minimize, closed));
    QVERIFY(!closed || platform->store->writes.contains("Options/StartClose=True"));
    if (closed)
        return;

    // A second start while that server runs asks first; No ends it there.
    platform->messages.answers = {MsgAnswer::No};
    ui->cmdStart->click();
    QCOMPARE(platform->processes.activated, QList<qint64>{1000});
    QCOMPARE(onlyMessage(platform->messages),
             message("Duplicate Server Confirmation",
                     "A server has already been launched, do you want to start another "
                     "server?\r\rThis will require that you enter another Port Number on the "
                     "advanced tab.\rIf no port is specified, the next available port will be "
                     "used by default.",
                     MsgButtons::YesNo, MsgIcon::Information));
    QCOMPARE(quiet(), std::tuple(1, 1000, 1, 0));
    QVERIFY(platform->desktop.busyCalls >= 4); // the pointer was busy while asking the system
    QCOMPARE(writtenCommandLines.size(), 1);   // nothing written

    // Once that server has ended, nothing is asked.
    platform->processes.alive.clear();
    ui->cmdStart->click();
    QCOMPARE(platform->messages.shown.size(), 1);
    QCOMPARE(platform->processes.started.size(), 2);
}

void LaunchTest::realStartRunsTheWrittenLine() {
    makeStandInGame(*platform);
    makeWindow(realProcesses);
    ui->chkNOP->setChecked(true);
    // Quotes group words; shell characters are plain text to the game.
    const QString typed = "+set g_motd \"hello  there\" +set a `touch made1`&touch made2 "
                          "$(touch made3)|tee made4>made5";
    ui->txtCmdParameters->setEditText(typed);
    ui->txtServerPW->setText("x&touch made6");
    ui->chkRequirePassword->setChecked(true);
    ui->cmbBotType->setCurrentIndex(0);
    ui->txtNetIP->setText("10.0.0.1");
    ui->chkSpecifyCD->setChecked(true);
    ui->txtCDROM->setText("D:");
    ui->txtAdminName->setText("Ann Admin");
    ui->txtAdminURL->setText("http://example.org");
    ui->cmdStart->click();

    QCOMPARE(onlyMessage(platform->messages), "0 messages");
    const QString record = platform->root() + "/started.txt";
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 10000);
    // The configuration's last comment holds the very line the game received.
    const QString line = " +set dedicated 2 +sets gamestartup \"02/05/2000 05:03\" +sets "
                         "configured_by Halvane_2.07 +set com_hunkmegs 16 +set bot_enable 0 +set "
                         "g_password x&touch made6 +set g_needpass 1 +set net_ip 10.0.0.1 +set "
                         "net_port 27960 " +
                         typed +
                         " +set fs_cdpath D:\\Quake3\\ +sets admin_name Ann Admin +sets "
                         "admin_website http://example.org +exec halvane.cfg";
    const QByteArray config = readAll(platform->gameFolder() + "/baseq3/halvane.cfg").trimmed();
    QCOMPARE(QString::fromLatin1(config).section("\r\n", -1),
             "// Command Line:  \"quake3.exe" + line + '"');
    // The stand-in ran in the game folder, one argument per line.
    const QString folder = QFileInfo(platform->gameFolder()).canonicalFilePath();
    QString started = folder + '\n';
    for (const QString& argument : splitCommandLine(line))
        started += '[' + argument + "]\n";
    QCOMPARE(QString::fromUtf8(readAll(record)), started);
    QVERIFY(started.contains("\n[hello  there]\n"));
    for (const QString& place : {platform->root(), platform->gameFolder()})
        QCOMPARE(QDir(place).entryList({"made*"}), QStringList{});
    QVERIFY(QDir::currentPath() != folder); // our own folder did not move
}

void LaunchTest::failures() {
    const auto& [name, told] = fetchRow(Failures);
    const QString fault = name;
    makeStandInGame(*platform);
    makeWindow(realProcesses);
    const QString exe = platform->gameFolder() + "/quake3.exe";
    if (fault.contains("write")) {
        // The folder vanishes before the write, which fails, or after a write that succeeded,
        // which only the start can notice; or the writer fails.
        steps->write = [this, fault](const QString& path, bool, const QString& line) {
            writtenCommandLines << line;
            if (fault == "writer fails")
                return false;
            QDir(platform->gameFolder()).removeRecursively();
            return fault.endsWith("after the write") || QFile(path).open(QIODevice::WriteOnly);
        };
    }
    if (fault == "executable missing")
        QFile::remove(exe);
    if (fault == "executable cannot run")
        platform->writeFile(exe, QByteArray("\x01\x02 not a program\r\n"));
    if (fault == "executable not executable")
        QFile::setPermissions(exe, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (fault == "validation refuses")
        ui->txtServerName->clear();

    ui->cmdStart->click();

    QCOMPARE(onlyMessage(platform->messages),
             message("Warning!",
                     QString(told).replace("<exe>", "quake3.exe" + writtenCommandLines.value(0)),
                     MsgButtons::Ok, MsgIcon::Critical));
    QCOMPARE(writtenCommandLines.isEmpty(), fault == "validation refuses");
    QVERIFY(QFileInfo::exists(platform->gameFolder() + "/baseq3/srvbots.cfg") ||
            !QDir(platform->gameFolder()).exists());
    QCOMPARE(quiet(), std::tuple(0, 0, 1, 0));
    // Nothing was started: the stand-in would have left its record.
    QTest::qWait(300);
    QVERIFY(!QFile::exists(platform->root() + "/started.txt"));
    QVERIFY(window->isVisible());
    QVERIFY(!anyChildProcess());
}

// The state folder is a file: the server starts, and the operator learns at once that its log and
// record are lost, and later why a restart failed, with no empty log left from the attempt.
void LaunchTest::stateThatCannotBeKept() {
    const QString state = platform->root() + "/state";
    platform->writeFile(state, "not a folder");
    makeWindow(platform->processes);
    ui->cmdStart->click();
    QCOMPARE(platform->processes.started.size(), 1);
    const QString said = onlyMessage(platform->messages);
    const QString buttons = message("", "", MsgButtons::Ok, MsgIcon::Information).section('|', 2);
    QVERIFY2(said.startsWith("Halvane|The server was started.\r\rIts output is not logged: "
                             "cannot make the folder " +
                             state + "/logs.\r\r") &&
                 said.endsWith("\r\rIt is not recorded, so the server window forgets it when "
                               "Halvane closes. Could not write the server list " +
                               state + "/servers.jsonl: cannot make the folder " + state + ".|" +
                               buttons),
             qPrintable(said));
    QFile::remove(state);
    platform->messages.answers = {MsgAnswer::Yes}; // to the second server's question
    ui->cmdStart->click();
    ServerManager& manager = window->servers().manager();
    platform->processes.alive.clear(); // it ended
    platform->processes.failWithCode = ENOENT;
    manager.restart(manager.servers().value(0).record.id);
    QCOMPARE(manager.servers().value(0).live.problem,
             "Could not start the server again: " + platform->gameFolder() +
                 "/quake3.exe: No such file or directory");
    QCOMPARE(QDir(state + "/logs").entryList(QDir::Files).size(), 1); // the second launch's
}

QTEST_MAIN(LaunchTest)
#include "tst_launch.moc"
