// A first run points Halvane at the free game, if Debian has it installed.
#include "TestSupport.h"

#include "ui/FirstRun.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

const QByteArray OfferedMaps = "oa_dm10\r\noa_dm2\r\noa_ctf4ish\r\noa_dm1\r\n";

} // namespace

class DesktopTest : public QObject {
    Q_OBJECT
private slots:
    void firstRunPreparesTheFreeGame();
    void firstRunStoresNothing_data();
    void firstRunStoresNothing();
    void firstRunKeepsTheOperatorsRotation();
};

void DesktopTest::firstRunPreparesTheFreeGame() {
    TestPlatform platform;
    const FreeGameSources sources = fakeFreeGame(platform);
    const QString folder = platform.root() + "/o'neil game"; // one word for sh all the same
    QCOMPARE(prepareFirstRun(*platform.store, folder, sources, platform.programFolder()).outcome,
             FirstRunResult::Prepared);

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
    // deathmatch maps by number as the rotation.
    QCOMPARE(readAll(platform.programFolder() + "/maplist.txt"), OfferedMaps);
    QCOMPARE(readAll(platform.programFolder() + "/mapsel.txt"),
             QByteArray("oa_dm1\r\noa_dm2\r\noa_dm10\r\n"));

    // The next start goes straight to the main window with the maps imported.
    platform.reopenStore();
    MainWindow window(*platform.app);
    window.start();
    QVERIFY(!window.pathDialog().isVisible() && window.isLoaded());
    QCOMPARE(platform.app->state.GameFolder, folder);
    QCOMPARE(window.form().SelMap->item(2)->text(), QStringLiteral("oa_dm10"));
    QCOMPARE(window.form().txtHunkMegs->text(), QStringLiteral("64")); // the free game's maps fit
}

void DesktopTest::firstRunStoresNothing_data() {
    QTest::addColumn<QString>("missing"); // below the test folder; "" for a stored location
    QTest::newRow("location already stored") << "";
    QTest::newRow("no engine") << "/usr/lib/ioquake3/ioq3ded";
    QTest::newRow("no archives") << "/usr/share/baseoa";
    QTest::newRow("no game code") << "/usr/lib/openarena-server/qagamex86_64.so";
}

void DesktopTest::firstRunStoresNothing() {
    QFETCH(QString, missing);
    TestPlatform platform;
    const FreeGameSources sources = fakeFreeGame(platform);
    if (missing.isEmpty())
        platform.ini->write("Settings", "Path", "/somewhere/else");
    else if (!QFile::remove(platform.root() + missing))
        QDir(platform.root() + missing).removeRecursively();
    const QString folder = platform.root() + "/openarena";
    const FirstRunResult result =
        prepareFirstRun(*platform.store, folder, sources, platform.programFolder());
    QCOMPARE(result.outcome,
             missing.isEmpty() ? FirstRunResult::AlreadyStored : FirstRunResult::Failed);
    QVERIFY(missing.isEmpty() || result.message.contains("ioquake3-server and openarena-server."));
    QVERIFY(platform.store->writes.isEmpty() && !QFileInfo::exists(folder));
}

void DesktopTest::firstRunKeepsTheOperatorsRotation() {
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/mapsel.txt", "q3dm17\r\n");
    prepareFirstRun(*platform.store, platform.root() + "/openarena", fakeFreeGame(platform),
                    platform.programFolder());
    QCOMPARE(readAll(platform.programFolder() + "/mapsel.txt"), QByteArray("q3dm17\r\n"));
    QCOMPARE(readAll(platform.programFolder() + "/maplist.txt"), OfferedMaps);
}

QTEST_MAIN(DesktopTest)
#include "tst_desktop.moc"
