// "Create halvane.cfg", "Save config file As", the extra script chooser and
// its "Edit" button, through the window's own checks and writer.
#include "TestSupport.h"

#include "config/ConfigFileCommands.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

// The file chosen, below the program folder, the game folder or elsewhere (where "link" is a
// link to maps.dat and "scripts" one to srvmaps), and what it is: "" for a file written.
const char Script[] =
    "a script that halvane.cfg runs (the map rotation or the bots), rewritten at each launch";
const std::tuple<const char*, const char*, const char*> SaveAsTargets[] = {
    {"catalogue", "program/maps.dat", "Halvane's own maps.dat"},
    {"bot list", "program/botlist.txt", "Halvane's own botlist.txt"},
    {"catalogue in capitals", "program/MAPS.DAT", "Halvane's own maps.dat"},
    {"link to the catalogue", "elsewhere/link", "Halvane's own maps.dat"},
    {"game", "game/quake3.exe", "the game's executable"},
    {"new script in the rotation folder", "game/baseq3/SRVMAPS/mapset9.cfg", Script},
    {"script through a linked folder", "elsewhere/scripts/mapset1.cfg", Script},
    {"fixed bots", "game/baseq3/srvbots.cfg", Script},
    {"the configuration itself", "game/baseq3/halvane.cfg", ""},
    {"another script", "game/baseq3/server.cfg", ""},
};

// "Save config file As" or "Create halvane.cfg"; the fault ("", "invalid", "write fails", "cancel",
// "split"...); the answer to the success question; the message, "<target>" for the file written.
const QString Created = message("Success!",
                                "halvane.cfg has been created in your baseq3 folder, would you "
                                "like to view it now?",
                                MsgButtons::YesNo, MsgIcon::Question);
const QString SavedAs =
    message("Success!", "<target> was created successfully!\r\rwould you like to view it now?",
            MsgButtons::YesNo, MsgIcon::Question);
QString warning(const char* text) {
    return message("Warning!", text, MsgButtons::Ok, MsgIcon::Critical);
}
const MsgAnswer Yes = MsgAnswer::Yes, No = MsgAnswer::No;
const std::tuple<const char*, bool, const char*, MsgAnswer, QString> Commands[] = {
    {"create, view it", false, "", Yes, Created},
    {"create, don't view", false, "", No, Created},
    {"create, validation refuses", false, "invalid", No, warning("Server name is required")},
    {"create, write fails", false, "write fails", No,
     warning("An error occured while creating the config file.")},
    // Saving elsewhere neither validates nor stores: refused values stay.
    {"save as, view it", true, "invalid", Yes, SavedAs},
    {"save as, don't view", true, "", No, SavedAs},
    {"save as, write fails", true, "write fails", No,
     warning("An error occured while creating <target>")},
    {"save as, cancelled", true, "cancel", No, "0 messages"},
    // ...but a value the game would split is refused before a file is chosen; the command line
    // is not part of the file.
    {"save as, name the game would split", true, "split", No,
     warning("Server Name cannot hold a double quote (\"): the game would read the rest as "
             "another command.")},
    {"save as, command-line value not checked", true, "split command line", No, SavedAs},
};

class ConfigCommandsTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void commands_data() { addRows(Commands); }
    void commands();
    void editButton();
    void saveAsRefusesFilesInUse_data() { addRows(SaveAsTargets); }
    void saveAsRefusesFilesInUse();

private:
    std::unique_ptr<WindowFixture> f;
    MainForm* ui = nullptr;
};

void ConfigCommandsTest::init() {
    f.reset(); // the last test's window goes first
    f = std::make_unique<WindowFixture>();
    ui = &f->window->form();
    ui->txtServerName->setText("Arena");
    ui->txtHunkMegs->setText("32");
}

void ConfigCommandsTest::commands() {
    const auto& [name, saveAs, faultName, answer, told] = fetchRow(Commands);
    const QString fault = faultName;
    const bool stored = !saveAs && fault != "invalid"; // settings stored: validation passed
    const QString target = saveAs ? f->platform.root() + "/my server.cfg"
                                  : f->platform.gameFolder() + "/baseq3/halvane.cfg";
    if (saveAs && fault != "cancel")
        f->platform.dialogs.choices = {FileChoice{true, target, "my server.cfg"}};
    if (fault == "invalid")
        ui->txtServerName->clear();
    if (fault == "split")
        ui->txtServerName->setText("Evil\"; quit; \"X");
    if (fault == "split command line")
        ui->txtAdminName->setText("Bob;sets inj 1");
    if (fault == "write fails") // a folder stands where the file goes
        QDir().mkpath(target);
    f->platform.messages.answers = {answer};

    (saveAs ? ui->mnuFileSaveAs : ui->mnuFileMakeCfg)->trigger();

    QCOMPARE(onlyMessage(f->platform.messages), QString(told).replace("<target>", target));
    const bool written = told.startsWith("Success!");
    QCOMPARE(QFileInfo(target).isFile(), written);
    // Written as the controls stand, without the command line's closing comment.
    const QByteArray text = readAll(target);
    QCOMPARE(text.contains("seta sv_hostname \"" + ui->txtServerName->text().toLatin1() + '"'),
             written);
    QVERIFY(!text.contains("// Command Line:"));
    QCOMPARE(f->platform.store->writes.contains("General/Name=Arena"), stored);
    QCOMPARE(f->platform.shell.edited,
             written && answer == MsgAnswer::Yes ? QStringList{target} : QStringList{});
    if (saveAs) { // no dialog for a value refused before it
        const QList<FileDialogCall>& calls = f->platform.dialogs.calls;
        QCOMPARE(calls.size(), fault == "split" ? 0 : 1);
        for (const FileDialogCall& call : calls)
            QCOMPARE(QStringList({call.save ? "save" : "open", call.title, call.filter,
                                  call.defaultSuffix, call.initialFolder}),
                     QStringList({"save", "Save config file as", "Config files|*.cfg;*.config",
                                  "*.cfg", f->platform.gameFolder() + "/baseq3"}));
    }
}

// Usable while the script box holds a name, picked or typed; opens the
// script below baseq3, found without regard to letter case where it exists.
void ConfigCommandsTest::editButton() {
    f->platform.writeFile(f->platform.gameFolder() + "/baseq3/Server.cfg", "set x 1\r\n");
    ui->txtCfg->addItem("server.cfg");
    ui->txtCfg->setEditText("");
    QVERIFY(!ui->cmdEditCfg->isEnabled());
    ui->txtCfg->setCurrentIndex(ui->txtCfg->findText("server.cfg"));
    QVERIFY(ui->cmdEditCfg->isEnabled());
    ui->cmdEditCfg->click();
    QCOMPARE(f->platform.shell.edited,
             QStringList{f->platform.gameFolder() + "/baseq3/Server.cfg"});
    ui->txtCfg->lineEdit()->clear();
    QVERIFY(!ui->cmdEditCfg->isEnabled());
    f->window->configCommands().cmdEditCfg(); // nothing to open
    QTest::keyClicks(ui->txtCfg->lineEdit(), "new.cfg");
    QVERIFY(ui->cmdEditCfg->isEnabled());
    ui->cmdEditCfg->click();
    QCOMPARE(f->platform.shell.edited.mid(1),
             QStringList{f->platform.gameFolder() + "/baseq3/new.cfg"});
    QCOMPARE(f->platform.messages.shown.size(), 0);
}

void ConfigCommandsTest::saveAsRefusesFilesInUse() {
    const auto& [name, chosen, what] = fetchRow(SaveAsTargets);
    TestPlatform& p = f->platform;
    // What the links lead to; any other file written shows in the comparison below.
    for (const char* file : {"program/maps.dat", "game/baseq3/srvmaps/mapset1.cfg"})
        p.writeFile(p.root() + '/' + file, QByteArray("kept ") + file);
    QDir().mkpath(p.root() + "/elsewhere");
    QFile::link(p.programFolder() + "/maps.dat", p.root() + "/elsewhere/link");
    QFile::link(p.gameFolder() + "/baseq3/srvmaps", p.root() + "/elsewhere/scripts");
    const QString target = p.root() + '/' + chosen;
    const auto disk = [&] {
        QMap<QString, QByteArray> files;
        for (QDirIterator it(p.root(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            files.insert(it.next(), readAll(it.filePath()));
        return files;
    };
    const auto before = disk();
    p.dialogs.choices = {FileChoice{true, target, QFileInfo(target).fileName()}};
    p.messages.answers = {MsgAnswer::No};
    ui->mnuFileSaveAs->trigger();
    if (QString(what).isEmpty()) {
        QVERIFY(readAll(target).contains("seta sv_hostname \"Arena\""));
        return;
    }
    QCOMPARE(onlyMessage(p.messages),
             message("Warning!",
                     target + " is " + what +
                         ".\r\rThe configuration was not saved; choose another file name.",
                     MsgButtons::Ok, MsgIcon::Critical));
    QCOMPARE(disk(), before);
}

QTEST_MAIN(ConfigCommandsTest)
#include "tst_configcommands.moc"
