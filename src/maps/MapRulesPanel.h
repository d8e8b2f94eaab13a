#pragma once

#include "maps/MapCatalogue.h"

namespace Ui {
class frmMaps;
}

namespace halvane {

struct AppContext;

// The rules of the shown map in the boxes of the Maps tab, their way back
// into the map's record, and "Use Settings as Default".
class MapRulesPanel {
public:
    MapRulesPanel(Ui::frmMaps& ui, MapCatalogue& catalogue, AppContext& app);

    // Puts RecordBuffer's fields into the boxes.
    void ShowMap();
    // Writes the boxes back into record CurrentMapRecord, unless no record is
    // shown or the display name was blanked.
    void CommitShownMap();
    // The write itself: the boxes into record CurrentMapRecord, whatever the
    // name box holds. When the record cannot be written the operator is told,
    // naming the map and the reason, since the edits would be lost unseen.
    void writeShownMap();
    // The shown values as rules.
    MapRules shownRules() const;
    // "Use Settings as Default": the shown rules become the defaults and the
    // rules of every map.
    void cmdDefault();

private:
    Ui::frmMaps& ui;
    MapCatalogue& m_catalogue;
    AppContext& m_app;
};

} // namespace halvane
