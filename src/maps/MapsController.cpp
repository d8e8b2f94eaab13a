#include "maps/MapsController.h"

#include "app/AppContext.h"
#include "app/AppInfo.h"
#include "maps/GameFileListing.h"
#include "maps/MapDiscovery.h"
#include "maps/MapEditor.h"
#include "maps/MapPreview.h"
#include "maps/MapRulesPanel.h"
#include "maps/MapSelection.h"
#include "ui_frmMaps.h"

#include <QMenu>

namespace halvane {

MapsController::MapsController(QWidget& mainWindow, Ui::frmMaps& ui, const MapListMenu& menu,
                               AppContext& app, MapCatalogue& catalogue)
    : ui(ui), m_mainWindow(mainWindow), m_app(app), m_catalogue(catalogue),
      m_gameFiles(std::make_unique<GameFileListing>()) {
    const GameFiles& gameFiles = m_gameFiles->files();
    m_rules = std::make_unique<MapRulesPanel>(ui, m_catalogue, app);
    m_preview = std::make_unique<MapPreview>(ui, app, gameFiles);
    m_selection =
        std::make_unique<MapSelection>(ui, menu, m_catalogue, app, *m_rules, *m_preview, gameFiles);
    connect(m_selection.get(), &MapSelection::closeRequested, this,
            &MapsController::closeRequested);
    connect(m_selection.get(), &MapSelection::mapListMenuRequested, &menu.menu,
            [popup = &menu.menu](const QPoint& at) { popup->popup(at); });
    m_discovery = std::make_unique<MapDiscovery>(m_catalogue, app, &mainWindow);
    connect(m_discovery.get(), &MapDiscovery::searchEnded, m_selection.get(),
            [this] { m_selection->LoadMaps(); });
    m_editor = std::make_unique<MapEditor>(&mainWindow, ui, m_catalogue, app, *m_selection);

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
    connect(&menu.newMap, &QAction::triggered, m_editor.get(), &MapEditor::openForAdding);
    connect(&menu.editMap, &QAction::triggered, m_editor.get(), &MapEditor::openForEditing);
    connect(&menu.deleteMap, &QAction::triggered, m_editor.get(), &MapEditor::deleteMap);
}

MapsController::~MapsController() = default;

void MapsController::showStartupPicture() {
    m_preview->showStartupPicture();
}

void MapsController::CheckMapDataFile() {
    m_catalogue.CheckMapDataFile(m_app.platform.messages, AppInfo::supportContact());
}

void MapsController::GetMapsFromBaseDir(bool searchArchives) {
    m_discovery->GetMapsFromBaseDir(searchArchives);
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
