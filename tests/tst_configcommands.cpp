// "Create halvane.cfg", "Save config file As", the extra script chooser and
// its "Edit" button, with a stand-in writer that writes a recognisable file.
#include "TestSupport.h"

#include "config/ConfigFileCommands.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
struct WriteCall {
    QString path;
    bool withCommandLine;
    QString commandLine;
};
} // namespace

class ConfigCommandsTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void makeCfgWritesAfterValidation_data();
    void makeCfgWritesAfterValidation();
    void makeCfgStopsWhenValidationFails();
    void makeCfgReportsAFailedWrite();
    void saveAsAsksForATarget();
    void saveAsCancelledDoesNothing();
    void saveAsWritesWithoutValidatingOrStoring_data();
    void saveAsWritesWithoutValidatingOrStoring();
    void saveAsReportsAFailedWrite();
    void editButtonFollowsTheScriptText();
    void editOpensTheScriptBelowBaseq3();
    void shortcuts();

private:
    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<MainWindow> window;
    Ui::frmMain* ui = nullptr;
    QList<WriteCall> writes;
    bool writerSucceeds = true;
};

void ConfigCommandsTest::init() {
    platform = std::make_unique<TestPlatform>();
    platform->makeGameFolder();
    window = std::make_unique<MainWindow>(*platform->app);
    window->showMainWindow();
    ui = &window->form();
    ui->txtServerName->setText("Arena");
    ui->txtMaxPlayers->setText("8");
    ui->txtHunkMegs->setText("32");
    ui->cmbServerType->setCurrentIndex(2);
    writes.clear();
    writerSucceeds = true;
    window->configCommands().setWriteConfig(
        [this](const QString& path, bool withCommandLine, const QString& commandLine) {
            writes.append({path, withCommandLine, commandLine});
            if (!writerSucceeds)
                return false;
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly))
                return false;
            file.write("// test config for " + ui->txtServerName->text().toLatin1() + "\r\n");
            return true;
        });
    platform->messages.clear();
    platform->store->writes.clear();
}

void ConfigCommandsTest::cleanup() {
    window.reset();
    platform.reset();
}

void ConfigCommandsTest::makeCfgWritesAfterValidation_data() {
    QTest::addColumn<MsgAnswer>("answer");
    QTest::newRow("view it") << MsgAnswer::Yes;
    QTest::newRow("don't view it") << MsgAnswer::No;
}

void ConfigCommandsTest::makeCfgWritesAfterValidation() {
    QFETCH(MsgAnswer, answer);
    platform->messages.answers = {answer};
    ui->mnuFileMakeCfg->trigger();

    const QString target = platform->gameFolder() + "/baseq3/halvane.cfg";
    QCOMPARE(writes.size(), 1);
    QCOMPARE(writes[0].path, target);
    QCOMPARE(writes[0].withCommandLine, false);
    QCOMPARE(writes[0].commandLine, QString());
    QCOMPARE(readAll(target), QByteArray("// test config for Arena\r\n"));
    // Validation passed, so the settings were stored before the write.
    QVERIFY(platform->store->writes.contains("General/Name=Arena"));

    QCOMPARE(platform->messages.shown.size(), 1);
    const ShownMessage& asked = platform->messages.shown[0];
    QCOMPARE(asked.title, QStringLiteral("Success!"));
    QCOMPARE(asked.text, QStringLiteral("halvane.cfg has been created in your baseq3 folder, "
                                        "would you like to view it now?"));
    QCOMPARE(asked.buttons, MsgButtons::YesNo);
    QCOMPARE(asked.icon, MsgIcon::Question);
    QCOMPARE(platform->shell.edited,
             answer == MsgAnswer::Yes ? QStringList{target} : QStringList{});
}

void ConfigCommandsTest::makeCfgStopsWhenValidationFails() {
    ui->txtServerName->clear();
    ui->mnuFileMakeCfg->trigger();
    QCOMPARE(writes.size(), 0);
    QVERIFY(!QFile::exists(platform->gameFolder() + "/baseq3/halvane.cfg"));
    QCOMPARE(platform->messages.shown.size(), 1);
    QCOMPARE(platform->messages.shown[0].text, QStringLiteral("Server name is required"));
    QCOMPARE(platform->store->writes, QStringList{});
}

void ConfigCommandsTest::makeCfgReportsAFailedWrite() {
    writerSucceeds = false;
    ui->mnuFileMakeCfg->trigger();
    QCOMPARE(writes.size(), 1);
    QCOMPARE(platform->messages.shown.size(), 1);
    const ShownMessage& told = platform->messages.shown[0];
    QCOMPARE(told.title, QStringLiteral("Warning!"));
    QCOMPARE(told.text, QStringLiteral("An error occured while creating the config file."));
    QCOMPARE(told.buttons, MsgButtons::Ok);
    QCOMPARE(told.icon, MsgIcon::Critical);
    QCOMPARE(platform->shell.edited, QStringList{});
}

void ConfigCommandsTest::saveAsAsksForATarget() {
    ui->mnuFileSaveAs->trigger();
    QCOMPARE(platform->dialogs.calls.size(), 1);
    const FileDialogCall& call = platform->dialogs.calls[0];
    QVERIFY(call.save);
    QCOMPARE(call.title, QStringLiteral("Save config file as"));
    QCOMPARE(call.filter, QStringLiteral("Config files|*.cfg;*.config"));
    QCOMPARE(call.defaultSuffix, QStringLiteral("*.cfg"));
    QCOMPARE(call.initialFolder, platform->gameFolder() + "/baseq3");
}

void ConfigCommandsTest::saveAsCancelledDoesNothing() {
    ui->mnuFileSaveAs->trigger();
    QCOMPARE(writes.size(), 0);
    QCOMPARE(platform->messages.shown.size(), 0);
    QCOMPARE(platform->store->writes, QStringList{});
}

void ConfigCommandsTest::saveAsWritesWithoutValidatingOrStoring_data() {
    QTest::addColumn<MsgAnswer>("answer");
    QTest::newRow("view it") << MsgAnswer::Yes;
    QTest::newRow("don't view it") << MsgAnswer::No;
}

void ConfigCommandsTest::saveAsWritesWithoutValidatingOrStoring() {
    QFETCH(MsgAnswer, answer);
    // Settings validation would refuse, and a target outside baseq3.
    ui->txtMaxPlayers->clear();
    ui->txtHunkMegs->setText("8");
    const QString target = platform->root() + "/elsewhere/my server.cfg";
    QDir().mkpath(platform->root() + "/elsewhere");
    platform->dialogs.choices = {FileChoice{true, target, "my server.cfg"}};
    platform->messages.answers = {answer};

    ui->mnuFileSaveAs->trigger();

    QCOMPARE(writes.size(), 1);
    QCOMPARE(writes[0].path, target);
    QCOMPARE(writes[0].withCommandLine, false);
    QCOMPARE(readAll(target), QByteArray("// test config for Arena\r\n"));
    QCOMPARE(ui->txtHunkMegs->text(), QStringLiteral("8")); // no silent fills either
    QCOMPARE(platform->store->writes, QStringList{});
    QCOMPARE(platform->messages.shown.size(), 1);
    const ShownMessage& asked = platform->messages.shown[0];
    QCOMPARE(asked.title, QStringLiteral("Success!"));
    QCOMPARE(asked.text, target + " was created successfully!\r\rwould you like to view it now?");
    QCOMPARE(asked.buttons, MsgButtons::YesNo);
    QCOMPARE(asked.icon, MsgIcon::Question);
    QCOMPARE(platform->shell.edited,
             answer == MsgAnswer::Yes ? QStringList{target} : QStringList{});
}

void ConfigCommandsTest::saveAsReportsAFailedWrite() {
    writerSucceeds = false;
    const QString target = platform->gameFolder() + "/baseq3/other.cfg";
    platform->dialogs.choices = {FileChoice{true, target, "other.cfg"}};
    ui->mnuFileSaveAs->trigger();
    QCOMPARE(platform->messages.shown.size(), 1);
    const ShownMessage& told = platform->messages.shown[0];
    QCOMPARE(told.title, QStringLiteral("Warning!"));
    QCOMPARE(told.text, "An error occured while creating " + target);
    QCOMPARE(told.buttons, MsgButtons::Ok);
    QCOMPARE(told.icon, MsgIcon::Critical);
}

void ConfigCommandsTest::editButtonFollowsTheScriptText() {
    ui->txtCfg->addItem("server.cfg");
    ui->txtCfg->setEditText("");
    QVERIFY(!ui->cmdEditCfg->isEnabled());
    ui->txtCfg->setEditText("s");
    QVERIFY(ui->cmdEditCfg->isEnabled());
    ui->txtCfg->setEditText("");
    QVERIFY(!ui->cmdEditCfg->isEnabled());
    ui->txtCfg->setCurrentIndex(ui->txtCfg->findText("server.cfg"));
    QCOMPARE(ui->txtCfg->currentText(), QStringLiteral("server.cfg"));
    QVERIFY(ui->cmdEditCfg->isEnabled());
    // Typed, as the operator does.
    ui->txtCfg->lineEdit()->clear();
    QVERIFY(!ui->cmdEditCfg->isEnabled());
    QTest::keyClicks(ui->txtCfg->lineEdit(), "x.cfg");
    QVERIFY(ui->cmdEditCfg->isEnabled());
}

void ConfigCommandsTest::editOpensTheScriptBelowBaseq3() {
    platform->writeFile(platform->gameFolder() + "/baseq3/Server.cfg", "set x 1\r\n");
    ui->txtCfg->setEditText("server.cfg");
    ui->cmdEditCfg->click();
    // Found without regard to letter case where it exists.
    QCOMPARE(platform->shell.edited, QStringList{platform->gameFolder() + "/baseq3/Server.cfg"});
    ui->txtCfg->setEditText("new.cfg");
    window->configCommands().cmdEditCfg();
    QCOMPARE(platform->shell.edited.last(), platform->gameFolder() + "/baseq3/new.cfg");
    ui->txtCfg->setEditText("");
    window->configCommands().cmdEditCfg();
    QCOMPARE(platform->shell.edited.size(), 2);
    QCOMPARE(platform->messages.shown.size(), 0);
}

void ConfigCommandsTest::shortcuts() {
    QCOMPARE(ui->mnuFileMakeCfg->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_S));
    QCOMPARE(ui->mnuFileSaveAs->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_A));
}

QTEST_MAIN(ConfigCommandsTest)
#include "tst_configcommands.moc"
