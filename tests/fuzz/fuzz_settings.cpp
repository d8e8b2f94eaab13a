// The settings file holding any bytes, loaded through LoadSettings into the
// real main window: every report is the load's own, and what the window then
// saves loads again without a report and saves the same values.
#include "FuzzSupport.h"

#include "settings/SettingsController.h"
#include "ui/MainWindow.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static test::TestPlatform platform;
    static MainWindow window(*platform.app);
    if (!window.isLoaded()) {
        window.showMainWindow();
        window.hide(); // the status panel then rolls without pausing
    }
    // Every file gets a name of its own: QSettings never serves an older one from its cache.
    static int run = 0;
    const QString file = platform.root() + QStringLiteral("/%1-%2.ini").arg(++run);
    writeFile(file.arg(0), bytesOf(data, size));
    QStringList saved[2];
    for (int round = 0; round < 2; ++round) {
        *platform.ini = QtSettingsStore(file.arg(2 * round));
        platform.messages.clear();
        platform.messages.answers = QList<MsgAnswer>(8, MsgAnswer::Yes);
        window.settings().LoadSettings();
        for (const ShownMessage& shown : platform.messages.shown) {
            FUZZ_CHECK(shown.buttons == MsgButtons::YesNo || // a question of the interlocks
                       (round == 0 && shown.title == "Error" &&
                        shown.text.startsWith("Error setting ") &&
                        shown.text.endsWith("\r\rYou may continue, but please notify Brask of "
                                            "this error.")));
        }
        *platform.ini = QtSettingsStore(file.arg(2 * round + 1));
        platform.store->writes.clear();
        FUZZ_CHECK(window.settings().SaveSettings() && platform.ini->flush());
        saved[round] = platform.store->writes;
        QFile::copy(file.arg(2 * round + 1), file.arg(2 * round + 2));
    }
    FUZZ_CHECK(saved[0] == saved[1]);
    for (int n = 0; n <= 4; ++n)
        QFile::remove(file.arg(n));
    return 0;
}
