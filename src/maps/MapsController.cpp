#include "maps/MapsController.h"

#include "app/AppContext.h"
#include "app/AppInfo.h"
#include "maps/GameFileListing.h"
#include "maps/MapDiscovery.h"
#include "maps/MapEditor.h"
#include "maps/MapPreview.h"
#include "maps/MapRulesPanel.h"
#include "maps/MapSelection.h"
#include "ui/MainForm.h"

namespace halvane {

MapsController::MapsController(QWidget& mainWindow, MainForm& ui, AppContext& app,
                               MapCatalogue& catalogue)
    : ui(ui), m_mainWindow(mainWindow), m_app(app), m_catalogue(catalogue),
      m_gameFiles(std::make_unique<GameFileListing>()) {
    const GameFiles& gameFiles = m_gameFiles->files();
    m_rules = std::make_unique<MapRulesPanel>(ui, m_catalogue, app);
    m_preview = std::make_unique<MapPreview>(ui, app, gameFiles);
    m_selection =
        std::make_unique<MapSelection>(ui, m_catalogue, app, *m_rules, *m_preview, gameFiles);
    m_selection->closeMainWindow = [this] {
        if (closeMainWindow)
            closeMainWindow();
    };
    m_discovery = std::make_unique<MapDiscovery>(m_catalogue, app, &mainWindow);
    m_discovery->searchAtStartup = [this] { return this->ui.mnuSettingsMapCheck->isChecked(); };
    m_discovery->LoadMaps = [this] { m_selection->LoadMaps(); };
    m_editor = std::make_unique<MapEditor>(&mainWindow, ui, m_catalogue, app, *m_selection);

    ui.mnuSettingsMapCheck->setCheckable(true);
    connect(ui.cmdSearchMaps, &QAbstractButton::clicked, this, [this] {
        m_discovery->searchArchives();
        listGameFiles();
    });
    // The lists ask for the marks as they paint the entries in view.
    connect(m_gameFiles.get(), &GameFileListing::listed, this, [this] {
        m_selection->marksChanged();
        m_preview->refresh();
    });
    connect(ui.cmdDefault, &QAbstractButton::clicked, this, [this] { m_rules->cmdDefault(); });
    connect(ui.cmdAddMaps, &QAbstractButton::clicked, m_editor.get(), &MapEditor::openForAdding);
    connect(ui.mnuMapNew, &QAction::triggered, m_editor.get(), &MapEditor::openForAdding);
    connect(ui.mnuMapEdit, &QAction::triggered, m_editor.get(), &MapEditor::openForEditing);
    connect(ui.mnuMapDelete, &QAction::triggered, m_editor.get(), &MapEditor::deleteMap);
}

MapsController::~MapsController() = default;

void MapsController::showStartupPicture() {
    m_preview->showStartupPicture();
}

void MapsController::CheckMapDataFile() {
    m_catalogue.CheckMapDataFile(m_app.platform.messages, AppInfo::supportContact());
}

void MapsController::GetMapsFromBaseDir() {
    m_discovery->GetMapsFromBaseDir();
}

void MapsController::LoadMaps() {
    m_selection->LoadMaps();
}

QStringList MapsController::LoadMaps(const QStringList& selected) {
    m_selection->LoadMaps(false);
    return m_selection->setSelectedMaps(selected);
}

QStringList MapsController::setSelectedMaps(const QStringList& selected) {
    return m_selection->setSelectedMaps(selected);
}

void MapsController::listGameFiles() {
    m_gameFiles->start(m_app.state.GameFolder, m_mainWindow);
}

void MapsController::CommitShownMap() {
    m_rules->CommitShownMap();
}

void MapsController::commitOnClose() {
    // The first map of either list is as much the shown map as any other, and
    // a blank name box, which only holds back the commit of a map choice,
    // keeps no edit from the file here.
    const QString file = trimSpaces(ui.lblMapFilename->text());
    if (m_catalogue.CurrentMapRecord < 1 || m_catalogue.MapDataDamaged || file.isEmpty())
        return;
    m_rules->writeShownMap();
}

void MapsController::SaveMaps() {
    if (!m_catalogue.leftAlone())
        m_selection->SaveMaps();
}

QStringList MapsController::selectedMaps() const {
    return m_selection->selectedMaps();
}

void MapsController::suggestMaps(int gameTypeIndex) {
    m_selection->suggestMaps(gameTypeIndex);
}

} // namespace halvane
