#include "maps/MapPreview.h"

#include "app/AppContext.h"
#include "maps/ArchiveListing.h"
#include "maps/GameFiles.h"
#include "maps/MapRecord.h"
#include "maps/WhenShown.h"
#include "ui_frmMaps.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <optional>

namespace halvane {

namespace {
// Larger members are no level shot; reading them could exhaust memory.
constexpr qint64 MaxPictureBytes = 64 * 1024 * 1024;

struct Candidate {
    bool inGame;
    QString relative;
    PreviewSource::Kind kind;
};

std::optional<PreviewSource> firstFile(const QString& programFolder, const QString& gameFolder,
                                       std::initializer_list<Candidate> candidates) {
    for (const Candidate& candidate : candidates) {
        const QString base = candidate.inGame ? gameFolder : programFolder;
        if (base.isEmpty())
            continue;
        const QString path = findIgnoringCase(base, candidate.relative);
        // A pipe or a folder by that name is no picture; opening a pipe waits.
        if (QFileInfo(path).isFile() && FileExists(path))
            return PreviewSource{candidate.kind, path, {}, {}};
    }
    return std::nullopt;
}

// The level shot the game reads from its archives, JPEG before Targa as
// among the loose ones; a member that cannot be read counts as none.
std::optional<PreviewSource> inArchives(const GameFiles& archives, const QString& name) {
    const std::pair<QLatin1String, PreviewSource::Kind> kinds[] = {
        {QLatin1String(".jpg"), PreviewSource::Jpeg},
        {QLatin1String(".tga"), PreviewSource::Targa}};
    for (const auto& [extension, kind] : kinds) {
        const auto member = archives.findLevelShot(name + extension);
        if (!member)
            continue;
        if (auto content = readArchiveMember(member->archive, member->member, MaxPictureBytes))
            return PreviewSource{kind, member->archive, member->member, *content};
    }
    return std::nullopt;
}
} // namespace

PreviewSource findPreview(const QString& programFolder, const QString& gameFolder,
                          const QString& mapName, const GameFiles* archives) {
    const QString name = trimSpaces(mapName);
    const QString levelShot = QStringLiteral("baseq3/levelshots/") + name;
    if (auto source = firstFile(
            programFolder, gameFolder,
            {{false, QStringLiteral("Maps/") + name + QStringLiteral(".jpg"), PreviewSource::Jpeg},
             {false, QStringLiteral("Maps/") + name + QStringLiteral(".tga"), PreviewSource::Targa},
             {true, levelShot + QStringLiteral(".jpg"), PreviewSource::Jpeg},
             {true, levelShot + QStringLiteral(".tga"), PreviewSource::Targa}}))
        return *source;
    if (archives) {
        if (auto source = inArchives(*archives, name))
            return *source;
    }
    return firstFile(programFolder, gameFolder,
                     {{false, QStringLiteral("Maps/DEFAULT.jpg"), PreviewSource::Jpeg}})
        .value_or(PreviewSource());
}

QImage readTarga(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QImage();
    return readTarga(file.readAll());
}

QImage readTarga(QByteArray bytes) {
    // Shorter than its header, a file is no picture: the footer added below
    // would otherwise complete the header and show garbage.
    if (bytes.size() < 18)
        return QImage();
    const auto word = [&](int at) { return uchar(bytes[at]) | uchar(bytes[at + 1]) << 8; };
    if (word(12) > MaxPictureSide || word(14) > MaxPictureSide)
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

QImage readJpeg(QIODevice& device) {
    const auto read = [](QImageReader& reader) {
        const QSize size = reader.size(); // from the header alone
        if (size.width() > MaxPictureSide || size.height() > MaxPictureSide)
            return QImage();
        return reader.read();
    };
    // Naming the format without letting the reader guess loads only the
    // JPEG plugin; a guess would load every image plugin. A picture that is
    // not a JPEG after all is still read by its content.
    QImage picture;
    {
        QImageReader reader(&device, "jpeg");
        reader.setAutoDetectImageFormat(false);
        picture = read(reader);
    }
    if (picture.isNull() && device.seek(0)) {
        QImageReader reader(&device);
        reader.setDecideFormatFromContent(true);
        picture = read(reader);
    }
    return picture;
}

PreviewPicture loadPreview(const QString& programFolder, const QString& gameFolder,
                           const QString& mapName, const GameFiles* archives) {
    PreviewSource source = findPreview(programFolder, gameFolder, mapName, archives);
    const bool inArchive = !source.member.isEmpty();
    switch (source.kind) {
    case PreviewSource::Jpeg: {
        QFile file(source.path);
        QBuffer content(&source.content);
        QIODevice& device = inArchive ? static_cast<QIODevice&>(content) : file;
        device.open(QIODevice::ReadOnly);
        return {source.kind, readJpeg(device)};
    }
    case PreviewSource::Targa:
        return {source.kind, inArchive ? readTarga(source.content) : readTarga(source.path)};
    case PreviewSource::None:
        break;
    }
    return {};
}

MapPreview::MapPreview(Ui::frmMaps& ui, AppContext& app, const GameFiles& archives)
    : ui(ui), m_app(app), m_archives(archives),
      m_whenShown(std::make_unique<WhenShown>(*ui.stkMapPicture)) {
    m_reader.setMaxThreadCount(1);
}

MapPreview::~MapPreview() {
    // The thread's work refers to this object.
    m_reader.clear();
    m_reader.waitForDone();
}

void MapPreview::showPreview(const QString& entry) {
    m_shown = entry;
    // Start-up chooses a map in each list while the Maps tab is out of sight.
    m_whenShown->run([this, entry] { showNow(entry); });
}

void MapPreview::showNow(const QString& entry) {
    // Copies for the thread; the archive listing's tables are shared, not copied.
    const quint64 asked = ++m_asked;
    m_reader.clear(); // what was asked before and has not started is no longer wanted
    m_reader.start([this, asked, folder = m_app.platform.folder.installed(),
                    game = m_app.state.GameFolder, entry, archives = m_archives] {
        PreviewPicture picture = loadPreview(folder, game, entry, &archives);
        QMetaObject::invokeMethod(
            &m_receiver,
            [this, asked, picture = std::move(picture)] {
                if (asked == m_asked)
                    showPicture(picture);
            },
            Qt::QueuedConnection);
    });
}

void MapPreview::finish() {
    m_reader.waitForDone();
    QCoreApplication::sendPostedEvents(&m_receiver, QEvent::MetaCall);
}

void MapPreview::showPicture(const PreviewPicture& picture) {
    switch (picture.kind) {
    case PreviewSource::Jpeg:
        showJpeg(picture.image);
        break;
    case PreviewSource::Targa:
        drawTarga(picture.image);
        ui.stkMapPicture->setCurrentWidget(ui.imgMap);
        break;
    case PreviewSource::None:
        showEmpty();
        break;
    }
}

void MapPreview::refresh() {
    if (!m_shown.isNull())
        showPreview(m_shown);
}

void MapPreview::showJpeg(const QImage& picture) {
    ui.imgMap1->setPixmap(QPixmap::fromImage(picture));
    ui.stkMapPicture->setCurrentWidget(ui.imgMap1);
}

void MapPreview::showEmpty() {
    ui.imgMap->setPixmap(QPixmap());
    ui.stkMapPicture->setCurrentWidget(ui.imgMap);
}

void MapPreview::ShowTGA(const QString& path) {
    drawTarga(readTarga(path));
}

void MapPreview::drawTarga(const QImage& picture) {
    const QSize box = ui.imgMap->size().expandedTo(ui.imgMap->minimumSize());
    QPixmap canvas(box);
    canvas.fill(ui.imgMap->palette().color(QPalette::Window));
    if (!picture.isNull()) {
        QPainter painter(&canvas);
        painter.setClipRect(QRect(QPoint(0, 0), box));
        painter.drawImage(QPoint(0, 0), picture);
    }
    ui.imgMap->setPixmap(canvas);
}

void MapPreview::showStartupPicture() {
    m_whenShown->run([this] {
        const QString path =
            m_app.platform.folder.installedFile(QStringLiteral("maps/default.jpg"));
        QFile file(path);
        if (FileExists(path) && file.open(QIODevice::ReadOnly))
            showJpeg(readJpeg(file));
    });
}

} // namespace halvane
