// Profiles: the file format byte for byte, damaged and hostile files and names, and the operator
// keeping, opening and launching profiles through the "Server" menu of the real main window.
#include "TestSupport.h"

#include "profiles/ProfileStore.h"
#include "ui/MainForm.h"
#include "ui/ProfileCommands.h"

#include <QAction>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
const QByteArray Head = "; Halvane profile\r\n[Profile]\r\nFormat=1\r\n";
const QByteArray End = "; end of profile\r\n";

// What a file holds, and why it is refused ("" when it is a whole profile).
const std::tuple<const char*, QByteArray, const char*> Files[] = {
    {"whole, LF line ends", "; Halvane profile\n[Profile]\nFormat=1\n[Maps]\n; end of profile\n",
     ""},
    {"empty", "", "the file is empty"},
    {"binary", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10), "the file is not text"},
    {"broken UTF-8", Head + "[General]\r\nName=\xff\xfe\r\n" + End, "the file is not text"},
    {"foreign INI", "[General]\r\nName=Somebody else's\r\n", "it is not a Halvane profile"},
    {"keys before the format", "Name=x\r\n" + Head + End, "it is not a Halvane profile"},
    {"cut short", Head + "[General]\r\nName=Half", "it ends early: the file was cut short"},
    {"garbage line", Head + "[General]\r\nName=a\r\nthis is no key\r\n" + End, "line 6 is damaged"},
    {"bad escape", Head + "[General]\r\nName=a\\q\r\n" + End, "line 5 is damaged"},
    {"unclosed section", Head + "[General\r\n" + End, "line 4 is damaged"},
    {"newer format", "[Profile]\r\nFormat=9\r\n" + End,
     "it is in a profile format this Halvane does not know (9)"},
    {"maps out of order", Head + "[Maps]\r\nMap1=a\r\nMap3=b\r\n" + End,
     "line 6 breaks the order of the maps"},
    {"text after the end", Head + End + "[General]\r\n", "line 5 follows the end of the profile"},
};

// A name and why it cannot name a profile ("" when it can).
const std::tuple<const char*, QString, const char*> Names[] = {
    {"plain", "Clan night (2), v1.5", ""},
    {"letters of other scripts", QStringLiteral(u"\u00c9t\u00e9 \u65e5\u672c"), ""},
    {"empty", "", "it is empty"},
    {"path upwards", "../x", "it holds a slash (/)"},
    {"backslash", "a\\b", "it holds a backslash (\\)"},
    {"device", "con", "Windows keeps the name CON for a device"},
    {"device with extension", "Lpt1.txt", "Windows keeps the name LPT1 for a device"},
    {"300 characters", QString(300, QLatin1Char('x')), "it has 300 characters, more than 64"},
    {"console break", "a;b", "it holds a semicolon (;)"},
    {"command start", "+map", "it holds a plus sign (+)"},
    {"tab", "a\tb", "it holds a control character (code 9)"},
    {"option look-alike", "-x", "it starts with \"-\""},
    {"hidden file", ".x", "it starts with \".\""},
    {"trailing blank", "x ", "it ends with a blank"},
};
} // namespace

class ProfilesTest : public QObject {
    Q_OBJECT
private slots:
    void fileFormat();
    void damagedFiles_data() { addRows(Files); }
    void damagedFiles();
    void names_data() { addRows(Names); }
    void names();
    void operatorKeepsProfiles();
};

// Every character that would end a line or a key survives the trip.
void ProfilesTest::fileFormat() {
    Profile profile;
    profile.settings.write("General", "Name", "A \"b\"=c\\d [e]");
    profile.settings.write("General", "Motd", "  line\rbreak\n");
    profile.settings.write("Bots", "Team 0", "1");
    profile.maps = {"oa_dm1", "my map "};
    const QByteArray bytes = profileBytes(profile);
    QCOMPARE(bytes, Head +
                        "[General]\r\nName=A \"b\"\\x3dc\\\\d \\x5be]\r\n"
                        "Motd=  line\\rbreak\\n\r\n[Bots]\r\nTeam 0=1\r\n"
                        "[Maps]\r\nMap1=oa_dm1\r\nMap2=my map \r\n" +
                        End);
    Profile read;
    QCOMPARE(parseProfile(bytes, read), QString());
    QCOMPARE(QStringList({read.settings.read("General", "Name", {}),
                          read.settings.read("General", "Motd", {})}) +
                 read.settings.keys("Bots") + read.maps,
             QStringList({"A \"b\"=c\\d [e]", "  line\rbreak\n", "Team 0", "oa_dm1", "my map "}));
}

void ProfilesTest::damagedFiles() {
    const auto& [name, bytes, problem] = fetchRow(Files);
    Profile read;
    QCOMPARE(parseProfile(bytes, read), QString(problem));
}

void ProfilesTest::names() {
    const auto& [row, name, problem] = fetchRow(Names);
    QCOMPARE(profileNameProblem(name), QString(problem));
}

// Save, change, open, rename and delete through the menu, with a damaged file, a file that is a
// folder and hostile names among the real ones; then launch one.
void ProfilesTest::operatorKeepsProfiles() {
    WindowFixture f([](TestPlatform& p) {
        p.writeFile(p.programFolder() + "/maps.dat", catalogueOf({"q3dm1", "q3dm7", "q3dm17"}));
    });
    MainForm& ui = f.ui();
    ProfileCommands& commands = f.window->profiles();
    const QString folder = f.platform.root() + "/config/profiles";
    commands.setStore(ProfileStore(folder));
    FakePrompts prompts;
    commands.setPrompts(prompts);
    FakeMessageBoxes& messages = f.platform.messages;
    const auto trigger = [&](const char* action, QList<std::optional<QString>> answers) {
        prompts.answers = answers;
        messages.shown.clear();
        f.window->findChild<QAction*>(action)->trigger();
    };
    const auto refused = [&](const char* title, const QString& file, const QString& why) {
        return message(title, "The profile " + folder + file + " cannot be " + why, MsgButtons::Ok,
                       MsgIcon::Critical);
    };

    ui.txtServerName->setText("Alpha night");
    ui.txtNetPort->setText("27970");
    ui.chkWarmUp->setChecked(false);
    ui.MapList->clearSelection();
    clickEntry(ui.MapList, 2, Qt::ControlModifier);
    ui.cmdAddSelMap->click();
    trigger("mnuProfileSave", {"Alpha"});
    QVERIFY2(messages.shown.isEmpty(), qPrintable(onlyMessage(messages)));
    const QString alphaFile = folder + "/Alpha.ini";
    for (const QString& path : {alphaFile, folder}) // profiles may hold passwords: owner only
        QCOMPARE(QFile::permissions(path) & 0x4066, QFile::Permissions(0x4000));

    ui.txtServerName->setText("Beta");
    ui.txtNetPort->setText("27980");
    ui.chkWarmUp->setChecked(true);
    ui.cmdMapClearAll->click();
    trigger("mnuProfileSave", {"Beta"});
    // Hostile names are refused before anything is written.
    trigger("mnuProfileSave", {"../x"});
    QCOMPARE(onlyMessage(messages),
             message("Save as Profile", "A profile cannot be named \"../x\": it holds a slash (/).",
                     MsgButtons::Ok, MsgIcon::Critical));
    f.platform.writeFile(folder + "/Delta.ini", "[General]\r\nName=Not ours\r\n");
    QDir().mkpath(folder + "/Folder.ini");
    trigger("mnuProfileSave", {"Folder"});
    QCOMPARE(onlyMessage(messages),
             refused("Save as Profile", "/Folder.ini", "saved: it is a folder."));
    QCOMPARE(commands.store().names(), QStringList({"Alpha", "Beta", "Delta"}));

    // Open: the values go in through the settings load, interlocks and all.
    trigger("mnuProfileOpen", {"Alpha"});
    QVERIFY2(messages.shown.isEmpty(), qPrintable(onlyMessage(messages)));
    QCOMPARE(prompts.asked.last().entries, QStringList({"Alpha", "Beta", "Delta"}));
    QCOMPARE(QStringList({ui.txtServerName->text(), ui.txtNetPort->text()}) + entries(ui.SelMap),
             QStringList({"Alpha night", "27970", "q3dm17"}));
    QVERIFY(!ui.chkWarmUp->isChecked() && !ui.txtWarmUpTime->isEnabled());
    f.platform.dialogs.choices = {{true, f.platform.root() + "/export", "export"}};
    trigger("mnuServerExport", {}); // named after the profile, not its host name
    QVERIFY(QFileInfo::exists(f.platform.root() + "/export/halvane-alpha.service"));

    trigger("mnuProfileOpen", {"Delta"});
    QCOMPARE(onlyMessage(messages),
             refused("Open Profile", "/Delta.ini", "read: it is not a Halvane profile."));
    QCOMPARE(ui.txtServerName->text(), QStringLiteral("Alpha night")); // nothing changed

    trigger("mnuProfileRename", {"Beta", "Alpha"});
    QCOMPARE(onlyMessage(messages),
             refused("Rename Profile", "/Beta.ini",
                     "renamed: a profile named \"Alpha\" exists already (" + alphaFile + ")."));
    trigger("mnuProfileRename", {"Beta", "Gamma"});
    messages.answers = {MsgAnswer::Yes};
    trigger("mnuProfileDelete", {"Delta"});
    QCOMPARE(commands.store().names(), QStringList({"Alpha", "Gamma"}));
    Profile gamma;
    QCOMPARE(commands.store().load("Gamma", gamma), QString());
    QCOMPARE(QStringList({gamma.settings.read("General", "Name", {}),
                          gamma.settings.read("Settings", "Path", {})}),
             QStringList({"Beta", f.platform.gameFolder()}));

    // A launch leaves out the maps the catalogue lacks and leaves the window's values as they
    // were; a port that a running server of ours has is asked about first.
    Profile own;
    f.window->saveProfile(own);
    own.settings.write("General", "Name", "Own scripts");
    own.settings.write("Network", "NetPort", "27990");
    own.maps = {"q3dm7", "q3dm1", "unknown_map"};
    QCOMPARE(commands.store().save("Own", own), QString());
    messages.clear();
    QVERIFY(commands.launchProfile("Own"));
    QCOMPARE(onlyMessage(messages),
             message("Launch Profile",
                     "The map catalogue does not know these maps of the profile \"Own\", so "
                     "they are left out:\r\runknown_map",
                     MsgButtons::Ok, MsgIcon::Information));
    // Its own folder, scripts and record are the real server's test (tst_launchwindow).
    QCOMPARE(ui.txtServerName->text(), QStringLiteral("Alpha night"));
    // The same port again: asked, and No starts nothing.
    messages.clear();
    const qsizetype starts = f.platform.processes.started.size();
    QVERIFY(!commands.launchProfile("Own"));
    QCOMPARE(onlyMessage(messages),
             message("Launch Profile",
                     "The server of the profile \"Own\" already uses port 27990.\r\rLaunch the "
                     "profile \"Own\" all the same? The game then takes the next free port.",
                     MsgButtons::YesNo, MsgIcon::Question));
    QCOMPARE(f.platform.processes.started.size(), starts);
}

QTEST_MAIN(ProfilesTest)
#include "tst_profiles.moc"
