// The game location dialog: the first window of a run and the way back to it.
#include "TestSupport.h"

#include "launch/PathDialog.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"
#include "ui_frmPath.h"

#include <QDir>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class PathDialogTest : public QObject {
    Q_OBJECT
private slots:
    void firstRunAsksAndCancelEnds();
    void storedValidLocationOpensMainUnseen();
    void incompleteStoredLocationAsks_data();
    void incompleteStoredLocationAsks();
    void browseThenOkayStoresLocation();
    void cancelledBrowseChangesNothing();
    void openedFromMainShowsStoredPathAndCancelReturns();
    void openedFromMainWithVanishedFolderAsksAfresh();
};

void PathDialogTest::firstRunAsksAndCancelEnds() {
    TestPlatform platform;
    MainWindow window(*platform.app);
    window.start();
    PathDialog& dialog = window.pathDialog();
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.form().txtPath->text().isEmpty());
    QVERIFY(!dialog.form().cmdOkay->isEnabled());
    dialog.form().cmdCancel->click();
    QVERIFY(window.hasEnded());
    QVERIFY(!window.isLoaded());
    QVERIFY(!window.isVisible());
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), QStringLiteral("<none>"));
}

void PathDialogTest::storedValidLocationOpensMainUnseen() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.app->state = AppState{};
    MainWindow window(*platform.app);
    window.form().SSTab1->setCurrentIndex(3);
    window.start();
    QVERIFY(!window.pathDialog().isVisible());
    QVERIFY(window.isLoaded());
    QVERIFY(window.isVisible());
    QCOMPARE(window.form().SSTab1->currentIndex(), 0);
    QCOMPARE(platform.app->state.GameFolder, platform.gameFolder());
    QCOMPARE(platform.app->state.GameExeName, QStringLiteral("quake3.exe"));
}

void PathDialogTest::incompleteStoredLocationAsks_data() {
    QTest::addColumn<QString>("storedPath");
    QTest::addColumn<QString>("storedExe");
    QTest::newRow("executable name missing") << "game"
                                             << "";
    QTest::newRow("folder without quake3.exe") << "empty"
                                               << "quake3.exe";
    QTest::newRow("folder gone") << "gone"
                                 << "quake3.exe";
}

void PathDialogTest::incompleteStoredLocationAsks() {
    QFETCH(QString, storedPath);
    QFETCH(QString, storedExe);
    TestPlatform platform;
    platform.makeGameFolder();
    QDir().mkpath(platform.root() + "/empty");
    platform.ini->write("Settings", "Path", platform.root() + "/" + storedPath);
    platform.ini->write("Settings", "Exe", storedExe);
    platform.app->state = AppState{};
    MainWindow window(*platform.app);
    window.start();
    QVERIFY(window.pathDialog().isVisible());
    QVERIFY(!window.isLoaded());
    QVERIFY(window.pathDialog().form().txtPath->text().isEmpty());
    // The stored values stay until the operator confirms a new location.
    QCOMPARE(platform.ini->read("Settings", "Path", ""), platform.root() + "/" + storedPath);
}

void PathDialogTest::browseThenOkayStoresLocation() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Settings", "Path", "");
    platform.app->state = AppState{};
    const QString exe = QDir::toNativeSeparators(platform.gameFolder() + "/quake3.exe");
    platform.dialogs.choices = {FileChoice{true, exe, "quake3.exe"}};
    MainWindow window(*platform.app);
    window.start();
    PathDialog& dialog = window.pathDialog();
    dialog.form().cmdBrowse->click();
    QCOMPARE(platform.dialogs.calls.size(), 1);
    QCOMPARE(platform.dialogs.calls[0].title, QStringLiteral("Select the Quake 3 Executable"));
    QCOMPARE(platform.dialogs.calls[0].filter, QStringLiteral("Executables (*.exe)|*.exe"));
    QCOMPARE(dialog.form().txtPath->text(), exe);
    QCOMPARE(platform.app->state.GameFolder, QDir::toNativeSeparators(platform.gameFolder()));
    QCOMPARE(platform.app->state.GameExeName, QStringLiteral("quake3.exe"));
    QVERIFY(dialog.form().cmdOkay->isEnabled());
    QCOMPARE(platform.ini->read("Settings", "Path", ""), QString()); // not yet
    dialog.form().cmdOkay->click();
    QCOMPARE(platform.ini->read("Settings", "Path", ""),
             QDir::toNativeSeparators(platform.gameFolder()));
    QCOMPARE(platform.ini->read("Settings", "Exe", ""), QStringLiteral("quake3.exe"));
    QVERIFY(!dialog.isVisible());
    QVERIFY(window.isLoaded());
    QVERIFY(window.isVisible());
}

void PathDialogTest::cancelledBrowseChangesNothing() {
    TestPlatform platform;
    MainWindow window(*platform.app);
    window.start();
    window.pathDialog().form().cmdBrowse->click();
    QVERIFY(platform.app->state.GameFolder.isEmpty());
    QVERIFY(!window.pathDialog().PathChosen);
    QVERIFY(!window.pathDialog().form().cmdOkay->isEnabled());
}

void PathDialogTest::openedFromMainShowsStoredPathAndCancelReturns() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.start();
    window.form().SSTab1->setCurrentIndex(2);
    window.form().mnuSettingsQ3Path->trigger();
    PathDialog& dialog = window.pathDialog();
    QVERIFY(dialog.isVisible());
    QVERIFY(!window.isEnabled());
    QCOMPARE(dialog.form().txtPath->text(),
             QDir::toNativeSeparators(platform.gameFolder()) + QDir::separator() + "quake3.exe");
    dialog.form().cmdCancel->click();
    QVERIFY(!window.hasEnded());
    QVERIFY(window.isEnabled());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(window.form().SSTab1->currentIndex(), 0);
}

void PathDialogTest::openedFromMainWithVanishedFolderAsksAfresh() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.start();
    QFile::remove(platform.gameFolder() + "/quake3.exe");
    window.form().cmdSetPath->click();
    QVERIFY(window.pathDialog().isVisible());
    QVERIFY(window.pathDialog().form().txtPath->text().isEmpty());
    QVERIFY(!platform.app->state.ShowStoredPath);
}

QTEST_MAIN(PathDialogTest)
#include "tst_pathdialog.moc"
