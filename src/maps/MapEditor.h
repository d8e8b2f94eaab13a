#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmMap;
class frmMaps;
} // namespace Ui

namespace halvane {

struct AppContext;
class MapCatalogue;
class MapSelection;

// The map editor frmMap: adds a map by hand or changes the names of one,
// shown over the main window without blocking it. Also the deletion of a
// map from the available list.
class MapEditor : public QDialog {
    Q_OBJECT
public:
    MapEditor(QWidget* owner, Ui::frmMaps& page, MapCatalogue& catalogue, AppContext& app,
              MapSelection& selection);
    ~MapEditor() override;

    Ui::frmMap& form() { return *ui; }

    // "New" and "New Map".
    void openForAdding();
    // "Edit Map": the focused entry of MapList.
    void openForEditing();
    // "Delete Map": asks, blanks the map's record and reloads the lists.
    void deleteMap();

    // "Okay".
    void okay();
    bool CheckValidMap();
    void AddNewMap();
    void UpdateMap();

    // The record being edited.
    qint16 editRecord() const { return m_editRecord; }

private:
    std::unique_ptr<Ui::frmMap> ui;
    Ui::frmMaps& page;
    MapCatalogue& m_catalogue;
    AppContext& m_app;
    MapSelection& m_selection;
    qint16 m_editRecord = -1;
};

} // namespace halvane
