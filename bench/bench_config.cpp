// Writing a large configuration: 1,000 selected maps with random bots from a
// full 32,766-record catalogue, against copying the files it produces with
// cp -r. A section of halvane_bench (bench_maps.cpp owns main); never run by
// the tests.
#include "app/AppContext.h"
#include "bots/BotScripts.h"
#include "bots/RandomSource.h"
#include "config/ConfigWriter.h"
#include "maps/MapCatalogue.h"
#include "platform/FakePlatform.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace halvane;

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int benchConfig() {
    constexpr int Records = MapCatalogue::MaxRecords;
    constexpr int Selected = 1000;
    constexpr int Runs = 7;

    QTemporaryDir dir;
    const QString program = dir.filePath(QStringLiteral("program"));
    const QString game = dir.filePath(QStringLiteral("game"));
    QDir().mkpath(program);
    QDir().mkpath(game + QStringLiteral("/baseq3"));

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

    AppState state;
    state.GameFolder = game;
    FakeMessageBoxes messages;
    TimeSeededRandom random;
    BotScriptWriter bots(state, messages, random);
    ConfigWriter writer(state, messages, catalogue, bots);
    const QString cfg = game + QStringLiteral("/baseq3/halvane.cfg");

    std::vector<double> writes;
    for (int run = 0; run < Runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        if (!writer.WriteConfig(s, cfg, true, QStringLiteral(" +exec halvane.cfg"))) {
            std::fprintf(stderr, "WriteConfig failed\n");
            return 1;
        }
        writes.push_back(timer.nsecsElapsed() / 1e6);
    }

    std::vector<double> copies;
    for (int run = 0; run < Runs; ++run) {
        const QString target = dir.filePath(QStringLiteral("copy%1").arg(run));
        QElapsedTimer timer;
        timer.start();
        const int code = QProcess::execute(
            QStringLiteral("cp"), {QStringLiteral("-r"), game + QStringLiteral("/baseq3"), target});
        copies.push_back(timer.nsecsElapsed() / 1e6);
        if (code != 0) {
            std::fprintf(stderr, "cp -r failed\n");
            return 1;
        }
    }

    const int files = int(QDir(game + QStringLiteral("/baseq3/srvmaps")).count() - 2 +
                          QDir(game + QStringLiteral("/baseq3/srvbots")).count() - 2 + 3);
    std::printf("WriteConfig, %d of %d maps, random bots: median %.1f ms (min %.1f) over %d runs\n",
                Selected, Records, median(writes), *std::min_element(writes.begin(), writes.end()),
                Runs);
    std::printf("cp -r of the %d files it wrote:          median %.1f ms (min %.1f)\n", files,
                median(copies), *std::min_element(copies.begin(), copies.end()));
    std::printf("each WriteConfig run (the first creates the files, later runs replace them):");
    for (double ms : writes)
        std::printf(" %.1f", ms);
    std::printf(" ms\nmessages shown: %d\n", int(messages.shown.size()));
    return 0;
}
