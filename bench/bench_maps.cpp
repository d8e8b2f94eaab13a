// Timings of the map catalogue on its largest size, of the archive search and
// of writing a large configuration (bench_config.cpp).
//   halvane_bench                        every timed section
//   halvane_bench maps                   the map timings below
//   halvane_bench config                 WriteConfig against cp -r
//   halvane_bench make-archives <dir> [count]   writes <count> test archives
//   halvane_bench list-archives <dir>    prints "archive<TAB>member" lines
#include "BenchSupport.h"

#include "app/AppContext.h"
#include "maps/ArchiveListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"
#include "maps/MapsController.h"
#include "platform/FakePlatform.h"
#include "platform/QtPlatform.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <zip.h>

using namespace halvane;
using namespace halvane::bench;

int benchConfig();                                  // bench_config.cpp
int benchWindow(const QList<int>& sizes, int runs); // bench_window.cpp

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
    static const char content[] = "IBSP and some bytes of map data";
    for (int a = 0; a < count; ++a) {
        const QString path =
            QStringLiteral("%1/custom%2.pk3").arg(folder).arg(a, 4, 10, QLatin1Char('0'));
        int error = 0;
        zip_t* archive =
            zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
        if (!archive)
            return false;
        QStringList members{QStringLiteral("maps/"), QStringLiteral("maps/bench%1.bsp").arg(a),
                            QStringLiteral("levelshots/bench%1.jpg").arg(a),
                            QStringLiteral("maps/BENCH%1.BSP").arg(a)};
        for (int t = 0; t < 30; ++t)
            members.append(QStringLiteral("textures/bench%1/wall%2.tga").arg(a).arg(t));
        for (const QString& member : members) {
            zip_source_t* source = zip_source_buffer(archive, content, sizeof content, 0);
            zip_file_add(archive, member.toLatin1().constData(), source, 0);
        }
        if (zip_close(archive) != 0)
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
        discovery.pause = [] {};
        clock.start();
        discovery.searchArchives();
        report("archive search of 500 archives, no pauses", clock.nsecsElapsed(),
               catalogue.CountMaps() - 30000);
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[]) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QString command = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (command.isEmpty()) {
        const int maps = benchMaps();
        const int config = benchConfig();
        return maps != 0 ? maps : config;
    }
    if (command == QLatin1String("maps"))
        return benchMaps();
    if (command == QLatin1String("config"))
        return benchConfig();
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
                 "usage: %s [maps | config | make-archives <dir> [count] | list-archives <dir>]\n",
                 argv[0]);
    return 2;
}
