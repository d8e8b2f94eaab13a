#include "config/ConfigFileCommands.h"

#include "app/AppContext.h"
#include "ui_frmMain.h"

namespace halvane {

namespace {
const QString Success = QStringLiteral("Success!");
const QString Failed = QStringLiteral("Warning!");
} // namespace

ConfigFileCommands::ConfigFileCommands(Ui::frmMain& ui, AppContext& app,
                                       std::function<bool()> validateAll,
                                       WriteConfigFunction writeConfig, QObject* parent)
    : QObject(parent), ui(ui), m_app(app), m_validateAll(std::move(validateAll)),
      m_writeConfig(std::move(writeConfig)) {
    ui.mnuFileMakeCfg->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    ui.mnuFileSaveAs->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    connect(ui.mnuFileMakeCfg, &QAction::triggered, this, &ConfigFileCommands::mnuFileMakeCfg);
    connect(ui.mnuFileSaveAs, &QAction::triggered, this, &ConfigFileCommands::mnuFileSaveAs);
    connect(ui.cmdEditCfg, &QAbstractButton::clicked, this, &ConfigFileCommands::cmdEditCfg);
    // Typing and choosing from the list both change the edit text.
    connect(ui.txtCfg, &QComboBox::editTextChanged, this, &ConfigFileCommands::txtCfgChanged);
    connect(ui.txtCfg, &QComboBox::currentIndexChanged, this, &ConfigFileCommands::txtCfgChanged);
}

bool ConfigFileCommands::write(const QString& path) {
    return m_writeConfig && m_writeConfig(path, false, QString());
}

bool ConfigFileCommands::mnuFileMakeCfg() {
    if (!m_validateAll || !m_validateAll())
        return false;
    const QString target = m_app.state.gameFile(QStringLiteral("baseq3/halvane.cfg"));
    MessageBoxes& messages = m_app.platform.messages;
    if (!write(target)) {
        messages.tell(Failed, QStringLiteral("An error occured while creating the config file."),
                      MsgIcon::Critical);
        return false;
    }
    if (messages.askYesNo(Success,
                          QStringLiteral("halvane.cfg has been created in your baseq3 folder, "
                                         "would you like to view it now?"),
                          MsgIcon::Question))
        m_app.platform.shell.editTextFile(target); // an editor that fails to start says nothing
    return true;
}

void ConfigFileCommands::mnuFileSaveAs() {
    const FileChoice choice = m_app.platform.dialogs.saveFile(
        QStringLiteral("Save config file as"), QStringLiteral("Config files|*.cfg;*.config"),
        QStringLiteral("*.cfg"), m_app.state.gameFile(QStringLiteral("baseq3")));
    if (!choice.chosen || choice.path.isEmpty())
        return;
    // Written as the controls stand: no validation, nothing stored.
    const QString target = choice.path;
    MessageBoxes& messages = m_app.platform.messages;
    if (!write(target)) {
        messages.tell(Failed, QStringLiteral("An error occured while creating ") + target,
                      MsgIcon::Critical);
        return;
    }
    if (messages.askYesNo(Success,
                          target + QStringLiteral(" was created successfully!\r\rwould you like "
                                                  "to view it now?"),
                          MsgIcon::Question))
        m_app.platform.shell.editTextFile(target);
}

void ConfigFileCommands::cmdEditCfg() {
    const QString script = ui.txtCfg->currentText();
    if (script.isEmpty())
        return;
    m_app.platform.shell.editTextFile(m_app.state.gameFile(QStringLiteral("baseq3/") + script));
}

void ConfigFileCommands::txtCfgChanged() {
    ui.cmdEditCfg->setEnabled(!ui.txtCfg->currentText().isEmpty());
}

} // namespace halvane
