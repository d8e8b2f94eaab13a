// Writing a large configuration: 1,000 selected maps with random bots from a
// full 32,766-record catalogue, against copying the files it produces with
// cp -r, and the same write into script folders that still hold 32,766 old
// rotation and bot scripts each. The three are timed in turn, run after run,
// and compared by the median of each run's ratio. A section of halvane_bench
// (bench_maps.cpp owns main); never run by the tests.
#include "BenchSupport.h"

#include "app/AppContext.h"
#include "bots/BotScripts.h"
#include "bots/RandomSource.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace halvane;
using namespace halvane::bench;

namespace {

bool writeOldScripts(const QString& baseq3) {
    for (const char* kind : {"srvmaps/mapset", "srvbots/botset"}) {
        const QString prefix = baseq3 + QLatin1Char('/') + QLatin1String(kind);
        QDir().mkpath(QFileInfo(prefix).path());
        for (int n = 0; n < MapCatalogue::MaxRecords; ++n) {
            QFile file(prefix + QString::number(n) + QStringLiteral(".cfg"));
            if (!file.open(QIODevice::WriteOnly) || file.write("// old script\r\n") < 0)
                return false;
        }
    }
    return true;
}

} // namespace

int benchConfig() {
    constexpr int Records = MapCatalogue::MaxRecords;
    constexpr int Selected = 1000;
    constexpr int Runs = 7;

    QTemporaryDir dir;
    const QString program = dir.filePath(QStringLiteral("program"));
    const QString game = dir.filePath(QStringLiteral("game"));
    const QString oldGame = dir.filePath(QStringLiteral("oldgame"));
    QDir().mkpath(program);
    QDir().mkpath(game + QStringLiteral("/baseq3"));
    QDir().mkpath(oldGame + QStringLiteral("/baseq3"));
    if (!writeOldScripts(oldGame + QStringLiteral("/baseq3"))) {
        std::fprintf(stderr, "cannot write the old scripts\n");
        return 1;
    }

    MapCatalogue catalogue(program);
    std::vector<MapRecord> records;
    records.reserve(Records);
    for (int i = 0; i < Records; ++i) {
        const QString name = QStringLiteral("map%1").arg(i, 5, 10, QLatin1Char('0'));
        records.push_back(
            makeMapRecord(name, name,
                          {QStringLiteral("20"), QStringLiteral("15"), QStringLiteral("8"),
                           QStringLiteral("800"), QStringLiteral("320"), QStringLiteral("1000")}));
    }
    if (!catalogue.append(records)) {
        std::fprintf(stderr, "cannot build the catalogue\n");
        return 1;
    }

    ServerSettings s;
    s.versionCaption = QStringLiteral("Version 2.07");
    s.takenAt = QDateTime::currentDateTime();
    s.maxPlayers = QStringLiteral("16");
    s.serverName = QStringLiteral("Bench");
    s.botType = 1;
    s.autoSelectBots = true;
    s.randomBots = QStringLiteral("6");
    for (int i = 0; i < 32; ++i)
        s.bots.push_back({QStringLiteral("Bot%1").arg(i), false, 0, 1});
    // Spread over the whole file, in an order unlike the file's.
    for (int i = 0; i < Selected; ++i) {
        const int record = int((qint64(i) * 7919) % Records);
        s.selectedMaps.append(QStringLiteral("MAP%1").arg(record, 5, 10, QLatin1Char('0')));
    }

    FakeMessageBoxes messages;
    TimeSeededRandom random;
    struct Target {
        AppState state;
        std::unique_ptr<BotScriptWriter> bots;
        std::unique_ptr<ConfigWriter> writer;
    };
    Target targets[2];
    for (int t = 0; t < 2; ++t) {
        targets[t].state.GameFolder = t == 0 ? game : oldGame;
        targets[t].bots = std::make_unique<BotScriptWriter>(targets[t].state, messages, random);
        targets[t].writer =
            std::make_unique<ConfigWriter>(targets[t].state, messages, catalogue, *targets[t].bots);
    }
    const auto write = [&](int t) {
        QElapsedTimer timer;
        timer.start();
        const QString cfg = targets[t].state.GameFolder + QStringLiteral("/baseq3/halvane.cfg");
        if (!targets[t].writer->WriteConfig(s, cfg, true, QStringLiteral(" +exec halvane.cfg")))
            return -1.0;
        return timer.nsecsElapsed() / 1e6;
    };
    // The first write of each makes the files the later ones replace.
    if (write(0) < 0 || write(1) < 0) {
        std::fprintf(stderr, "WriteConfig failed\n");
        return 1;
    }

    std::vector<double> writes, copies, oldWrites;
    for (int run = 0; run < Runs; ++run) {
        writes.push_back(write(0));
        const QString target = dir.filePath(QStringLiteral("copy%1").arg(run));
        QElapsedTimer timer;
        timer.start();
        const int code = QProcess::execute(
            QStringLiteral("cp"), {QStringLiteral("-r"), game + QStringLiteral("/baseq3"), target});
        copies.push_back(timer.nsecsElapsed() / 1e6);
        oldWrites.push_back(write(1));
        QDir(target).removeRecursively();
        if (code != 0 || writes.back() < 0 || oldWrites.back() < 0) {
            std::fprintf(stderr, "WriteConfig or cp -r failed\n");
            return 1;
        }
    }

    const int files = int(QDir(game + QStringLiteral("/baseq3/srvmaps")).count() - 2 +
                          QDir(game + QStringLiteral("/baseq3/srvbots")).count() - 2 + 3);
    std::printf("\nWriteConfig, %d of %d maps, random bots, %d runs, each run in turn:\n", Selected,
                Records, Runs);
    std::printf("  WriteConfig                                  median %7.1f ms\n", median(writes));
    std::printf("  cp -r of the %d files it wrote             median %7.1f ms   "
                "WriteConfig / cp -r: %.2fx\n",
                files, median(copies), medianRatio(writes, copies));
    std::printf("  WriteConfig beside %d old scripts a folder median %7.1f ms   "
                "with / without them: %.2fx\n",
                Records, median(oldWrites), medianRatio(oldWrites, writes));
    std::printf("  messages shown: %d\n", int(messages.shown.size()));
    std::fflush(stdout);
    return 0;
}
