#include "maps/MapPreview.h"

#include "app/AppContext.h"
#include "maps/MapRecord.h"
#include "ui_frmMain.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>

namespace halvane {

PreviewSource findPreview(const QString& programFolder, const QString& gameFolder,
                          const QString& mapName) {
    const QString name = trimSpaces(mapName);
    struct Candidate {
        bool inGame;
        QString relative;
        PreviewSource::Kind kind;
    };
    const Candidate candidates[] = {
        {false, QStringLiteral("Maps/") + name + QStringLiteral(".jpg"), PreviewSource::Jpeg},
        {false, QStringLiteral("Maps/") + name + QStringLiteral(".tga"), PreviewSource::Targa},
        {true, QStringLiteral("baseq3/levelshots/") + name + QStringLiteral(".jpg"),
         PreviewSource::Jpeg},
        {true, QStringLiteral("baseq3/levelshots/") + name + QStringLiteral(".tga"),
         PreviewSource::Targa},
        {false, QStringLiteral("Maps/DEFAULT.jpg"), PreviewSource::Jpeg},
    };
    for (const Candidate& candidate : candidates) {
        const QString base = candidate.inGame ? gameFolder : programFolder;
        if (base.isEmpty())
            continue;
        const QString path = findIgnoringCase(base, candidate.relative);
        if (FileExists(path))
            return {candidate.kind, path};
    }
    return {};
}

QImage readTarga(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QImage();
    QByteArray bytes = file.readAll();
    // Shorter than its header, a file is no picture: the footer added below
    // would otherwise complete the header and show garbage.
    if (bytes.size() < 18)
        return QImage();
    // Qt's reader takes only files with the version 2 footer; the game's own
    // pictures are often older ones, which differ in nothing else.
    static const QByteArray signature("TRUEVISION-XFILE.\0", 18);
    if (!bytes.endsWith(signature))
        bytes += QByteArray(8, '\0') + signature;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "tga");
    return reader.read();
}

MapPreview::MapPreview(Ui::frmMain& ui, AppContext& app) : ui(ui), m_app(app) {}

void MapPreview::showPreview(const QString& entry) {
    const PreviewSource source =
        findPreview(m_app.platform.folder.path(), m_app.state.GameFolder, entry);
    switch (source.kind) {
    case PreviewSource::Jpeg:
        showJpeg(source.path);
        break;
    case PreviewSource::Targa:
        ShowTGA(source.path);
        ui.stkMapPicture->setCurrentWidget(ui.imgMap);
        break;
    case PreviewSource::None:
        showEmpty();
        break;
    }
}

void MapPreview::showJpeg(const QString& path) {
    // Naming the format loads only the JPEG plugin; guessing from the content
    // would load every image plugin, which costs start-up time. A picture that
    // is not a JPEG after all is still read by its content.
    QImage picture;
    {
        QImageReader reader(path, "jpeg");
        picture = reader.read();
    }
    if (picture.isNull()) {
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        picture = reader.read();
    }
    ui.imgMap1->setPixmap(QPixmap::fromImage(picture));
    ui.stkMapPicture->setCurrentWidget(ui.imgMap1);
}

void MapPreview::showEmpty() {
    ui.imgMap->setPixmap(QPixmap());
    ui.stkMapPicture->setCurrentWidget(ui.imgMap);
}

void MapPreview::ShowTGA(const QString& path) {
    const QSize box = ui.imgMap->size().expandedTo(ui.imgMap->minimumSize());
    QPixmap canvas(box);
    canvas.fill(ui.imgMap->palette().color(QPalette::Window));
    const QImage picture = readTarga(path);
    if (!picture.isNull()) {
        QPainter painter(&canvas);
        painter.setClipRect(QRect(QPoint(0, 0), box));
        painter.drawImage(QPoint(0, 0), picture);
    }
    ui.imgMap->setPixmap(canvas);
}

void MapPreview::showStartupPicture() {
    const QString path = m_app.platform.folder.file(QStringLiteral("maps/default.jpg"));
    if (FileExists(path))
        showJpeg(path);
}

} // namespace halvane
