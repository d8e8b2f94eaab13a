// A real desktop program: every control has a name a screen reader speaks,
// and a first run points Halvane at the free game.
#include "TestSupport.h"

#include "ui/Accessibility.h"
#include "ui/FirstRun.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QAbstractButton>
#include <QLabel>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class DesktopTest : public QObject {
    Q_OBJECT
private slots:
    void everyInputControlHasASpokenName();
    void buddyLabelsNameTheirBoxes();
    void firstRunPreparesTheFreeGame();
    void firstRunLetsTheMainWindowOpenDirectly();
    void firstRunNeverTouchesAStoredLocation();
    void firstRunWithoutTheFreeGameStoresNothing_data();
    void firstRunWithoutTheFreeGameStoresNothing();
    void scriptQuotesAFolderWithBlanks();
    void firstRunOffersTheFreeGamesMaps();
    void firstRunKeepsTheOperatorsMapFiles();

private:
    struct Sources {
        QTemporaryDir dir;
        FreeGameSources paths;
        Sources() {
            paths.engine = dir.path() + "/lib/ioquake3/ioq3ded";
            paths.dataFolder = dir.path() + "/share/baseoa";
            paths.gameLibrary = dir.path() + "/lib/openarena-server/baseoa/qagamex86_64.so";
            write(paths.engine, "#!/bin/sh\n");
            QFile::setPermissions(paths.engine, QFile::ReadOwner | QFile::ExeOwner);
            write(paths.dataFolder + "/pak0.pk3", "PK");
            write(paths.dataFolder + "/pak1-maps.pk3", "PK");
            write(paths.dataFolder + "/readme.txt", "not an archive");
            write(paths.gameLibrary, "ELF");
        }
        static void write(const QString& path, const QByteArray& bytes) {
            QDir().mkpath(QFileInfo(path).absolutePath());
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
    };
};

void DesktopTest::everyInputControlHasASpokenName() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.showMainWindow();
    QSet<QWidget*> buddies;
    for (QLabel* label : window.findChildren<QLabel*>()) {
        if (label->buddy() && !label->text().trimmed().isEmpty())
            buddies.insert(label->buddy());
    }
    QStringList unnamed;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        // Lists kept hidden for the program's own use, and the selectors'
        // drop-down lists (spoken as their selector), are not for the operator.
        if (!isInputControl(*widget) || widget->isHidden() || widget->window() != &window)
            continue;
        auto* button = qobject_cast<QAbstractButton*>(widget);
        const bool ownText = button && !button->text().trimmed().isEmpty();
        if (widget->accessibleName().trimmed().isEmpty() && !ownText && !buddies.contains(widget))
            unnamed << widget->objectName() + " (" + widget->metaObject()->className() + ")";
    }
    QVERIFY2(unnamed.isEmpty(), qPrintable("no spoken name: " + unnamed.join(", ")));
}

void DesktopTest::buddyLabelsNameTheirBoxes() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    const auto& ui = window.form();
    QCOMPARE(ui.Label1->buddy(), ui.txtServerName);
    QCOMPARE(ui.txtServerName->accessibleName(), QStringLiteral("Server Name"));
    QVERIFY(!ui.txtMaster_2->accessibleName().isEmpty());
    QVERIFY(!ui.lblMap->accessibleName().isEmpty());
}

void DesktopTest::firstRunPreparesTheFreeGame() {
    Sources sources;
    TestPlatform platform;
    const QString folder = platform.root() + "/openarena";
    const FirstRunResult result = prepareFirstRun(*platform.store, folder, sources.paths);
    QCOMPARE(result.outcome, FirstRunResult::Prepared);

    const QStringList links = QDir(folder + "/baseoa").entryList(QDir::Files | QDir::System);
    QCOMPARE(links, QStringList({"pak0.pk3", "pak1-maps.pk3", "qagamex86_64.so"}));
    QCOMPARE(QFileInfo(folder + "/baseoa/pak0.pk3").symLinkTarget(),
             sources.paths.dataFolder + "/pak0.pk3");
    QCOMPARE(QFileInfo(folder + "/baseoa/qagamex86_64.so").symLinkTarget(),
             sources.paths.gameLibrary);
    QVERIFY(QFileInfo(folder + "/baseq3").isDir());
    QVERIFY(QDir(folder + "/baseq3").isEmpty());

    const QString exe = folder + "/quake3.exe";
    QVERIFY(QFileInfo(exe).isExecutable());
    const QByteArray expected =
        "#!/bin/sh\n"
        "# The free OpenArena game on the ioquake3 dedicated server, set up by Halvane as its "
        "game.\n"
        "exec '" +
        sources.paths.engine.toUtf8() +
        "' +set com_basegame baseoa +set fs_game baseq3 +set fs_basepath '" + folder.toUtf8() +
        "' +set fs_homepath '" + folder.toUtf8() +
        "/home' +set com_legacyprotocol 71 +set com_protocol 71 +set vm_game 0 \"$@\"\n";
    const QByteArray actual = readAll(exe);
    QVERIFY2(actual == expected, qPrintable(firstDifference(actual, expected)));

    platform.reopenStore();
    QCOMPARE(platform.store->read("Settings", "Path", ""), folder);
    QCOMPARE(platform.store->read("Settings", "Exe", ""), QStringLiteral("quake3.exe"));
    QCOMPARE(platform.store->read("Network", "HunkMegs", ""), QStringLiteral("64"));
}

void DesktopTest::firstRunLetsTheMainWindowOpenDirectly() {
    Sources sources;
    TestPlatform platform;
    QCOMPARE(
        prepareFirstRun(*platform.store, platform.root() + "/open arena", sources.paths).outcome,
        FirstRunResult::Prepared);
    platform.reopenStore();
    MainWindow window(*platform.app);
    window.start();
    QVERIFY(!window.pathDialog().isVisible());
    QVERIFY(window.isLoaded());
    QCOMPARE(platform.app->state.GameFolder, platform.root() + "/open arena");
    QCOMPARE(platform.app->state.GameExeName, QStringLiteral("quake3.exe"));
}

void DesktopTest::firstRunNeverTouchesAStoredLocation() {
    Sources sources;
    TestPlatform platform;
    platform.ini->write("Settings", "Path", "/somewhere/else");
    platform.ini->write("Settings", "Exe", "ioq3ded");
    const QString folder = platform.root() + "/openarena";
    QCOMPARE(prepareFirstRun(*platform.store, folder, sources.paths).outcome,
             FirstRunResult::AlreadyStored);
    QVERIFY(platform.store->writes.isEmpty());
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(platform.ini->read("Settings", "Path", ""), QStringLiteral("/somewhere/else"));
}

void DesktopTest::firstRunWithoutTheFreeGameStoresNothing_data() {
    QTest::addColumn<QString>("missing");
    QTest::newRow("engine") << "engine";
    QTest::newRow("archives") << "archives";
    QTest::newRow("game code") << "library";
}

void DesktopTest::firstRunWithoutTheFreeGameStoresNothing() {
    QFETCH(QString, missing);
    Sources sources;
    if (missing == "engine")
        QFile::remove(sources.paths.engine);
    if (missing == "archives")
        QDir(sources.paths.dataFolder).removeRecursively();
    if (missing == "library")
        QFile::remove(sources.paths.gameLibrary);
    TestPlatform platform;
    const FirstRunResult result =
        prepareFirstRun(*platform.store, platform.root() + "/openarena", sources.paths);
    QCOMPARE(result.outcome, FirstRunResult::Failed);
    QVERIFY(result.message.contains("ioquake3-server"));
    QVERIFY(platform.store->writes.isEmpty());
}

void DesktopTest::scriptQuotesAFolderWithBlanks() {
    const QByteArray script = freeGameScript("/home/o'neil/my game", "/usr/lib/ioquake3/ioq3ded");
    QVERIFY(script.contains("+set fs_basepath '/home/o'\\''neil/my game' "));
    QVERIFY(script.endsWith("+set vm_game 0 \"$@\"\n"));
}

void DesktopTest::firstRunOffersTheFreeGamesMaps() {
    Sources sources;
    QVERIFY(makeArchive(sources.paths.dataFolder + "/pak0.pk3",
                        {"maps/oa_dm10.bsp", "levelshots/oa_dm10.jpg", "maps/oa_dm2.bsp"}));
    QVERIFY(makeArchive(
        sources.paths.dataFolder + "/pak1-maps.pk3",
        {"maps/oa_ctf4ish.bsp", "maps/oa_dm1.bsp", "maps/oa_dm2.bsp", "maps/oa_dm3.BSP"}));
    TestPlatform platform;
    QCOMPARE(prepareFirstRun(*platform.store, platform.root() + "/openarena", sources.paths,
                             platform.programFolder())
                 .outcome,
             FirstRunResult::Prepared);
    QCOMPARE(readAll(platform.programFolder() + "/maplist.txt"),
             QByteArray("oa_dm10\r\noa_dm2\r\noa_ctf4ish\r\noa_dm1\r\n"));
    QCOMPARE(readAll(platform.programFolder() + "/mapsel.txt"),
             QByteArray("oa_dm1\r\noa_dm2\r\noa_dm10\r\n"));

    // The first start imports the list and opens with the rotation chosen.
    platform.reopenStore();
    MainWindow window(*platform.app);
    window.start();
    QVERIFY(window.isLoaded());
    QVERIFY(!QFileInfo::exists(platform.programFolder() + "/maplist.txt"));
    const auto& ui = window.form();
    QCOMPARE(ui.SelMap->count(), 3);
    QCOMPARE(ui.SelMap->item(2)->text(), QStringLiteral("oa_dm10"));
    QVERIFY(!ui.MapList->findItems("oa_ctf4ish", Qt::MatchExactly).isEmpty());
}

void DesktopTest::firstRunKeepsTheOperatorsMapFiles() {
    Sources sources;
    QVERIFY(makeArchive(sources.paths.dataFolder + "/pak1-maps.pk3", {"maps/oa_dm1.bsp"}));
    TestPlatform platform;
    Sources::write(platform.programFolder() + "/mapsel.txt", "q3dm17\r\n");
    QCOMPARE(prepareFirstRun(*platform.store, platform.root() + "/openarena", sources.paths,
                             platform.programFolder())
                 .outcome,
             FirstRunResult::Prepared);
    QCOMPARE(readAll(platform.programFolder() + "/mapsel.txt"), QByteArray("q3dm17\r\n"));
    QCOMPARE(readAll(platform.programFolder() + "/maplist.txt"), QByteArray("oa_dm1\r\n"));
}

QTEST_MAIN(DesktopTest)
#include "tst_desktop.moc"
