// The application shell: the start-up and shut-down order, the second copy,
// and the status panel with the window heights it works in.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "ui/MainWindow.h"
#include "ui/StatusPanel.h"
#include "ui/Twips.h"
#include "ui_frmMain.h"

#include <QTimer>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class ShellTest : public QObject {
    Q_OBJECT
private slots:
    void startUpRunsItsStepsInOrder();
    void shutDownSavesParametersBeforeSettings();
    void secondCopyEndsWithoutStoring();
    void resizePlacesTheStatusPanel_data();
    void resizePlacesTheStatusPanel();
    void toggleAtThreshold_data();
    void toggleAtThreshold();
    void animationLetsEventsRunAndIgnoresReentry();
    void tipLineAppearsAbove6000();
    void panelStateIsRestoredAtNextStart_data();
    void panelStateIsRestoredAtNextStart();
};

namespace {
struct Fixture {
    TestPlatform platform;
    std::unique_ptr<MainWindow> window;
    Fixture() {
        platform.makeGameFolder();
        window = std::make_unique<MainWindow>(*platform.app);
    }
    Ui::frmMain& ui() { return window->form(); }
    StatusPanel& panel() { return window->statusPanel(); }
};
} // namespace

void ShellTest::startUpRunsItsStepsInOrder() {
    Fixture f;
    f.platform.ini->write("Settings", "CheckNewMaps", "True");
    f.platform.ini->write("General", "GameType", "3");
    QStringList steps;
    QStringList facts;
    f.window->stepRecorder = [&](const QString& step) {
        steps << step;
        auto& ui = f.ui();
        const bool startup = f.platform.app->state.StartupInProgress;
        if (step == "CheckNewMaps")
            facts << QStringLiteral("CheckNewMaps: startup=%1").arg(startup);
        if (step == "GetMapsFromBaseDir") // the map search reads the mark set just before
            facts << QStringLiteral("map search mark=%1").arg(ui.mnuSettingsMapCheck->isChecked());
        if (step == "LoadSettings") // the lists are filled before the settings choose in them
            facts << QStringLiteral("game types=%1").arg(ui.cmbGameType->count());
        if (step == "lblVersion")
            facts << QStringLiteral("game type chosen=%1").arg(ui.cmbGameType->currentIndex());
        if (step == "Countbots")
            facts << "version=" + ui.lblVersion->text();
        if (step == "LoadControls" || step == "LoadSettings")
            facts << QStringLiteral("%1: startup=%2").arg(step).arg(startup);
        if (step == "AboutLinks")
            facts << QStringLiteral("after clearing startup=%1").arg(startup);
    };
    f.window->showMainWindow();
    const QStringList expected{
        "SkipSaveOnClose",  "anotherCopyRunning", "StartupInProgress",  "defaultPicture",
        "CheckMapDataFile", "CheckNewMaps",       "GetMapsFromBaseDir", "LoadBotList",
        "LoadMaps",         "LoadControls",       "LoadSettings",       "lblVersion",
        "Countbots",        "SetGameType",        "StartupDone",        "AboutLinks"};
    QCOMPARE(steps, expected);
    const QStringList expectedFacts{"CheckNewMaps: startup=1", "map search mark=1",
                                    "LoadControls: startup=1", "game types=4",
                                    "LoadSettings: startup=1", "game type chosen=3",
                                    "version=Version 2.07",    "after clearing startup=0"};
    QCOMPARE(facts, expectedFacts);
    QVERIFY(!f.platform.app->state.StartupInProgress);
    QCOMPARE(f.ui().Label20->text(), AppInfo::productSiteAddress());
    QCOMPARE(f.ui().Label23->text(), AppInfo::authorMailAddress());
    QVERIFY(f.platform.store->writes.isEmpty()); // start-up stores nothing
}

void ShellTest::shutDownSavesParametersBeforeSettings() {
    Fixture f;
    f.window->showMainWindow();
    f.ui().txtCmdParameters->setEditText("+set sv_fps 30");
    QStringList steps;
    QList<int> writesAtStep;
    f.window->stepRecorder = [&](const QString& step) {
        steps << step;
        writesAtStep << f.platform.store->writes.size();
    };
    f.window->close();
    QCOMPARE(steps, QStringList({"CommitShownMap", "SaveMaps", "saveParameterList", "SaveSettings",
                                 "endProgram"}));
    const QStringList& writes = f.platform.store->writes;
    // Nothing stored before the parameter lines; the parameter lines (and
    // nothing of the settings) between their step and the settings' step.
    QCOMPARE(writesAtStep[2], 0);
    QVERIFY(writesAtStep[3] > 0);
    for (int n = 0; n < writesAtStep[3]; ++n)
        QVERIFY2(!writes[n].startsWith("Settings/"), qPrintable(writes[n]));
    QVERIFY(writes.mid(0, writesAtStep[3]).join('\n').contains("+set sv_fps 30"));
    QVERIFY(writes.mid(writesAtStep[3]).contains("Settings/LastTab=0"));
    QVERIFY(f.window->hasEnded());
}

void ShellTest::secondCopyEndsWithoutStoring() {
    Fixture f;
    f.platform.desktop.otherCopy = true;
    QStringList steps;
    f.window->stepRecorder = [&](const QString& step) { steps << step; };
    f.window->showMainWindow();
    QCOMPARE(onlyMessage(f.platform.messages),
             message("What have you been smoking?", "Halvane is already running", MsgButtons::Ok,
                     MsgIcon::Information));
    QVERIFY(f.window->hasEnded());
    QVERIFY(!f.window->isVisible());
    QVERIFY(f.platform.store->writes.isEmpty());
    QCOMPARE(steps, QStringList({"SkipSaveOnClose", "anotherCopyRunning", "endProgram"}));
    f.window->close(); // a later close still stores nothing
    QVERIFY(f.platform.store->writes.isEmpty());
    QCOMPARE(f.platform.messages.shown.size(), 1);
}

void ShellTest::resizePlacesTheStatusPanel_data() {
    QTest::addColumn<int>("twips");
    QTest::newRow("closed") << 5790;
    QTest::newRow("tip appears") << 6006;
    QTest::newRow("threshold") << 6250;
    QTest::newRow("open") << 6450;
}

void ShellTest::resizePlacesTheStatusPanel() {
    QFETCH(int, twips);
    Fixture f;
    f.window->showMainWindow();
    f.ui().scrTip->setVisible(true);
    f.panel().setHeightTwips(twips);
    QCOMPARE(f.panel().heightTwips(), twips);
    const QWidget& window = *f.window;
    QCOMPARE(f.window->height(), twipsToPixels(twips, window));
    // The bar's top 920 twips above the height, counted with the caption the
    // rule's heights held (495 twips); the tip line 5870 twips shorter than
    // the window, ending at the bar.
    const int barTop = twipsToPixels(twips - 920 + 495, window);
    const int tipHeight = qMax(0, twipsToPixels(twips - 5870, window));
    QCOMPARE(f.ui().btnStatus->y(), barTop);
    QCOMPARE(f.ui().scrTip->height(), tipHeight);
    QCOMPARE(f.ui().scrTip->y() + f.ui().scrTip->height(), barTop);
    QCOMPARE(f.ui().scrTip->width(), f.ui().SSTab1->width());
    QCOMPARE(f.ui().btnStatus->width(), f.ui().SSTab1->width());
    // Nothing else moves: the tabs and the buttons keep their places, and
    // the tip line its top once it has a height.
    f.panel().setHeightTwips(6450);
    const QRect tabs = f.ui().SSTab1->geometry();
    const QRect start = f.ui().cmdStart->geometry();
    const int tipTop = f.ui().scrTip->y();
    f.panel().setHeightTwips(twips);
    QCOMPARE(f.ui().SSTab1->geometry(), tabs);
    QCOMPARE(f.ui().cmdStart->geometry(), start);
    if (twips > 5870)
        QVERIFY(qAbs(f.ui().scrTip->y() - tipTop) <= 1); // rounding of two conversions
}

void ShellTest::toggleAtThreshold_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("checked");
    // Below 6250 opens in steps of 6 to the last step under 6456; from 6250
    // on it closes in steps of 6 to the last step not under 5790.
    QTest::newRow("6249 opens") << 6249 << 6453 << true;
    QTest::newRow("6250 closes") << 6250 << 5794 << false;
    QTest::newRow("closed opens") << 5790 << 6450 << true;
    QTest::newRow("open closes") << 6450 << 5790 << false;
}

void ShellTest::toggleAtThreshold() {
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, checked);
    Fixture f;
    f.window->showMainWindow();
    f.panel().setHeightTwips(from);
    f.ui().mnuViewStatusBar->setChecked(!checked);
    f.ui().btnStatus->click();
    QCOMPARE(f.panel().heightTwips(), to);
    QCOMPARE(f.ui().mnuViewStatusBar->isChecked(), checked);
    QCOMPARE(f.panel().isOpen(), checked);
    if (checked)
        QVERIFY(f.ui().txtTip->isVisible());
}

void ShellTest::animationLetsEventsRunAndIgnoresReentry() {
    Fixture f;
    f.window->showMainWindow();
    f.panel().setHeightTwips(5790);
    QList<int> seenHeights;
    // Timers fire while the panel rolls: the window stays usable. A second
    // click meanwhile is ignored rather than starting a second animation.
    QTimer timer;
    timer.setInterval(0);
    connect(&timer, &QTimer::timeout, [&] {
        seenHeights << f.panel().heightTwips();
        f.ui().btnStatus->click();
    });
    timer.start();
    f.ui().btnStatus->click();
    timer.stop();
    QVERIFY(seenHeights.size() > 10);
    QVERIFY(seenHeights.first() < seenHeights.last());
    QCOMPARE(f.panel().heightTwips(), 6450);
    QVERIFY(f.ui().mnuViewStatusBar->isChecked());
}

void ShellTest::tipLineAppearsAbove6000() {
    Fixture f;
    f.window->showMainWindow();
    f.panel().setHeightTwips(5790);
    f.ui().scrTip->hide();
    QList<QPair<int, bool>> seen;
    QTimer timer;
    timer.setInterval(0);
    connect(&timer, &QTimer::timeout,
            [&] { seen << qMakePair(f.panel().heightTwips(), f.ui().scrTip->isVisible()); });
    timer.start();
    f.panel().RollOut();
    timer.stop();
    QVERIFY(seen.size() > 10);
    for (const auto& [height, visible] : seen)
        QVERIFY2(visible == (height > 6000), qPrintable(QString::number(height)));
    QVERIFY(f.ui().scrTip->isVisible());
    // Rolling in leaves it shown; at the closed height it has no height.
    f.panel().Rollin();
    QVERIFY(f.ui().scrTip->isVisible());
    QCOMPARE(f.ui().scrTip->height(), 0);
}

void ShellTest::panelStateIsRestoredAtNextStart_data() {
    QTest::addColumn<bool>("open");
    QTest::newRow("closed") << false;
    QTest::newRow("open") << true;
}

void ShellTest::panelStateIsRestoredAtNextStart() {
    QFETCH(bool, open);
    TestPlatform platform;
    platform.makeGameFolder();
    {
        MainWindow first(*platform.app);
        first.showMainWindow();
        QVERIFY(first.statusPanel().isOpen()); // the default is open
        if (!open)
            first.form().mnuViewStatusBar->trigger();
        first.close();
    }
    QCOMPARE(platform.ini->read("Settings", "StatusBar", ""), open ? "True" : "False");
    platform.reopenStore();
    MainWindow second(*platform.app);
    second.showMainWindow();
    QCOMPARE(second.statusPanel().isOpen(), open);
    QCOMPARE(second.statusPanel().heightTwips(), open ? 6450 : 5790);
    QCOMPARE(second.form().mnuViewStatusBar->isChecked(), open);
}

QTEST_MAIN(ShellTest)
#include "tst_shell.moc"
