// The game's status and console answers, as bytes and from a stand-in on 127.0.0.1; the record of
// what was started, from a state file that may be damaged or name a reused process id.
#include "TestSupport.h"

#include "server/AddServerDialog.h"
#include "server/LaunchRecords.h"
#include "server/LogTail.h"
#include "server/ServerManager.h"
#include "server/ServerProtocol.h"
#include "server/ServerWindow.h"
#include "ui_frmAddServer.h"
#include "ui_frmServer.h"

#include <QNetworkDatagram>
#include <QProcess>
#include <QUdpSocket>
#include <QtTest>
#include <sys/stat.h>

using namespace halvane;
using namespace halvane::protocol;

namespace {
const QByteArray Oob("\xff\xff\xff\xff", 4);

QByteArray recordLine(const QString& id, qint64 pid, qint64 start) {
    LaunchRecord r;
    r.id = id;
    r.pid = pid;
    r.processStart = start;
    r.program = "/game/quake3.exe";
    r.rconPassword = "secret word";
    r.started = QDateTime(QDate(2024, 5, 1), QTime(10, 0));
    r.scripts = "<state>/servers/" + id;
    return launchRecordBytes({r});
}

// What the game printed, and the port it listens on: "" while that is not known yet (no line
// after the socket's, which may still fail to bind).
const std::tuple<const char*, QByteArray, const char*> Opened[] = {
    {"confirmed", "Opening IP socket: 127.0.0.1:27961\nHunk_Clear: ok\n", "27961"},
    {"the port taken: the game moved on",
     "Opening IP socket: 127.0.0.1:27960\nWARNING: NET_IPSocket: bind: Address already in use\n"
     "Opening IP socket: 127.0.0.1:27961\nOpening IP6 socket: [::]:27961\n"
     "Opening IP socket: 127.0.0.1:1",
     "27961"},
    {"any free port, which only the system tells", "Opening IP socket: 127.0.0.1:0\nok\n", "0"},
    {"not yet confirmed", "Opening IP socket: 127.0.0.1:27960\n", ""},
    {"nothing printed yet", "", ""},
};

// A datagram and what is read from it: "key=value,..|name:score:ping|..." or "error: <reason>".
const QByteArray Head = Oob + "statusResponse\n";
const std::tuple<const char*, QByteArray, const char*> Statuses[] = {
    {"players with colours and blanks",
     Head + "\\sv_hostname\\^1Red ^7Arena\\mapname\\oa_dm1\n3 50 \"^4Blue Bot\"\n-2 0 \"x\"\n",
     "mapname=oa_dm1,sv_hostname=^1Red ^7Arena|^4Blue Bot:3:50|x:-2:0"},
    {"quotes inside a name run to the last one", Head + "\\g\\1\n0 9 \"say \"hi\"\"\n",
     "g=1|say \"hi\":0:9"},
    {"no players", Head + "\\g_gametype\\4\\sv_maxclients\\12\n", "g_gametype=4,sv_maxclients=12"},
    {"cut short: half a pair, an open name", Head + "\\a\\1\\mapna\n7 20 \"Sar", "a=1|Sar:7:20"},
    {"line that is no player", Head + "\\a\\1\nabc 5 \"x\"\n5\n1 2 3 \"y\"\n", "a=1"},
    {"header only", Oob + "statusResponse", "error: sent a status answer that was cut short"},
    {"oversized", Head + "\\a\\" + QByteArray(MaxPacket, 'x'),
     "error: answered with 16406 bytes, more than a status answer can hold"},
};

// The console's answer packets, its text and the problem.
const QByteArray Print = Oob + "print\n";
const std::tuple<const char*, QList<QByteArray>, const char*, const char*> Rcons[] = {
    {"several packets, a stray one among them",
     {Print + "map: oa_dm1\nnum sc", Oob + "statusResponse\n\\a\\b", Print + "ore ping\n",
      Print + " 0 0 0 Sarge\n"},
     "map: oa_dm1\nnum score ping\n 0 0 0 Sarge\n",
     ""},
    {"wrong password",
     {Print + "Bad rconpassword.\n"},
     "Bad rconpassword.\n",
     "the server refused the Console (rcon) Password"},
    {"no password on the server",
     {Print + "No rconpassword set on the server.\n"},
     "No rconpassword set on the server.\n",
     "the server has no Console (rcon) Password"},
    {"silence", {}, "", "no answer from the server's console"},
};

// A player's name as the game prints it: plain, as the window shows it, and its client number in
// the console's table of players below (-1: not there).
const std::tuple<const char*, QString, const char*, const char*, int> Names[] = {
    {"colours, white is plain", "^1Red^7 <b>&", "Red <b>&",
     "<span style=\"color:#cc0000\">Red</span> &lt;b&gt;&amp;", -1},
    {"caret before a code, letter code, caret at the end", "^^2x^ay^", "^xy^",
     "^<span style=\"color:#008800\">x</span><span style=\"color:#cc0000\">y^</span>", -1},
    {"control characters go, line ends stay", "a\x01\nb", "a\nb", "ab", -1},
    {"a bot", "Sarge", "Sarge", "Sarge", 0},
    {"a longer name it begins", "Sarge2", "Sarge2", "Sarge2", 3},
    {"blanks and colours in the name", "^1Big ^7Bot", "Big Bot",
     "<span style=\"color:#cc0000\">Big </span>Bot", 11},
    {"still connecting", "Grism", "Grism", "Grism", 4},
};
// The engine's table, its address column narrowed.
const QString Clients = "map: oa_dm1\n"
                        "cl score ping name            address         rate \n"
                        "-- ----- ---- --------------- --------------- -----\n"
                        " 0     5    0 Sarge^7         bot             16384\n"
                        " 3    -1   50 Sarge2^7        127.0.0.1:27961 25000\n"
                        " 4     0 CNCT Grism^7         127.0.0.1:27962 25000\n"
                        "11    12  999 ^1Big ^7Bot^7     bot             16384\n";

// A server list file, and the id:state of each record, then the problem line.
const QString KeptAs = " the file as it was is kept as <state>/servers.jsonl.damaged";
const QByteArray RecordA = recordLine("a", 1000, 7000), RecordB = recordLine("b", 1001, 7007);
const std::tuple<const char*, QByteArray, QString> Records[] = {
    {"running, and an id reused by another process", RecordA + recordLine("reused", 1001, 5),
     "a:running reused:ended while Halvane was not running"},
    {"garbage, cut and wrong lines between good ones",
     RecordA + "\x01\xfe garbage\n" +
         recordLine("noport", 1000, 7000).replace("\"port\":0", "\"port\":-1") +
         "{\"id\":\"x\"}\n" + RecordB + RecordB.left(40),
     "a:running b:running Damaged server list <state>/servers.jsonl: line 2: illegal value; "
     "line 3: no port; line 4: no process id; line 6: unterminated string;<kept>"},
    {"a line from before the runs and script copies were kept",
     "{\"id\":\"old\",\"pid\":\"1001\",\"processStart\":\"5\",\"program\":\"q3\",\"port\":27961,"
     "\"started\":\"2024-05-01T10:00:00.000\"}\n",
     "old:ended while Halvane was not running"},
    {"two hundred thousand bad lines: the first few and a count",
     RecordA + QByteArray("x\n").repeated(200000),
     "a:running Damaged server list <state>/servers.jsonl: line 2: illegal value; line 3: "
     "illegal value; line 4: illegal value; line 5: illegal value; line 6: illegal value; "
     "199995 more lines cannot be read;<kept>"},
    {"added servers: no process of ours, but an address",
     "{\"id\":\"x\",\"added\":true,\"address\":\"10.213.0.2\",\"port\":27960,\"pid\":\"1000\","
     "\"processStart\":\"7000\",\"monitor\":true,\"started\":\"2024-05-01T10:00:00.000\"}\n"
     "{\"id\":\"y\",\"added\":true,\"port\":1,\"started\":\"2024-05-01T10:00:00.000\"}",
     "x:running Damaged server list <state>/servers.jsonl: line 2: no address;<kept>"},
    {"more ended servers than are kept: the oldest two go, and their scripts",
     [] {
         QByteArray many;
         for (const char* id : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"})
             many += recordLine(id, 2000, 5);
         return many;
     }(),
     QString("a b c d e f g h i j k l")
         .replace(QRegularExpression("(\\w)"), "\\1:ended while Halvane was not running")},
    {"not records at all", "[1,2]\n\"x\"\n",
     "Damaged server list <state>/servers.jsonl: line 1: not a record; line 2: illegal "
     "value;<kept>"},
};

// Steps on the log (+text appends, =text replaces, - deletes) and the lines read after each
// ("!" a problem).
const std::tuple<const char*, QStringList, QStringList> Tails[] = {
    {"growing, a line in two parts", {"+a\r\nb", "+c\nd\n", "+"}, {"a", "bc|d", ""}},
    {"deleted while shown, then back", {"+a\n", "-", "-", "=x\n"}, {"a", "!", "", "x"}},
    {"cut shorter", {"+long line\n", "=s\n"}, {"long line", "s"}},
};

// The stand-in's way, the row's name and state or the console's last line, the problem line.
const std::tuple<const char*, QString, QString, QString> Peers[] = {
    {"five hundred status answers to one question", "flood", "flood 0|running", ""},
    {"answers from a port not asked", "intruder", "real|running", ""},
    {"a named pipe as the log file", "fifo", "real|running",
     "The log file <log> cannot be read: it is not a regular file"},
    {"12 KB host and player names", "huge", QString(64, 'h') + QChar(0x2026) + "|running", ""},
    {"console prints without end", "prints", "(answer cut: longer than 64 KB)", ""},
    {"console prints trickling in", "trickle", "(answer cut: still arriving after 5 seconds)", ""},
    {"added by its address", "added", "real|running", ""},
    {"added, answering garbage", "added garbage", "|asking",
     "The server answered with something that is not a status (8 bytes)"},
    {"added, never answering", "added silent", "|not answering", ""},
};
} // namespace

class ServerTest : public QObject {
    Q_OBJECT
private slots:
    void status_data() { test::addRows(Statuses); }
    void status();
    void rcon_data() { test::addRows(Rcons); }
    void rcon();
    void names_data() { test::addRows(Names); }
    void names();
    void records_data() { test::addRows(Records); }
    void records();
    void logTail_data() { test::addRows(Tails); }
    void logTail();
    void addresses_data() { test::addRows(Opened); }
    void addresses();
    void hostilePeer_data() { test::addRows(Peers); }
    void hostilePeer();
};

void ServerTest::status() {
    const auto& [name, datagram, expected] = test::fetchRow(Statuses);
    QString error;
    const auto status = parseStatus(datagram, &error);
    const ServerStatus read = status.value_or(ServerStatus());
    QStringList parts;
    for (auto it = read.info.cbegin(); it != read.info.cend(); ++it)
        parts << it.key() + '=' + it.value();
    QString text = status ? parts.join(',') : QStringLiteral("error: ") + error;
    for (const Player& p : read.players)
        text += QStringLiteral("|%1:%2:%3").arg(p.name).arg(p.score).arg(p.ping);
    QCOMPARE(text, QString(expected));
}

void ServerTest::rcon() {
    const auto& [name, datagrams, text, error] = test::fetchRow(Rcons);
    const RconAnswer answer = rconAnswer(datagrams);
    QCOMPARE(QStringList({answer.text, answer.error}), QStringList({text, error}));
}

void ServerTest::names() {
    const auto& [row, name, plain, html, number] = test::fetchRow(Names);
    QCOMPARE(QStringList({withoutColours(name), colouredHtml(name)}), QStringList({plain, html}));
    QCOMPARE(clientNumber(Clients, name), number);
}

void ServerTest::records() {
    const auto& [name, bytes, problems] = test::fetchRow(Records);
    test::TestPlatform platform;
    const QString state = platform.root() + "/state";
    const QByteArray file = QByteArray(bytes).replace("<state>", state.toUtf8());
    // Each record's scripts, a stray folder as old, one just made, a link out of the state folder.
    QStringList folders{state + "/servers/stray", state + "/servers/new", state + "/outside"};
    const QList<LaunchRecord> records = parseLaunchRecords(file).records;
    for (const LaunchRecord& r : records)
        folders << r.scripts;
    folders.removeAll(QString());
    for (const QString& folder : folders) {
        platform.writeFile(folder + "/baseq3/x.cfg", "x");
        if (!folder.endsWith("new"))
            QCOMPARE(QProcess::execute("touch", {"-d", "2 days ago", folder}), 0);
    }
    QVERIFY(QFile::link(state + "/outside", state + "/servers/link"));
    platform.writeFile(state + "/servers.jsonl", file);
    platform.processes.alive = {1000, 1001}; // start times 7000 and 7007
    ServerManager manager(*platform.app);
    QStringList seen;
    QList<LaunchRecord> kept;
    for (const ServerEntry& server : manager.servers()) {
        kept << server.record;
        seen << server.record.id + ':' +
                    (server.record.running() ? QStringLiteral("running") : server.record.endReason);
    }
    if (!manager.fileProblem().isEmpty())
        seen << QString(manager.fileProblem()).replace(state, "<state>");
    QCOMPARE(seen.join(' '), QString(problems).replace("<kept>", KeptAs));
    // Nothing of a damaged file is lost; what is kept reads back the same.
    if (!manager.fileProblem().isEmpty())
        QCOMPARE(test::readAll(state + "/servers.jsonl.damaged"), file);
    const LoadedRecords again = LaunchRecordFile(state + "/servers.jsonl").load();
    QCOMPARE(again.problems, QStringList{});
    QCOMPARE(launchRecordBytes(again.records),
             launchRecordBytes(kept.mid(0, again.records.size())));
    // A record's scripts go with it; others only when the list was read whole.
    for (const LaunchRecord& r : records)
        QCOMPARE(QFileInfo::exists(r.scripts) || r.scripts.isEmpty(),
                 launchRecordBytes(again.records).contains(r.scripts.toUtf8()));
    QCOMPARE(QFileInfo::exists(state + "/servers/stray"), !manager.fileProblem().isEmpty());
    QVERIFY(QFileInfo::exists(state + "/servers/new") &&
            QFileInfo::exists(state + "/outside/baseq3/x.cfg"));
    QCOMPARE(QFile(state + "/servers.jsonl").permissions() & 0x0077, QFileDevice::Permissions());
}

void ServerTest::logTail() {
    const auto& [name, steps, reads] = test::fetchRow(Tails);
    QTemporaryDir dir;
    const QString path = dir.filePath("server.log");
    LogTail tail;
    tail.follow(path);
    for (qsizetype i = 0; i < steps.size(); ++i) {
        QFile file(path);
        if (steps[i].startsWith('-'))
            file.remove();
        else if (file.open(steps[i].startsWith('+') ? QIODevice::Append : QIODevice::WriteOnly))
            file.write(steps[i].mid(1).toLatin1());
        file.close();
        QString problem;
        const QString lines = tail.readNew(&problem).join('|');
        QCOMPARE(problem.isEmpty() ? lines : "!", reads[i]);
        QVERIFY(problem.isEmpty() ||
                problem.startsWith("The log file " + path + " cannot be read"));
    }
}

void ServerTest::addresses() {
    const auto& [name, log, port] = test::fetchRow(Opened);
    const auto opened = openedPort(log);
    QCOMPARE(opened ? QString::number(*opened) : "", QString(port));
    // Four decimal parts only, as the system's parser reads an address.
    QCOMPARE(parseIpv4(" 127.0.0.1\t"), std::optional(0x7f000001u));
    for (const QString& bad :
         QStringList{"127.1", "0x7f.0.0.1", "1.2.3", "256.1.1.1", "1.2.3.4.5", "localhost", "::1",
                     "", "127.0.0.1" + QString(QChar(0)) + "x"})
        QVERIFY2(!parseIpv4(bad), qPrintable(bad));
}

// A stand-in on 127.0.0.1 that answers more, longer or other than asked, or a log that is a pipe:
// the window shows what it should, each pass over the socket reading a bounded number of datagrams.
// Servers Halvane did not start are added in the window by address and listed without it.
void ServerTest::hostilePeer() {
    const auto& [row, way, shown, problem] = test::fetchRow(Peers);
    const QString peer = way; // the lambdas below take it
    QUdpSocket game, intruder;
    QVERIFY(game.bind(QHostAddress::LocalHost) && intruder.bind(QHostAddress::LocalHost));
    test::TestPlatform platform;
    ServerManager manager(*platform.app);
    const bool added = peer.startsWith("added");
    if (!added)
        manager.launch("q3", {}, platform.root(), {}, {}, QString::number(game.localPort()), "pw");
    const QString log = added ? QString() : manager.servers().first().record.logFile;
    if (!added)
        platform.writeFile(
            log, "Opening IP socket: 127.0.0.1:" + QByteArray::number(game.localPort()) + "\nok\n");
    if (peer == "fifo")
        QVERIFY(QFile::remove(log) && ::mkfifo(QFile::encodeName(log), 0600) == 0);
    const QByteArray name = peer == "huge" ? QByteArray(12000, 'h') : "real";
    const QByteArray player = peer == "huge" ? QByteArray(2000, 'p') : "real";
    QTimer prints;
    QNetworkDatagram command;
    connect(&prints, &QTimer::timeout, [&] {
        for (int i = 0; i < 5; ++i)
            game.writeDatagram(
                command.makeReply(Oob + "print\n" + QByteArray(peer == "prints" ? 1000 : 1, 'p')));
    });
    connect(&game, &QUdpSocket::readyRead, [&] {
        while (game.hasPendingDatagrams()) {
            const QNetworkDatagram query = game.receiveDatagram();
            if (query.data().contains("rcon")) {
                command = query;
                prints.start(peer == "prints" ? 10 : 50);
                continue;
            }
            if (peer == "intruder")
                intruder.writeDatagram(Oob + "statusResponse\n\\sv_hostname\\intruder\n",
                                       query.senderAddress(), query.senderPort());
            if (peer == "added garbage")
                game.writeDatagram(query.makeReply("\x01garbage"));
            for (int i = 0; i < (peer == "flood" ? 500 : added ? peer == "added" : 1); ++i)
                game.writeDatagram(
                    query.makeReply(Oob + "statusResponse\n\\sv_hostname\\" +
                                    (peer == "flood" ? "flood " + QByteArray::number(i) : name) +
                                    "\n0 0 \"" + player + "\"\n"));
        }
    });
    ServerWindow window(manager, platform.shell, nullptr);
    Ui::frmServer& ui = window.form();
    window.show();
    if (added) {
        ui.cmdAddServer->click();
        auto* dialog = window.findChild<AddServerDialog*>();
        QVERIFY(dialog && dialog->isVisible());
        dialog->form().txtAddAddress->setText("127.0.0");
        dialog->form().txtAddPort->setText(QString::number(game.localPort()));
        dialog->form().txtAddPassword->setText("pw");
        dialog->form().btnAddServer->button(QDialogButtonBox::Ok)->click();
        QCOMPARE(dialog->form().lblAddProblem->text(),
                 "The address must be a numeric IPv4 address, such as 192.0.2.10");
        dialog->form().txtAddAddress->setText("127.0.0.1");
        dialog->form().btnAddServer->button(QDialogButtonBox::Ok)->click();
        QVERIFY(!dialog->isVisible());
    }
    QTreeWidgetItem* const listed = ui.lstServers->topLevelItem(0);
    QVERIFY(listed);
    if (peer == "prints" || peer == "trickle") {
        QTRY_VERIFY(listed->text(0) != "");
        ui.cmbCommand->setEditText("status");
        ui.cmdSend->click();
        QTRY_COMPARE_WITH_TIMEOUT(ui.txtConsole->toPlainText().section('\n', -1), shown, 20000);
        QVERIFY(ui.txtConsole->toPlainText().size() < MaxAnswer + 100);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(listed->text(0) + '|' + listed->text(6).section(" since", 0, 0),
                                  shown, 10000);
    }
    const ServerManager::Traffic& traffic = manager.traffic();
    QVERIFY(traffic.accepted <= traffic.questions);
    QVERIFY2(traffic.largestPass <= ServerManager::MaxPacketsPerPass,
             qPrintable(QString::number(traffic.largestPass)));
    QVERIFY(peer != "flood" || traffic.packets > ServerManager::MaxPacketsPerPass);
    QCOMPARE(listed->toolTip(0).size(), peer == "huge" ? 12000 : 0);
    if (ui.lstPlayers->topLevelItemCount() > 0)
        QCOMPARE(ui.lstPlayers->topLevelItem(0)->toolTip(0), QString(player));
    QVERIFY(window.sizeHint().width() < 1500);
    QTRY_COMPARE(ui.lblProblem->text(), QString(problem).replace("<log>", log));
    // Halvane has no process of an added server: it is not stopped, restarted or watched, and
    // it is listed with its answer, or why none came, without a window.
    QCOMPARE(ui.cmdStop->isEnabled() || ui.cmdRestart->isEnabled() || ui.chkMonitor->isEnabled(),
             !added);
    QCOMPARE(ui.cmdRemove->isEnabled(), added); // one of ours that runs stays listed
    if (!added)
        return;
    const QList<ServerEntry> servers = listServers(*platform.app, 3000);
    QCOMPARE(servers.size(), 1);
    const ServerLive& live = servers[0].live;
    QCOMPARE(live.status ? live.status->value("sv_hostname") : live.problem,
             peer == "added" ? "real" : problem);
    {
        // Another Halvane adds one, its last line still half written: the open window lists it.
        ServerManager other(*platform.app);
        QCOMPARE(other.add("127.0.0.1", "1", "pw"), QString());
        QFile file(platform.root() + "/state/servers.jsonl");
        QVERIFY(file.open(QIODevice::Append) && file.write("{\"id\":\"half") > 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(ui.lstServers->topLevelItemCount(), 2, 10000);
    ui.cmdRemove->click();
    ui.cmdRemove->click();
    QCOMPARE(ui.lstServers->topLevelItemCount(), 0);
    QCOMPARE(ServerManager(*platform.app).servers().size(), 0); // gone for good
    QVERIFY(!QFile::exists(platform.root() + "/state/servers.jsonl.damaged"));
}

QTEST_MAIN(ServerTest)
#include "tst_server.moc"
