// Timings of the map catalogue on its largest size, of the archive search,
// of the Maps tab (bench_window.cpp), of start-up (bench_startup.cpp) and of
// writing a large configuration (bench_config.cpp).
//   halvane_bench                        every timed section
//   halvane_bench maps                   the catalogue timings below
//   halvane_bench search                 the archive search with its real pause
//   halvane_bench window [sizes...]      the Maps tab at 1k, 4k, 16k, 32,766 maps
//   halvane_bench startup [pairs]        start-up against the main form alone
//   halvane_bench config                 WriteConfig against cp -r and old scripts
//   halvane_bench servers                the server window's refresh (bench_servers.cpp)
//   halvane_bench make-archives <dir> [count]   writes <count> test archives
//   halvane_bench list-archives <dir>    prints "archive<TAB>member" lines
#include "BenchSupport.h"

#include "app/AppContext.h"
#include "maps/ArchiveListing.h"
#include "maps/GameFiles.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"
#include "maps/MapsController.h"
#include "platform/QtPlatform.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <ctime>
#include <zip.h>

using namespace halvane;
using namespace halvane::bench;

int benchConfig();                                  // bench_config.cpp
int benchWindow(const QList<int>& sizes, int runs); // bench_window.cpp
int benchStartup(int pairs);                        // bench_startup.cpp
int benchServers();                                 // bench_servers.cpp

namespace {

void report(const char* what, qint64 nanoseconds, int items) {
    std::printf("%-44s %10.2f ms  (%d items, %.2f us each)\n", what, nanoseconds / 1e6, items,
                items ? nanoseconds / 1e3 / items : 0.0);
    std::fflush(stdout);
}

void writeCatalogue(const QString& path, int records) {
    QByteArray bytes;
    bytes.reserve(records * MapRecord::Size);
    for (int i = 0; i < records; ++i) {
        const QString name = QStringLiteral("map%1").arg(i, 5, 10, QLatin1Char('0'));
        const MapRecord record =
            makeMapRecord(QStringLiteral("Map number %1").arg(i), name, MapRules::builtIn());
        bytes.append(record.bytes(), MapRecord::Size);
    }
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

bool makeArchives(const QString& folder, int count) {
    QDir().mkpath(folder);
    for (int a = 0; a < count; ++a) {
        QStringList members{QStringLiteral("maps/"), QStringLiteral("maps/bench%1.bsp").arg(a),
                            QStringLiteral("levelshots/bench%1.jpg").arg(a),
                            QStringLiteral("maps/BENCH%1.BSP").arg(a)};
        for (int t = 0; t < 30; ++t)
            members.append(QStringLiteral("textures/bench%1/wall%2.tga").arg(a).arg(t));
        if (!writeArchive(
                QStringLiteral("%1/custom%2.pk3").arg(folder).arg(a, 4, 10, QLatin1Char('0')),
                members))
            return false;
    }
    return true;
}

QStringList archivesOf(const QString& folder) {
    return archiveNames(folder);
}

int listArchives(const QString& folder) {
    for (const QString& name : archivesOf(folder)) {
        const QString path = QDir(folder).filePath(name);
        const bool ok = listArchive(path, [&](const QByteArray& member) {
            std::printf("%s\t%s\n", qPrintable(name), member.constData());
        });
        if (!ok)
            std::fprintf(stderr, "cannot list %s\n", qPrintable(path));
    }
    return 0;
}

int benchMaps() {
    QElapsedTimer clock;
    {
        BenchPlatform platform;
        writeCatalogue(platform.program() + QStringLiteral("/maps.dat"), MapCatalogue::MaxRecords);
        MainWindow window(*platform.app);
        MapsController& maps = window.maps();

        clock.start();
        maps.LoadMaps();
        report("LoadMaps, 32766 records", clock.nsecsElapsed(), MapCatalogue::MaxRecords);

        clock.start();
        const MapSnapshot snapshot = maps.catalogue().snapshot();
        int found = 0;
        for (int n = 1; n <= snapshot.count(); ++n)
            found += snapshot.find(snapshot.record(n).get(MapField::FileName).toUpper()) == n;
        report("FindMap of every record (one snapshot)", clock.nsecsElapsed(), found);
        if (found != MapCatalogue::MaxRecords)
            std::printf("  warning: %d of %d found at their own number\n", found,
                        MapCatalogue::MaxRecords);

        clock.start();
        const qint16 last = maps.catalogue().FindMap(QStringLiteral("map32765"));
        report("one FindMap of the last record (own read)", clock.nsecsElapsed(), last > 0);
    }
    {
        BenchPlatform platform;
        const int known = MapCatalogue::MaxRecords - 2000;
        writeCatalogue(platform.program() + QStringLiteral("/maps.dat"), known);
        for (int i = 0; i < 2000; ++i) {
            QFile file(platform.game() + QStringLiteral("/baseq3/maps/loose%1.bsp").arg(i));
            file.open(QIODevice::WriteOnly);
        }
        MapCatalogue catalogue(platform.program());
        MapDiscovery discovery(catalogue, *platform.app, nullptr);
        clock.start();
        discovery.GetMapsFromBaseDir();
        report("discovery of 2000 new loose maps", clock.nsecsElapsed(),
               catalogue.CountMaps() - known);
    }
    {
        BenchPlatform platform;
        const QString baseq3 = platform.game() + QStringLiteral("/baseq3");
        makeArchives(baseq3, 500);
        const QStringList archives = archivesOf(baseq3);
        clock.start();
        int members = 0;
        for (const QString& name : archives)
            listArchive(QDir(baseq3).filePath(name), [&](const QByteArray&) { ++members; });
        report("listing 500 archives (central directory)", clock.nsecsElapsed(), members);

        writeCatalogue(platform.program() + QStringLiteral("/maps.dat"), 30000);
        MapCatalogue catalogue(platform.program());
        MapDiscovery discovery(catalogue, *platform.app, nullptr);
        discovery.setPacing({0, 0});
        clock.start();
        discovery.searchArchives();
        report("archive search of 500 archives, no pauses", clock.nsecsElapsed(),
               catalogue.CountMaps() - 30000);
    }
    return 0;
}

// One archive search with the real pause between status lines: wall and
// processor time, and the maps it added. Cancel is pressed after cancelAfterMs
// when that is not negative.
struct SearchRun {
    double wallMs = 0;
    double cpuMs = 0;
    int added = 0;
};

SearchRun timedSearch(BenchPlatform& platform, int cancelAfterMs = -1) {
    writeCatalogue(platform.program() + QStringLiteral("/maps.dat"), 10);
    MapCatalogue catalogue(platform.program());
    MapDiscovery discovery(catalogue, *platform.app, nullptr);
    if (cancelAfterMs >= 0) {
        QTimer::singleShot(cancelAfterMs, &discovery.searchWindow(), [&discovery] {
            discovery.searchWindow().findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
        });
    }
    QElapsedTimer clock;
    clock.start();
    const std::clock_t cpu = std::clock();
    discovery.searchArchives();
    SearchRun run;
    run.wallMs = clock.nsecsElapsed() / 1e6;
    run.cpuMs = double(std::clock() - cpu) * 1000.0 / CLOCKS_PER_SEC;
    run.added = catalogue.CountMaps() - 10;
    return run;
}

int benchSearch(int runs) {
    const QString freeGame = QStringLiteral("/usr/share/games/openarena/baseoa");
    const QStringList archives = archiveNames(freeGame);
    if (archives.isEmpty()) {
        std::printf("\n(no archives in %s: the free game's search is left out)\n",
                    qPrintable(freeGame));
    } else {
        BenchPlatform platform;
        const QString baseq3 = platform.game() + QStringLiteral("/baseq3");
        for (const QString& name : archives)
            QFile::link(freeGame + QLatin1Char('/') + name, baseq3 + QLatin1Char('/') + name);
        std::vector<double> wall, cpu, unzip, listing;
        int added = 0;
        for (int run = 0; run < runs; ++run) {
            QElapsedTimer listed;
            listed.start();
            GameFiles::list(platform.game());
            listing.push_back(listed.nsecsElapsed() / 1e6);
            const SearchRun search = timedSearch(platform);
            wall.push_back(search.wallMs);
            cpu.push_back(search.cpuMs);
            added = search.added;
            QProcess lister;
            lister.setStandardOutputFile(QProcess::nullDevice());
            QElapsedTimer clock;
            clock.start();
            // unzip matches the archive name's wildcard itself: one process.
            lister.start(QStringLiteral("unzip"),
                         {QStringLiteral("-l"), baseq3 + QStringLiteral("/*.pk3")});
            if (!lister.waitForFinished(60000) || lister.exitCode() != 0) {
                std::fprintf(stderr, "unzip -l failed\n");
                return 1;
            }
            unzip.push_back(clock.nsecsElapsed() / 1e6);
        }
        std::printf("\nArchive search of the free game's %d archives besides pak0.pk3 (%d maps "
                    "added), real pause, %d runs, each before an unzip -l of them all:\n",
                    int(archives.size() - archives.count(QStringLiteral("pak0.pk3"))), added, runs);
        std::printf("  search: median %.0f ms wall, %.0f ms processor; unzip -l: median %.0f ms; "
                    "search / unzip -l: %.1fx\n",
                    median(wall), median(cpu), median(unzip), medianRatio(wall, unzip));
        std::printf("  the game's files listed for the map marks and level shots: median %.0f ms\n",
                    median(listing));
    }
    {
        BenchPlatform platform;
        constexpr int Maps = 3000;
        QStringList members;
        for (int m = 0; m < Maps; ++m)
            members.append(QStringLiteral("maps/big%1.bsp").arg(m, 4, 10, QLatin1Char('0')));
        if (!writeArchive(platform.game() + QStringLiteral("/baseq3/big.pk3"), members)) {
            std::fprintf(stderr, "cannot write the archive of %d maps\n", Maps);
            return 1;
        }
        const SearchRun whole = timedSearch(platform);
        std::printf("  one archive of %d maps, whole search: %.0f ms wall, %.0f ms processor, "
                    "%d maps added\n",
                    Maps, whole.wallMs, whole.cpuMs, whole.added);
        const SearchRun cancelled = timedSearch(platform, 300);
        std::printf("  the same, Cancel pressed after 300 ms: ended after %.0f ms, %d maps added\n",
                    cancelled.wallMs, cancelled.added);
    }
    std::fflush(stdout);
    return 0;
}

} // namespace

int main(int argc, char* argv[]) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QString command = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (command.isEmpty()) {
        const QList<int> sizes{1000, 4000, 16000, MapCatalogue::MaxRecords};
        int failed = 0;
        for (int result : {benchMaps(), benchSearch(5), benchWindow(sizes, 3), benchStartup(11),
                           benchConfig(), benchServers()})
            failed = failed != 0 ? failed : result;
        return failed;
    }
    if (command == QLatin1String("maps"))
        return benchMaps();
    if (command == QLatin1String("config"))
        return benchConfig();
    if (command == QLatin1String("servers"))
        return benchServers();
    if (command == QLatin1String("search"))
        return benchSearch(5);
    if (command == QLatin1String("startup"))
        return benchStartup(argc > 2 ? atoi(argv[2]) : 11);
    if (command == QLatin1String("window")) {
        QList<int> sizes;
        for (int i = 2; i < argc; ++i)
            sizes.append(atoi(argv[i]));
        if (sizes.isEmpty())
            sizes = {1000, 4000, 16000, MapCatalogue::MaxRecords};
        return benchWindow(sizes, 3);
    }
    if (command == QLatin1String("make-archives") && argc > 2)
        return makeArchives(QString::fromLocal8Bit(argv[2]), argc > 3 ? atoi(argv[3]) : 500) ? 0
                                                                                             : 1;
    if (command == QLatin1String("list-archives") && argc > 2)
        return listArchives(QString::fromLocal8Bit(argv[2]));
    std::fprintf(stderr,
                 "usage: %s [maps | search | window [sizes...] | startup [pairs] | config |\n"
                 "          servers | make-archives <dir> [count] | list-archives <dir>]\n",
                 argv[0]);
    return 2;
}
