// The game location dialog: the first window of a run and the way back to it.
#include "TestSupport.h"

#include "launch/PathDialog.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"
#include "ui_frmPath.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class PathDialogTest : public QObject {
    Q_OBJECT
private slots:
    void startUp_data();
    void startUp();
    void browseThenOkayStoresLocation();
    void openedFromMain();
};

void PathDialogTest::startUp_data() {
    QTest::addColumn<QString>("stored"); // folder/executable below the test folder
    QTest::addColumn<bool>("asks");
    QTest::newRow("first run") << "" << true;
    QTest::newRow("stored valid") << "game/quake3.exe" << false;
    QTest::newRow("executable name missing") << "game/" << true;
    QTest::newRow("folder without quake3.exe") << "empty/quake3.exe" << true;
    QTest::newRow("folder gone") << "gone/quake3.exe" << true;
}

void PathDialogTest::startUp() {
    QFETCH(QString, stored);
    QFETCH(bool, asks);
    TestPlatform platform;
    QDir().mkpath(platform.root() + "/empty");
    if (!stored.isEmpty()) {
        platform.makeGameFolder();
        platform.ini->write("Settings", "Path", platform.root() + "/" + stored.section('/', 0, 0));
        platform.ini->write("Settings", "Exe", stored.section('/', 1));
        platform.app->state = AppState{};
    }
    const QString storedPath = platform.ini->read("Settings", "Path", "<none>");
    MainWindow window(*platform.app);
    window.start();
    PathDialog& dialog = window.pathDialog();
    QCOMPARE(dialog.isVisible(), asks);
    QCOMPARE(window.isLoaded(), !asks);
    if (!asks) {
        QCOMPARE(platform.app->state.GameFolder, platform.gameFolder());
        QCOMPARE(platform.app->state.GameExeName, QStringLiteral("quake3.exe"));
        return;
    }
    QVERIFY(dialog.form().txtPath->text().isEmpty());
    QVERIFY(!dialog.form().cmdOkay->isEnabled());
    // Cancel ends the program; what was stored stays for the next run.
    dialog.form().cmdCancel->click();
    QVERIFY(window.hasEnded() && !window.isLoaded() && !window.isVisible());
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), storedPath);
}

void PathDialogTest::browseThenOkayStoresLocation() {
    TestPlatform platform;
    const QString exe = QDir::toNativeSeparators(platform.root() + "/q3/quake3.exe");
    platform.writeFile(exe, "#!/bin/sh\n");
    platform.dialogs.choices = {FileChoice{false, {}, {}}, FileChoice{true, exe, "quake3.exe"}};
    MainWindow window(*platform.app);
    window.start();
    PathDialog& dialog = window.pathDialog();
    dialog.form().cmdBrowse->click(); // cancelled: nothing chosen
    QVERIFY(platform.app->state.GameFolder.isEmpty() && !dialog.form().cmdOkay->isEnabled());
    dialog.form().cmdBrowse->click();
    QCOMPARE(platform.dialogs.calls.size(), 2);
    QCOMPARE(platform.dialogs.calls[1].title, QStringLiteral("Select the Quake 3 Executable"));
    QCOMPARE(platform.dialogs.calls[1].filter, QStringLiteral("Executables (*.exe)|*.exe"));
    QCOMPARE(dialog.form().txtPath->text(), exe);
    QCOMPARE(platform.app->state.GameFolder, QDir::toNativeSeparators(platform.root() + "/q3"));
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), QStringLiteral("<none>")); // not yet
    dialog.form().cmdOkay->click();
    QCOMPARE(platform.ini->read("Settings", "Path", ""), platform.app->state.GameFolder);
    QCOMPARE(platform.ini->read("Settings", "Exe", ""), QStringLiteral("quake3.exe"));
    QVERIFY(!dialog.isVisible() && window.isLoaded() && window.isVisible());
}

void PathDialogTest::openedFromMain() {
    TestPlatform platform;
    platform.makeGameFolder();
    MainWindow window(*platform.app);
    window.start();
    window.form().SSTab1->setCurrentIndex(2);
    window.form().mnuSettingsQ3Path->trigger();
    PathDialog& dialog = window.pathDialog();
    QVERIFY(dialog.isVisible() && !window.isEnabled());
    QCOMPARE(dialog.form().txtPath->text(),
             QDir::toNativeSeparators(platform.gameFolder()) + QDir::separator() + "quake3.exe");
    // Cancel goes back to the main window, on its first tab.
    dialog.form().cmdCancel->click();
    QVERIFY(!window.hasEnded() && window.isEnabled() && !dialog.isVisible());
    QCOMPARE(window.form().SSTab1->currentIndex(), 0);
    // A location that vanished meanwhile is not shown again.
    QFile::remove(platform.gameFolder() + "/quake3.exe");
    window.form().cmdSetPath->click();
    QVERIFY(dialog.isVisible() && dialog.form().txtPath->text().isEmpty());
}

QTEST_MAIN(PathDialogTest)
#include "tst_pathdialog.moc"
