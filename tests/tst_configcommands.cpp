// "Create halvane.cfg", "Save config file As", the extra script chooser and
// its "Edit" button, with a stand-in writer that writes a recognisable file.
#include "TestSupport.h"

#include "config/ConfigFileCommands.h"
#include "ui/MainForm.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class ConfigCommandsTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void commands_data();
    void commands();
    void editButton();

private:
    std::unique_ptr<WindowFixture> f;
    MainForm* ui = nullptr;
    QStringList writes; // "path|with or without|command line" per call
    bool writerSucceeds = true;
};

void ConfigCommandsTest::init() {
    f = std::make_unique<WindowFixture>();
    ui = &f->window->form();
    ui->txtServerName->setText("Arena");
    ui->txtMaxPlayers->setText("8");
    ui->txtHunkMegs->setText("32");
    ui->cmbServerType->setCurrentIndex(2);
    writes.clear();
    writerSucceeds = true;
    f->window->configCommands().setWriteConfig(
        [this](const QString& path, bool withCommandLine, const QString& commandLine) {
            writes << path + (withCommandLine ? "|with|" : "|without|") + commandLine;
            if (!writerSucceeds)
                return false;
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly))
                return false;
            file.write("// test config for " + ui->txtServerName->text().toLatin1() + "\r\n");
            return true;
        });
    f->platform.messages.clear();
    f->platform.store->writes.clear();
}

void ConfigCommandsTest::cleanup() {
    f.reset();
}

void ConfigCommandsTest::commands_data() {
    QTest::addColumn<bool>("saveAs");      // "Save config file As" or "Create halvane.cfg"
    QTest::addColumn<QString>("fault");    // "", "invalid", "write fails", "cancel"
    QTest::addColumn<MsgAnswer>("answer"); // to the success question
    QTest::addColumn<QString>("told");     // the message, "<target>" for the file written
    const QString created = message("Success!",
                                    "halvane.cfg has been created in your baseq3 folder, would "
                                    "you like to view it now?",
                                    MsgButtons::YesNo, MsgIcon::Question);
    const QString savedAs =
        message("Success!", "<target> was created successfully!\r\rwould you like to view it now?",
                MsgButtons::YesNo, MsgIcon::Question);
    const auto warning = [](const char* text) {
        return message("Warning!", text, MsgButtons::Ok, MsgIcon::Critical);
    };
    const MsgAnswer yes = MsgAnswer::Yes, no = MsgAnswer::No;
    QTest::newRow("create, view it") << false << "" << yes << created;
    QTest::newRow("create, don't view") << false << "" << no << created;
    QTest::newRow("create, validation refuses")
        << false << "invalid" << no << warning("Server name is required");
    QTest::newRow("create, write fails")
        << false << "write fails" << no
        << warning("An error occured while creating the config file.");
    // Saving elsewhere neither validates nor stores: refused values stay.
    QTest::newRow("save as, view it") << true << "invalid" << yes << savedAs;
    QTest::newRow("save as, don't view") << true << "" << no << savedAs;
    QTest::newRow("save as, write fails")
        << true << "write fails" << no << warning("An error occured while creating <target>");
    QTest::newRow("save as, cancelled") << true << "cancel" << no << QString("0 messages");
}

void ConfigCommandsTest::commands() {
    QFETCH(bool, saveAs);
    QFETCH(QString, fault);
    QFETCH(MsgAnswer, answer);
    QFETCH(QString, told);
    const bool stored = !saveAs && fault != "invalid"; // settings stored: validation passed
    const QString target = saveAs ? f->platform.root() + "/elsewhere/my server.cfg"
                                  : f->platform.gameFolder() + "/baseq3/halvane.cfg";
    QDir().mkpath(f->platform.root() + "/elsewhere");
    if (saveAs && fault != "cancel")
        f->platform.dialogs.choices = {FileChoice{true, target, "my server.cfg"}};
    if (fault == "invalid")
        ui->txtServerName->clear();
    writerSucceeds = fault != "write fails";
    f->platform.messages.answers = {answer};

    (saveAs ? ui->mnuFileSaveAs : ui->mnuFileMakeCfg)->trigger();

    QCOMPARE(onlyMessage(f->platform.messages), QString(told).replace("<target>", target));
    const bool written = told.startsWith("Success!");
    QCOMPARE(QFile::exists(target), written);
    if (written)
        QCOMPARE(readAll(target),
                 "// test config for " + ui->txtServerName->text().toLatin1() + "\r\n");
    for (const QString& call : writes)
        QCOMPARE(call, target + "|without|");
    QCOMPARE(f->platform.store->writes.contains("General/Name=Arena"), stored);
    QCOMPARE(f->platform.shell.edited,
             written && answer == MsgAnswer::Yes ? QStringList{target} : QStringList{});
    if (saveAs) {
        QCOMPARE(f->platform.dialogs.calls.size(), 1);
        const FileDialogCall& call = f->platform.dialogs.calls[0];
        QVERIFY(call.save);
        QCOMPARE(call.title + "|" + call.filter + "|" + call.defaultSuffix,
                 QStringLiteral("Save config file as|Config files|*.cfg;*.config|*.cfg"));
        QCOMPARE(call.initialFolder, f->platform.gameFolder() + "/baseq3");
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
    QCOMPARE(f->platform.shell.edited.size(), 2);
    QCOMPARE(f->platform.shell.edited.last(), f->platform.gameFolder() + "/baseq3/new.cfg");
    QCOMPARE(f->platform.messages.shown.size(), 0);
}

QTEST_MAIN(ConfigCommandsTest)
#include "tst_configcommands.moc"
