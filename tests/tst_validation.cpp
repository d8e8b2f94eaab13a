// The checks before a launch and the guards while typing: messages, silent
// fills, memory questions, the stored settings and the digits-only boxes.
#include "TestSupport.h"

#include "settings/Validation.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QClipboard>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

using Values = QList<QPair<QString, QString>>; // control, text / index / "1" "0"

Q_DECLARE_METATYPE(Values)
Q_DECLARE_METATYPE(QList<MsgAnswer>)

namespace {

void applyValues(QWidget& window, const Values& values) {
    for (const auto& [name, value] : values) {
        QObject* control = window.findChild<QObject*>(name);
        QVERIFY2(control, qPrintable(name));
        if (auto* box = qobject_cast<QLineEdit*>(control))
            box->setText(value);
        else if (auto* combo = qobject_cast<QComboBox*>(control))
            combo->setCurrentIndex(value.toInt());
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            button->setChecked(value == QLatin1String("1"));
    }
}

// A launch-ready dedicated free-for-all server without extras.
const Values Baseline{{"cmbGameType", "0"},
                      {"cmbServerType", "2"},
                      {"cmbBotType", "0"},
                      {"chkLogFile", "0"},
                      {"chkDateLog", "0"},
                      {"txtLogFile", ""},
                      {"txtServerName", "Arena"},
                      {"txtMaxPlayers", "8"},
                      {"txtMapFragLimit", "20"},
                      {"txtMapTimeLimit", "15"},
                      {"txtQuad", "3"},
                      {"txtRespawn", "5"},
                      {"txtHunkMegs", "32"},
                      {"txtMinBots", "2"},
                      {"txtPlayerRespawn", "0"},
                      {"txtInactivity", "0"},
                      {"txtNetIP", ""},
                      {"chkSpecifyCD", "0"},
                      {"txtCDROM", ""}};

QString describe(const ShownMessage& m) {
    static const char* icons[] = {"none", "information", "question", "critical"};
    return m.title + QStringLiteral(" | ") + m.text + QStringLiteral(" | ") +
           (m.buttons == MsgButtons::YesNo ? QStringLiteral("YesNo") : QStringLiteral("Ok")) +
           QStringLiteral(" | ") + QLatin1String(icons[int(m.icon)]);
}

QStringList described(const QList<ShownMessage>& shown) {
    QStringList result;
    for (const ShownMessage& m : shown)
        result << describe(m);
    return result;
}

const QString Fail = QStringLiteral("Warning! | %1 | Ok | critical");
const QString CtfQuestion = QStringLiteral(
    "Warning | The amount of allocated memory should be increased to at least 26 for CTF "
    "games.\r\rWould you like to set it to 32 beofre starting? | YesNo | question");
QString tooMuch(const QString& megs) {
    return QStringLiteral("Warning | The amount of allocated memory (%1MB) far exceeds the typical "
                          "requirements, would you like to change this first? | YesNo | none")
        .arg(megs);
}
QString tooLittle(const QString& megs) {
    return QStringLiteral("Warning | The amount of allocated memory (%1MB) is lower than "
                          "recommended for a listen server, would you like to change this "
                          "first? | YesNo | none")
        .arg(megs);
}
const QString Autobots = Fail.arg(
    "You have selected autobots, but the number of bots is invalid.\r\rAcceptable values are 1 "
    "through 32.  (2-4 is recommended)");
const QString BadIp = Fail.arg("The specified network IP address does not appear to be valid");
const QString BadCd = Fail.arg("The drive letter you have specified for your CD ROM is "
                               "invalid.\r\rEither uncheck the box next to it, or enter a valid "
                               "drive letter (example: D:)");
const QString NoLogName = QStringLiteral("Error | You have chosen to specify a log filename, but "
                                         "no filename is specified | Ok | none");

} // namespace

class ValidationTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void validateAll_data();
    void validateAll();
    void refusedStoreFailsSilently();
    void everyNumericBoxIsFiltered();
    void textPlacedByProgramOrPasteIsNotFiltered();
    void logFileNameCheckedOnLeaving_data();
    void logFileNameCheckedOnLeaving();
    void privateClientsCheckedOnLeaving_data();
    void privateClientsCheckedOnLeaving();

private:
    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<MainWindow> window;
    Ui::frmMain* ui = nullptr;
};

void ValidationTest::init() {
    platform = std::make_unique<TestPlatform>();
    platform->makeGameFolder();
    window = std::make_unique<MainWindow>(*platform->app);
    window->showMainWindow();
    ui = &window->form();
    applyValues(*window, Baseline);
    platform->messages.clear();
    platform->store->writes.clear();
    platform->desktop.beeps = 0;
}

void ValidationTest::cleanup() {
    window.reset();
    platform.reset();
}

void ValidationTest::validateAll_data() {
    QTest::addColumn<Values>("input");
    QTest::addColumn<QList<MsgAnswer>>("answers");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<Values>("after");
    QTest::addColumn<bool>("passed");
    QTest::addColumn<QString>("focusedOnAdvanced"); // the box shown selected, if any

    using A = QList<MsgAnswer>;
    const auto Yes = MsgAnswer::Yes;
    const auto No = MsgAnswer::No;

    QTest::newRow("all good") << Values{} << A{} << QStringList{} << Values{} << true << "";
    QTest::newRow("log name of blanks")
        << Values{{"chkLogFile", "1"}, {"txtLogFile", "   "}} << A{} << QStringList{NoLogName}
        << Values{{"txtLogFile", "   "}} << false << "txtLogFile";
    QTest::newRow("server name one blank")
        << Values{{"txtServerName", " "}} << A{} << QStringList{} << Values{} << true << "";
    QTest::newRow("server name empty")
        << Values{{"txtServerName", ""}} << A{} << QStringList{Fail.arg("Server name is required")}
        << Values{} << false << "";
    QTest::newRow("max players empty")
        << Values{{"txtMaxPlayers", ""}} << A{}
        << QStringList{Fail.arg("Maxiumum Player value is required")} << Values{} << false << "";
    QTest::newRow("empty limits filled silently") << Values{{"txtMapFragLimit", ""},
                                                            {"txtMapTimeLimit", ""},
                                                            {"txtQuad", ""},
                                                            {"txtRespawn", ""}}
                                                  << A{} << QStringList{}
                                                  << Values{{"txtMapFragLimit", "0"},
                                                            {"txtMapTimeLimit", "0"},
                                                            {"txtQuad", "3"},
                                                            {"txtRespawn", "5"}}
                                                  << true << "";
    QTest::newRow("fills stay when a later check fails")
        << Values{{"txtQuad", ""}, {"txtPlayerRespawn", "abc"}, {"txtNetIP", "1.2.3.4"}} << A{}
        << QStringList{BadIp} << Values{{"txtQuad", "3"}, {"txtPlayerRespawn", "0"}} << false << "";
    QTest::newRow("memory 8 becomes 12") << Values{{"txtHunkMegs", "8"}} << A{} << QStringList{}
                                         << Values{{"txtHunkMegs", "12"}} << true << "";
    QTest::newRow("memory 1 6 is 16, blanks ignored")
        << Values{{"txtHunkMegs", " 1 6"}} << A{} << QStringList{}
        << Values{{"txtHunkMegs", " 1 6"}} << true << "";
    QTest::newRow("ctf memory 16, yes")
        << Values{{"cmbGameType", "3"}, {"txtHunkMegs", "16"}} << A{Yes} << QStringList{CtfQuestion}
        << Values{{"txtHunkMegs", "32"}} << true << "";
    QTest::newRow("ctf listen 16: yes, then listen question yes")
        << Values{{"cmbGameType", "3"}, {"cmbServerType", "0"}, {"txtHunkMegs", "16"}}
        << A{Yes, Yes} << QStringList{CtfQuestion, tooLittle("32")} << Values{{"txtHunkMegs", "32"}}
        << false << "txtHunkMegs";
    QTest::newRow("dedicated 64 asks nothing")
        << Values{{"txtHunkMegs", "64"}} << A{} << QStringList{} << Values{} << true << "";
    QTest::newRow("dedicated 65, yes stops")
        << Values{{"txtHunkMegs", "65"}} << A{Yes} << QStringList{tooMuch("65")}
        << Values{{"txtHunkMegs", "65"}} << false << "txtHunkMegs";
    QTest::newRow("listen 56 asks nothing") << Values{{"cmbServerType", "0"}, {"txtHunkMegs", "56"}}
                                            << A{} << QStringList{} << Values{} << true << "";
    QTest::newRow("listen 8 is raised before the question")
        << Values{{"cmbServerType", "0"}, {"txtHunkMegs", "8"}} << A{No}
        << QStringList{tooLittle("12")} << Values{{"txtHunkMegs", "12"}} << true << "";
    for (const char* bots : {"0", "33", ""}) {
        QTest::addRow("autobots %s", bots)
            << Values{{"cmbBotType", "2"}, {"txtMinBots", bots}} << A{} << QStringList{Autobots}
            << Values{} << false << "";
    }
    for (const char* bots : {"1", "32"}) {
        QTest::addRow("autobots %s", bots) << Values{{"cmbBotType", "2"}, {"txtMinBots", bots}}
                                           << A{} << QStringList{} << Values{} << true << "";
    }
    QTest::newRow("respawn and inactivity without numbers become 0")
        << Values{{"txtPlayerRespawn", "abc"}, {"txtInactivity", ""}} << A{} << QStringList{}
        << Values{{"txtPlayerRespawn", "0"}, {"txtInactivity", "0"}} << true << "";
    QTest::newRow("ip of 7 characters")
        << Values{{"txtNetIP", "1.2.3.4"}} << A{} << QStringList{BadIp} << Values{} << false << "";
    QTest::newRow("cd D:") << Values{{"chkSpecifyCD", "1"}, {"txtCDROM", "D:"}} << A{}
                           << QStringList{} << Values{} << true << "";
    QTest::newRow("cd D") << Values{{"chkSpecifyCD", "1"}, {"txtCDROM", "D"}} << A{}
                          << QStringList{BadCd} << Values{} << false << "";
    QTest::newRow("first failing check wins")
        << Values{{"txtServerName", ""}, {"txtNetIP", "1"}, {"txtHunkMegs", "8"}} << A{}
        << QStringList{Fail.arg("Server name is required")} << Values{{"txtHunkMegs", "8"}} << false
        << "";
}

void ValidationTest::validateAll() {
    QFETCH(Values, input);
    QFETCH(QList<MsgAnswer>, answers);
    QFETCH(QStringList, messages);
    QFETCH(Values, after);
    QFETCH(bool, passed);
    QFETCH(QString, focusedOnAdvanced);

    applyValues(*window, input);
    ui->SSTab1->setCurrentIndex(0);
    platform->messages.clear();
    platform->messages.answers = answers;
    platform->store->writes.clear();

    QCOMPARE(window->validation().ValidateAll(), passed);

    QCOMPARE(described(platform->messages.shown), messages);
    for (const auto& [name, text] : after)
        QCOMPARE(window->findChild<QLineEdit*>(name)->text(), text);

    // Stored exactly when it passed, with the values the boxes now hold.
    const QStringList& writes = platform->store->writes;
    if (passed) {
        QVERIFY(writes.contains("General/Name=" + ui->txtServerName->text()));
        QVERIFY(writes.contains("Limits/MaxPlayers=" + ui->txtMaxPlayers->text()));
        platform->reopenStore();
        QCOMPARE(platform->store->read("General", "Name", "<none>"), ui->txtServerName->text());
    } else {
        QCOMPARE(writes, QStringList{});
    }

    if (!focusedOnAdvanced.isEmpty()) {
        auto* box = window->findChild<QLineEdit*>(focusedOnAdvanced);
        QCOMPARE(ui->SSTab1->currentIndex(), 4);
        QCOMPARE(box->selectedText(), box->text());
        if (QTest::qWaitForWindowActive(window.get()))
            QVERIFY(box->hasFocus());
    } else {
        QCOMPARE(ui->SSTab1->currentIndex(), 0);
    }
}

void ValidationTest::refusedStoreFailsSilently() {
    platform->store->failAtKey = "Name";
    QVERIFY(!window->validation().ValidateAll());
    QCOMPARE(platform->messages.shown.size(), 0);
}

void ValidationTest::everyNumericBoxIsFiltered() {
    QCOMPARE(Validation::numericBoxes().size(), 17);
    for (const QString& name : Validation::numericBoxes()) {
        auto* box = window->findChild<QLineEdit*>(name);
        QVERIFY2(box, qPrintable(name));
        // A disabled box takes no keys at all (txtMinBots is disabled unless
        // bots are automatic), so make the box and its frames typeable.
        for (QWidget* w = box; w && w != window.get(); w = w->parentWidget())
            w->setEnabled(true);
        QVERIFY2(box->isEnabled(), qPrintable(name));
        box->setText("4");
        box->end(false);
        platform->desktop.beeps = 0;
        QTest::keyClicks(box, "7x");
        QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(box, Qt::Key_Return);
        QVERIFY2(box->text() == QStringLiteral("47"), qPrintable(name));
        QCOMPARE(platform->desktop.beeps, 3);
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClick(box, Qt::Key_Left);
        QCOMPARE(box->text(), QStringLiteral("4"));
        QCOMPARE(platform->desktop.beeps, 3);
    }
}

void ValidationTest::textPlacedByProgramOrPasteIsNotFiltered() {
    ui->txtHunkMegs->setText("abc");
    QCOMPARE(ui->txtHunkMegs->text(), QStringLiteral("abc"));
    QGuiApplication::clipboard()->setText("x9");
    if (QGuiApplication::clipboard()->text() != QLatin1String("x9"))
        QSKIP("no clipboard on this platform");
    ui->txtHunkMegs->clear();
    ui->txtHunkMegs->paste(); // what the context menu's Paste does
    QCOMPARE(ui->txtHunkMegs->text(), QStringLiteral("x9"));
    QCOMPARE(platform->desktop.beeps, 0);
}

void ValidationTest::logFileNameCheckedOnLeaving_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("refused");
    QTest::newRow("plain") << "server.log" << false;
    QTest::newRow("empty") << "" << false;
    for (const char* c : {"\\", "/", ":", "*", "?", "\"", ">", "<", "|"})
        QTest::addRow("with %s", c) << QStringLiteral("a%1b.log").arg(QLatin1String(c)) << true;
}

void ValidationTest::logFileNameCheckedOnLeaving() {
    QFETCH(QString, name);
    QFETCH(bool, refused);
    ui->chkLogFile->setChecked(true);
    ui->txtLogFile->setEnabled(true);
    ui->txtLogFile->setText(name);
    platform->messages.clear();

    // Another window taking the focus is no leaving.
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(ui->txtLogFile, &away);
    QCOMPARE(platform->messages.shown.size(), 0);

    const bool active = QTest::qWaitForWindowActive(window.get());
    if (active) {
        ui->txtLogFile->setFocus();
        ui->txtServerName->setFocus(Qt::TabFocusReason);
    } else {
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(ui->txtLogFile, &out);
    }
    const QStringList expected =
        refused ? QStringList{"Invalid filename | A filename cannot contain any of the following "
                              "characters:\r\r\\ / : * ? \" > < | | Ok | critical"}
                : QStringList{};
    QCOMPARE(described(platform->messages.shown), expected);
    QCOMPARE(ui->txtLogFile->text(), name);
    if (refused) {
        QCOMPARE(ui->txtLogFile->selectedText(), name);
        if (active)
            QVERIFY(ui->txtLogFile->hasFocus());
    }
}

void ValidationTest::privateClientsCheckedOnLeaving_data() {
    QTest::addColumn<QString>("privateClients");
    QTest::addColumn<QString>("maxPlayers");
    QTest::addColumn<QString>("message");
    const QString exceeds = QStringLiteral(
        "Warning | The number of private clients (%1) exceeds the maxiumum number of players "
        "specified (%2). \r\rThis number should be the same, or less than the maxiumum number of "
        "clients. | Ok | information");
    const QString password = QStringLiteral(
        "Warning | Setting the number of private clients will remove the password required to "
        "connect to your server for all clients.\r\rIf you wish to disable the password, uncheck "
        "'Require Password' instead. | Ok | information");
    QTest::newRow("1 0 of 6 is 10 of 6") << "1 0"
                                         << "6" << exceeds.arg("1 0", "6");
    QTest::newRow("0 of 6") << "0"
                            << "6" << password;
    QTest::newRow("6 of 6") << "6"
                            << "6"
                            << "";
    QTest::newRow("7 of 6.6 rounds up") << "7"
                                        << "6.6"
                                        << "";
    QTest::newRow("7 of 6.4 rounds down") << "7"
                                          << "6.4" << exceeds.arg("7", "6.4");
}

void ValidationTest::privateClientsCheckedOnLeaving() {
    QFETCH(QString, privateClients);
    QFETCH(QString, maxPlayers);
    QFETCH(QString, message);
    ui->txtPrivateClients->setText(privateClients);
    ui->txtMaxPlayers->setText(maxPlayers);
    platform->messages.clear();
    QFocusEvent out(QEvent::FocusOut, Qt::MouseFocusReason);
    QApplication::sendEvent(ui->txtPrivateClients, &out);
    QCOMPARE(described(platform->messages.shown),
             message.isEmpty() ? QStringList{} : QStringList{message});
    QCOMPARE(ui->txtPrivateClients->text(), privateClients);
    QCOMPARE(ui->txtMaxPlayers->text(), maxPlayers);
}

QTEST_MAIN(ValidationTest)
#include "tst_validation.moc"
