// Menus, help and about: shortcuts reach their actions, help pages follow the
// tab shown, the About tab's links, the tab change and the hidden window.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "ui/HelpMenu.h"
#include "ui/StatusPanel.h"
#include "ui_frmMain.h"

#include <QSignalSpy>
#include <QTabBar>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class MenusTest : public QObject {
    Q_OBJECT
private slots:
    void shortcutReachesItsAction_data();
    void shortcutReachesItsAction();
    void editingKeysStayWithTextBoxes();
    void f1OpensTheHelpOfTheTabShown_data();
    void f1OpensTheHelpOfTheTabShown();
    void links_data();
    void links();
    void f8ShowsAboutAndDisablesTheTabLeft();
    void shiftClickOnTabStripShowsHiddenWindow_data();
    void shiftClickOnTabStripShowsHiddenWindow();
};

namespace {
struct Fixture : WindowFixture {
    Fixture() {
        QApplication::setActiveWindow(window.get());
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    QString help(const QString& page) const { return platform.programFolder() + "/help/" + page; }
};
} // namespace

void MenusTest::shortcutReachesItsAction_data() {
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    const int ctrl = Qt::ControlModifier;
    QTest::newRow("Create halvane.cfg") << "mnuFileMakeCfg" << int(Qt::Key_S) << ctrl;
    QTest::newRow("Save config file As") << "mnuFileSaveAs" << int(Qt::Key_A) << ctrl;
    QTest::newRow("Close Halvane") << "mnuFileClose" << int(Qt::Key_X) << ctrl;
    QTest::newRow("Set Quake 3 path") << "mnuSettingsQ3Path" << int(Qt::Key_P) << ctrl;
    QTest::newRow("General") << "mnuSettingsGeneral" << int(Qt::Key_F2) << 0;
    QTest::newRow("Bots") << "mnuSettingsBots" << int(Qt::Key_F3) << 0;
    QTest::newRow("Maps") << "mnuSettingsMaps" << int(Qt::Key_F4) << 0;
    QTest::newRow("Options") << "mnuSettingsOptions" << int(Qt::Key_F5) << 0;
    QTest::newRow("Advanced") << "mnuSettingsAdvanced" << int(Qt::Key_F6) << 0;
    QTest::newRow("Status Bar") << "mnuViewStatusBar" << int(Qt::Key_F1) << ctrl;
    QTest::newRow("Index") << "mnuHelpHalvane" << int(Qt::Key_F1) << int(Qt::ShiftModifier);
    QTest::newRow("Help with the Current Tab") << "mnuHelpContext" << int(Qt::Key_F1) << 0;
    QTest::newRow("Halvane Online") << "mnuHelpOnline" << int(Qt::Key_O) << ctrl;
    QTest::newRow("Frequently Asked Questions") << "mnuHelpFAQ" << int(Qt::Key_Q) << ctrl;
    QTest::newRow("About Halvane") << "mnuHelpAbout" << int(Qt::Key_F8) << 0;
    QTest::newRow("Server Status") << "mnuServerStatus" << int(Qt::Key_F7) << 0;
}

void MenusTest::shortcutReachesItsAction() {
    QFETCH(QString, action);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    Fixture f;
    auto* item = f.window->findChild<QAction*>(action);
    QVERIFY(item);
    QSignalSpy triggered(item, &QAction::triggered);
    // From a control that has no use for the key itself.
    f.ui().SSTab1->tabBar()->setFocus();
    QTest::keyClick(f.window.get(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(triggered.size(), 1);
}

void MenusTest::editingKeysStayWithTextBoxes() {
    // Inside a text box Ctrl+A selects its text (and Ctrl+X cuts) rather than
    // saving the configuration or closing the program.
    Fixture f;
    QSignalSpy saveAs(f.ui().mnuFileSaveAs, &QAction::triggered);
    f.ui().txtServerName->setText("My server");
    f.ui().txtServerName->setFocus();
    f.ui().txtServerName->deselect();
    QTest::keyClick(f.ui().txtServerName, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(saveAs.size(), 0);
    QCOMPARE(f.ui().txtServerName->selectedText(), QStringLiteral("My server"));
}

void MenusTest::f1OpensTheHelpOfTheTabShown_data() {
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("page");
    const char* pages[] = {"general.htm", "bots.htm",     "maps.htm",
                           "options.htm", "advanced.htm", "about.htm"};
    for (int tab = 0; tab < 6; ++tab)
        QTest::newRow(pages[tab]) << tab << QString(pages[tab]);
}

void MenusTest::f1OpensTheHelpOfTheTabShown() {
    QFETCH(int, tab);
    QFETCH(QString, page);
    Fixture f;
    f.ui().SSTab1->setCurrentIndex(tab);
    f.ui().SSTab1->tabBar()->setFocus();
    QTest::keyClick(f.window.get(), Qt::Key_F1);
    QCOMPARE(f.platform.shell.opened, QStringList{f.help(page)});
    // The page is one we deliver.
    QVERIFY2(QFileInfo::exists(QStringLiteral(HALVANE_DATA_DIR "/delivered/help/") + page),
             qPrintable(page));
}

void MenusTest::links_data() {
    QTest::addColumn<QString>("control"); // a menu item, or a label of the About tab to click
    QTest::addColumn<QString>("caption"); // the label's text
    QTest::addColumn<QString>("target");
    const auto row = [](const char* name, const char* control, const QString& caption,
                        const QString& target) {
        QTest::newRow(name) << QString(control) << caption << target;
    };
    const QString site = AppInfo::productSiteAddress(), mail = AppInfo::authorMailAddress();
    row("news", "mnuViewNews", "", site + "/news.shtml");
    row("online", "mnuHelpOnline", "", site);
    row("FAQ", "mnuHelpFAQ", "", site + "/FAQ.shtml");
    row("index", "mnuHelpHalvane", "", "<program>/help/help.htm");
    row("web site", "Label20", site, site);
    row("feedback mail", "Label23", mail,
        "mailto:" + mail + "?subject=Halvane Version 2.07 Feedback");
    row("bug report form", "Label27", "Bug report form", site + "/bugreport.shtml");
    row("N-0-P", "Label6", "N-0-P", AppInfo::nopSiteAddress());
}

void MenusTest::links() {
    QFETCH(QString, control);
    QFETCH(QString, caption);
    QFETCH(QString, target);
    Fixture f;
    if (auto* item = f.window->findChild<QAction*>(control)) {
        item->trigger();
    } else {
        auto* link = f.window->findChild<QLabel*>(control);
        QVERIFY(link);
        QCOMPARE(link->text(), caption);
        f.ui().SSTab1->setCurrentIndex(control == "Label6" ? 4 : 5);
        QTest::mouseClick(link, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    }
    QCOMPARE(f.platform.shell.opened,
             QStringList{target.replace("<program>", f.platform.programFolder())});
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void MenusTest::f8ShowsAboutAndDisablesTheTabLeft() {
    Fixture f;
    auto& ui = f.ui();
    ui.SSTab1->setCurrentIndex(3);
    const QList<QWidget*> options{ui.Frame7, ui.Frame1, ui.Frame8, ui.Frame9};
    QVERIFY(std::all_of(options.begin(), options.end(), std::mem_fn(&QWidget::isEnabled)));
    ui.SSTab1->tabBar()->setFocus();
    QTest::keyClick(f.window.get(), Qt::Key_F8);
    QCOMPARE(ui.SSTab1->currentIndex(), 5);
    QVERIFY(std::none_of(options.begin(), options.end(), std::mem_fn(&QWidget::isEnabled)));
    // Back on General, its frames are usable again.
    QTest::keyClick(f.window.get(), Qt::Key_F2);
    for (QWidget* frame : {ui.Frame4, ui.Frame6, ui.Frame3, ui.Frame2})
        QVERIFY2(frame->isEnabled(), qPrintable(frame->objectName()));
}

void MenusTest::shiftClickOnTabStripShowsHiddenWindow_data() {
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("shown");
    QTest::newRow("Shift") << int(Qt::ShiftModifier) << true;
    QTest::newRow("no key") << int(Qt::NoModifier) << false;
    QTest::newRow("Shift+Ctrl") << int(Qt::ShiftModifier | Qt::ControlModifier) << false;
}

void MenusTest::shiftClickOnTabStripShowsHiddenWindow() {
    QFETCH(int, modifiers);
    QFETCH(bool, shown);
    Fixture f;
    QTabBar* strip = f.ui().SSTab1->tabBar();
    QTest::mouseClick(strip, Qt::LeftButton, Qt::KeyboardModifiers(modifiers),
                      strip->tabRect(1).center());
    QWidget* secret = f.window->helpMenu().secretWindow();
    QCOMPARE(secret && secret->isVisible(), shown);
    if (shown) {
        QCOMPARE(secret->objectName(), QStringLiteral("frmSecret"));
        QVERIFY(!secret->isModal());
        QCOMPARE(secret->parentWidget(), f.window.get());
        QVERIFY(f.window->isEnabled());
    }
}

QTEST_MAIN(MenusTest)
#include "tst_menus.moc"
