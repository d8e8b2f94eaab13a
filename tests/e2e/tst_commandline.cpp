// The command line as a script or a service manager runs it: the real executable, with no display
// variables, on a settings file and game folder of its own. What it writes is compared with the
// window's own writes; what it starts and exports is checked against the real dedicated server.
#include "ConfigBranches.h"
#include "RealServer.h"
#include "TestSupport.h"

#include "config/ConfigFileCommands.h"
#include "export/ExportFiles.h"
#include "maps/MapSelectionFile.h"
#include "profiles/ProfileStore.h"
#include "server/ServerManager.h"
#include "ui_frmMain.h"

#include <QAction>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>
#include <csignal>

using namespace halvane;
using namespace halvane::e2e;
using namespace std::chrono_literals;

namespace {

struct Result {
    int code = -1;
    QString out, err;
};

// Runs a configured process to its end.
Result finish(QProcess& process, const QString& program, const QStringList& arguments) {
    process.start(program, arguments);
    process.waitForFinished(120000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

// The executable copied into the test's program folder (its own files lie beside it) and run with a
// home of the test's, on the stored settings of the test's INI file (or on the settings given).
struct CommandLine {
    test::TestPlatform& platform;
    explicit CommandLine(test::TestPlatform& p) : platform(p) {
        QFile::copy(HALVANE_BIN_DIR "/halvane", platform.programFolder() + "/halvane");
    }
    Result run(const QStringList& arguments, const QByteArray& settings = {}) {
        platform.ini->flush();
        const QString config = platform.root() + "/config/Halvane/Halvane.ini";
        platform.writeFile(config,
                           settings.isEmpty() ? test::readAll(platform.iniPath()) : settings);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            env.remove(name);
        for (const auto& [name, folder] : {std::pair{"HOME", "/home"},
                                           {"XDG_CONFIG_HOME", "/config"},
                                           {"XDG_STATE_HOME", "/xdgstate"},
                                           {"XDG_DATA_HOME", "/data"},
                                           {"XDG_RUNTIME_DIR", "/run"}})
            env.insert(name, platform.root() + folder);
        QDir().mkpath(platform.root() + "/run");
        QFile::setPermissions(platform.root() + "/run",
                              QFileDevice::Permissions(0x7000)); // owner's
        QProcess process;
        process.setProcessEnvironment(env);
        process.setWorkingDirectory(platform.root());
        return finish(process, platform.programFolder() + "/halvane", arguments);
    }
};

// Every file below a folder, by relative path, and its bytes.
QMap<QString, QByteArray> filesBelow(const QString& folder) {
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(QDir(folder).relativeFilePath(path), test::readAll(path));
    }
    return files;
}

void store(SettingsStore& settings, const QString& entries, QChar separator = ';') {
    for (const QString& entry : entries.split(separator, Qt::SkipEmptyParts))
        settings.write(entry.section('/', 0, 0), entry.section('/', 1).section('=', 0, 0),
                       entry.section('=', 1));
    settings.flush();
}

} // namespace

// The arguments, the exit code, part of the message, and whether a game location is stored.
const std::tuple<const char*, QStringList, int, const char*, bool> Refusals[] = {
    {"unknown command", {"frobnicate"}, 2, "unknown command", true},
    {"unknown option", {"launch", "--fast"}, 2, "unknown option", true},
    {"stop without ID", {"stop"}, 2, "missing", true},
    {"export, two folders", {"export", "a", "b"}, 2, "unexpected", true},
    {"no such profile", {"write-config", "--profile", "nope"}, 3, "profile named nope", true},
    {"no such server", {"stop", "123-4"}, 3, "no server", true},
    {"no game location", {"launch"}, 4, "no game location", false},
    {"export into an existing folder", {"export", "game"}, 1, "already exists", true},
    {"export below a file", {"export", "game/quake3.exe/x"}, 1, "does not exist", true},
    {"a question answered as by Enter", {"write-config"}, 1, "far exceeds the typical", true},
    {"window argument", {"--frob"}, 2, "unknown argument", true},
};

class TestCommandLine : public QObject {
    Q_OBJECT
private slots:
    void writeConfigIsTheWindows_data() { test::addRows(test::Branches); }
    void writeConfigIsTheWindows();
    void refusals_data() { test::addRows(Refusals); }
    void refusals();
    void launchStatusStopAndExport();
    void runScriptKeepsEveryWord();
    void exportOnAFullDisk();
};

// "Create halvane.cfg" in a window just started against write-config on the
// same stored settings, each case of the configuration writer's with the
// rotation of two maps: the same files, byte for byte.
void TestCommandLine::writeConfigIsTheWindows() {
    const QStringList maps{"q3dm1", "q3dm7"};
    test::WindowFixture w([&](test::TestPlatform& p) {
        store(*p.ini, std::get<4>(test::fetchRow(test::Branches)), '\n');
        p.writeFile(p.programFolder() + "/maps.dat", test::catalogueOf(maps));
        QVERIFY(writeMapSelection(p.programFolder() + "/mapsel.txt", maps));
    });
    const QString baseq3 = w.platform.gameFolder() + "/baseq3";
    // The window's write stores its settings: the second command runs on them as they were.
    w.platform.ini->flush();
    const QByteArray stored = test::readAll(w.platform.iniPath());
    CommandLine cli(w.platform);
    const auto cliWrites = [&] {
        const Result result = cli.run({"write-config"}, stored);
        QMap<QString, QByteArray> files = filesBelow(baseq3);
        QDir(baseq3).removeRecursively();
        QDir().mkdir(baseq3);
        return result.err == "Success!: halvane.cfg has been created in your baseq3 folder, would "
                             "you like to view it now?\n(answered Yes)\n"
                   ? files
                   : QMap<QString, QByteArray>{{"error", result.err.toUtf8()}};
    };
    QMap<QString, QByteArray> written = cliWrites();
    QVERIFY(w.window->configCommands().mnuFileMakeCfg());
    const QMap<QString, QByteArray> window = filesBelow(baseq3);
    QVERIFY(window.contains("srvmaps/mapset1.cfg")); // the rotation was read
    QVERIFY(QDir(baseq3).removeRecursively() && QDir().mkdir(baseq3));
    if (written != window) // a date-coded log's minute may have turned in between
        written = cliWrites();
    // Options, where the last run closed, is left at the start: its master boxes do not count.
    QCOMPARE(written["halvane.cfg"].contains("seta sv_master1"), !stored.contains("LastTab=3"));
    QCOMPARE(written.keys(), window.keys());
    for (auto it = window.cbegin(); it != window.cend(); ++it)
        QVERIFY2(written[it.key()] == it.value(),
                 qPrintable(it.key() + ": " + test::firstDifference(written[it.key()], *it)));
}

// Bad input: a clear message, its exit code, nothing written.
void TestCommandLine::refusals() {
    const auto& [name, arguments, code, message, location] = test::fetchRow(Refusals);
    test::TestPlatform p;
    if (location)
        p.makeGameFolder();
    store(*p.ini, "Network/HunkMegs=128"); // "change this first?" on a dedicated server
    CommandLine cli(p);
    const QStringList before = QDir(p.root()).entryList(QDir::AllEntries | QDir::Hidden);
    const QMap<QString, QByteArray> program = filesBelow(p.programFolder());
    const QMap<QString, QByteArray> game = filesBelow(p.gameFolder());
    const Result result = cli.run(arguments);
    QCOMPARE(result.code, code);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QCOMPARE(filesBelow(p.programFolder()), program);
    QCOMPARE(filesBelow(p.gameFolder()), game);
    for (const QString& made : QDir(p.root()).entryList(QDir::AllEntries | QDir::Hidden))
        QVERIFY2(before.contains(made) || made == "config" || made == "xdgstate" || made == "run",
                 qPrintable(made));
}

// launch, status, stop and export on the settings the window stored and on a profile (its own
// settings and maps, not the stored ones), with the real server answering on the loopback
// interface each time.
void TestCommandLine::launchStatusStopAndExport() {
    const QString missing = missingEngine();
    if (!missing.isEmpty())
        QSKIP(qPrintable("dedicated server not installed: " + missing));
    test::TestPlatform p;
    const QString game = p.root() + "/oa";
    QCOMPARE(buildGameFolder(game), QString());
    const quint16 port = freeUdpPort();
    const QString settings = "Settings/Path=" + game +
                             ";Settings/Exe=quake3.exe;General/RconPassword=cli-rcon"
                             ";General/Password=cli-join;Advanced/RequirePW=1;Network/NetIP="
                             "127.0.0.1;Network/HunkMegs=64;Options/Master0=;Options/Master1="
                             ";Network/NetPort=" +
                             QString::number(port);
    store(*p.ini, settings + ";General/Name=Halvane CLI e2e");
    Profile profile; // the same with a host name, a console password and a map of its own
    store(profile.settings,
          settings + ";General/Name=Halvane CLI profile;General/RconPassword=cli-side");
    profile.maps = {"oa_dm2"};
    QCOMPARE(ProfileStore(p.root() + "/config/Halvane/profiles").save("e2e", profile), QString());
    p.writeFile(p.programFolder() + "/maplist.txt", "oa_dm2\r\noa_dm3\r\n");
    QVERIFY(writeMapSelection(p.programFolder() + "/mapsel.txt", {"oa_dm3", "oa_dm2"}));
    CommandLine cli(p);
    QList<qint64> started;
    auto cleanup = qScopeGuard([&] {
        for (qint64 pid : started)
            ::kill(pid_t(pid), SIGKILL);
    });
    // The server window's list, open all the while, takes in what the command line starts
    // and stops.
    QtProcesses processes;
    ProgramFolder cliFolder(p.programFolder(), p.root() + "/xdgstate/Halvane");
    AppContext app{{p.messages, p.dialogs, processes, p.shell, p.desktop, *p.store, cliFolder}, {}};
    ServerManager listed(app);
    listed.load();

    Result result;
    for (const auto& [profileName, host, map] :
         {std::tuple{"", "Halvane CLI e2e", "oa_dm3"},
          std::tuple{"e2e", "Halvane CLI profile", "oa_dm2"}}) {
        result = cli.run(*profileName ? QStringList{"launch", "--profile", profileName}
                                      : QStringList{"launch"});
        QVERIFY2(result.code == 0 && result.out.startsWith("Started "), qPrintable(result.err));
        const QString id = result.out.mid(8).trimmed();
        const qint64 pid = id.section('-', 1).toLongLong();
        started << pid;
        // Ended is ended, also while nobody has reaped it yet.
        const auto lives = [pid] {
            const QByteArray stat = test::readAll("/proc/" + QString::number(pid) + "/stat");
            return !stat.isEmpty() && stat.mid(stat.lastIndexOf(')') + 2, 1) != "Z";
        };
        QVERIFY2(waitForMap(port, map, lives).value_or(ServerStatus()).info["sv_hostname"] == host,
                 "the launched server does not answer");
        QTRY_VERIFY_WITH_TIMEOUT(listed.find(id), 10000);
        QCOMPARE(listed.find(id)->record.profile, QString(profileName));
        const auto statusOf = [&]() {
            const Result status = cli.run({"status", "--json"});
            for (const QJsonValue& server : QJsonDocument::fromJson(status.out.toUtf8()).array())
                if (server["id"].toString() == id)
                    return server.toObject();
            return QJsonObject();
        };
        const QJsonObject server = statusOf();
        QCOMPARE(std::tuple(server["state"].toString(), server["hostname"].toString(),
                            server["port"].toInt()),
                 std::tuple(QStringLiteral("running"), QString(host), int(port)));
        result = cli.run({"stop", id});
        QVERIFY2(result.code == 0, qPrintable(result.err));
        QVERIFY(!lives());
        QCOMPARE(statusOf()["state"].toString(), QStringLiteral("ended"));
        QTRY_COMPARE_WITH_TIMEOUT(listed.find(id)->record.endReason, QStringLiteral("stopped"),
                                  10000);
    }

    QVERIFY(QFile::remove(game + "/baseq3/halvane.cfg"));
    result = cli.run({"write-config", "--profile", "e2e"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QVERIFY(test::readAll(game + "/baseq3/halvane.cfg")
                .contains("seta sv_hostname \"Halvane CLI profile\"\r\n"));
    result = cli.run({"export", "--profile", "e2e", "side"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    const QString side = p.root() + "/side/";
    QVERIFY(test::readAll(side + "baseq3/halvane.cfg").contains("\"Halvane CLI profile\""));
    QVERIFY(test::readAll(side + "baseq3/passwords.cfg").contains("cli-side"));
    QVERIFY(QFileInfo::exists(side + "halvane-e2e.service"));

    // The export, copied to a fresh place and started with its run-server.sh.
    result = cli.run({"export", p.root() + "/export"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    {
        // The window's "Export Server…" on the same settings writes the same folder.
        p.app->state.GameFolder = game;
        p.app->state.GameExeName = "quake3.exe";
        MainWindow window(*p.app);
        window.showMainWindow();
        p.dialogs.choices = {{true, p.root() + "/fromwindow", "fromwindow"}};
        window.findChild<QAction*>("mnuServerExport")->trigger();
        QCOMPARE(test::onlyMessage(p.messages),
                 test::message("Export Server",
                               "The server's files were written to " + p.root() +
                                   "/fromwindow.\r\rREADME.md in it says how to run them.",
                               MsgButtons::Ok, MsgIcon::Information));
        QCOMPARE(filesBelow(p.root() + "/fromwindow"), filesBelow(p.root() + "/export"));
    }
    QCOMPARE(QProcess::execute("cp", {"-a", p.root() + "/export", p.root() + "/elsewhere"}), 0);
    const QString folder = p.root() + "/elsewhere";
    const QMap<QString, QByteArray> files = filesBelow(folder);
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        QVERIFY2((!it->contains("cli-rcon") && !it->contains("cli-join")) ||
                     it.key() == "baseq3/passwords.cfg",
                 qPrintable(it.key() + " holds a password"));
    const QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    QCOMPARE(QFile::permissions(folder + "/baseq3/passwords.cfg") & (ownerOnly | 0x0077),
             ownerOnly);
    QProcess exported;
    exported.setStandardOutputFile(QProcess::nullDevice());
    exported.start(folder + "/run-server.sh");
    QVERIFY(exported.waitForStarted()); // and killed when the test ends
    const auto status =
        waitForMap(port, "oa_dm3", [&] { return exported.state() == QProcess::Running; });
    QVERIFY2(status, "the exported server does not answer");
    QCOMPARE(QStringList({status->info["sv_hostname"], status->info["g_needpass"]}),
             QStringList({"Halvane CLI e2e", "1"}));
    const auto console = rcon(port, "cli-rcon", "serverinfo");
    QVERIFY2(console && console->contains("Halvane CLI e2e"), "the console password is not set");
    const auto join = rcon(port, "cli-rcon", "g_password");
    QVERIFY2(join && join->contains("cli-join"), "the server password is not set");
    exported.terminate();
    exported.waitForFinished();

    if (QStandardPaths::findExecutable("systemd-analyze").isEmpty())
        QSKIP("systemd-analyze is not installed: the unit is not verified");
    QProcess verify;
    const Result unit =
        finish(verify, "systemd-analyze", {"verify", folder + "/halvane-halvane-cli-e2e.service"});
    QVERIFY2(unit.code == 0, qPrintable(unit.err));

    const QString validator = qEnvironmentVariable("HALVANE_MANIFEST_VALIDATOR");
    if (validator.isEmpty())
        QSKIP("no manifest validator: the Kubernetes schemas are not checked");
    QProcess node;
    const Result schemas = finish(node, "node", {validator, folder + "/kubernetes.yaml"});
    QVERIFY2(schemas.code == 0, qPrintable(schemas.err));
    QCOMPARE(schemas.out.trimmed(), QStringLiteral("ConfigMap Secret Deployment Service"));
}

// The operator's parameter line reaches the game through run-server.sh as the
// same words: none split, joined or expanded by the shell.
void TestCommandLine::runScriptKeepsEveryWord() {
    test::TestPlatform p;
    ExportInput input;
    input.engine = p.writeFile(p.root() + "/engine", "#!/bin/sh\nprintf '%s\\n' \"$@\"\n");
    QFile::setPermissions(input.engine, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    input.gameArguments = {"+set",  "sv_hostname", "two  words",
                           "+set",  "a",           "it's \"quoted\"",
                           "+set",  "b",           "$HOME `id` $(id) %h \\ *",
                           "+exec", "halvane.cfg"};
    const QString script = p.writeFile(p.root() + "/run-server.sh", exporting::runScript(input));
    QProcess run;
    QCOMPARE(finish(run, "/bin/sh", {script}).out.split('\n', Qt::SkipEmptyParts),
             exporting::serverArguments(input, QFileInfo(p.root()).canonicalFilePath(), true));
}

// An export that runs out of room half way, or finds its folder read-only, leaves nothing behind.
void TestCommandLine::exportOnAFullDisk() {
    test::TestPlatform p;
    p.makeGameFolder();
    const QString disk = p.root() + "/disk";
    QDir().mkpath(disk);
    if (QProcess::execute("mount", {"-t", "tmpfs", "-o", "size=16k", "tmpfs", disk}) != 0)
        QSKIP("Mounting a small disk needs root; run as root to fill one.");
    auto unmount = qScopeGuard([&] { QProcess::execute("umount", {"-l", disk}); });
    CommandLine cli(p);
    const Result result = cli.run({"export", disk + "/server"});
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.startsWith("Export Server: Cannot write " + disk + "/server/") &&
                 result.err.contains("No space left on device"),
             qPrintable(result.err));
    // The same disk read-only: no folder can be made there.
    QCOMPARE(QProcess::execute("mount", {"-o", "remount,ro", disk}), 0);
    const Result readOnly = cli.run({"export", disk + "/server"});
    QVERIFY2(readOnly.code == 1 && readOnly.err.contains(disk + "/server cannot be made: "),
             qPrintable(readOnly.err));
    QCOMPARE(QDir(disk).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

QTEST_MAIN(TestCommandLine)
#include "tst_commandline.moc"
