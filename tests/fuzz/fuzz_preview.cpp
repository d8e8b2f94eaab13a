// A map picture holding any bytes, as a JPEG thumbnail or (odd first byte) a
// Targa one: the preview shows it in the box of its kind, a Targa picture at
// the size its header gives, drawn unscaled from the box's top-left corner.
#include "FuzzSupport.h"

#include "maps/MapPreview.h"
#include "maps/MapsController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static test::TestPlatform platform;
    static MainWindow window(*platform.app);
    static const bool folder = QDir().mkpath(platform.programFolder() + "/Maps");
    // Pictures are read once the Maps tab can be seen.
    static const bool visible = [] {
        window.show();
        window.form().SSTab1->setCurrentIndex(2);
        return window.form().stkMapPicture->isVisible();
    }();
    const bool targa = size > 0 && (data[0] & 1);
    const QString path = platform.programFolder() + "/Maps/fz" + (targa ? ".tga" : ".jpg");
    QFile::remove(platform.programFolder() + "/Maps/fz" + (targa ? ".jpg" : ".tga"));
    const QByteArray bytes = bytesOf(data, size).mid(1);
    writeFile(path, bytes);

    Ui::frmMain& ui = window.form();
    window.maps().preview().showPreview("fz");
    window.maps().preview().finish();
    FUZZ_CHECK(folder && visible &&
               ui.stkMapPicture->currentWidget() == (targa ? ui.imgMap : ui.imgMap1));
    const QImage picture = targa ? readTarga(path) : QImage();
    if (picture.isNull())
        return 0;
    const auto word = [&](int at) { return uchar(bytes[at]) | uchar(bytes[at + 1]) << 8; };
    FUZZ_CHECK(bytes.size() >= 18 && picture.size() == QSize(word(12), word(14)));
    const QImage shown = ui.imgMap->pixmap().toImage();
    FUZZ_CHECK(shown.size() == ui.imgMap->size().expandedTo(ui.imgMap->minimumSize()));
    FUZZ_CHECK(picture.hasAlphaChannel() || shown.pixel(0, 0) == picture.pixel(0, 0));
    return 0;
}
