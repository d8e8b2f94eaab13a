// Menus, help and about: shortcuts reach their actions, help pages follow the
// tab shown, the About tab's links, the tab change and the hidden window.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "ui/HelpMenu.h"
#include "ui_frmMain.h"

#include <QSignalSpy>
#include <QTabBar>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

const Qt::KeyboardModifiers Ctrl = Qt::ControlModifier, None = Qt::NoModifier;
// A key pressed on the tab strip, or in a text box that keeps it for editing.
const std::tuple<const char*, const char*, Qt::Key, Qt::KeyboardModifiers, const char*>
    Shortcuts[] = {
        {"Create halvane.cfg", "mnuFileMakeCfg", Qt::Key_S, Ctrl, ""},
        {"Save config file As", "mnuFileSaveAs", Qt::Key_A, Ctrl, ""},
        {"Close Halvane", "mnuFileClose", Qt::Key_X, Ctrl, ""},
        {"Set Quake 3 path", "mnuSettingsQ3Path", Qt::Key_P, Ctrl, ""},
        {"General", "mnuSettingsGeneral", Qt::Key_F2, None, ""},
        {"Bots", "mnuSettingsBots", Qt::Key_F3, None, ""},
        {"Maps", "mnuSettingsMaps", Qt::Key_F4, None, ""},
        {"Options", "mnuSettingsOptions", Qt::Key_F5, None, ""},
        {"Advanced", "mnuSettingsAdvanced", Qt::Key_F6, None, ""},
        {"Status Bar", "mnuViewStatusBar", Qt::Key_F1, Ctrl, ""},
        {"Index", "mnuHelpHalvane", Qt::Key_F1, Qt::ShiftModifier, ""},
        {"Help with the Current Tab", "mnuHelpContext", Qt::Key_F1, None, ""},
        {"Halvane Online", "mnuHelpOnline", Qt::Key_O, Ctrl, ""},
        {"Frequently Asked Questions", "mnuHelpFAQ", Qt::Key_Q, Ctrl, ""},
        {"About Halvane", "mnuHelpAbout", Qt::Key_F8, None, ""},
        {"Server Status", "mnuServerStatus", Qt::Key_F7, None, ""},
        {"Ctrl+A in a text box selects", "mnuFileSaveAs", Qt::Key_A, Ctrl, "txtServerName"},
        {"Ctrl+X stays with a text box", "mnuFileClose", Qt::Key_X, Ctrl, "txtServerName"},
};

// A menu item, or a label to click, on the tab shown, with the label's text; where it leads.
const QString Site = AppInfo::productSiteAddress(), Mail = AppInfo::authorMailAddress();
const std::tuple<const char*, const char*, int, QString, QString> Links[] = {
    {"news", "mnuViewNews", 0, "", Site + "/news.shtml"},
    {"online", "mnuHelpOnline", 0, "", Site},
    {"FAQ", "mnuHelpFAQ", 0, "", Site + "/FAQ.shtml"},
    {"index", "mnuHelpHalvane", 3, "", "<help>help.htm"},
    {"help on General", "mnuHelpContext", 0, "", "<help>general.htm"},
    {"help on Bots", "mnuHelpContext", 1, "", "<help>bots.htm"},
    {"help on Maps", "mnuHelpContext", 2, "", "<help>maps.htm"},
    {"help on Options", "mnuHelpContext", 3, "", "<help>options.htm"},
    {"help on Advanced", "mnuHelpContext", 4, "", "<help>advanced.htm"},
    {"help on About", "mnuHelpContext", 5, "", "<help>about.htm"},
    {"web site", "Label20", 5, Site, Site},
    {"feedback mail", "Label23", 5, Mail,
     "mailto:" + Mail + "?subject=Halvane Version 2.07 Feedback"},
    {"bug report form", "Label27", 5, "Bug report form", Site + "/bugreport.shtml"},
    {"N-0-P", "Label6", 4, "N-0-P", AppInfo::nopSiteAddress()},
};

const std::tuple<const char*, Qt::KeyboardModifiers, bool> Clicks[] = {
    {"Shift", Qt::ShiftModifier, true},
    {"no key", None, false},
    {"Shift+Ctrl", Qt::ShiftModifier | Qt::ControlModifier, false},
};

class MenusTest : public QObject {
    Q_OBJECT
private slots:
    void shortcutReachesItsAction_data() { addRows(Shortcuts); }
    void shortcutReachesItsAction();
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
};
} // namespace

void MenusTest::shortcutReachesItsAction() {
    const auto& [name, action, key, modifiers, box] = fetchRow(Shortcuts);
    Fixture f;
    auto* item = f.window->findChild<QAction*>(action);
    QVERIFY(item);
    QSignalSpy triggered(item, &QAction::triggered);
    auto* edit = *box ? f.window->findChild<QLineEdit*>(box) : nullptr;
    if (edit) {
        edit->setText("My server");
        edit->setFocus();
        edit->deselect();
        QTest::keyClick(edit, key, modifiers);
        QCOMPARE(edit->selectedText(), key == Qt::Key_A ? edit->text() : QString());
    } else { // from a control that has no use for the key itself
        f.ui().SSTab1->tabBar()->setFocus();
        QTest::keyClick(f.window.get(), key, modifiers);
    }
    QCOMPARE(triggered.size(), edit ? 0 : 1);
}

void MenusTest::links() {
    const auto& [name, control, tab, caption, link] = fetchRow(Links);
    Fixture f;
    f.ui().SSTab1->setCurrentIndex(tab);
    if (auto* item = f.window->findChild<QAction*>(control)) {
        item->trigger();
    } else {
        auto* label = f.window->findChild<QLabel*>(control);
        QVERIFY(label);
        QCOMPARE(label->text(), caption);
        QTest::mouseClick(label, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    }
    const QString help = f.platform.programFolder() + "/help/";
    QCOMPARE(f.platform.shell.opened, QStringList{QString(link).replace("<help>", help)});
    QVERIFY(f.platform.messages.shown.isEmpty());
    if (link.startsWith("<help>")) // a page we deliver
        QVERIFY(QFileInfo::exists(HALVANE_DATA_DIR "/delivered/help/" + link.mid(6)));
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
