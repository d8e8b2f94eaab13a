// The application shell: the start-up and shut-down order, the second copy,
// and the status panel with the window heights it works in.
#include "TestSupport.h"

#include "maps/MapEditor.h"
#include "maps/MapsController.h"
#include "ui/StatusPanel.h"
#include "ui/Twips.h"
#include "ui_frmMain.h"
#include "ui_frmMap.h"

#include <QProcess>
#include <QScopeGuard>
#include <QTimer>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

// The status panel when closing.
const std::tuple<const char*, bool> PanelStates[] = {{"panel open", true}, {"panel closed", false}};
// A height, and where the bar's button takes it: below 6250 it opens in steps of 6 to the last
// step under 6456; from 6250 on it closes in steps of 6 to the last step not under 5790.
const std::tuple<const char*, int, int> Heights[] = {{"closed", 5790, 6450},
                                                     {"tip appears", 6006, 6450},
                                                     {"6249 opens", 6249, 6453},
                                                     {"threshold closes", 6250, 5794},
                                                     {"open", 6450, 5790}};

class ShellTest : public QObject {
    Q_OBJECT
private slots:
    void startAndShutDownKeepTheirOrder_data() { addRows(PanelStates); }
    void startAndShutDownKeepTheirOrder();
    void secondCopyEndsWithoutStoring();
    void savesOnABrokenDisk_data();
    void savesOnABrokenDisk();
    void resizePlacesTheStatusPanel_data() { addRows(Heights); }
    void resizePlacesTheStatusPanel();
    void rollingOutLetsEventsRunAndShowsTheTipAbove6000();
};

// A start fills the lists before the stored settings choose in them and stores nothing; the
// shut-down stores the parameter lines before any of the settings.
void ShellTest::startAndShutDownKeepTheirOrder() {
    const bool open = std::get<1>(fetchRow(PanelStates));
    WindowFixture f([](TestPlatform& p) {
        p.ini->write("Settings", "CheckNewMaps", "True");
        p.ini->write("General", "GameType", "3");
    });
    QCOMPARE(f.ui().cmbGameType->currentIndex(), 3);
    QVERIFY(f.ui().mnuSettingsMapCheck->isChecked() && !f.platform.app->state.StartupInProgress &&
            f.platform.store->writes.isEmpty());
    QVERIFY(f.window->statusPanel().isOpen()); // the default is open
    if (!open)
        f.ui().mnuViewStatusBar->trigger();
    f.ui().txtCmdParameters->setEditText("+set sv_fps 30");
    f.window->close();
    const QStringList& writes = f.platform.store->writes;
    const qsizetype line = writes.indexOf("Advanced/Parameter0=+set sv_fps 30");
    QVERIFY(line >= 0 && line < writes.indexOf("Settings/LastTab=0"));
    QVERIFY(!writes.mid(0, line).join('\n').contains("General/"));
    QVERIFY(f.window->hasEnded());
    // The next start shows the status panel as it was left.
    QCOMPARE(f.platform.ini->read("Settings", "StatusBar", ""), open ? "True" : "False");
    f.reopen();
    QCOMPARE(std::tuple(f.window->statusPanel().isOpen(), f.window->statusPanel().heightTwips(),
                        f.ui().mnuViewStatusBar->isChecked()),
             std::tuple(open, open ? 6450 : 5790, open));
}

void ShellTest::secondCopyEndsWithoutStoring() {
    WindowFixture f([](TestPlatform& p) { p.desktop.otherCopy = true; });
    QCOMPARE(onlyMessage(f.platform.messages),
             message("What have you been smoking?", "Halvane is already running", MsgButtons::Ok,
                     MsgIcon::Information));
    QVERIFY(f.window->hasEnded() && !f.window->isVisible() && f.platform.store->writes.isEmpty());
    f.window->close(); // a later close still stores nothing
    QVERIFY(f.platform.store->writes.isEmpty() && f.platform.messages.shown.size() == 1);
}

void ShellTest::savesOnABrokenDisk_data() {
    QTest::addColumn<QString>("fault"); // "full", "read-only" (a small disk) or "folder"
    // What the operator does|the file a folder stands in for|the files that
    // must not change (halvane.cfg keeps what was written)|what is said.
    QTest::addColumn<QString>("save");
    for (const char* fault : {"full", "read-only", "folder"}) {
        for (const char* save :
             {"defaults|program/maps.bak|program/maps.dat program/maps.bak|Error applying default",
              "close|program/mapsel.txt|program/mapsel.txt|Error writing mapsel.txt",
              "config|game/baseq3/halvane.cfg||An error occured while creating the config file.",
              "maplist|program/maps.dat|program/maplist.txt|new maps found in maplist.txt could",
              "firstrun|../openarena/quake3.exe|program/maplist.txt program/mapsel.txt|annot "
              "write"})
            QTest::addRow("%s: %s", fault, QByteArray(save).split('|')[0].constData())
                << fault << save;
    }
    // A record rewritten in place needs no room: only a read-only disk refuses it.
    for (const char* save : {"choose||program/maps.dat|The rules shown for m1 could not be written",
                             "add||program/maps.dat|The map could not be written to maps.dat:\r\r"
                             "Read-only file system"})
        QTest::addRow("read-only: %s", QByteArray(save).split('|')[0].constData())
            << "read-only" << save;
}

// Every whole-file save on a disk that refuses it: the old file stays byte
// for byte, the operator is told, and maps.dat holds whole records only.
void ShellTest::savesOnABrokenDisk() {
    QFETCH(QString, fault);
    QFETCH(QString, save);
    TestPlatform platform;
    const QString disk = platform.root() + "/disk", program = disk + "/program";
    QDir().mkpath(disk);
    const bool small = fault != "folder";
    if (small && QProcess::execute("mount", {"-t", "tmpfs", "-o", "size=1m", "tmpfs", disk}) != 0)
        QSKIP("Mounting a small disk needs root; run as root to fill one.");
    auto unmount = qScopeGuard([&] {
        if (small)
            QProcess::execute("umount", {"-l", disk});
    });
    *platform.folder = ProgramFolder(program, platform.folder->stateFolder());
    platform.ini->write("Settings", "Path", disk + "/game");
    QHash<QString, QByteArray> files{{"game/quake3.exe", "#!/bin/sh\n"},
                                     {"game/baseq3/default.cfg", "// mine\r\n"},
                                     {"game/baseq3/autoexec.cfg", "// mine\r\n"},
                                     {"program/maps.dat", catalogueOf({"m1", "m2", "m3"})},
                                     {"program/maps.bak", "the operator's backup"}};
    if (!save.startsWith("firstrun"))
        files["program/mapsel.txt"] = "m1\r\nm2\r\nm3\r\n";
    for (int n = 0; save.startsWith("maplist") && n < 200; ++n) // more than a full disk takes
        files["program/maplist.txt"] += "map" + QByteArray::number(n) + "\r\n";
    if (fault == "folder")
        files[save.section('|', 1, 1)] = "<folder>";
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        if (file.value() == "<folder>")
            QDir().mkpath(disk + '/' + file.key());
        else
            platform.writeFile(disk + '/' + file.key(), file.value());
    }
    if (fault == "read-only")
        QCOMPARE(QProcess::execute("mount", {"-o", "remount,ro", disk}), 0);
    QFile filler(disk + "/filler");
    if (fault == "full" && filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        while (filler.write(QByteArray(4096, 'x')) > 0)
            ;

    QStringList said;
    if (save.startsWith("firstrun")) {
        QtSettingsStore fresh(platform.root() + "/fresh.ini");
        said << prepareFirstRun(fresh, platform.root() + "/openarena", fakeFreeGame(platform),
                                program)
                    .message;
    } else {
        MainWindow window(*platform.app);
        window.showMainWindow();
        platform.messages.answers = {MsgAnswer::Yes};
        if (save.startsWith("defaults"))
            window.form().cmdDefault->click();
        if (save.startsWith("config"))
            window.form().mnuFileMakeCfg->trigger();
        if (save.startsWith("choose")) { // told at once, not only when closing
            window.form().txtMapFragLimit->setText("5");
            clickEntry(window.form().MapList, 1);
            QVERIFY(!platform.messages.shown.isEmpty() &&
                    platform.messages.shown.last().text.contains(save.section('|', 3)));
        }
        if (save.startsWith("add")) {
            window.form().cmdAddMaps->click();
            window.maps().editor().form().txtFileName->setText("newmap");
            window.maps().editor().form().Command2->click();
        }
        window.form().cmdAddSelMap->click(); // a selection that takes room to store
        window.close();
    }
    said += described(platform.messages);
    QVERIFY2(said.join('\n').contains(save.section('|', 3)), qPrintable(said.join('\n')));
    for (const QString& file : save.section('|', 2, 2).split(' ', Qt::SkipEmptyParts)) {
        const QString path = disk + '/' + file;
        QVERIFY2((QFileInfo(path).isDir() ? "<folder>" : readAll(path)) == files.value(file),
                 qPrintable(file));
    }
    QCOMPARE(readAll(program + "/maps.dat").size() % 71, 0);
}

void ShellTest::resizePlacesTheStatusPanel() {
    const auto& [name, twips, toggled] = fetchRow(Heights);
    WindowFixture f;
    StatusPanel& panel = f.window->statusPanel();
    f.ui().scrTip->setVisible(true);
    panel.setHeightTwips(twips);
    const QWidget& window = *f.window;
    // The bar's top 920 twips above the height, counted with the caption the
    // rule's heights held (495 twips); the tip line 5870 twips shorter than
    // the window, ending at the bar; both as wide as the tabs.
    const int barTop = twipsToPixels(twips - 920 + 495, window), wide = f.ui().SSTab1->width();
    const QWidget& tip = *f.ui().scrTip;
    QCOMPARE(QList<int>({panel.heightTwips(), window.height(), f.ui().btnStatus->y(), tip.height(),
                         tip.y() + tip.height(), tip.width(), f.ui().btnStatus->width()}),
             QList<int>({twips, twipsToPixels(twips, window), barTop,
                         qMax(0, twipsToPixels(twips - 5870, window)), barTop, wide, wide}));
    // Nothing else moves: the tabs and the buttons keep their places, and
    // the tip line its top once it has a height.
    panel.setHeightTwips(6450);
    const QRect tabs = f.ui().SSTab1->geometry(), start = f.ui().cmdStart->geometry();
    const int tipTop = f.ui().scrTip->y();
    panel.setHeightTwips(twips);
    QCOMPARE(QList({f.ui().SSTab1->geometry(), f.ui().cmdStart->geometry()}), QList({tabs, start}));
    if (twips > 5870)
        QVERIFY(qAbs(f.ui().scrTip->y() - tipTop) <= 1); // rounding of two conversions
    // The bar's button rolls the panel and sets the menu item to match.
    const bool opens = toggled > twips;
    f.ui().mnuViewStatusBar->setChecked(!opens);
    f.ui().btnStatus->click();
    QCOMPARE(std::tuple(panel.heightTwips(), f.ui().mnuViewStatusBar->isChecked(), panel.isOpen(),
                        f.ui().txtTip->isVisible() || !opens),
             std::tuple(toggled, opens, opens, true));
}

void ShellTest::rollingOutLetsEventsRunAndShowsTheTipAbove6000() {
    WindowFixture f;
    StatusPanel& panel = f.window->statusPanel();
    panel.setHeightTwips(5790);
    f.ui().scrTip->hide();
    // Timers fire while the panel rolls: the window stays usable. A second
    // click meanwhile is ignored rather than starting a second animation.
    QList<QPair<int, bool>> seen;
    QTimer timer;
    connect(&timer, &QTimer::timeout, [&] {
        seen << qMakePair(panel.heightTwips(), f.ui().scrTip->isVisible());
        f.ui().btnStatus->click();
    });
    timer.start(0);
    f.ui().btnStatus->click();
    timer.stop();
    QVERIFY(seen.size() > 10);
    QVERIFY(seen.first().first < seen.last().first);
    for (const auto& [height, visible] : seen)
        QVERIFY2(visible == (height > 6000), qPrintable(QString::number(height)));
    QCOMPARE(panel.heightTwips(), 6450);
    QVERIFY(f.ui().mnuViewStatusBar->isChecked() && f.ui().scrTip->isVisible());
    // Rolling in leaves it shown; at the closed height it has no height.
    panel.Rollin();
    QVERIFY(f.ui().scrTip->isVisible() && f.ui().scrTip->height() == 0);
}

QTEST_MAIN(ShellTest)
#include "tst_shell.moc"
