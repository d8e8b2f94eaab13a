#pragma once

#include "maps/MapListMenu.h"

#include <QObject>
#include <QStringList>

class QAbstractItemView;

namespace Ui {
class frmMaps;
}

namespace halvane {

struct AppContext;
class GameFiles;
class MapCatalogue;
class MapNameList;
class MapPreview;
class MapRulesPanel;

// The two map lists of the Maps tab: the available maps (MapList) and the
// selected maps in play order (SelMap), the buttons between them, the
// popup menu of MapList and the selection file mapsel.txt. Both lists are
// views over a MapNameList; maps the game does not have are marked in both,
// as gameFiles says.
class MapSelection : public QObject {
    Q_OBJECT
public:
    MapSelection(Ui::frmMaps& ui, const MapListMenu& menu, MapCatalogue& catalogue, AppContext& app,
                 MapRulesPanel& rules, MapPreview& preview, const GameFiles& gameFiles,
                 QObject* parent = nullptr);

    // Fills both lists from the catalogue and mapsel.txt, sets the captions.
    // readSelectionFile false lists the catalogue only, for a selection that
    // comes from elsewhere (a profile).
    void LoadMaps(bool readSelectionFile = true);
    // Writes SelMap to mapsel.txt.
    void SaveMaps();
    // The selected maps in play order, as the entries stand.
    QStringList selectedMaps() const;
    // Puts these maps in the selected list, in this order, as a profile
    // holds them; returns those the catalogue does not know, left out.
    QStringList setSelectedMaps(const QStringList& maps);
    // The entries of MapList and SelMap.
    MapNameList& available() { return *m_available; }
    MapNameList& selected() { return *m_selected; }
    // The row of MapList's focused (current) entry, -1 when none.
    int availableCurrentRow() const;
    // The game's files were listed anew: both lists mark their entries again.
    void marksChanged();

    void cmdAddSelMap();
    void cmdRemSelMap();
    void cmdMapUp();
    void cmdMapDown();
    void cmdMapClearAll();
    void cmdMapSelectAll();
    void cmdMapDm();
    void cmdMapCtf();
    void cmdMapTourney();
    void cmdRandomize();

    int CountSelectedMaps() const;
    // Enables and captions the popup menu's items for the highlighted maps.
    void prepareMapListMenu();
    // The game-type suggestion: offers to select only tourney or CTF maps.
    void suggestMaps(int gameTypeIndex);

    // Makes a row of MapList the only highlighted and current entry, and
    // runs the choice handling for it.
    void highlightMapList(int row);
    void highlightSelMap(int row);
    void updateAvailableCaption();
    void updateSelectedCaption();

signals:
    // A chosen entry names no map of the catalogue any more: the program
    // closes its main window before the map data gets worse.
    void closeRequested();
    // The right button on MapList, once the menu's items are prepared: the
    // menu is to open here.
    void mapListMenuRequested(const QPoint& globalPosition);

protected:
    // Keeps the right mouse button off MapList's highlight and current entry.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Makes row the only highlighted and current entry of list, quietly.
    void highlight(QAbstractItemView& list, int row);
    // A click on the entry that is already current changes no row: it is
    // chosen again unless it is the entry whose choice shows the map now.
    void clicked(QAbstractItemView& list, int row);
    void mapListChosen(int row);
    void selMapChosen(int row);
    void addByType(const QString& text);
    void moveSelected(int step);
    int selHighlighted() const;
    bool showChosen(const QString& entry);
    QString selectionFilePath() const;

    Ui::frmMaps& ui;
    MapListMenu m_menu;
    MapCatalogue& m_catalogue;
    AppContext& m_app;
    MapRulesPanel& m_rules;
    MapPreview& m_preview;
    MapNameList* m_available;
    MapNameList* m_selected;
    // Set while the lists change under the program's hand: their current
    // entry may move without being chosen.
    bool m_quiet = false;
    // The entry whose choice shows the map now; forgotten when its list's
    // rows change or another record is shown.
    struct Shown {
        const QAbstractItemView* list = nullptr;
        int row = -1;
        int record = -1;
    } m_shown;
};

} // namespace halvane
