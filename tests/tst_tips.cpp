// The tip line: every control of the tip tables shows its tip when the mouse
// moves over it, the built tips are built at that moment, and the listed text
// boxes select their whole text when they receive the focus.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "ui/Tips.h"
#include "ui_frmMain.h"

#include <QMouseEvent>
#include <QRegularExpression>
#include <QtTest>
#include <optional>

using namespace halvane;
using namespace halvane::test;

class TipsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void tablesAndWindowAgree();
    void mouseMoveShowsTheTip_data();
    void mouseMoveShowsTheTip();
    void exactTexts_data();
    void exactTexts();
    void builtTips();
    void focusSelectsWholeText_data();
    void focusSelectsWholeText();

private:
    std::unique_ptr<WindowFixture> m_fixture;
    QString tipAfterMove(QWidget* widget);
};

namespace {
// Every control that has a tip of its own, by object name.
const QStringList NamedControls =
    QStringLiteral(
        "BotList Frame1 Image1 Label1 Label10 Label11 Label12 Label13 Label14 Label15 Label16 "
        "Label17 Label19 Label2 Label20 Label22 Label23 Label24 Label25 Label27 Label29 Label3 "
        "Label33 Label34 Label36 Label37 Label39 Label4 Label40 Label41 Label42 Label43 Label44 "
        "Label45 Label46 Label47 Label5 Label7 Label8 Label9 MapList btnBotRefresh btnEditBotList "
        "chkAutoBalance chkAutoJoin chkAutoSelectBots chkCheating chkDateLog chkDemoRecording "
        "chkDisableBotChat chkFriendly chkLogFile chkNOP chkNoBotJump chkPAKCheat "
        "chkRandomBotSkill chkRequirePassword chkRocketJump chkSpecifyCD chkStartState chkVote "
        "chkWarmUp cmdAddMaps cmdAddSelMap cmdClose cmdDefault cmdEditCfg cmdMapClearAll cmdMapCtf "
        "cmdMapDm cmdMapDown cmdMapSelectAll cmdMapTourney cmdMapUp cmdRandomize cmdRemSelMap "
        "cmdSearchMaps cmdSetPath cmdStart label75 lblBotCount lblPrivateClients lblVersion "
        "optClose optMinimize txtAdminEmail txtAdminName txtAdminURL txtCDROM txtConsolePW "
        "txtHunkMegs txtInactivity txtLogFile txtMOTD txtMapCapturelimit txtMapFragLimit "
        "txtMapGravity txtMapKnockback txtMapSpeed txtMapTimeLimit txtMaster_0 txtMaster_1 "
        "txtMaster_2 txtMaster_3 txtMaster_4 txtMaxPing txtMaxPlayers txtMaxRate txtMinBots "
        "txtMinPing txtNetIP txtNetPort txtPlayerRespawn txtPrivateClients txtQuad txtRandomBots "
        "txtRespawn txtServerName txtServerPW txtWarmUpTime")
        .split(' ');

const QString SiteLine =
    QStringLiteral("Visit the Halvane website at ") + AppInfo::productSiteAddress();

// Makes a control reachable: its tab and bot panel shown, it and its frames
// usable whatever the interlocks said.
void reach(QWidget* widget) {
    for (QWidget* up = widget; up; up = up->parentWidget()) {
        up->setEnabled(true);
        QWidget* parent = up->parentWidget();
        if (auto* stack = qobject_cast<QStackedWidget*>(parent)) {
            stack->setCurrentWidget(up);
            if (auto* tabs = qobject_cast<QTabWidget*>(stack->parentWidget()))
                tabs->setCurrentWidget(up);
        }
    }
}
} // namespace

void TipsTest::initTestCase() {
    m_fixture = std::make_unique<WindowFixture>();
}

namespace {
// A point of the widget not covered by a child, where the move is its own.
std::optional<QPoint> emptyPoint(const QWidget* widget) {
    for (int y = 1; y < widget->height(); y += 3) {
        for (int x = 1; x < widget->width(); x += 3) {
            if (!widget->childAt(x, y))
                return QPoint(x, y);
        }
    }
    return std::nullopt;
}
} // namespace

QString TipsTest::tipAfterMove(QWidget* widget) {
    m_fixture->window->form().txtTip->setText("(none)");
    const QPointF at = emptyPoint(widget).value_or(QPoint(1, 1));
    QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    return m_fixture->window->form().txtTip->text();
}

// Every control of the list has a tip, and every tip a control.
void TipsTest::tablesAndWindowAgree() {
    QStringList missing;
    for (const QString& name : NamedControls) {
        if (!Tips::table().contains(Tips::keyOf(name)) &&
            !Tips::builtNames().contains(Tips::keyOf(name)))
            missing << name;
    }
    QVERIFY2(missing.isEmpty(), qPrintable("no tip for: " + missing.join(", ")));
    for (const QString& key : Tips::table().keys() + Tips::builtNames()) {
        // The window has no picture box "Picture1".
        QVERIFY2(key == "Picture1" || m_fixture->window->objectName() == key ||
                     m_fixture->window->findChild<QWidget*>(key) ||
                     m_fixture->window->findChild<QWidget*>(key + "_0"),
                 qPrintable("no such control: " + key));
    }
}

void TipsTest::mouseMoveShowsTheTip_data() {
    QTest::addColumn<QString>("name");
    for (const QString& name : NamedControls)
        QTest::newRow(qPrintable(name)) << name;
}

// A move over the control shows its own tip, not the window's, and every move repeats it.
void TipsTest::mouseMoveShowsTheTip() {
    QFETCH(QString, name);
    QWidget* widget = m_fixture->window->findChild<QWidget*>(name);
    QVERIFY(widget);
    reach(widget);
    const QString tip = tipAfterMove(widget);
    QVERIFY2(tip != "(none)" && !tip.isEmpty() && tip != SiteLine, qPrintable(tip));
    QCOMPARE(tipAfterMove(widget), tip);
}

void TipsTest::exactTexts_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* control, const QString& tip) {
        QTest::newRow(name) << QString(control) << tip;
    };
    row("two blanks", "btnEditBotList",
        "Opens the bot list in Notepad.  Be sure to [ Refresh ] the list if you make any changes.");
    row("backslash", "chkCheating",
        "This starts each map with the devmap command, allowing clients to cheat by using "
        "commands such as \\give all to instantly obtain all weapons, etc.");
    row("shared row, box", "txtNetIP",
        "Optional - If you are on a multi-homed server and the default IP is not what you want to "
        "use for your Quake 3 server, this IP address will need to be used instead");
    row("spelling kept", "txtServerPW",
        "This password will be required (by the specified number of clients) to connect to your "
        "server.  See the FAQ on the Halvane webiste for more details.");
    row("window's empty area", "centralwidget", SiteLine);
    row("tab control", "SSTab1", SiteLine);
    row("picture", "Image1", AppInfo::trademarkNotice());
    row("master frame", "Frame1",
        "Enter additional master servers that you wish to report to - only available if you "
        "select \"dedicated server\" for the server type on the general tab");
}

void TipsTest::exactTexts() {
    QFETCH(QString, name);
    QFETCH(QString, expected);
    QWidget* widget = m_fixture->window->findChild<QWidget*>(name);
    QVERIFY(widget);
    reach(widget); // a disabled control gets no mouse movement
    QCOMPARE(tipAfterMove(widget), expected);
}

void TipsTest::builtTips() {
    const QDateTime before = QDateTime::currentDateTime();
    const QString tip = tipAfterMove(m_fixture->window->form().chkDateLog);
    const QDateTime after = QDateTime::currentDateTime();
    const QString prefix =
        "When checked, Q3A will log all data to a file using the date and time (";
    QVERIFY2(tip.startsWith(prefix), qPrintable(tip));
    const QString name = tip.mid(prefix.size());
    QVERIFY2(QRegularExpression("^\\d{8}-\\d{4}\\.log\\)\\.$").match(name).hasMatch(),
             qPrintable(name));
    QVERIFY(name.startsWith(before.toString("yyyyMMdd-HHmm")) ||
            name.startsWith(after.toString("yyyyMMdd-HHmm")));

    auto& ui = m_fixture->window->form();
    ui.BotList->clear();
    const QStringList bots{"Anarki", "Bitterman", "Crash", "Doom"};
    for (int i = 0; i < bots.size(); ++i) {
        auto* item = new QListWidgetItem(bots[i], ui.BotList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(i % 2 ? Qt::Checked : Qt::Unchecked); // Bitterman and Doom
    }
    QCOMPARE(tipAfterMove(ui.lblBotCount),
             QStringLiteral("2 bots selected - This is the total amount of bots that you have "
                            "selected"));
    ui.BotList->item(0)->setCheckState(Qt::Checked);
    QVERIFY(tipAfterMove(ui.lblBotCount).startsWith("3 bots selected - "));
    ui.BotList->clear();
    QVERIFY(tipAfterMove(ui.lblBotCount).startsWith("0 bots selected - "));

    const QString mail = tipAfterMove(ui.Label23);
    QCOMPARE(mail, Tips::mailLinkTip());
    QVERIFY(mail.contains("author") && mail.contains("bug report form"));

    ui.lblVersion->setText("Version 9.99");
    QCOMPARE(tipAfterMove(ui.lblVersion), QStringLiteral("Version information (Version 9.99)"));
    ui.lblVersion->setText(AppInfo::versionCaption());
}

void TipsTest::focusSelectsWholeText_data() {
    QTest::addColumn<QString>("name");
    QStringList names = Tips::selectOnFocusNames();
    names.removeAll("txtMaster");
    for (int n = 0; n < 5; ++n)
        names << QStringLiteral("txtMaster_%1").arg(n);
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void TipsTest::focusSelectsWholeText() {
    QFETCH(QString, name);
    auto* box = m_fixture->window->findChild<QLineEdit*>(name);
    QVERIFY(box);
    QApplication::setActiveWindow(m_fixture->window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_fixture->window.get()));
    reach(box);
    box->setReadOnly(false);
    m_fixture->window->form().cmdStart->setFocus();
    box->setText("old text");
    box->deselect();
    // Not by Tab, which a text box answers on its own by selecting.
    box->setFocus(Qt::OtherFocusReason);
    QVERIFY(box->hasFocus());
    QVERIFY(!box->text().isEmpty()); // cut to the box's length for the map fields
    QCOMPARE(box->selectedText(), box->text());
    QTest::keyClicks(box, "7");
    QCOMPARE(box->text(), QStringLiteral("7"));
}

QTEST_MAIN(TipsTest)
#include "tst_tips.moc"
