// "Launch the Server": the command line, its splitting into arguments, the
// steps in order, the duplicate question, failures, and a real start of a
// stand-in game executable that records how it was started.
#include "TestSupport.h"
#include <csignal>

#include "app/AppInfo.h"
#include "launch/CommandLine.h"
#include "launch/LaunchController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

Q_DECLARE_METATYPE(LaunchOptions)

namespace {

const QDateTime Now{QDate(2000, 2, 5), QTime(17, 4, 40)};

// A game executable that writes its working folder and arguments, then ends.
void makeStandInGame(TestPlatform& platform) {
    const QString script = platform.gameFolder() + "/quake3.exe";
    platform.writeFile(script, QStringLiteral("#!/bin/sh\n{ pwd; for a in \"$@\"; do printf "
                                              "'[%s]\\n' \"$a\"; done; } > '%1.tmp'\n"
                                              "mv '%1.tmp' '%1'\n")
                                   .arg(platform.root() + "/started.txt")
                                   .toUtf8());
    QFile::setPermissions(script,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

// Processes whose parent is this test, living or zombie: a failed start
// must leave none behind.
QStringList childProcesses() {
    QStringList children;
    const QString self = QString::number(QCoreApplication::applicationPid());
    const QStringList entries = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isPid = false;
        entry.toLongLong(&isPid);
        if (!isPid)
            continue;
        const QByteArray stat = readAll("/proc/" + entry + "/stat");
        const qsizetype close = stat.lastIndexOf(')');
        if (close < 0)
            continue;
        const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
        if (fields.size() > 1 && QString::fromLatin1(fields[1]) == self)
            children << entry + " " + QString::fromLatin1(stat.left(close + 3));
    }
    return children;
}

} // namespace

class LaunchTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void commandLine_data();
    void commandLine();
    void split_data();
    void split();

    void stepsRunInOrder();
    void fixedBotScript_data();
    void fixedBotScript();
    void duplicateServer();
    void afterTheStart_data();
    void afterTheStart();

    void realStartRunsTheWrittenLine();
    void failures_data();
    void failures();

private:
    void makeWindow(Processes& processes);
    void setLaunchReady();

    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<AppContext> app; // the test platform, but with a chosen process starter
    std::unique_ptr<MainWindow> window;
    Ui::frmMain* ui = nullptr;
    QtProcesses realProcesses;
    QStringList events;
    QStringList writtenCommandLines;
    LaunchHooks wired; // the hooks as the main window wired them
};

void LaunchTest::init() {
    platform = std::make_unique<TestPlatform>();
    platform->makeGameFolder();
    events.clear();
    writtenCommandLines.clear();
}

void LaunchTest::cleanup() {
    window.reset();
    app.reset();
    platform.reset();
}

void LaunchTest::makeWindow(Processes& processes) {
    app.reset(new AppContext{{platform->messages, platform->dialogs, processes, platform->shell,
                              platform->desktop, *platform->store, *platform->folder},
                             platform->app->state});
    window = std::make_unique<MainWindow>(*app);
    window->showMainWindow();
    ui = &window->form();
    setLaunchReady();

    LaunchHooks& hooks = window->launch().hooks();
    wired = hooks;
    const auto saveParameters = hooks.saveParameterList;
    const auto loadParameters = hooks.loadParameterList;
    const auto validate = hooks.ValidateAll;
    hooks.saveParameterList = [this, saveParameters] {
        events << "save parameters";
        saveParameters();
    };
    hooks.loadParameterList = [this, loadParameters] {
        events << "load parameters";
        loadParameters();
    };
    hooks.CommitShownMap = [this] { events << "commit map"; };
    hooks.MakeBotScript = [this] { events << "bot script"; };
    hooks.ValidateAll = [this, validate] {
        events << "validate";
        return validate();
    };
    hooks.WriteConfig = [this](const QString& path, bool withCommandLine, const QString& line) {
        events << "write " + path + (withCommandLine ? " with" : " without");
        writtenCommandLines << line;
        QFile file(path);
        return file.open(QIODevice::WriteOnly) &&
               file.write("// " + app->state.GameExeName.toLatin1() + line.toLatin1() + "\r\n") > 0;
    };
    hooks.now = [] { return Now; };
    platform->messages.onShow = [this](const ShownMessage& m) { events << "ask " + m.title; };
    platform->messages.clear();
    platform->store->writes.clear();
}

void LaunchTest::setLaunchReady() {
    ui->cmbGameType->setCurrentIndex(0);
    ui->cmbServerType->setCurrentIndex(2);
    ui->cmbBotType->setCurrentIndex(1);
    for (QCheckBox* box : {ui->chkAutoSelectBots, ui->chkNOP, ui->chkRequirePassword,
                           ui->chkSpecifyCD, ui->chkLogFile, ui->chkStartState})
        box->setChecked(false);
    for (QLineEdit* box : {ui->txtNetIP, ui->txtAdminName, ui->txtAdminEmail, ui->txtAdminURL})
        box->clear();
    ui->txtServerName->setText("Arena");
    ui->txtMaxPlayers->setText("8");
    ui->txtHunkMegs->setText("32");
    ui->txtNetPort->setText("27960");
    ui->txtCmdParameters->setEditText("");
}

void LaunchTest::commandLine_data() {
    QTest::addColumn<LaunchOptions>("options");
    QTest::addColumn<QString>("expected");
    // Type, N-0-P, memory, bots, password?, password, IP, port, parameters,
    // CD?, CD, admin name, mail, web site.
    const struct {
        const char* name;
        LaunchOptions options;
        const char* expected;
    } rows[] = {
        {"every piece, afternoon in 24 hours",
         {1, true, "48x", 2, true, "open sesame", "10.0.0.1", "",
          "   +set fs_game osp +set sv_fps 30  ", true, "D:", "Ann Admin", "ann@example.org",
          "http://example.org"},
         " +set dedicated 1 +sets gamestartup \"02/05/2000 17:04\" +sets configured_by "
         "Halvane_2.07 +set com_hunkmegs 48x +set g_password open sesame +set g_needpass 1 +set "
         "net_ip 10.0.0.1 +set fs_game osp +set sv_fps 30 +set fs_cdpath D:\\Quake3\\ +sets "
         "admin_name Ann Admin +sets admin_email ann@example.org +sets admin_website "
         "http://example.org +exec halvane.cfg"},
        {"listen server, bots disabled, address kept",
         {0, false, "64", 0, false, "", "192.168.1.10", "27961", "", false, "", "", "", ""},
         " +set dedicated 0 +sets configured_by Halvane_2.07 +set com_hunkmegs 64 +set "
         "bot_enable 0 +set g_needpass 0 +set net_ip 192.168.1.10 +set net_port 27961 +exec "
         "halvane.cfg"},
        {"blank parameters, stored CD unused, mail without name",
         {2, false, "32", 1, false, "", "", "", "    ", false, "E:", "", "only@mail", ""},
         " +set dedicated 2 +sets configured_by Halvane_2.07 +set com_hunkmegs 32 +set "
         "g_needpass 0 +sets admin_email only@mail +exec halvane.cfg"},
        {"nothing chosen, empty password",
         {-1, false, "", -1, true, "", "", "", "", false, "", "", "", ""},
         " +sets configured_by Halvane_2.07 +set com_hunkmegs  +set g_password  +set g_needpass 1 "
         "+exec halvane.cfg"},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.options << QString(row.expected);
}

void LaunchTest::commandLine() {
    QFETCH(LaunchOptions, options);
    QFETCH(QString, expected);
    QCOMPARE(buildCommandLine(options, Now), expected);
}

void LaunchTest::split_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("arguments");
    const struct {
        const char* name;
        const char* line;
        QStringList arguments;
    } rows[] = {
        {"blanks only", "   \t ", {}},
        {"runs of blanks and tabs, backslashes", " a  D:\\Q3\\\t\tc ", {"a", "D:\\Q3\\", "c"}},
        {"quotes inside a word", "a\"b c\"d e", {"ab cd", "e"}},
        {"empty quotes", "a \"\" b", {"a", "", "b"}},
        {"unclosed quote runs to the end", "a \"b  c", {"a", "b  c"}},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << QString(row.line) << row.arguments;
}

void LaunchTest::split() {
    QFETCH(QString, line);
    QFETCH(QStringList, arguments);
    QCOMPARE(splitCommandLine(line), arguments);
}

void LaunchTest::stepsRunInOrder() {
    makeWindow(platform->processes);
    ui->txtCmdParameters->setEditText("+set sv_fps 30");
    ui->cmdStart->click();

    const QString config = platform->gameFolder() + "/baseq3/halvane.cfg";
    QCOMPARE(events, (QStringList{"save parameters", "load parameters", "commit map", "bot script",
                                  "validate", "write " + config + " with"}));
    const QString line = buildCommandLine(launchOptionsFrom(*ui), Now);
    QCOMPARE(line, QStringLiteral(" +set dedicated 2 +sets configured_by Halvane_2.07 +set "
                                  "com_hunkmegs 32 +set g_needpass 0 +set net_port 27960 +set "
                                  "sv_fps 30 +exec halvane.cfg"));
    QCOMPARE(writtenCommandLines, QStringList{line});
    QCOMPARE(readAll(config), ("// quake3.exe" + line + "\r\n").toLatin1());

    QCOMPARE(platform->processes.started.size(), 1);
    const StartedProcess& started = platform->processes.started[0];
    QCOMPARE(started.program, platform->gameFolder() + "/quake3.exe");
    QCOMPARE(started.arguments, splitCommandLine(line));
    QCOMPARE(started.workingFolder, platform->gameFolder());
    QCOMPARE(window->launch().ServerTaskID, qint64(1000));
    QCOMPARE(platform->messages.shown.size(), 0);
    QCOMPARE(platform->desktop.busyDepth, 0);
    // The settings were stored by the validation, the line remembered.
    QVERIFY(platform->store->writes.contains("General/Name=Arena"));
    QCOMPARE(platform->store->read("Advanced", "Parameter0", ""), QStringLiteral("+set sv_fps 30"));
    QCOMPARE(ui->txtCmdParameters->count(), 1);
    QVERIFY(window->isVisible() && !window->isMinimized());
}

void LaunchTest::fixedBotScript_data() {
    QTest::addColumn<int>("botType");
    QTest::addColumn<bool>("random");
    QTest::addColumn<bool>("written");
    QTest::newRow("user-defined") << 1 << false << true;
    QTest::newRow("user-defined, randomized") << 1 << true << false;
    QTest::newRow("disabled") << 0 << false << false;
    QTest::newRow("automatic") << 2 << false << false;
}

void LaunchTest::fixedBotScript() {
    QFETCH(int, botType);
    QFETCH(bool, random);
    QFETCH(bool, written);
    makeWindow(platform->processes);
    ui->cmbBotType->setCurrentIndex(botType);
    ui->chkAutoSelectBots->setChecked(random);
    ui->txtServerName->clear(); // validation refuses: the script is written all the same
    ui->cmdStart->click();
    QCOMPARE(events.contains("bot script"), written);
    QCOMPARE(events.last(), QStringLiteral("ask Warning!"));
    // A refused validation ends the launch: nothing written, nothing started.
    QCOMPARE(writtenCommandLines.size(), 0);
    QVERIFY(!QFile::exists(platform->gameFolder() + "/baseq3/halvane.cfg"));
    QCOMPARE(platform->processes.started.size(), 0);
    QCOMPARE(platform->desktop.busyDepth, 0);
    QCOMPARE(window->launch().ServerTaskID, qint64(0));
}

// Answering No; the Yes path starts a second real server end to end.
void LaunchTest::duplicateServer() {
    makeWindow(platform->processes);
    // No server yet: nothing to ask about, nothing activated.
    ui->cmdStart->click();
    QCOMPARE(platform->processes.activated, QList<qint64>{});
    QCOMPARE(platform->messages.shown.size(), 0);

    events.clear();
    QFile::remove(platform->gameFolder() + "/baseq3/halvane.cfg");
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
    QCOMPARE(platform->desktop.busyDepth, 0);
    QVERIFY(platform->desktop.busyCalls >= 4); // the pointer was busy while asking the system
    QCOMPARE(events, (QStringList{"save parameters", "load parameters", "commit map",
                                  "ask Duplicate Server Confirmation"}));
    QVERIFY(!QFile::exists(platform->gameFolder() + "/baseq3/halvane.cfg"));
    QCOMPARE(platform->processes.started.size(), 1);
    QCOMPARE(window->launch().ServerTaskID, qint64(1000));

    // Once that server has ended, nothing is asked.
    platform->processes.alive.clear();
    ui->cmdStart->click();
    QCOMPARE(platform->messages.shown.size(), 1);
    QCOMPARE(platform->processes.started.size(), 2);
}

void LaunchTest::afterTheStart_data() {
    QTest::addColumn<bool>("startState");
    QTest::addColumn<bool>("minimize"); // or close
    QTest::newRow("stay, though close is chosen") << false << false;
    QTest::newRow("minimise") << true << true;
    QTest::newRow("close") << true << false;
}

void LaunchTest::afterTheStart() {
    QFETCH(bool, startState);
    QFETCH(bool, minimize);
    makeWindow(platform->processes);
    ui->chkStartState->setChecked(startState);
    (minimize ? ui->optMinimize : ui->optClose)->setChecked(true);
    ui->txtCmdParameters->setEditText("+set typed 1");
    ui->cmdStart->click();

    QCOMPARE(platform->processes.started.size(), 1);
    QCOMPARE(platform->desktop.busyDepth, 0);
    QCOMPARE(platform->messages.shown.size(), 0);
    const bool closed = startState && !minimize;
    QCOMPARE(window->isVisible(), !closed);
    QCOMPARE(window->isMinimized(), startState && minimize);
    // Closing runs the shut-down: everything stored, the program ended.
    QCOMPARE(window->hasEnded(), closed);
    QVERIFY(!closed || platform->store->writes.contains("Options/StartClose=True"));
}

void LaunchTest::realStartRunsTheWrittenLine() {
    makeStandInGame(*platform);
    makeWindow(realProcesses);
    window->launch().hooks().WriteConfig = wired.WriteConfig;
    window->launch().hooks().MakeBotScript = wired.MakeBotScript;
    window->launch().hooks().now = [] { return QDateTime(QDate(2000, 2, 5), QTime(5, 3)); };
    ui->chkNOP->setChecked(true);
    // Quotes group words; shell characters are plain text to the game.
    const QString typed = "+set g_motd \"hello  there\" +set a `touch made1`;touch made2 "
                          "$(touch made3)|tee made4>made5";
    ui->txtCmdParameters->setEditText(typed);
    ui->txtServerPW->setText("x;touch made6");
    ui->chkRequirePassword->setChecked(true);
    ui->cmdStart->click();

    QCOMPARE(onlyMessage(platform->messages), "0 messages");
    const QString record = platform->root() + "/started.txt";
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 10000);
    // The configuration's last comment holds the very line the game received.
    QStringList lines =
        QString::fromLatin1(readAll(platform->gameFolder() + "/baseq3/halvane.cfg")).split("\r\n");
    lines.removeAll(QString());
    const QString prefix = QStringLiteral("// Command Line:  \"quake3.exe");
    QVERIFY2(lines.value(lines.size() - 1).startsWith(prefix), qPrintable(lines.join('\n')));
    const QString line = lines.last().mid(prefix.size()).chopped(1);
    QCOMPARE(line, " +set dedicated 2 +sets gamestartup \"02/05/2000 05:03\" +sets configured_by "
                   "Halvane_2.07 +set com_hunkmegs 32 +set g_password x;touch made6 +set "
                   "g_needpass 1 +set net_port 27960 " +
                       typed + " +exec halvane.cfg");
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

void LaunchTest::failures_data() {
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("stepText"); // "<exe>" stands for the whole command
    QTest::addColumn<int>("code");
    const struct {
        const char* fault;
        const char* stepText;
        int code;
    } rows[] = {
        {"folder vanishes after the write", "Error changing directories", 2},
        {"folder vanishes before the write", "", 2},
        {"writer fails", "", 5},
        {"executable not executable", "<exe>", 13},
        {"executable missing", "<exe>", 2},
        {"executable cannot run", "<exe>", 5}, // executable by its mode, but no program
    };
    for (const auto& row : rows)
        QTest::newRow(row.fault) << QString(row.fault) << QString(row.stepText) << row.code;
}

void LaunchTest::failures() {
    QFETCH(QString, fault);
    QFETCH(QString, stepText);
    QFETCH(int, code);
    makeStandInGame(*platform);
    makeWindow(realProcesses);
    const QString exe = platform->gameFolder() + "/quake3.exe";
    if (fault.contains("write")) {
        // The folder vanishes before the write, which fails, or after a write
        // that succeeded, which only the start can notice; or the writer fails.
        window->launch().hooks().WriteConfig = [this, fault](const QString& path, bool,
                                                             const QString& line) {
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

    ui->cmdStart->click();

    if (stepText == "<exe>")
        stepText = "quake3.exe" + writtenCommandLines.value(0);
    QCOMPARE(onlyMessage(platform->messages),
             message("Warning!", stepText + "\r\rError:  " + QString::number(code), MsgButtons::Ok,
                     MsgIcon::Critical));
    QCOMPARE(platform->desktop.busyDepth, 0);
    QCOMPARE(window->launch().ServerTaskID, qint64(0));
    // Nothing was started: the stand-in would have left its record.
    QTest::qWait(300);
    QVERIFY(!QFile::exists(platform->root() + "/started.txt"));
    QVERIFY(window->isVisible());
    QCOMPARE(childProcesses(), QStringList{});
}

QTEST_MAIN(LaunchTest)
#include "tst_launch.moc"
