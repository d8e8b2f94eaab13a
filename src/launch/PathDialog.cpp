#include "launch/PathDialog.h"

#include "app/AppContext.h"
#include "ui_frmPath.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>

namespace halvane {

namespace {
const QString Section = QStringLiteral("Settings");
}

PathDialog::PathDialog(AppContext& app, PathDialogHost& host, QWidget* owner)
    : QDialog(owner), m_app(app), m_host(host) {
    setModal(false);
}

PathDialog::~PathDialog() = default;

// Most starts find a valid stored location and never show the dialog, so its
// controls are built only when it is about to be shown or reached.
Ui::frmPath& PathDialog::form() {
    if (ui)
        return *ui;
    ui = std::make_unique<Ui::frmPath>();
    ui->setupUi(this);
    connect(ui->cmdBrowse, &QAbstractButton::clicked, this, &PathDialog::cmdBrowse);
    connect(ui->cmdOkay, &QAbstractButton::clicked, this, &PathDialog::cmdOkay);
    connect(ui->cmdCancel, &QAbstractButton::clicked, this, &PathDialog::cmdCancel);
    connect(ui->cmdFreeGame, &QAbstractButton::clicked, this, &PathDialog::cmdFreeGame);
    connect(ui->txtPath, &QLineEdit::textChanged, this,
            [this](const QString& text) { ui->cmdOkay->setEnabled(!text.isEmpty()); });
    return *ui;
}

bool PathDialog::readStoredLocation(AppState& state, const SettingsStore& store) {
    state.GameFolder = store.read(Section, QStringLiteral("Path"), QString());
    state.GameExeName = store.read(Section, QStringLiteral("Exe"), QString());

    // The check always looks for quake3.exe, whatever executable was chosen.
    if (!state.GameFolder.isEmpty() &&
        !FileExists(findIgnoringCase(state.GameFolder, QStringLiteral("quake3.exe")))) {
        state.GameFolder.clear();
        state.GameExeName.clear();
        state.ShowStoredPath = false;
    }
    return !state.GameFolder.isEmpty() && !state.GameExeName.isEmpty();
}

void PathDialog::load() {
    AppState& state = m_app.state;
    readStoredLocation(state, m_app.platform.store);

    if (!state.ShowStoredPath) {
        if (!state.GameFolder.isEmpty() && !state.GameExeName.isEmpty()) {
            PathChosen = true;
            unload();
            return;
        }
        PathChosen = false;
        form().txtPath->clear();
    } else {
        form().txtPath->setText(QDir::toNativeSeparators(state.GameFolder) + QDir::separator() +
                                state.GameExeName);
    }
    ui->cmdOkay->setEnabled(!ui->txtPath->text().isEmpty());
    ui->cmdFreeGame->setVisible(freeGameInstalled(freeGame));
    show();
    raise();
    activateWindow();
}

void PathDialog::cmdBrowse() {
    AppState& state = m_app.state;
    const FileChoice choice = m_app.platform.dialogs.openFile(
        QStringLiteral("Select the Quake 3 Executable"),
        QStringLiteral("Executables (*.exe)|*.exe"), state.GameFolder);
    if (!choice.chosen || choice.fileTitle.isEmpty() ||
        choice.path.size() <= choice.fileTitle.size())
        return;
    ui->txtPath->setText(choice.path);
    state.GameFolder = choice.path.left(choice.path.size() - choice.fileTitle.size() - 1);
    state.GameExeName = choice.fileTitle;
    PathChosen = true;
    ui->cmdOkay->setFocus();
}

void PathDialog::cmdFreeGame() {
    const FirstRunResult result =
        prepareFreeGame(freeGameFolder, freeGame, m_app.platform.folder.path());
    if (!result.gameReady || !storeFreeGameMemory(m_app.platform.store)) {
        m_app.platform.messages.tell(
            QStringLiteral("Halvane"),
            result.gameReady ? QStringLiteral("Cannot store the game's memory size in ") +
                                   m_app.platform.store.location() + QStringLiteral(": ") +
                                   m_app.platform.store.failureReason()
                             : result.message,
            MsgIcon::Critical);
        return;
    }
    m_app.state.GameFolder = freeGameFolder;
    m_app.state.GameExeName = QStringLiteral("quake3.exe");
    ui->txtPath->setText(QDir::toNativeSeparators(freeGameFolder + QStringLiteral("/quake3.exe")));
    PathChosen = true;
    // The game is ready; only its maps could not be offered.
    if (result.outcome == FirstRunResult::Failed)
        m_app.platform.messages.tell(QStringLiteral("Halvane"), result.message,
                                     MsgIcon::Information);
    ui->cmdOkay->setFocus();
}

void PathDialog::keepOtherProgram() {
#ifndef Q_OS_WIN
    AppState& state = m_app.state;
    if (state.GameFolder.isEmpty() || state.GameExeName.isEmpty() ||
        FileExists(findIgnoringCase(state.GameFolder, QStringLiteral("quake3.exe"))))
        return;
    const QString program = QDir(state.GameFolder).filePath(state.GameExeName);
    const bool free =
        freeGameInstalled(freeGame) &&
        QFileInfo(program).canonicalFilePath() == QFileInfo(freeGame.engine).canonicalFilePath();
    const QString folder = free ? freeGameFolder
                                : QFileInfo(freeGameFolder).absolutePath() + QLatin1Char('/') +
                                      QFileInfo(program).completeBaseName();
    MessageBoxes& messages = m_app.platform.messages;
    if (!messages.askYesNo(
            QStringLiteral("Halvane"),
            QDir::toNativeSeparators(program) +
                QStringLiteral(" is not named quake3.exe, which Halvane looks for in the game "
                               "folder at each start: this choice would be forgotten.\r\rSet up "
                               "the game folder ") +
                QDir::toNativeSeparators(folder) +
                (free ? QStringLiteral(" with the free game, ") : QStringLiteral(", ")) +
                QStringLiteral("whose quake3.exe runs it, and use that?"),
            MsgIcon::Question))
        return;
    const FirstRunResult result =
        free ? prepareFreeGame(folder, freeGame, m_app.platform.folder.path())
             : prepareEngineFolder(folder, program);
    if (result.gameReady && (!free || storeFreeGameMemory(m_app.platform.store))) {
        state.GameFolder = folder;
        state.GameExeName = QStringLiteral("quake3.exe");
    }
    if (result.outcome == FirstRunResult::Failed)
        messages.tell(QStringLiteral("Halvane"), result.message, MsgIcon::Critical);
#endif
}

void PathDialog::cmdOkay() {
    keepOtherProgram();
    SettingsStore& store = m_app.platform.store;
    store.write(Section, QStringLiteral("Path"), m_app.state.GameFolder);
    store.write(Section, QStringLiteral("Exe"), m_app.state.GameExeName);
    store.flush();
    PathChosen = true;
    unload();
}

void PathDialog::cmdCancel() {
    if (!m_app.state.PathDialogRequested) {
        PathChosen = false;
        hide();
        m_host.endProgram();
        return;
    }
    unload();
}

void PathDialog::unload() {
    if (m_unloading)
        return;
    m_unloading = true;
    hide();
    if (PathChosen || !m_app.state.StartupInProgress)
        m_host.showMainWindow();
    else
        m_host.endProgram();
    m_unloading = false;
}

// Closing the window by its frame or Escape counts as Cancel.
void PathDialog::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (isVisible() && !m_unloading)
        cmdCancel();
}

void PathDialog::reject() {
    cmdCancel();
}

} // namespace halvane
