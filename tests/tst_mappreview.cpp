// The map picture: which file is shown for a map, and how Targa pictures are
// drawn into the box.
#include "TestSupport.h"

#include "maps/GameFileListing.h"
#include "maps/MapPreview.h"
#include "maps/MapsController.h"
#include "ui_frmMain.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
QRgb tgaColour(int x, int y) {
    return qRgb(x % 256, y % 256, 77);
}

// An uncompressed 24-bit Targa picture, first row at the top.
QByteArray targa(int width, int height) {
    QByteArray bytes(18, '\0');
    bytes[2] = 2;
    bytes[12] = char(width & 0xFF);
    bytes[13] = char(width >> 8);
    bytes[14] = char(height & 0xFF);
    bytes[16] = 24;
    bytes[17] = 0x20;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            bytes.append(char(77)).append(char(y % 256)).append(char(x % 256));
    }
    return bytes;
}
} // namespace

class MapPreviewTest : public QObject {
    Q_OBJECT
private slots:
    void pictureChoice_data();
    void pictureChoice();
    void picturesInTheWindow();
};

void MapPreviewTest::pictureChoice_data() {
    // "p:" program folder, "g:" game folder; "archive|member" a member of an archive.
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("chosen");
    QTest::newRow("thumbnail jpeg first")
        << QStringList{"p:Maps/q3dm1.tga", "p:Maps/q3dm1.jpg", "g:baseq3/levelshots/q3dm1.jpg"}
        << int(PreviewSource::Jpeg) << "p:Maps/q3dm1.jpg";
    QTest::newRow("level shot in other letter case")
        << QStringList{"g:baseq3/LevelShots/Q3DM1.TGA", "p:Maps/DEFAULT.jpg"}
        << int(PreviewSource::Targa) << "g:baseq3/LevelShots/Q3DM1.TGA";
    QTest::newRow("default picture in maps beside Maps")
        << QStringList{"p:maps/DEFAULT.jpg", "p:Maps/other.jpg"} << int(PreviewSource::Jpeg)
        << "p:maps/DEFAULT.jpg";
    QTest::newRow("nothing") << QStringList{"p:Maps/other.jpg"} << int(PreviewSource::None) << "";
    // The game finds archive members whatever the letter case.
    QTest::newRow("archived jpeg before the default picture")
        << QStringList{"g:baseq3/pak0.pk3|LevelShots/Q3DM1.JPG", "p:Maps/DEFAULT.jpg"}
        << int(PreviewSource::Jpeg) << "g:baseq3/pak0.pk3|LevelShots/Q3DM1.JPG";
    QTest::newRow("archived targa")
        << QStringList{"g:baseoa/pak0.pk3|levelshots/q3dm1.tga"} << int(PreviewSource::Targa)
        << "g:baseoa/pak0.pk3|levelshots/q3dm1.tga";
    QTest::newRow("loose level shot before the archives")
        << QStringList{"g:baseq3/levelshots/q3dm1.tga", "g:baseq3/pak0.pk3|levelshots/q3dm1.jpg"}
        << int(PreviewSource::Targa) << "g:baseq3/levelshots/q3dm1.tga";
    // Letters compare as capitals, so "_" sorts after them; baseq3 before baseoa.
    QTest::newRow("the archive the game searches first")
        << QStringList{"g:baseq3/pak_x.pk3|levelshots/q3dm1.jpg",
                       "g:baseq3/PAKZ.pk3|levelshots/q3dm1.jpg",
                       "g:baseq3/paka.pk3|levelshots/q3dm1.jpg",
                       "g:baseoa/zz.pk3|levelshots/q3dm1.jpg"}
        << int(PreviewSource::Jpeg) << "g:baseq3/pak_x.pk3|levelshots/q3dm1.jpg";
}

void MapPreviewTest::pictureChoice() {
    QFETCH(QStringList, files);
    QFETCH(int, kind);
    QFETCH(QString, chosen);
    TestPlatform platform;
    platform.makeGameFolder();
    auto place = [&](const QString& file) {
        return (file.startsWith("p:") ? platform.programFolder() : platform.gameFolder()) + '/' +
               file.mid(2);
    };
    for (const QString& file : files) {
        if (file.contains('|'))
            QVERIFY(makeArchive(place(file.section('|', 0, 0)), {file.section('|', 1)}));
        else
            platform.writeFile(place(file), "picture");
    }
    const GameFiles listed = GameFiles::list(platform.gameFolder());
    const PreviewSource source =
        findPreview(platform.programFolder(), platform.gameFolder(), " q3dm1 ", &listed);
    QCOMPARE(int(source.kind), kind);
    QCOMPARE(source.path, chosen.isEmpty() ? QString() : place(chosen.section('|', 0, 0)));
    QCOMPARE(QString(source.member), chosen.section('|', 1));
    QCOMPARE(source.content, QByteArray(chosen.contains('|') ? "IBSP" : ""));
}

void MapPreviewTest::picturesInTheWindow() {
    WindowFixture w([](TestPlatform& p) {
        p.writeFile(p.gameFolder() + "/baseq3/levelshots/big.tga", targa(300, 200));
        p.writeFile(p.programFolder() + "/Maps/small.tga", targa(40, 30));
        p.writeFile(p.programFolder() + "/Maps/bad.tga", QByteArray(50, 'x'));
        QDir().mkpath(p.programFolder() + "/maps"); // beside Maps, which holds the picture
        QVERIFY(QFile::copy(HALVANE_BIN_DIR "/maps/default.jpg",
                            p.programFolder() + "/Maps/default.jpg"));
        QVERIFY(makeArchive(p.gameFolder() + "/baseoa/pak0.pk3",
                            {"levelshots/x.jpg", "LEVELSHOTS/Y.TGA"},
                            {{"levelshots/x.jpg", readAll(HALVANE_BIN_DIR "/maps/default.jpg")},
                             {"LEVELSHOTS/Y.TGA", targa(40, 30)}}));
    });
    MainWindow& window = *w.window;
    Ui::frmMain& ui = w.ui();
    // The delivered default picture is shown at start-up.
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap1);
    QVERIFY(!ui.imgMap1->pixmap().isNull());

    // A large picture is cut at the box, not scaled.
    window.maps().preview().showPreview("big");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    QImage shown = ui.imgMap->pixmap().toImage();
    QCOMPARE(shown.size(), ui.imgMap->size());
    const QPoint corner(shown.width() - 1, shown.height() - 1);
    QCOMPARE(shown.pixel(corner) & 0xFFFFFF, tgaColour(corner.x(), corner.y()) & 0xFFFFFF);

    // A map without a picture empties the box; a damaged Targa reads as none.
    QFile::remove(w.platform.programFolder() + "/Maps/default.jpg");
    window.maps().preview().showPreview("none");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    QVERIFY(ui.imgMap->pixmap().isNull());
    // Level shots in the free game's archives, listed once the window showed.
    window.maps().gameFiles().finish();
    window.maps().preview().showPreview("x");
    QCOMPARE(ui.imgMap1->pixmap().size(), QSize(160, 120));
    window.maps().preview().showPreview("y");
    QCOMPARE(ui.imgMap->pixmap().toImage().pixel(39, 29) & 0xFFFFFF, tgaColour(39, 29) & 0xFFFFFF);
    QVERIFY(readTarga(w.platform.programFolder() + "/Maps/bad.tga").isNull());
}

QTEST_MAIN(MapPreviewTest)
#include "tst_mappreview.moc"
