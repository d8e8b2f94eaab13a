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
    void browseThenOkayStoresLocationAndMenuReopens();
};

void PathDialogTest::startUp_data() {
    QTest::addColumn<QString>("stored"); // folder/executable below the test folder
    QTest::newRow("first run") << "";
    QTest::newRow("stored valid") << "game/quake3.exe";
    QTest::newRow("executable name missing") << "game/";
    QTest::newRow("folder without quake3.exe") << "empty/quake3.exe";
    QTest::newRow("folder gone") << "gone/quake3.exe";
}

void PathDialogTest::startUp() {
    QFETCH(QString, stored);
    const bool asks = stored != "game/quake3.exe";
    TestPlatform platform;
    platform.makeGameFolder();
    QDir().mkpath(platform.root() + "/empty");
    const QString path = stored.isEmpty() ? "" : platform.root() + "/" + stored.section('/', 0, 0);
    platform.ini->write("Settings", "Path", path);
    platform.ini->write("Settings", "Exe", stored.section('/', 1));
    platform.app->state = AppState{};
    MainWindow window(*platform.app);
    window.start();
    PathDialog& dialog = window.pathDialog();
    QCOMPARE(dialog.isVisible(), asks);
    QCOMPARE(window.isLoaded(), !asks);
    QVERIFY(asks || platform.app->state.GameFolder == platform.gameFolder());
    if (!asks)
        return;
    QVERIFY(dialog.form().txtPath->text().isEmpty() && !dialog.form().cmdOkay->isEnabled());
    // Cancel ends the program; what was stored stays for the next run.
    dialog.form().cmdCancel->click();
    QVERIFY(window.hasEnded() && !window.isLoaded() && !window.isVisible());
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), path);
}

void PathDialogTest::browseThenOkayStoresLocationAndMenuReopens() {
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
    QCOMPARE(platform.dialogs.calls.last().title + " " + platform.dialogs.calls.last().filter,
             QStringLiteral("Select the Quake 3 Executable Executables (*.exe)|*.exe"));
    QCOMPARE(dialog.form().txtPath->text(), exe);
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), QStringLiteral("<none>")); // not yet
    dialog.form().cmdOkay->click();
    QCOMPARE(platform.ini->read("Settings", "Path", ""),
             QDir::toNativeSeparators(platform.root() + "/q3"));
    QCOMPARE(platform.ini->read("Settings", "Exe", ""), QStringLiteral("quake3.exe"));
    QVERIFY(!dialog.isVisible() && window.isLoaded() && window.isVisible());

    // From the main window the dialog shows the stored location; Cancel goes back.
    dialog.form().txtPath->clear();
    window.form().mnuSettingsQ3Path->trigger();
    QVERIFY(dialog.isVisible() && !window.isEnabled());
    QCOMPARE(dialog.form().txtPath->text(), exe);
    dialog.form().cmdCancel->click();
    QVERIFY(!window.hasEnded() && window.isEnabled() && !dialog.isVisible());
}

QTEST_MAIN(PathDialogTest)
#include "tst_pathdialog.moc"
