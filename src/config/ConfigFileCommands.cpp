#include "config/ConfigFileCommands.h"

#include "app/AppContext.h"
#include "config/ConfigSteps.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QFileInfo>

namespace halvane {

namespace {
const QString Success = QStringLiteral("Success!");
const QString Failed = QStringLiteral("Warning!");

// A file as the system finds it: its folder with links resolved, its name,
// and where it really lies when it exists.
struct Place {
    QString folder;
    QString name;
    QString real;
};

Place placeOf(const QString& path) {
    const QFileInfo info(path);
    QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    if (folder.isEmpty())
        folder = info.absolutePath();
    return {folder, info.fileName(), info.canonicalFilePath()};
}

// One file by another name: a link, or a name in other letter case, which
// the program itself takes for its own file where that one is missing.
bool samePlace(const Place& a, const Place& b) {
    return (!a.real.isEmpty() && a.real == b.real) ||
           (a.folder == b.folder && a.name.compare(b.name, Qt::CaseInsensitive) == 0);
}
} // namespace

QString ConfigFileCommands::refusedTarget(const QString& target) const {
    const Place place = placeOf(target);
    const AppState& state = m_app.state;
    const QString notSaved =
        QStringLiteral("\r\rThe configuration was not saved; choose another file name.");
    if (!state.GameFolder.isEmpty()) {
        for (const QString& exe :
             {state.gameFile(state.GameExeName), state.gameFile(QStringLiteral("quake3.exe"))}) {
            if (!state.GameExeName.isEmpty() && samePlace(place, placeOf(exe)))
                return target + QStringLiteral(" is the game's executable.") + notSaved;
        }
        const QString scripts =
            QStringLiteral(" is a script that halvane.cfg runs (the map rotation or the bots), "
                           "rewritten at each launch.");
        if (samePlace(place, placeOf(state.gameFile(QStringLiteral("baseq3/srvbots.cfg")))))
            return target + scripts + notSaved;
        for (const QString& folder : {state.gameFile(QStringLiteral("baseq3/srvmaps")),
                                      state.gameFile(QStringLiteral("baseq3/srvbots"))}) {
            const Place scriptFolder = placeOf(folder);
            for (QFileInfo up(place.folder); !up.isRoot() && !up.filePath().isEmpty();
                 up = QFileInfo(up.absolutePath())) {
                if (samePlace(placeOf(up.filePath()), scriptFolder))
                    return target + scripts + notSaved;
            }
        }
    }
    const ProgramFolder& own = m_app.platform.folder;
    for (const char* name :
         {"maps.dat", "maps.bak", "instmaps.dat", "mapsel.txt", "maplist.txt", "botlist.txt"}) {
        const QString file = QString::fromLatin1(name);
        if (samePlace(place, placeOf(own.file(file))) ||
            samePlace(place, placeOf(own.installedFile(file))))
            return target + QStringLiteral(" is Halvane's own ") + file + QLatin1Char('.') +
                   notSaved;
    }
    return QString();
}

ConfigFileCommands::ConfigFileCommands(const ConfigFileControls& ui, AppContext& app,
                                       ConfigSteps& steps, QObject* parent)
    : QObject(parent), ui(ui), m_app(app), m_steps(&steps) {
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
    return m_steps->WriteConfig(path, false, QString());
}

bool ConfigFileCommands::mnuFileMakeCfg() {
    if (!m_steps->ValidateAll())
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
    if (!m_steps->consoleTextIsSafe())
        return;
    const FileChoice choice = m_app.platform.dialogs.saveFile(
        QStringLiteral("Save config file as"), QStringLiteral("Config files|*.cfg;*.config"),
        QStringLiteral("*.cfg"), m_app.state.gameFile(QStringLiteral("baseq3")));
    if (!choice.chosen || choice.path.isEmpty())
        return;
    // Written as the controls stand: no validation, nothing stored.
    const QString target = choice.path;
    MessageBoxes& messages = m_app.platform.messages;
    // The dialog's own question only asked whether to replace a file; these
    // the program and the game need as they are.
    if (const QString refused = refusedTarget(target); !refused.isEmpty()) {
        messages.tell(Failed, refused, MsgIcon::Critical);
        return;
    }
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
