#include "launch/PathDialog.h"

#include "app/AppContext.h"
#include "ui_frmPath.h"

#include <QCloseEvent>
#include <QDir>

namespace halvane {

namespace {
const QString Section = QStringLiteral("Settings");
}

PathDialog::PathDialog(AppContext& app, PathDialogHost& host, QWidget* owner)
    : QDialog(owner), ui(std::make_unique<Ui::frmPath>()), m_app(app), m_host(host) {
    ui->setupUi(this);
    setModal(false);
    connect(ui->cmdBrowse, &QAbstractButton::clicked, this, &PathDialog::cmdBrowse);
    connect(ui->cmdOkay, &QAbstractButton::clicked, this, &PathDialog::cmdOkay);
    connect(ui->cmdCancel, &QAbstractButton::clicked, this, &PathDialog::cmdCancel);
    connect(ui->txtPath, &QLineEdit::textChanged, this,
            [this](const QString& text) { ui->cmdOkay->setEnabled(!text.isEmpty()); });
}

PathDialog::~PathDialog() = default;

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
        ui->txtPath->clear();
    } else {
        ui->txtPath->setText(QDir::toNativeSeparators(state.GameFolder) + QDir::separator() +
                             state.GameExeName);
    }
    ui->cmdOkay->setEnabled(!ui->txtPath->text().isEmpty());
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

void PathDialog::cmdOkay() {
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
