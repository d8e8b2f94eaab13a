// The server window's refresh: ten servers, each a stand-in on 127.0.0.1
// that answers the status query with sixteen players from a thread of its
// own, so that only the window thread's part is timed: sending the queries,
// then reading, parsing and showing the answers. Against it, in the same
// rounds, an idle pass of the same event loop. A section of halvane_bench
// (bench_maps.cpp owns main); never run by the tests.
#include "BenchSupport.h"
#include "server/ServerManager.h"
#include "server/ServerWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QUdpSocket>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

using namespace halvane;
using namespace halvane::bench;

namespace {

constexpr int Servers = 10;
constexpr int Rounds = 41;

struct StandIn {
    quint16 port = 0;
    std::thread thread;
};

QByteArray statusAnswer(int server) {
    QByteArray answer = QByteArray("\xff\xff\xff\xffstatusResponse\n", 19) +
                        "\\sv_hostname\\^1Bench ^7server " + QByteArray::number(server) +
                        "\\mapname\\oa_dm1\\g_gametype\\3\\sv_maxclients\\16\n";
    for (int i = 0; i < 16; ++i)
        answer += QByteArray::number(i * 3) + ' ' + QByteArray::number(40 + i) + " \"^" +
                  QByteArray::number(i % 8) + "Player " + QByteArray::number(i) + "\"\n";
    return answer;
}

} // namespace

int benchServers() {
    BenchPlatform platform;

    std::atomic<bool> stop{false};
    std::atomic<int> answered{0};
    std::vector<StandIn> standIns(Servers);
    std::atomic<int> ready{0};
    for (int i = 0; i < Servers; ++i) {
        standIns[i].thread = std::thread([&, i] {
            QUdpSocket socket;
            socket.bind(QHostAddress::LocalHost, 0);
            standIns[i].port = socket.localPort();
            ++ready;
            const QByteArray answer = statusAnswer(i);
            while (!stop) {
                if (!socket.waitForReadyRead(20))
                    continue;
                while (socket.hasPendingDatagrams()) {
                    QHostAddress from;
                    quint16 port = 0;
                    QByteArray query(int(socket.pendingDatagramSize()), '\0');
                    socket.readDatagram(query.data(), query.size(), &from, &port);
                    socket.writeDatagram(answer, from, port);
                    ++answered;
                }
            }
        });
    }
    while (ready < Servers)
        QThread::msleep(1);

    ServerManager manager(*platform.app);
    for (const StandIn& standIn : standIns) {
        manager.launch(QStringLiteral("quake3.exe"), {}, platform.game(), QString(),
                       QStringLiteral("127.0.0.1"), QString::number(standIn.port), QString());
        // What the game prints once its socket is open.
        QFile log(manager.servers().first().record.logFile);
        if (log.open(QIODevice::Append))
            log.write(
                QStringLiteral("Opening IP socket: 127.0.0.1:%1\nok\n").arg(standIn.port).toUtf8());
    }
    ServerWindow window(manager, platform.shell, nullptr);
    window.show();
    QApplication::processEvents();

    std::vector<double> refresh, idle;
    int shown = 0;
    for (int round = 0; round < Rounds; ++round) {
        // The idle pass first: nothing waits in the event loop.
        QElapsedTimer clock;
        clock.start();
        QApplication::processEvents();
        idle.push_back(clock.nsecsElapsed() / 1e6);

        const int before = answered;
        clock.restart();
        manager.refresh();
        const qint64 sending = clock.nsecsElapsed();
        while (answered < before + Servers)
            QThread::msleep(1);
        QThread::msleep(5); // the answers reach our socket
        clock.restart();
        QApplication::processEvents();
        QApplication::processEvents();
        refresh.push_back((sending + clock.nsecsElapsed()) / 1e6);
    }
    for (const ServerEntry& server : manager.servers())
        shown += server.live.status && server.live.status->players.size() == 16;
    stop = true;
    for (StandIn& standIn : standIns)
        standIn.thread.join();

    std::printf("server window refresh, %d servers, median of %d rounds:\n", Servers, Rounds);
    std::printf("  refresh (send, read, parse, show)      %8.3f ms  (%.3f ms per server)\n",
                median(refresh), median(refresh) / Servers);
    std::printf("  idle pass of the same event loop        %8.3f ms\n", median(idle));
    std::printf("  servers shown with all 16 players       %8d of %d\n", shown, Servers);
    std::fflush(stdout);
    return shown == Servers ? 0 : 1;
}
