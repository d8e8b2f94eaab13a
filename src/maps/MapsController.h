#pragma once

#include "maps/MapCatalogue.h"
#include "maps/MapListMenu.h"

#include <QObject>
#include <QStringList>
#include <memory>

class QWidget;

namespace Ui {
class frmMaps;
}

namespace halvane {

struct AppContext;
class GameFileListing;
class MapDiscovery;
class MapEditor;
class MapPreview;
class MapRulesPanel;
class MapSelection;

// The Maps tab: the handlers of its lists, rules, editor, search and
// picture, over the Maps page's form and the popup menu of its available
// list. Other subsystems reach the maps through here.
class MapsController : public QObject {
    Q_OBJECT
public:
    // The catalogue is the program's one map catalogue, shared with the
    // script writers, so every part sees the same shown map.
    MapsController(QWidget& mainWindow, Ui::frmMaps& ui, const MapListMenu& menu, AppContext& app,
                   MapCatalogue& catalogue);
    ~MapsController() override;

    // Start-up steps, in the order the main window runs them.
    void showStartupPicture();
    void CheckMapDataFile();
    // searchArchives: the operator asked for the archive search at start-up.
    void GetMapsFromBaseDir(bool searchArchives);
    void LoadMaps();
    // LoadMaps with these maps chosen in place of mapsel.txt; returns the
    // ones the catalogue does not know, left out.
    QStringList LoadMaps(const QStringList& selected);
    // Chooses these maps as LoadMaps(selected) does, on a loaded window.
    QStringList setSelectedMaps(const QStringList& selected);
    // Lists the game's files anew, off the window thread, and then marks the
    // maps it lacks and shows the pictures in its archives. Run once the
    // window is shown and after each search, never during start-up.
    void listGameFiles();

    // Writes the shown map's rules back into its record (map choice, launch).
    void CommitShownMap();
    // Shut-down: the write-back, whenever a record is shown and the catalogue
    // was not found damaged; a failure is reported.
    void commitOnClose();
    // Writes mapsel.txt, unless the catalogue could not be read this run:
    // then no map was listed and the stored selection stays as it is.
    void SaveMaps();

    // The selected maps in play order, each to be looked up with FindMap.
    QStringList selectedMaps() const;
    // The game-type suggestion (installed into the option interlocks).
    void suggestMaps(int gameTypeIndex);

    MapCatalogue& catalogue() { return m_catalogue; }
    MapSelection& selection() { return *m_selection; }
    MapRulesPanel& rules() { return *m_rules; }
    MapPreview& preview() { return *m_preview; }
    MapDiscovery& discovery() { return *m_discovery; }
    MapEditor& editor() { return *m_editor; }
    GameFileListing& gameFiles() { return *m_gameFiles; }

signals:
    // A listed map vanished from the catalogue: the main window is to close.
    void closeRequested();

private:
    Ui::frmMaps& ui;
    QWidget& m_mainWindow;
    AppContext& m_app;
    MapCatalogue& m_catalogue;
    std::unique_ptr<GameFileListing> m_gameFiles;
    std::unique_ptr<MapRulesPanel> m_rules;
    std::unique_ptr<MapPreview> m_preview;
    std::unique_ptr<MapSelection> m_selection;
    std::unique_ptr<MapDiscovery> m_discovery;
    std::unique_ptr<MapEditor> m_editor;
};

} // namespace halvane
