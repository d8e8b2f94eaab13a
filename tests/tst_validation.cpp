// The checks before a launch and the guards while typing: messages, silent
// fills, memory questions, the stored settings and the digits-only boxes.
#include "TestSupport.h"

#include "settings/Validation.h"

#include <QClipboard>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {

// "control=text|control=index|control=1 or 0|...": a box's text, a selector's
// position, a check box's state.
void applyValues(QWidget& window, const QString& values) {
    for (const QString& pair : values.split('|', Qt::SkipEmptyParts)) {
        const QString name = pair.section('=', 0, 0), value = pair.section('=', 1);
        QObject* control = window.findChild<QObject*>(name);
        QVERIFY2(control, qPrintable(name));
        if (auto* box = qobject_cast<QLineEdit*>(control))
            box->setText(value);
        else if (auto* combo = qobject_cast<QComboBox*>(control); combo && combo->isEditable())
            combo->setEditText(value);
        else if (auto* combo = qobject_cast<QComboBox*>(control))
            combo->setCurrentIndex(value.toInt());
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            button->setChecked(value == QLatin1String("1"));
    }
}

// A launch-ready dedicated free-for-all server without extras.
const QString Baseline = "cmbGameType=0|cmbServerType=2|cmbBotType=0|chkLogFile=0|chkDateLog=0|"
                         "txtLogFile=|txtServerName=Arena|txtMaxPlayers=8|txtMapFragLimit=20|"
                         "txtMapTimeLimit=15|txtQuad=3|txtRespawn=5|txtHunkMegs=32|txtMinBots=2|"
                         "txtPlayerRespawn=0|txtInactivity=0|txtNetIP=|chkSpecifyCD=0|txtCDROM=";

QString fail(const QString& text) {
    return message("Warning!", text, MsgButtons::Ok, MsgIcon::Critical);
}
QString question(const QString& text, MsgIcon icon = MsgIcon::None) {
    return message("Warning", text, MsgButtons::YesNo, icon);
}
const QString CtfQuestion =
    question("The amount of allocated memory should be increased to at least 26 for CTF "
             "games.\r\rWould you like to set it to 32 beofre starting?",
             MsgIcon::Question);
// The memory question, for a size and the reason it is asked.
QString memory(const QString& megs, const char* why) {
    return question("The amount of allocated memory (" + megs + "MB) " + why +
                    ", would you like to change this first?");
}
const char* const TooMuch = "far exceeds the typical requirements";
const char* const TooLittle = "is lower than recommended for a listen server";
const QString Autobots =
    fail("You have selected autobots, but the number of bots is invalid.\r\rAcceptable values are "
         "1 through 32.  (2-4 is recommended)");
const QString BadIp = fail("The specified network IP address does not appear to be valid");
const QString BadCd = fail("The drive letter you have specified for your CD ROM is invalid.\r\r"
                           "Either uncheck the box next to it, or enter a valid drive letter "
                           "(example: D:)");
const QString NoLogName =
    message("Error", "You have chosen to specify a log filename, but no filename is specified",
            MsgButtons::Ok, MsgIcon::None);

// The values changed from the baseline, the answers (Y and N in the order
// asked), the messages, the boxes' texts after, whether it passed, and the
// box shown selected on its tab.
using Check =
    std::tuple<const char*, const char*, const char*, QString, const char*, bool, const char*>;
const QString NoName = fail("Server name is required");
// Values the game would split into another command, by where they are
// written: quoted in halvane.cfg, bare there, in the rotation lines, on
// the command line. Refused after every other check, nothing stored.
QString split(const char* box, const char* what) {
    return fail(QString(box) + " cannot hold " + what +
                ": the game would read the rest as another command.");
}
const char* const Quote = "a double quote (\")";
const Check Checks[] = {
    {"all good", "", "", "", "", true, ""},
    {"log name of blanks", "chkLogFile=1|txtLogFile=   ", "", NoLogName, "txtLogFile=   ", false,
     "txtLogFile"},
    {"server name one blank", "txtServerName= ", "", "", "", true, ""},
    {"server name empty", "txtServerName=", "", NoName, "", false, ""},
    {"max players empty", "txtMaxPlayers=", "", fail("Maxiumum Player value is required"), "",
     false, ""},
    {"empty limits filled silently", "txtMapFragLimit=|txtMapTimeLimit=|txtQuad=|txtRespawn=", "",
     "", "txtMapFragLimit=0|txtMapTimeLimit=0|txtQuad=3|txtRespawn=5", true, ""},
    {"fills stay when a later check fails", "txtPlayerRespawn=abc|txtInactivity=|txtNetIP=1.2.3.4",
     "", BadIp, "txtPlayerRespawn=0|txtInactivity=0", false, ""},
    {"memory 8 becomes 12", "txtHunkMegs=8", "", "", "txtHunkMegs=12", true, ""},
    {"memory 1 6 is 16, blanks ignored", "txtHunkMegs= 1 6", "", "", "txtHunkMegs= 1 6", true, ""},
    {"ctf memory 16, yes", "cmbGameType=3|txtHunkMegs=16", "Y", CtfQuestion, "txtHunkMegs=32", true,
     ""},
    {"ctf listen 16: yes, then listen question yes", "cmbGameType=3|cmbServerType=0|txtHunkMegs=16",
     "YY", CtfQuestion + '\n' + memory("32", TooLittle), "txtHunkMegs=32", false, "txtHunkMegs"},
    {"dedicated 64 asks nothing", "txtHunkMegs=64", "", "", "", true, ""},
    {"dedicated 65, yes stops", "txtHunkMegs=65", "Y", memory("65", TooMuch), "txtHunkMegs=65",
     false, "txtHunkMegs"},
    {"listen 56 asks nothing", "cmbServerType=0|txtHunkMegs=56", "", "", "", true, ""},
    {"listen 8 is raised before the question", "cmbServerType=0|txtHunkMegs=8", "N",
     memory("12", TooLittle), "txtHunkMegs=12", true, ""},
    {"autobots 0", "cmbBotType=2|txtMinBots=0", "", Autobots, "", false, ""},
    {"autobots 33", "cmbBotType=2|txtMinBots=33", "", Autobots, "", false, ""},
    {"autobots 1", "cmbBotType=2|txtMinBots=1", "", "", "", true, ""},
    {"autobots 32", "cmbBotType=2|txtMinBots=32", "", "", "", true, ""},
    {"cd D:", "chkSpecifyCD=1|txtCDROM=D:", "", "", "", true, ""},
    {"cd D", "chkSpecifyCD=1|txtCDROM=D", "", BadCd, "", false, ""},
    {"first failing check wins", "txtServerName=|txtNetIP=1|txtHunkMegs=8", "", NoName,
     "txtHunkMegs=8", false, ""},
    {"name with a quote", "txtServerName=Arena\";sets inj_host \"yes", "",
     split("Server Name", Quote), "", false, "txtServerName"},
    {"quote refused only after the other checks", "txtServerName=a\"|txtNetIP=1", "", BadIp, "",
     false, ""},
    {"motd with a line break", "txtMOTD=Hi\nquit", "", split("Message of the Day", "a line break"),
     "", false, "txtMOTD"},
    {"own log name with a quote", "chkLogFile=1|txtLogFile=a\"b", "", split("Log Filename", Quote),
     "", false, "txtLogFile"},
    {"date-coded log: the name is not written", "chkLogFile=1|chkDateLog=1|txtLogFile=a\"b", "", "",
     "", true, ""},
    {"players with a semicolon", "txtMaxPlayers=8;sets inj_maxclients yes", "",
     split("Maxiumum Players", "a semicolon (;)"), "", false, "txtMaxPlayers"},
    {"bare value opening a comment", "txtMaxRate=25000 /*", "",
     split("Client Max Rate", "a comment mark (/*)"), "", false, "txtMaxRate"},
    {"include file with a semicolon", "txtCfg=x.cfg;quit", "",
     split("Include Cfg File", "a semicolon (;)"), "", false, "txtCfg"},
    {"map rule with a semicolon", "txtMapTimeLimit=15;quit", "",
     split("Time Limit", "a semicolon (;)"), "", false, "txtMapTimeLimit"},
    {"server password with a plus", "chkRequirePassword=1|txtServerPW=pw+sets inj_pw yes", "",
     split("Server Password", "a plus sign (+)"), "", false, "txtServerPW"},
    {"password not required: not passed", "chkRequirePassword=0|txtServerPW=pw+x", "", "", "", true,
     ""},
    {"admin name with a semicolon", "txtAdminName=Bob;sets inj yes", "",
     split("Admin Name", "a semicolon (;)"), "", false, "txtAdminName"},
    {"parameters with an open quote", "txtCmdParameters=+set sv_hostname \"x", "",
     split("Parameters", Quote), "", false, "txtCmdParameters"},
    {"most hostile accepted values",
     "txtServerName=Arena; sets a b // /*|txtMOTD=+x;y|txtConsolePW=p;w+|"
     "txtCmdParameters=+set g_motd \"a b\" +set sv_fps 20|txtAdminName=Bob Smith|"
     "txtAdminURL=http://a/b?c=d&e",
     "", "", "", true, ""},
};

QString warning(const QString& text) {
    return message("Warning", text, MsgButtons::Ok, MsgIcon::Information);
}
const QString BadName = message("Invalid filename",
                                "A filename cannot contain any of the following characters:\r\r\\ "
                                "/ : * ? \" > < |",
                                MsgButtons::Ok, MsgIcon::Critical);
const QString Exceeds = QStringLiteral(
    "The number of private clients (%1) exceeds the maxiumum number of players specified "
    "(%2). \r\rThis number should be the same, or less than the maxiumum number of clients.");
// A box checked when the focus leaves it: its text, the most players, and
// the message, "" for none; the text is kept either way.
const std::tuple<const char*, const char*, const char*, const char*, QString> Leaving[] = {
    {"log name plain", "txtLogFile", "server.log", "8", ""},
    {"log name empty", "txtLogFile", "", "8", ""},
    {"log name with \\", "txtLogFile", "a\\b.log", "8", BadName},
    {"log name with /", "txtLogFile", "a/b.log", "8", BadName},
    {"log name with :", "txtLogFile", "a:b.log", "8", BadName},
    {"log name with *", "txtLogFile", "a*b.log", "8", BadName},
    {"log name with ?", "txtLogFile", "a?b.log", "8", BadName},
    {"log name with \"", "txtLogFile", "a\"b.log", "8", BadName},
    {"log name with >", "txtLogFile", "a>b.log", "8", BadName},
    {"log name with <", "txtLogFile", "a<b.log", "8", BadName},
    {"log name with |", "txtLogFile", "a|b.log", "8", BadName},
    {"1 0 of 6 is 10 of 6", "txtPrivateClients", "1 0", "6", warning(Exceeds.arg("1 0", "6"))},
    {"0 of 6", "txtPrivateClients", "0", "6",
     warning("Setting the number of private clients will remove the password required to "
             "connect to your server for all clients.\r\rIf you wish to disable the password, "
             "uncheck 'Require Password' instead.")},
    {"6 of 6", "txtPrivateClients", "6", "6", ""},
    {"7 of 6.6 rounds up", "txtPrivateClients", "7", "6.6", ""},
    {"7 of 6.4 rounds down", "txtPrivateClients", "7", "6.4", warning(Exceeds.arg("7", "6.4"))},
};

} // namespace

class ValidationTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void validateAll_data() { addRows(Checks); }
    void validateAll();
    void numericBoxesAreFiltered();
    void checkedOnLeaving_data() { addRows(Leaving); }
    void checkedOnLeaving();

private:
    std::unique_ptr<WindowFixture> f;
    MainForm* ui = nullptr;
};

void ValidationTest::init() {
    f.reset(); // the last test's window goes first
    f = std::make_unique<WindowFixture>();
    ui = &f->window->form();
    applyValues(*f->window, Baseline);
}

void ValidationTest::validateAll() {
    const auto& [name, input, answers, messages, after, passed, focused] = fetchRow(Checks);

    applyValues(*f->window, input);
    for (const QChar answer : QString(answers))
        f->platform.messages.answers << (answer == 'Y' ? MsgAnswer::Yes : MsgAnswer::No);

    QCOMPARE(f->window->validation().ValidateAll(), passed);

    QCOMPARE(described(f->platform.messages).join('\n'), messages);
    for (const QString& pair : QString(after).split('|', Qt::SkipEmptyParts))
        QCOMPARE(f->window->findChild<QLineEdit*>(pair.section('=', 0, 0))->text(),
                 pair.section('=', 1));

    // Stored exactly when it passed: the next run reads the values the boxes now hold.
    const QStringList& writes = f->platform.store->writes;
    if (passed) {
        QVERIFY(writes.contains("Limits/MaxPlayers=" + ui->txtMaxPlayers->text()));
        f->platform.reopenStore();
        QCOMPARE(f->platform.store->read("General", "Name", "<none>"), ui->txtServerName->text());
    } else {
        QCOMPARE(writes, QStringList{});
    }

    if (*focused) {
        QWidget* box = f->window->findChild<QWidget*>(focused);
        QVERIFY(ui->SSTab1->currentWidget()->isAncestorOf(box));
        auto* edit = qobject_cast<QComboBox*>(box) ? qobject_cast<QComboBox*>(box)->lineEdit()
                                                   : qobject_cast<QLineEdit*>(box);
        QCOMPARE(edit->selectedText(), edit->text());
        if (QTest::qWaitForWindowActive(f->window.get()))
            QVERIFY(box->hasFocus());
    } else {
        QCOMPARE(ui->SSTab1->currentIndex(), 0);
    }
}

void ValidationTest::numericBoxesAreFiltered() {
    for (const char* name : {"txtMaxPlayers", "txtMinBots", "txtRandomBots", "txtMapGravity"}) {
        auto* box = f->window->findChild<QLineEdit*>(name);
        QVERIFY2(box, name);
        // A disabled box takes no keys at all (txtMinBots is disabled unless
        // bots are automatic), so make the box and its frames typeable.
        for (QWidget* w = box; w != f->window.get(); w = w->parentWidget())
            w->setEnabled(true);
        box->setText("4");
        box->end(false);
        f->platform.desktop.beeps = 0;
        const auto state = [&] {
            return box->text() + ' ' + QString::number(f->platform.desktop.beeps);
        };
        QTest::keyClicks(box, "7x");
        QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(box, Qt::Key_Return);
        const QString typed = state();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClick(box, Qt::Key_Left);
        QCOMPARE(QStringList({name, typed, state()}), QStringList({name, "47 3", "4 3"}));
    }
    // Text the program places is not filtered; pasted with the context menu,
    // it keeps its digits, where they were pasted, without a beep.
    f->platform.desktop.beeps = 0;
    ui->txtHunkMegs->setText("abc");
    QCOMPARE(ui->txtHunkMegs->text(), QStringLiteral("abc"));
    QGuiApplication::clipboard()->setText("8;sets inj_maxclients 9\n");
    if (QGuiApplication::clipboard()->text() != QLatin1String("8;sets inj_maxclients 9\n"))
        QSKIP("no clipboard on this platform");
    ui->txtHunkMegs->setText("12");
    ui->txtHunkMegs->setCursorPosition(1);
    ui->txtHunkMegs->paste(); // what the context menu's Paste does
    QCOMPARE(std::tuple(ui->txtHunkMegs->text(), ui->txtHunkMegs->cursorPosition(),
                        f->platform.desktop.beeps),
             std::tuple(QStringLiteral("1892"), 3, 0));
}

void ValidationTest::checkedOnLeaving() {
    const auto& [name, box, text, maxPlayers, told] = fetchRow(Leaving);
    auto* edit = f->window->findChild<QLineEdit*>(box);
    ui->chkLogFile->setChecked(true);
    ui->chkRequirePassword->setChecked(true);
    QVERIFY(edit->isEnabled());
    ui->txtMaxPlayers->setText(maxPlayers);
    edit->setText(text);

    // Another window taking the focus is no leaving.
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(edit, &away);
    QCOMPARE(f->platform.messages.shown.size(), 0);

    const bool active = QTest::qWaitForWindowActive(f->window.get());
    if (active) {
        edit->setFocus();
        ui->txtServerName->setFocus(Qt::TabFocusReason);
    } else {
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(edit, &out);
    }
    QCOMPARE(onlyMessage(f->platform.messages), told.isEmpty() ? "0 messages" : told);
    QCOMPARE(QStringList({edit->text(), ui->txtMaxPlayers->text()}),
             QStringList({text, maxPlayers}));
    if (told.startsWith("Invalid filename")) { // shown selected, to be corrected
        QCOMPARE(edit->selectedText(), text);
        if (active)
            QVERIFY(edit->hasFocus());
    }
}

QTEST_MAIN(ValidationTest)
#include "tst_validation.moc"
