// A first run points Halvane at the free game, if Debian has it installed;
// the program keeps its files where its user can write them.
#include "TestSupport.h"

#include "ui/FirstRun.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QProcess>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// A folder its user cannot write to while this lives: by its permissions, and
// for root, whom they do not stop, by a read-only mount of it over itself.
struct ReadOnlyFolder {
    QString path;
    bool mounted = false;
    explicit ReadOnlyFolder(const QString& folder) : path(folder) {
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
        if (!holds())
            mounted = QProcess::execute("mount", {"--bind", "-o", "ro", path, path}) == 0;
    }
    ~ReadOnlyFolder() {
        if (mounted)
            QProcess::execute("umount", {path});
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    bool holds() const {
        QFile probe(path + "/probe");
        return !probe.open(QIODevice::WriteOnly) || !probe.remove();
    }
};

} // namespace

// Below the test's folder: the executable's folder, the delivered files' folder, and the data
// folders all users share (or none); whether the delivered files' folder is read-only, and whether
// the program's files then live in a folder of the user's own.
const std::tuple<const char*, QString, QString, QString, bool, bool> Installs[] = {
    {"build or folder install", "/hv", "/hv", "", false, false},
    {"read-only folder", "/hv", "/hv", "", true, true},
    {"own prefix", "/hv/bin", "/hv/share/halvane", "", false, false},
    {"system prefix", "/usr/bin", "/usr/share/halvane", "/usr/share", false, true},
};

// What is missing below the test folder ("stored" for a location already stored, "" for nothing),
// and the operator's mapsel.txt before the first run (none when empty).
const std::tuple<const char*, const char*, QByteArray> FirstRuns[] = {
    {"free game installed", "", ""},
    {"operator's rotation kept", "", "q3dm17\r\n"},
    {"location already stored", "stored", ""},
    {"no engine", "/usr/lib/ioquake3/ioq3ded", ""},
    {"no archives", "/usr/share/baseoa", ""},
    {"no game code", "/usr/lib/openarena-server/qagamex86_64.so", ""},
};

class DesktopTest : public QObject {
    Q_OBJECT
private slots:
    void firstRunPreparesTheFreeGame_data() { addRows(FirstRuns); }
    void firstRunPreparesTheFreeGame();
    void programFolderOfEveryInstall_data() { addRows(Installs); }
    void programFolderOfEveryInstall();
};

// Whatever is missing, nothing is stored or made; otherwise the game's folder is made with a
// starter script that sh reads as one word, whatever the folder's name.
void DesktopTest::firstRunPreparesTheFreeGame() {
    const auto& [name, missing, rotation] = fetchRow(FirstRuns);
    TestPlatform platform;
    const FreeGameSources sources = fakeFreeGame(platform);
    const QString folder = platform.root() + "/o'neil game", program = platform.programFolder();
    platform.ini->write("Settings", "Path", "/gone"); // a location the next start would forget
    if (!rotation.isEmpty())
        platform.writeFile(program + "/mapsel.txt", rotation);
    const bool stored = QString(missing) == "stored";
    if (stored)
        platform.makeGameFolder();
    else if (*missing && !QFile::remove(platform.root() + missing))
        QDir(platform.root() + missing).removeRecursively();
    const FirstRunResult result = prepareFirstRun(*platform.store, folder, sources, program);
    if (*missing) {
        QCOMPARE(result.outcome, stored ? FirstRunResult::AlreadyStored : FirstRunResult::Failed);
        QVERIFY2(result.message.contains(stored ? "Set Quake 3 path (Ctrl+P), press \"Use the "
                                                  "installed free game\" and then Okay."
                                                : "ioquake3-server and openarena-server."),
                 qPrintable(result.message));
        QVERIFY(platform.store->writes.isEmpty() && !QFileInfo::exists(folder));
        return;
    }
    QCOMPARE(result.outcome, FirstRunResult::Prepared);
    QCOMPARE(QDir(folder + "/baseoa").entryList(QDir::Files | QDir::System),
             QStringList({"pak0.pk3", "pak1-maps.pk3", "qagamex86_64.so"}));
    QCOMPARE(QFileInfo(folder + "/baseoa/pak0.pk3").symLinkTarget(),
             sources.dataFolder + "/pak0.pk3");
    QVERIFY(QDir(folder + "/baseq3").exists() && QDir(folder + "/baseq3").isEmpty());
    QVERIFY(QFileInfo(folder + "/quake3.exe").isExecutable());
    const QByteArray quoted = "'" + platform.root().toUtf8() + "/o'\\''neil game";
    const QByteArray script =
        "#!/bin/sh\n"
        "# The free OpenArena game on the ioquake3 dedicated server, set up by Halvane as its "
        "game.\nexec '" +
        sources.engine.toUtf8() +
        "' +set com_basegame baseoa +set fs_game baseq3 +set fs_basepath " + quoted +
        "' +set fs_homepath " + quoted +
        "/home' +set com_legacyprotocol 71 +set com_protocol 71 +set vm_game 0 \"$@\"\n";
    const QByteArray actual = readAll(folder + "/quake3.exe");
    QVERIFY2(actual == script, qPrintable(firstDifference(actual, script)));
    // Every map of the archives offered for import; the first three
    // deathmatch maps by number as the rotation, unless the operator has one.
    QCOMPARE(readAll(program + "/maplist.txt"),
             QByteArray("oa_dm10\r\noa_dm2\r\noa_ctf4ish\r\noa_dm1\r\n"));
    QCOMPARE(readAll(program + "/mapsel.txt"),
             rotation.isEmpty() ? QByteArray("oa_dm1\r\noa_dm2\r\noa_dm10\r\n") : rotation);
}

// The first start fills the user's folder from the installed files, the
// operator's edits land there, and the next start reads them; an install the
// user can write to keeps everything as it always did.
void DesktopTest::programFolderOfEveryInstall() {
    const auto& [name, executable, delivered, systemData, readOnly, perUser] = fetchRow(Installs);
    TestPlatform platform;
    platform.makeGameFolder();
    const QString root = platform.root(), user = root + "/user/program";
    const QByteArray catalogue = catalogueOf({"q3dm1", "q3dm17"});
    platform.writeFile(root + delivered + "/instmaps.dat", catalogue);
    platform.writeFile(root + delivered + "/botlist.txt", "Grunt\r\n");
    QDir().mkpath(root + executable);
    const QByteArray shared = qgetenv("XDG_DATA_DIRS");
    qputenv("XDG_DATA_DIRS", (systemData.isEmpty() ? shared : (root + systemData).toUtf8()));
    const auto restore = qScopeGuard([&] { qputenv("XDG_DATA_DIRS", shared); });
    std::optional<ReadOnlyFolder> locked;
    if (readOnly && !locked.emplace(root + delivered).holds())
        QSKIP("No read-only folder can be made here");

    const QString program = perUser ? user : root + delivered;
    for (const bool firstStart : {true, false}) {
        *platform.folder =
            locateProgramFolder(root + executable, user, platform.folder->stateFolder());
        QCOMPARE(platform.folder->path(), program);
        QCOMPARE(platform.folder->installed(), root + delivered);
        MainWindow window(*platform.app);
        window.start();
        QVERIFY(platform.messages.shown.isEmpty());
        if (firstStart) {
            QCOMPARE(readAll(program + "/maps.dat"), catalogue);
            QCOMPARE(readAll(program + "/botlist.txt"), QByteArray("Grunt\r\n"));
            clickEntry(window.form().MapList, 1);
            window.form().cmdAddSelMap->click();
            platform.writeFile(program + "/botlist.txt", "Orbb\r\n");
        } else {
            QCOMPARE(entries(window.form().SelMap).value(0), QStringLiteral("q3dm17"));
            QCOMPARE(window.form().BotList->item(0)->text(), QStringLiteral("Orbb"));
        }
        window.close();
        platform.reopenStore();
    }
    QCOMPARE(readAll(program + "/mapsel.txt"), QByteArray("q3dm17\r\n"));
    QCOMPARE(QFileInfo::exists(user), perUser);
    if (perUser) // nothing written into the install
        QCOMPARE(readAll(root + delivered + "/botlist.txt"), QByteArray("Grunt\r\n"));
}

QTEST_MAIN(DesktopTest)
#include "tst_desktop.moc"
