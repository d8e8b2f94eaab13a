#pragma once

#include "maps/MapCatalogue.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Ui {
class frmMapSearch;
}

namespace halvane {

struct AppContext;

// The progress window of the archive search, with a Cancel button that asks
// the search to stop.
class MapSearchWindow : public QDialog {
    Q_OBJECT
public:
    explicit MapSearchWindow(QWidget* owner);
    ~MapSearchWindow() override;
    void setHeader(const QString& text);
    void setStatus(const QString& text);
    QString header() const;
    QString status() const;
    void setCancelEnabled(bool enabled);

signals:
    // Cancel pressed, or the window closed by its frame or Escape.
    void cancelRequested();

private:
    std::unique_ptr<Ui::frmMapSearch> ui;
};

// Finds maps the catalogue does not know yet: loose .bsp files in the game's
// maps folder, maps inside the .pk3 archives of baseq3, and the names of an
// import list beside the program. New maps get the default rules.
class MapDiscovery {
public:
    MapDiscovery(MapCatalogue& catalogue, AppContext& app, QWidget* owner);
    ~MapDiscovery();

    // Start-up discovery: defaults, the archive search when asked for, the
    // loose maps, the import list.
    void GetMapsFromBaseDir();
    // The search of the game's archives, ending with a reload of the lists.
    void searchArchives();

    // Whether start-up searches the archives too (the menu item's mark).
    std::function<bool()> searchAtStartup;
    // Refills the map lists.
    std::function<void()> LoadMaps;
    // Lets the progress window repaint and holds the line shown long enough
    // to read it; tests make it record or do nothing.
    std::function<void()> pause;

    // How long one search may hold its lines in all, and one line at most.
    static constexpr int PacingBudgetMs = 1000;
    static constexpr int LineHoldMs = 30;

    MapSearchWindow& searchWindow() { return *m_window; }
    // The map files found in archives by the last search, and the archives.
    QStringList pakMaps;
    QStringList pakList;

private:
    bool findLooseMaps();
    bool importMapList();
    void listArchives();
    void repaint();
    // A found map's record with the default rules, or nothing when the
    // catalogue knows its name as the record would store it (cut to 20).
    std::optional<MapRecord> newMap(const QString& name, const MapSnapshot& known,
                                    const MapRules& rules) const;
    // Appends what one step found; says what could not be stored.
    bool store(const std::vector<MapRecord>& records, const QStringList& names,
               const QString& source);
    // Tells once about the names that were cut to fit the record.
    void noteIfCut(const QString& name);
    void reportCutNames();
    // True (and noted) when the record's name is one the game's console
    // would split: a control character, a quote, ';', a blank. Such a map is
    // not added; one notice after the search tells how many.
    bool leftOut(const MapRecord& record, const QString& found);
    void reportLeftOut();
    void holdLine();

    MapCatalogue& m_catalogue;
    AppContext& m_app;
    std::unique_ptr<MapSearchWindow> m_window;
    bool m_searching = false;
    bool m_atStartup = false;
    QStringList m_cutNames;
    QStringList m_leftOut;
    bool m_cancelled = false;
    // Pacing of the search under way: the lines it will show, the ones shown.
    QElapsedTimer m_pacing;
    int m_lines = 0;
    int m_linesShown = 0;
};

// The .bsp files of a folder, by name, without their extension.
QStringList looseMapNames(const QString& folder);
// The .pk3 files of a folder in alphabetical order.
QStringList archiveNames(const QString& folder);
// Whether a line of maplist.txt names a map to import.
bool isMapListEntry(const QString& line);

} // namespace halvane
