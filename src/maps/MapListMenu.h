#pragma once

class QAction;
class QMenu;

namespace halvane {

// The popup menu of MapList and its items. The menu lives in the window's
// menu bar, beside the Maps page, so the maps controllers are handed it.
struct MapListMenu {
    QMenu& menu;         // mnuMapList
    QAction& selectMaps; // mnuMapSelect
    QAction& newMap;     // mnuMapNew
    QAction& editMap;    // mnuMapEdit
    QAction& deleteMap;  // mnuMapDelete
    QAction& selectAll;  // mnuMapsSelectAll
};

} // namespace halvane
