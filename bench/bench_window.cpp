// The Maps tab of the real main window, offscreen, at growing catalogue
// sizes: every button between the two lists, the first switch to the tab and
// the choice of an entry, each with the layout and paint it causes. One row
// per operation, one column per size, so growth shows at a glance. A section
// of halvane_bench (bench_maps.cpp owns main).
#include "BenchSupport.h"

#include "maps/GameFileListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapsController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QListWidget>
#include <cstdio>
#include <functional>
#include <map>

using namespace halvane;
using namespace halvane::bench;

namespace {

// A third each of deathmatch, CTF and tourney maps, so that each type
// button adds a third of the catalogue.
QString mapName(int i) {
    static const char* const kinds[] = {"dm", "ctf", "tourney"};
    return QStringLiteral("%1%2").arg(QLatin1String(kinds[i % 3])).arg(i, 5, 10, QLatin1Char('0'));
}

bool writeMixedCatalogue(const QString& path, int records) {
    QByteArray bytes;
    bytes.reserve(qsizetype(records) * MapRecord::Size);
    for (int i = 0; i < records; ++i) {
        const QString name = mapName(i);
        bytes.append(makeMapRecord(name, name, MapRules::builtIn()).bytes(), MapRecord::Size);
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

const char* const Operations[] = {
    "list the game's files (half the maps)",
    "first switch to the Maps tab",
    "Select All + \">>\" of every map",
    "choose an available map",
    "choose a selected map",
    "\">>\" of one map into the middle",
    "\"Up\"",
    "\"Down\"",
    "\"<<\"",
    "\"Randomize Map Order\"",
    "\"DM\"",
    "\"CTF\"",
    "\"Tourney\"",
    "\"Clear\"",
    "floor: every name into a plain list",
};

using Timings = std::map<std::string, std::vector<double>>;

double timed(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    settle();
    return clock.nsecsElapsed() / 1e6;
}

// One window from start-up to "Clear"; adds each operation's time.
bool runOnce(int size, Timings& timings) {
    BenchPlatform platform;
    if (!writeMixedCatalogue(platform.program() + QStringLiteral("/maps.dat"), size))
        return false;
    QFile::copy(QCoreApplication::applicationDirPath() + QStringLiteral("/botlist.txt"),
                platform.program() + QStringLiteral("/botlist.txt"));
    // Every other map in an archive of the game, the others nowhere: the
    // lists paint both kinds of entries.
    QStringList archived;
    for (int i = 0; i < size; i += 2)
        archived.append(QStringLiteral("maps/%1.bsp").arg(mapName(i)));
    if (!writeArchive(platform.game() + QStringLiteral("/baseq3/maps.pk3"), archived))
        return false;
    MainWindow window(*platform.app);
    window.resize(720, 430);
    window.showMainWindow();
    settle();
    Ui::frmMain& ui = window.form();
    auto time = [&](const char* what, const std::function<void()>& work) {
        timings[what].push_back(timed(work));
    };
    const int middle = size / 2;

    // The listing made when the window showed, made again while timed.
    time(Operations[0], [&] {
        window.maps().listGameFiles();
        window.maps().gameFiles().finish();
    });
    const GameFiles& listed = window.maps().gameFiles().files();
    if (!listed.isMissing(mapName(1)) || listed.isMissing(mapName(size - 2)))
        std::printf("  warning: the maps the game lacks are not the ones expected\n");
    time(Operations[1], [&] { ui.SSTab1->setCurrentIndex(2); });
    time(Operations[2], [&] {
        ui.cmdMapSelectAll->click();
        ui.cmdAddSelMap->click();
    });
    const int selected = ui.SelMap->model()->rowCount();
    if (selected != size)
        std::printf("  warning: %d of %d maps selected\n", selected, size);
    const auto choose = [](QListView* list, int row) {
        list->setCurrentIndex(list->model()->index(row, 0));
    };
    time(Operations[3], [&] { choose(ui.MapList, middle); });
    time(Operations[4], [&] { choose(ui.SelMap, middle); });
    time(Operations[5], [&] { ui.cmdAddSelMap->click(); });
    time(Operations[6], [&] { ui.cmdMapUp->click(); });
    time(Operations[7], [&] { ui.cmdMapDown->click(); });
    time(Operations[8], [&] { ui.cmdRemSelMap->click(); });
    time(Operations[9], [&] { ui.cmdRandomize->click(); });
    time(Operations[10], [&] { ui.cmdMapDm->click(); });
    time(Operations[11], [&] { ui.cmdMapCtf->click(); });
    time(Operations[12], [&] { ui.cmdMapTourney->click(); });
    time(Operations[13], [&] { ui.cmdMapClearAll->click(); });
    if (ui.SelMap->model()->rowCount() != 0)
        std::printf("  warning: the selection was not cleared\n");
    for (const ShownMessage& shown : std::as_const(platform.messages.shown))
        std::printf("  warning: message \"%s\": %s\n", qPrintable(shown.title),
                    qPrintable(shown.text));

    // The floor: the same names into a plain list in one call, shown in a
    // window of the same size.
    QStringList names;
    for (int i = 0; i < ui.MapList->model()->rowCount(); ++i)
        names.append(ui.MapList->model()->index(i, 0).data().toString());
    QListWidget plain;
    plain.setUniformItemSizes(true);
    plain.resize(ui.SelMap->size());
    plain.show();
    settle();
    time(Operations[14], [&] { plain.addItems(names); });
    return true;
}

} // namespace

int benchWindow(const QList<int>& sizes, int runs) {
    std::vector<Timings> bySize;
    for (int size : sizes) {
        Timings timings;
        for (int run = 0; run < runs; ++run) {
            if (!runOnce(size, timings)) {
                std::fprintf(stderr, "cannot build a catalogue of %d maps\n", size);
                return 1;
            }
        }
        bySize.push_back(timings);
    }
    std::printf("\nMaps tab of the main window, offscreen, median of %d windows (ms):\n", runs);
    std::printf("%-38s", "operation \\ maps");
    for (int size : sizes)
        std::printf(" %9d", size);
    std::printf("\n");
    for (const char* operation : Operations) {
        std::printf("%-38s", operation);
        for (const Timings& timings : bySize)
            std::printf(" %9.1f", median(timings.at(operation)));
        std::printf("\n");
    }
    std::printf("%-38s", "Select All + \">>\", us per map");
    for (size_t i = 0; i < bySize.size(); ++i)
        std::printf(" %9.2f", median(bySize[i].at(Operations[2])) * 1000 / sizes[int(i)]);
    std::printf("\n");
    std::fflush(stdout);
    return 0;
}
