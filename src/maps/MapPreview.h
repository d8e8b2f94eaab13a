#pragma once

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <memory>

class QIODevice;

namespace Ui {
class frmMaps;
}

namespace halvane {

struct AppContext;
class GameFiles;
class WhenShown;

// Where a map's picture comes from: a file, or a member of an archive.
struct PreviewSource {
    enum Kind { None, Jpeg, Targa } kind = None;
    QString path;       // the file, or the archive
    QByteArray member;  // the member's name, for a picture in an archive
    QByteArray content; // the member's bytes
};

// The first picture that exists for a map: the program's thumbnails, then
// the game's level shots, loose and then inside its archives (as listed in
// archives), then the default picture. Folder and file names are matched
// without regard to letter case.
PreviewSource findPreview(const QString& programFolder, const QString& gameFolder,
                          const QString& mapName, const GameFiles* archives = nullptr);

// A side longer than this is no level shot: decoding such a picture takes
// seconds and hundreds of megabytes. Such pictures are refused by the size
// their header gives, before they are decoded.
constexpr int MaxPictureSide = 4096;

// A Targa picture, with or without the version 2 footer; null when unreadable
// or too large.
QImage readTarga(const QString& path);
QImage readTarga(QByteArray bytes);
// A JPEG picture (or one of another kind, by its content); null when
// unreadable or too large.
QImage readJpeg(QIODevice& device);

// The picture findPreview finds, read and decoded; a plain function, so it
// runs away from the window's thread.
struct PreviewPicture {
    PreviewSource::Kind kind = PreviewSource::None;
    QImage image;
};
PreviewPicture loadPreview(const QString& programFolder, const QString& gameFolder,
                           const QString& mapName, const GameFiles* archives = nullptr);

// Shows the picture of the chosen map on the Maps tab: JPEG pictures in
// imgMap1, Targa pictures drawn into imgMap at their own size. While the
// tab is out of sight the picture is found and read when the tab shows.
// Pictures are read and decoded on a thread of their own, so that a large
// one inside an archive never holds up the window; the box changes when the
// picture is ready.
class MapPreview {
public:
    // Pictures in the game's archives are found through archives.
    MapPreview(Ui::frmMaps& ui, AppContext& app, const GameFiles& archives);
    ~MapPreview();

    void showPreview(const QString& entry);
    // Waits for the picture being read and shows it.
    void finish();
    // Shows the last map shown again, as the game's files are now.
    void refresh();
    // Draws a Targa picture from the box's top-left corner, unscaled and cut
    // off at the box's edges; an unreadable file leaves the box empty.
    void ShowTGA(const QString& path);
    // Start-up: the default picture before any map is chosen.
    void showStartupPicture();

private:
    void showNow(const QString& entry);
    void showPicture(const PreviewPicture& picture);
    void showJpeg(const QImage& picture);
    void drawTarga(const QImage& picture);
    void showEmpty();

    Ui::frmMaps& ui;
    AppContext& m_app;
    const GameFiles& m_archives;
    QString m_shown;
    std::unique_ptr<WhenShown> m_whenShown;
    QObject m_receiver; // takes the pictures read on the thread
    QThreadPool m_reader;
    quint64 m_asked = 0; // only the picture last asked for is shown
};

} // namespace halvane
