// The game location dialog: the first window of a run and the way back to it.
#include "TestSupport.h"

#include "launch/PathDialog.h"
#include "ui_frmMain.h"
#include "ui_frmPath.h"

#include <QProcess>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

// A user's ways to a game: the game's own program chosen with Browse, the free game's button, or a
// server program not named quake3.exe (the engine's, or the free game's) with the offered game
// folder made over it or not. The folder and program stored, below the test folder; the next start
// finds only a quake3.exe.
const std::tuple<const char*, const char*, MsgAnswer, const char*> Choices[] = {
    {"the game's own program", "q3/quake3.exe", MsgAnswer::No, "q3/quake3.exe"},
    {"free game button", "button", MsgAnswer::No, "data/openarena/quake3.exe"},
    {"another server program, folder made", "usr/bin/q3ded", MsgAnswer::Yes,
     "data/q3ded/quake3.exe"},
    {"the free game's engine, folder made", "usr/lib/ioquake3/ioq3ded", MsgAnswer::Yes,
     "data/openarena/quake3.exe"},
    {"another server program as chosen", "usr/bin/q3ded", MsgAnswer::No, "usr/bin/q3ded"},
};

// The location stored: folder/executable below the test folder.
const std::tuple<const char*, const char*> Stored[] = {
    {"first run", ""},
    {"stored valid", "game/quake3.exe"},
    {"executable name missing", "game/"},
    {"folder without quake3.exe", "empty/quake3.exe"},
    {"folder gone", "gone/quake3.exe"},
};

class PathDialogTest : public QObject {
    Q_OBJECT
private slots:
    void startUp_data() { addRows(Stored); }
    void startUp();
    void choiceLastsToTheNextStart_data() { addRows(Choices); }
    void choiceLastsToTheNextStart();
};

void PathDialogTest::startUp() {
    const QString stored = std::get<1>(fetchRow(Stored));
    const bool asks = stored != "game/quake3.exe";
    TestPlatform platform;
    platform.makeGameFolder();
    QDir().mkpath(platform.root() + "/empty");
    const QString path = stored.isEmpty() ? "" : platform.root() + "/" + stored.section('/', 0, 0);
    platform.ini->write("Settings", "Path", path);
    platform.ini->write("Settings", "Exe", stored.section('/', 1));
    platform.app->state = AppState{};
    MainWindow window(*platform.app);
    window.pathDialog().freeGame.engine = platform.root() + "/no engine";
    window.start();
    PathDialog& dialog = window.pathDialog();
    QCOMPARE(dialog.isVisible(), asks);
    QCOMPARE(window.isLoaded(), !asks);
    QVERIFY(asks || platform.app->state.GameFolder == platform.gameFolder());
    if (!asks)
        return;
    QVERIFY(dialog.form().txtPath->text().isEmpty() && !dialog.form().cmdOkay->isEnabled());
    QVERIFY(!dialog.form().cmdFreeGame->isVisible()); // as designed without the free game
    // Cancel ends the program; what was stored stays for the next run.
    dialog.form().cmdCancel->click();
    QVERIFY(window.hasEnded() && !window.isLoaded() && !window.isVisible());
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), path);
}

void PathDialogTest::choiceLastsToTheNextStart() {
    const auto& [name, chosen, answer, stored] = fetchRow(Choices);
    TestPlatform platform;
    const QString root = platform.root() + "/";
    platform.writeFile(root + "q3/quake3.exe", "#!/bin/sh\n");
    // A server program that says what it was started with.
    platform.writeFile(root + "usr/bin/q3ded", "#!/bin/sh\necho \"$@\" >\"$0.args\"\n");
    QFile::setPermissions(root + "usr/bin/q3ded", QFile::ReadOwner | QFile::ExeOwner);
    const FreeGameSources free = fakeFreeGame(platform);
    const auto open = [&] {
        auto window = std::make_unique<MainWindow>(*platform.app);
        window->pathDialog().freeGame = free;
        window->pathDialog().freeGameFolder = root + "data/openarena";
        window->start();
        return window;
    };
    auto window = open();
    Ui::frmPath& form = window->pathDialog().form();
    QVERIFY(form.cmdFreeGame->isVisible());
    platform.messages.answers = {answer};
    if (QString(chosen) == "button") {
        form.cmdFreeGame->click();
    } else {
        platform.dialogs.choices = {{false, {}, {}},
                                    {true, root + chosen, QFileInfo(chosen).fileName()}};
        form.cmdBrowse->click(); // cancelled: nothing chosen
        QVERIFY(platform.app->state.GameFolder.isEmpty() && !form.cmdOkay->isEnabled());
        form.cmdBrowse->click();
        QCOMPARE(platform.dialogs.calls.last().title + " " + platform.dialogs.calls.last().filter,
                 QStringLiteral("Select the Quake 3 Executable Executables (*.exe)|*.exe"));
        QCOMPARE(form.txtPath->text(), root + chosen);
    }
    QCOMPARE(platform.ini->read("Settings", "Path", "<none>"), QStringLiteral("<none>")); // not yet
    form.cmdOkay->click();
    QVERIFY(window->isLoaded() && window->isVisible() && !window->pathDialog().isVisible());
    const QString program = root + stored;
    QCOMPARE(platform.ini->read("Settings", "Path", "") + '/' +
                 platform.ini->read("Settings", "Exe", ""),
             program);
    QCOMPARE(platform.messages.shown.size(), QString(chosen).startsWith("usr/") ? 1 : 0);
    if (program.contains("/openarena/")) { // the free game, ready to play
        QCOMPARE(entries(window->form().SelMap).value(0), QStringLiteral("oa_dm1"));
        QCOMPARE(window->form().txtHunkMegs->text(), QStringLiteral("64"));
    } else if (program.contains("/data/")) { // the program runs with the game folder searched first
        QCOMPARE(QProcess::execute(program, {"+set", "dedicated", "2"}), 0);
        QCOMPARE(readAll(root + chosen + ".args"),
                 "+set fs_homepath " + QFileInfo(program).path().toUtf8() + " +set dedicated 2\n");
    }

    // From the main window the dialog shows the stored location, if the next start would find it;
    // Cancel goes back.
    const bool kept = program.endsWith("/quake3.exe");
    form.txtPath->setText("x");
    window->form().mnuSettingsQ3Path->trigger();
    QVERIFY(window->pathDialog().isVisible() && !window->isEnabled());
    QCOMPARE(form.txtPath->text(), kept ? program : "");
    form.cmdCancel->click();
    QVERIFY(!window->hasEnded() && window->isEnabled() && !window->pathDialog().isVisible());

    window.reset();
    platform.reopenStore();
    platform.app->state = AppState{}; // as a new run has it
    window = open();
    QCOMPARE(window->isLoaded(), kept);
    QCOMPARE(window->pathDialog().isVisible(), !kept);
}

QTEST_MAIN(PathDialogTest)
#include "tst_pathdialog.moc"
