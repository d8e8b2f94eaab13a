// The map picture: which file is shown for a map, and how Targa pictures are
// drawn into the box.
#include "TestSupport.h"

#include "maps/MapPreview.h"
#include "maps/MapsController.h"
#include "ui/MainWindow.h"
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
    bytes[15] = char(height >> 8);
    bytes[16] = 24;
    bytes[17] = 0x20;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QRgb c = tgaColour(x, y);
            bytes.append(char(qBlue(c))).append(char(qGreen(c))).append(char(qRed(c)));
        }
    }
    return bytes;
}

QByteArray jpeg(QColor colour) {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG");
    return bytes;
}
} // namespace

class MapPreviewTest : public QObject {
    Q_OBJECT
private slots:
    void pictureChoice_data();
    void pictureChoice();
    void largeTargaIsCutNotScaled();
    void smallTargaFillsTheTopLeft();
    void jpegAndNoPictureInTheWindow();
    void targaWithAndWithoutFooter();
    void defaultPictureAtStartup();
};

void MapPreviewTest::pictureChoice_data() {
    QTest::addColumn<QStringList>("files"); // "p:" program folder, "g:" game folder
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("chosen");
    QTest::newRow("thumbnail beats level shot")
        << QStringList{"p:Maps/q3dm1.jpg", "g:baseq3/levelshots/q3dm1.jpg"}
        << int(PreviewSource::Jpeg) << "p:Maps/q3dm1.jpg";
    QTest::newRow("thumbnail jpeg beats thumbnail targa")
        << QStringList{"p:Maps/q3dm1.tga", "p:Maps/q3dm1.jpg"} << int(PreviewSource::Jpeg)
        << "p:Maps/q3dm1.jpg";
    QTest::newRow("thumbnail targa beats level shot")
        << QStringList{"p:Maps/q3dm1.tga", "g:baseq3/levelshots/q3dm1.jpg"}
        << int(PreviewSource::Targa) << "p:Maps/q3dm1.tga";
    QTest::newRow("level shot jpeg")
        << QStringList{"g:baseq3/levelshots/q3dm1.jpg", "g:baseq3/levelshots/q3dm1.tga"}
        << int(PreviewSource::Jpeg) << "g:baseq3/levelshots/q3dm1.jpg";
    QTest::newRow("level shot targa in other letter case")
        << QStringList{"g:baseq3/LevelShots/Q3DM1.TGA", "p:Maps/DEFAULT.jpg"}
        << int(PreviewSource::Targa) << "g:baseq3/LevelShots/Q3DM1.TGA";
    QTest::newRow("default picture") << QStringList{"p:Maps/DEFAULT.jpg", "p:Maps/other.jpg"}
                                     << int(PreviewSource::Jpeg) << "p:Maps/DEFAULT.jpg";
    QTest::newRow("default picture in small letters")
        << QStringList{"p:maps/default.jpg"} << int(PreviewSource::Jpeg) << "p:maps/default.jpg";
    QTest::newRow("nothing") << QStringList{"p:Maps/other.jpg"} << int(PreviewSource::None) << "";
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
    for (const QString& file : files)
        platform.writeFile(place(file), "picture");
    const PreviewSource source =
        findPreview(platform.programFolder(), platform.gameFolder(), QStringLiteral(" q3dm1 "));
    QCOMPARE(int(source.kind), kind);
    QCOMPARE(source.path, chosen.isEmpty() ? QString() : place(chosen));
}

void MapPreviewTest::largeTargaIsCutNotScaled() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(platform.gameFolder() + "/baseq3/levelshots/big.tga", targa(300, 200));
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    window.maps().preview().showPreview("big");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    const QImage shown = ui.imgMap->pixmap().toImage();
    QCOMPARE(shown.size(), ui.imgMap->size());
    for (const QPoint& at :
         {QPoint(0, 0), QPoint(17, 5), QPoint(shown.width() - 1, shown.height() - 1)})
        QCOMPARE(shown.pixel(at) & 0xFFFFFF, tgaColour(at.x(), at.y()) & 0xFFFFFF);
}

void MapPreviewTest::smallTargaFillsTheTopLeft() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(platform.programFolder() + "/Maps/small.tga", targa(40, 30));
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    window.maps().preview().showPreview("small");
    const QImage shown = ui.imgMap->pixmap().toImage();
    QCOMPARE(shown.pixel(39, 29) & 0xFFFFFF, tgaColour(39, 29) & 0xFFFFFF);
    QCOMPARE(shown.pixel(100, 80), shown.pixel(40, 0)); // the rest is plain background
    QVERIFY((shown.pixel(100, 80) & 0xFFFFFF) != (tgaColour(100, 80) & 0xFFFFFF));
    // Showing pictures many times leaves one pixmap of the box's size.
    for (int i = 0; i < 200; ++i)
        window.maps().preview().showPreview("small");
    QCOMPARE(ui.imgMap->pixmap().size(), ui.imgMap->size());
}

void MapPreviewTest::jpegAndNoPictureInTheWindow() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(platform.gameFolder() + "/baseq3/levelshots/shot.jpg", jpeg(Qt::red));
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    window.maps().preview().showPreview("shot");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap1);
    QCOMPARE(ui.imgMap1->pixmap().size(), QSize(40, 30));
    QVERIFY(qRed(ui.imgMap1->pixmap().toImage().pixel(20, 15)) > 200);
    window.maps().preview().showPreview("none");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    QVERIFY(ui.imgMap->pixmap().isNull());
}

void MapPreviewTest::targaWithAndWithoutFooter() {
    TestPlatform platform;
    const QByteArray footer = QByteArray(8, '\0') + QByteArray("TRUEVISION-XFILE.\0", 18);
    const QString plain = platform.writeFile(platform.root() + "/plain.tga", targa(5, 4));
    const QString versioned = platform.writeFile(platform.root() + "/v2.tga", targa(5, 4) + footer);
    const QString garbage = platform.writeFile(platform.root() + "/bad.tga", QByteArray(50, 'x'));
    QCOMPARE(readTarga(plain).size(), QSize(5, 4));
    QCOMPARE(readTarga(versioned).pixel(4, 3) & 0xFFFFFF, tgaColour(4, 3) & 0xFFFFFF);
    QVERIFY(readTarga(garbage).isNull());
    QVERIFY(readTarga(platform.root() + "/missing.tga").isNull());
}

void MapPreviewTest::defaultPictureAtStartup() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.writeFile(platform.programFolder() + "/maps/default.jpg", jpeg(Qt::blue));
    MainWindow window(*platform.app);
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap1);
    QCOMPARE(ui.imgMap1->pixmap().size(), QSize(40, 30));
    // The delivered default picture is a real JPEG.
    QImage delivered(QStringLiteral(HALVANE_BIN_DIR "/maps/default.jpg"));
    QVERIFY(!delivered.isNull());
}

QTEST_MAIN(MapPreviewTest)
#include "tst_mappreview.moc"
