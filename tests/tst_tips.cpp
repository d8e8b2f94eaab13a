// The tip line: a control shows its tip when the mouse moves over it, the built tips are built at
// that moment, and text boxes select their whole text when they receive the focus.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "ui_frmMain.h"

#include <QMouseEvent>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

const QString SiteLine =
    QStringLiteral("Visit the Halvane website at ") + AppInfo::productSiteAddress();
// A control and its tip ("" for its own tip, not the window's); text boxes among them.
const std::tuple<const char*, QString, QString> ExactTips[] = {
    {"two blanks", "btnEditBotList",
     "Opens the bot list in Notepad.  Be sure to [ Refresh ] the list if you make any changes."},
    {"backslash", "chkCheating",
     "This starts each map with the devmap command, allowing clients to cheat by using "
     "commands such as \\give all to instantly obtain all weapons, etc."},
    {"shared row, box", "txtNetIP",
     "Optional - If you are on a multi-homed server and the default IP is not what you want to "
     "use for your Quake 3 server, this IP address will need to be used instead"},
    {"spelling kept", "txtServerPW",
     "This password will be required (by the specified number of clients) to connect to your "
     "server.  See the FAQ on the Halvane webiste for more details."},
    {"button", "cmdStart", "Starts the game server with all the selected options"},
    {"label sharing its box's tip", "Label1", "Enter the name of your server"},
    {"list", "MapList", "Select the maps you want to use on your server"},
    {"master box", "txtMaster_3", ""},
    {"name box", "txtServerName", "Enter the name of your server"},
    {"map field", "txtMapFragLimit", ""},
    {"advanced box", "txtHunkMegs", ""},
    {"check box", "chkVote",
     "Allows players to call for and vote on changes including: map, map restart, kick, and "
     "g_gametype"},
    {"window's empty area", "centralwidget", SiteLine},
    {"tab control", "SSTab1", SiteLine},
    {"picture", "Image1", AppInfo::trademarkNotice()},
    {"master frame", "Frame1",
     "Enter additional master servers that you wish to report to - only available if you "
     "select \"dedicated server\" for the server type on the general tab"},
};

class TipsTest : public QObject {
    Q_OBJECT
private slots:
    void exactTexts_data() { addRows(ExactTips); }
    void exactTexts();
    void builtTips();

private:
    WindowFixture m_fixture;
    QString tipAfterMove(QWidget* widget);
};

namespace {

// Makes a control reachable: its tab and bot panel shown, it and its frames
// usable whatever the interlocks said.
void reach(QWidget* widget) {
    for (QWidget* up = widget; up; up = up->parentWidget()) {
        up->setEnabled(true);
        if (auto* stack = qobject_cast<QStackedWidget*>(up->parentWidget())) {
            stack->setCurrentWidget(up);
            if (auto* tabs = qobject_cast<QTabWidget*>(stack->parentWidget()))
                tabs->setCurrentWidget(up);
        }
    }
}

// A point of the widget not covered by a child, where the move is its own.
QPoint emptyPoint(const QWidget* widget) {
    for (int y = 1; y < widget->height(); y += 3) {
        for (int x = 1; x < widget->width(); x += 3) {
            if (!widget->childAt(x, y))
                return QPoint(x, y);
        }
    }
    return QPoint(1, 1);
}
} // namespace

QString TipsTest::tipAfterMove(QWidget* widget) {
    m_fixture.window->form().txtTip->setText("(none)");
    const QPointF at = emptyPoint(widget);
    QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    return m_fixture.window->form().txtTip->text();
}

void TipsTest::exactTexts() {
    const auto& [row, name, expected] = fetchRow(ExactTips);
    QWidget* widget = m_fixture.window->findChild<QWidget*>(name);
    QVERIFY(widget);
    reach(widget); // a disabled control gets no mouse movement
    const QString tip = tipAfterMove(widget);
    if (expected.isEmpty()) // its own tip, not the window's
        QVERIFY2(tip != "(none)" && !tip.isEmpty() && tip != SiteLine, qPrintable(tip));
    else
        QCOMPARE(tip, expected);
    QCOMPARE(tipAfterMove(widget), tip); // every move repeats it

    // A text box selects its whole text when it receives the focus.
    auto* box = qobject_cast<QLineEdit*>(widget);
    if (!box)
        return;
    QApplication::setActiveWindow(m_fixture.window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_fixture.window.get()));
    box->setReadOnly(false);
    m_fixture.window->form().cmdStart->setFocus();
    box->setText("old text");
    box->deselect();
    // Not by Tab, which a text box answers on its own by selecting.
    box->setFocus(Qt::OtherFocusReason);
    QVERIFY(box->hasFocus() && !box->text().isEmpty()); // cut to the box's length for map fields
    QCOMPARE(box->selectedText(), box->text());
    QTest::keyClicks(box, "7");
    QCOMPARE(box->text(), QStringLiteral("7"));
}

void TipsTest::builtTips() {
    auto& ui = m_fixture.window->form();
    const auto logTip = [](const QDateTime& at) {
        return "When checked, Q3A will log all data to a file using the date and time (" +
               at.toString("yyyyMMdd-HHmm") + ".log).";
    };
    const QString before = logTip(QDateTime::currentDateTime()), tip = tipAfterMove(ui.chkDateLog);
    QVERIFY2(tip == before || tip == logTip(QDateTime::currentDateTime()), qPrintable(tip));

    ui.BotList->clear();
    for (const char* bot : {"Anarki", "Bitterman", "Crash", "Doom"}) { // Bitterman and Doom checked
        auto* item = new QListWidgetItem(bot, ui.BotList);
        item->setCheckState(ui.BotList->count() % 2 ? Qt::Unchecked : Qt::Checked);
    }
    QCOMPARE(tipAfterMove(ui.lblBotCount),
             QStringLiteral("2 bots selected - This is the total amount of bots that you have "
                            "selected"));
    ui.BotList->clear(); // counted when the mouse moves, not when the tip was made
    QVERIFY(tipAfterMove(ui.lblBotCount).startsWith("0 bots selected - "));

    const QString mail = tipAfterMove(ui.Label23);
    QVERIFY(mail.contains("author") && mail.contains("bug report form"));

    ui.lblVersion->setText("Version 9.99");
    QCOMPARE(tipAfterMove(ui.lblVersion), QStringLiteral("Version information (Version 9.99)"));
    ui.lblVersion->setText(AppInfo::versionCaption());
}

QTEST_MAIN(TipsTest)
#include "tst_tips.moc"
