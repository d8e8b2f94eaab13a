#pragma once

#include <QImage>
#include <QString>
#include <memory>

namespace Ui {
class frmMain;
}

namespace halvane {

struct AppContext;
class WhenShown;

// Where a map's picture comes from.
struct PreviewSource {
    enum Kind { None, Jpeg, Targa } kind = None;
    QString path;
};

// The first picture that exists for a map: the program's thumbnails, then
// the game's level shots, then the default picture. Folder and file names
// are matched without regard to letter case.
PreviewSource findPreview(const QString& programFolder, const QString& gameFolder,
                          const QString& mapName);

// A Targa picture, with or without the version 2 footer; null when unreadable.
QImage readTarga(const QString& path);

// Shows the picture of the chosen map on the Maps tab: JPEG pictures in
// imgMap1, Targa pictures drawn into imgMap at their own size. While the
// tab is out of sight the picture is found and read when the tab shows.
class MapPreview {
public:
    MapPreview(Ui::frmMain& ui, AppContext& app);
    ~MapPreview();

    void showPreview(const QString& entry);
    // Draws a Targa picture from the box's top-left corner, unscaled and cut
    // off at the box's edges; an unreadable file leaves the box empty.
    void ShowTGA(const QString& path);
    // Start-up: the default picture before any map is chosen.
    void showStartupPicture();

private:
    void showNow(const QString& entry);
    void showJpeg(const QString& path);
    void showEmpty();

    Ui::frmMain& ui;
    AppContext& m_app;
    std::unique_ptr<WhenShown> m_whenShown;
};

} // namespace halvane
