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

const Qt::KeyboardModifiers Ctrl = Qt::ControlModifier, None = Qt::NoModifier;
const std::tuple<const char*, const char*, Qt::Key, Qt::KeyboardModifiers> Shortcuts[] = {
    {"Create halvane.cfg", "mnuFileMakeCfg", Qt::Key_S, Ctrl},
    {"Save config file As", "mnuFileSaveAs", Qt::Key_A, Ctrl},
    {"Close Halvane", "mnuFileClose", Qt::Key_X, Ctrl},
    {"Set Quake 3 path", "mnuSettingsQ3Path", Qt::Key_P, Ctrl},
    {"General", "mnuSettingsGeneral", Qt::Key_F2, None},
    {"Bots", "mnuSettingsBots", Qt::Key_F3, None},
    {"Maps", "mnuSettingsMaps", Qt::Key_F4, None},
    {"Options", "mnuSettingsOptions", Qt::Key_F5, None},
    {"Advanced", "mnuSettingsAdvanced", Qt::Key_F6, None},
    {"Status Bar", "mnuViewStatusBar", Qt::Key_F1, Ctrl},
    {"Index", "mnuHelpHalvane", Qt::Key_F1, Qt::ShiftModifier},
    {"Help with the Current Tab", "mnuHelpContext", Qt::Key_F1, None},
    {"Halvane Online", "mnuHelpOnline", Qt::Key_O, Ctrl},
    {"Frequently Asked Questions", "mnuHelpFAQ", Qt::Key_Q, Ctrl},
    {"About Halvane", "mnuHelpAbout", Qt::Key_F8, None},
    {"Server Status", "mnuServerStatus", Qt::Key_F7, None},
};

// A menu item, or a label of the About tab to click, with its text; where it leads.
const QString Site = AppInfo::productSiteAddress(), Mail = AppInfo::authorMailAddress();
const std::tuple<const char*, const char*, QString, QString> Links[] = {
    {"news", "mnuViewNews", "", Site + "/news.shtml"},
    {"online", "mnuHelpOnline", "", Site},
    {"FAQ", "mnuHelpFAQ", "", Site + "/FAQ.shtml"},
    {"index", "mnuHelpHalvane", "", "<program>/help/help.htm"},
    {"web site", "Label20", Site, Site},
    {"feedback mail", "Label23", Mail, "mailto:" + Mail + "?subject=Halvane Version 2.07 Feedback"},
    {"bug report form", "Label27", "Bug report form", Site + "/bugreport.shtml"},
    {"N-0-P", "Label6", "N-0-P", AppInfo::nopSiteAddress()},
};

const std::tuple<const char*, Qt::KeyboardModifiers, bool> Clicks[] = {
    {"Shift", Qt::ShiftModifier, true},
    {"no key", None, false},
    {"Shift+Ctrl", Qt::ShiftModifier | Qt::ControlModifier, false},
};

const std::tuple<const char*, int> HelpPages[] = {{"general.htm", 0},  {"bots.htm", 1},
                                                  {"maps.htm", 2},     {"options.htm", 3},
                                                  {"advanced.htm", 4}, {"about.htm", 5}};

class MenusTest : public QObject {
    Q_OBJECT
private slots:
    void shortcutReachesItsAction_data() { addRows(Shortcuts); }
    void shortcutReachesItsAction();
    void editingKeysStayWithTextBoxes();
    void f1OpensTheHelpOfTheTabShown_data() { addRows(HelpPages); }
    void f1OpensTheHelpOfTheTabShown();
    void links_data() { addRows(Links); }
    void links();
    void f8ShowsAboutAndDisablesTheTabLeft();
    void shiftClickOnTabStripShowsHiddenWindow_data() { addRows(Clicks); }
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

void MenusTest::shortcutReachesItsAction() {
    const auto& [name, action, key, modifiers] = fetchRow(Shortcuts);
    Fixture f;
    auto* item = f.window->findChild<QAction*>(action);
    QVERIFY(item);
    QSignalSpy triggered(item, &QAction::triggered);
    // From a control that has no use for the key itself.
    f.ui().SSTab1->tabBar()->setFocus();
    QTest::keyClick(f.window.get(), key, modifiers);
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
    QCOMPARE(std::pair(saveAs.size(), f.ui().txtServerName->selectedText()),
             std::pair(qsizetype(0), QStringLiteral("My server")));
}

void MenusTest::f1OpensTheHelpOfTheTabShown() {
    const auto& [page, tab] = fetchRow(HelpPages);
    Fixture f;
    f.ui().SSTab1->setCurrentIndex(tab);
    f.ui().SSTab1->tabBar()->setFocus();
    QTest::keyClick(f.window.get(), Qt::Key_F1);
    QCOMPARE(f.platform.shell.opened, QStringList{f.help(page)});
    // The page is one we deliver.
    QVERIFY2(QFileInfo::exists(QStringLiteral(HALVANE_DATA_DIR "/delivered/help/") + page),
             qPrintable(page));
}

void MenusTest::links() {
    const auto& [name, control, caption, link] = fetchRow(Links);
    QString target = link;
    Fixture f;
    if (auto* item = f.window->findChild<QAction*>(control)) {
        item->trigger();
    } else {
        auto* label = f.window->findChild<QLabel*>(control);
        QVERIFY(label);
        QCOMPARE(label->text(), caption);
        f.ui().SSTab1->setCurrentIndex(QString(control) == "Label6" ? 4 : 5);
        QTest::mouseClick(label, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
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

void MenusTest::shiftClickOnTabStripShowsHiddenWindow() {
    const auto& [name, modifiers, shown] = fetchRow(Clicks);
    Fixture f;
    QTabBar* strip = f.ui().SSTab1->tabBar();
    QTest::mouseClick(strip, Qt::LeftButton, modifiers, strip->tabRect(1).center());
    QWidget* secret = f.window->helpMenu().secretWindow();
    QCOMPARE(secret && secret->isVisible(), shown);
    if (shown) {
        QCOMPARE(secret->objectName(), QStringLiteral("frmSecret"));
        QVERIFY(!secret->isModal() && secret->parentWidget() == f.window.get() &&
                f.window->isEnabled());
    }
}

QTEST_MAIN(MenusTest)
#include "tst_menus.moc"
