#pragma once

#include "maps/MapCatalogue.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QStringList>
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
class MapDiscovery : public QObject {
    Q_OBJECT
public:
    MapDiscovery(MapCatalogue& catalogue, AppContext& app, QWidget* owner);
    ~MapDiscovery() override;

    // Start-up discovery: defaults, the archive search when the operator
    // asked for it (searchArchivesToo), the loose maps, the import list.
    void GetMapsFromBaseDir(bool searchArchivesToo = false);
    // The search of the game's archives, ending with searchEnded.
    void searchArchives();

    // How long the progress window holds its lines, so that they can be
    // read: one search in all, and one line at most. A budget of 0 holds
    // none; the window still repaints at each line.
    struct Pacing {
        int budgetMs = 1000;
        int lineHoldMs = 30;
    };
    void setPacing(Pacing pacing) { m_pace = pacing; }

    MapSearchWindow& searchWindow() { return *m_window; }
    // The map files found in archives by the last search, and the archives.
    QStringList pakMaps;
    QStringList pakList;

signals:
    // A line of the progress window is up (header and status).
    void lineShown();
    // The archive search is over, with what it added in the catalogue: the
    // map lists are to be filled anew.
    void searchEnded();

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
    // Repaints the progress window and holds its line as the pacing says.
    void pause();

    MapCatalogue& m_catalogue;
    AppContext& m_app;
    std::unique_ptr<MapSearchWindow> m_window;
    bool m_searching = false;
    bool m_atStartup = false;
    QStringList m_cutNames;
    QStringList m_leftOut;
    bool m_cancelled = false;
    Pacing m_pace;
    // Pacing of the search under way: the lines it will show, the ones shown.
    QElapsedTimer m_paceClock;
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
