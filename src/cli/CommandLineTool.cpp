#include "cli/CommandLineTool.h"

#include "app/AppContext.h"
#include "config/ConfigFileCommands.h"
#include "export/ServerExport.h"
#include "launch/LaunchController.h"
#include "launch/PathDialog.h"
#include "platform/ConsolePlatform.h"
#include "platform/QtPlatform.h"
#include "platform/UserFiles.h"
#include "profiles/ProfileStore.h"
#include "server/ServerControl.h"
#include "server/ServerManager.h"
#include "ui/ConfigurationSession.h"
#include "ui/MainWindow.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <cstdio>
#include <optional>

namespace halvane::cli {

namespace {
const QStringList Commands{QStringLiteral("write-config"), QStringLiteral("launch"),
                           QStringLiteral("status"),       QStringLiteral("stop"),
                           QStringLiteral("export"),       QStringLiteral("help")};
const QString NoLocationText =
    QStringLiteral("halvane: no game location is stored, or it holds no quake3.exe. Start "
                   "Halvane with its window once, or run 'halvane --prepare-first-run'.");
const QStringList HelpWords{QStringLiteral("help"), QStringLiteral("--help"), QStringLiteral("-h")};

void print(std::FILE* out, const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), out);
    std::fputc('\n', out);
    std::fflush(out);
}

int usage(const QString& problem) {
    print(stderr, QStringLiteral("halvane: ") + problem +
                      QStringLiteral("\n'halvane --help' lists the commands."));
    return Usage;
}

// What a command was given besides its name.
struct Arguments {
    QString profile;
    bool json = false;
    QStringList operands;
};

// Reads the options a command takes; nullopt after a usage message.
std::optional<Arguments> parse(const QString& command, const QStringList& words, bool takesProfile,
                               bool takesJson, int operands, int* code) {
    Arguments parsed;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words[i];
        if (takesProfile && word == QLatin1String("--profile")) {
            if (i + 1 >= words.size() || words[i + 1].isEmpty()) {
                *code = usage(command + QStringLiteral(": --profile needs a profile's name."));
                return std::nullopt;
            }
            parsed.profile = words[++i];
        } else if (takesProfile && word.startsWith(QLatin1String("--profile="))) {
            parsed.profile = word.mid(10);
        } else if (takesJson && word == QLatin1String("--json")) {
            parsed.json = true;
        } else if (word.startsWith(QLatin1Char('-')) && word != QLatin1String("-") &&
                   word != QLatin1String("--")) {
            *code = usage(command + QStringLiteral(": unknown option ") + word);
            return std::nullopt;
        } else if (word != QLatin1String("--")) {
            parsed.operands.append(word);
        }
    }
    if (parsed.operands.size() != operands) {
        *code = usage(parsed.operands.size() < operands
                          ? command + QStringLiteral(": an argument is missing.")
                          : command + QStringLiteral(": unexpected argument ") +
                                parsed.operands.value(operands));
        return std::nullopt;
    }
    return parsed;
}

// The platform of a command: the program's files and settings as the
// window has them, messages on standard error, no dialogs, no lock.
struct ConsoleContext {
    ConsoleMessageBoxes messages;
    ConsoleFileDialogs dialogs;
    QtProcesses processes{QCoreApplication::applicationFilePath()};
    ConsoleShell shell;
    ConsoleDesktop desktop;
    QtSettingsStore store;
    ProgramFolder folder{
        locateProgramFolder(QCoreApplication::applicationDirPath(), userProgramFolder())};
    AppContext app{{messages, dialogs, processes, shell, desktop, store, folder}, {}};
};

QString stateText(const ServerEntry& server) {
    if (!server.record.running())
        return QStringLiteral("ended");
    if (!server.live.lastAnswer.isValid())
        return QStringLiteral("not answering");
    return server.record.added ? QStringLiteral("answering") : QStringLiteral("running");
}

QJsonObject serverJson(const ServerEntry& server) {
    const LaunchRecord& r = server.record;
    QJsonObject o{{QStringLiteral("id"), r.id},
                  {QStringLiteral("state"), stateText(server)},
                  {QStringLiteral("added"), r.added},
                  {QStringLiteral("pid"), r.pid},
                  {QStringLiteral("address"), r.address},
                  {QStringLiteral("port"), int(r.port)},
                  {QStringLiteral("started"), r.started.toString(Qt::ISODate)},
                  {QStringLiteral("commandLine"), r.commandLine},
                  {QStringLiteral("gameFolder"), r.gameFolder},
                  {QStringLiteral("logFile"), r.logFile},
                  {QStringLiteral("monitor"), r.monitor}};
    if (!r.running()) {
        o.insert(QStringLiteral("ended"), r.ended.toString(Qt::ISODate));
        o.insert(QStringLiteral("endReason"), r.endReason);
        if (!r.exitStatus.isEmpty())
            o.insert(QStringLiteral("exitStatus"), r.exitStatus);
    }
    if (!server.live.problem.isEmpty())
        o.insert(QStringLiteral("problem"), server.live.problem);
    if (server.record.running() && server.live.status) {
        const protocol::ServerStatus& s = *server.live.status;
        o.insert(QStringLiteral("hostname"), s.value("sv_hostname"));
        o.insert(QStringLiteral("map"), s.value("mapname"));
        o.insert(QStringLiteral("players"), int(s.players.size()));
        o.insert(QStringLiteral("maxPlayers"), s.value("sv_maxclients").toInt());
    }
    return o;
}

int status(bool json) {
    ConsoleContext context;
    const QList<ServerEntry> servers = listServers(context.app);
    if (json) {
        QJsonArray list;
        for (const ServerEntry& server : servers)
            list.append(serverJson(server));
        std::fputs(QJsonDocument(list).toJson(QJsonDocument::Indented).constData(), stdout);
        return Done;
    }
    if (servers.isEmpty()) {
        print(stdout, QStringLiteral("No servers."));
        return Done;
    }
    for (const ServerEntry& server : servers) {
        const QJsonObject o = serverJson(server);
        QString line = QStringLiteral("%1  %2  %3:%4")
                           .arg(server.record.id, stateText(server), server.record.address)
                           .arg(server.record.port);
        if (o.contains(QStringLiteral("hostname")))
            line += QStringLiteral("  %1  %2  %3/%4 players")
                        .arg(o.value(QStringLiteral("hostname")).toString(),
                             o.value(QStringLiteral("map")).toString())
                        .arg(o.value(QStringLiteral("players")).toInt())
                        .arg(o.value(QStringLiteral("maxPlayers")).toInt());
        if (!server.record.running())
            line += QStringLiteral("  ") + server.record.endReason +
                    (server.record.exitStatus.isEmpty()
                         ? QString()
                         : QStringLiteral(", ") + server.record.exitStatus);
        else if (!server.live.problem.isEmpty())
            line += QStringLiteral("  ") + server.live.problem;
        print(stdout, line);
    }
    return Done;
}

int stop(const QString& id) {
    ConsoleContext context;
    ServerManager manager(context.app);
    manager.load();
    const ServerEntry* server = manager.find(id);
    if (!server) {
        print(stderr, QStringLiteral("halvane: no server has the ID ") + id +
                          QStringLiteral("; 'halvane status' lists them."));
        return NotFound;
    }
    if (!server->record.running()) {
        print(stderr,
              QStringLiteral("halvane: the server ") + id + QStringLiteral(" has already ended."));
        return Done;
    }
    QEventLoop loop;
    const auto ended = [&manager, &id] {
        const ServerEntry* found = manager.find(id);
        return !found || !found->record.running();
    };
    QObject::connect(&manager, &ServerManager::serverChanged, &loop, [&] {
        if (ended())
            loop.quit();
    });
    manager.stop(id);
    if (!ended()) {
        // The manager kills the process once its grace has run out; a little
        // longer than that, the command gives up.
        QTimer::singleShot((manager.limits().killGraceSecs + 5) * 1000, &loop, &QEventLoop::quit);
        loop.exec();
    }
    if (!ended()) {
        print(stderr, QStringLiteral("halvane: the server ") + id + QStringLiteral(" still runs."));
        return Failed;
    }
    print(stdout, QStringLiteral("Stopped ") + id);
    return Done;
}

// The commands on a profile: its settings in a window of their own that is
// never shown, through the same session as the window's Launch Profile.
int onProfile(const QString& command, const Arguments& arguments) {
    const QString& name = arguments.profile;
    ConsoleContext context;
    const ProfileStore profiles(userProfileFolder());
    if (!profiles.exists(name)) {
        print(stderr, QStringLiteral("halvane: there is no profile named ") + name +
                          QStringLiteral(" in ") + profiles.folder() + QLatin1Char('.'));
        return NotFound;
    }
    Profile profile;
    const QString problem = profiles.load(name, profile);
    if (!problem.isEmpty()) {
        print(stderr, QStringLiteral("halvane: ") + problem);
        return Failed;
    }
    AppState game;
    if (!PathDialog::readStoredLocation(game, context.store)) {
        print(stderr, NoLocationText);
        return NoLocation;
    }
    ConfigurationSession session(context.app.platform, profile.settings, game, name);
    const QStringList unknown = session.load(&profile.maps);
    if (!unknown.isEmpty())
        print(stderr, QStringLiteral("halvane: maps of the profile that the catalogue does not "
                                     "know are left out: ") +
                          unknown.join(QStringLiteral(", ")));
    MainWindow& window = session.window();
    window.SkipSaveOnClose = true;
    if (command == QLatin1String("write-config"))
        return window.configCommands().mnuFileMakeCfg() ? Done : Failed;
    if (command == QLatin1String("launch")) {
        ServerManager manager(context.app);
        QString reason;
        const QString folder =
            ConfigurationSession::newScriptFolder(context.folder.stateFolder(), name, &reason);
        if (folder.isEmpty()) {
            print(stderr, QStringLiteral("halvane: ") + reason);
            return Failed;
        }
        if (!session.launch(folder, &manager))
            return Failed;
        print(stdout, QStringLiteral("Started ") + manager.servers().first().record.id);
        return Done;
    }
    if (!window.serverExport().exportTo(arguments.operands.first(), name))
        return Failed;
    print(stdout, QStringLiteral("Exported to ") + arguments.operands.first());
    return Done;
}

// Commands that run on the window's settings.
int onSettings(const QString& command, const Arguments& arguments) {
    if (!arguments.profile.isEmpty())
        return onProfile(command, arguments);
    ConsoleContext context;
    MainWindow window(context.app);
    if (!window.loadWithoutWindow()) {
        print(stderr, NoLocationText);
        return NoLocation;
    }
    window.SkipSaveOnClose = true;
    if (command == QLatin1String("write-config"))
        return window.configCommands().mnuFileMakeCfg() ? Done : Failed;
    if (command == QLatin1String("launch")) {
        if (!window.launch().cmdStart())
            return Failed;
        const QList<ServerEntry>& servers = window.servers().manager().servers();
        if (!servers.isEmpty())
            print(stdout, QStringLiteral("Started ") + servers.first().record.id);
        return Done;
    }
    if (!window.serverExport().exportTo(arguments.operands.first(),
                                        window.serverExport().serverName()))
        return Failed;
    print(stdout, QStringLiteral("Exported to ") + arguments.operands.first());
    return Done;
}
} // namespace

bool isCommand(const QStringList& arguments) {
    if (arguments.isEmpty())
        return false;
    // Qt's own options, which the window takes, have a single dash.
    const QString& first = arguments.first();
    return HelpWords.contains(first) || !first.startsWith(QLatin1Char('-')) ||
           first.startsWith(QLatin1String("--"));
}

QString helpText() {
    return QStringLiteral(
        "Usage: halvane [COMMAND [ARGUMENTS]]\n"
        "\n"
        "Without a command Halvane opens its window. The commands need no display and\n"
        "run on the stored settings, as the window would start with them:\n"
        "\n"
        "  write-config [--profile NAME]  validate and write halvane.cfg and its scripts\n"
        "                                 into the game's baseq3 folder (\"Create halvane.cfg\")\n"
        "  launch [--profile NAME]        validate, write and start the server (\"Launch the\n"
        "                                 Server\"); prints the new server's ID\n"
        "  status [--json]                the servers Halvane started, with their status\n"
        "  stop ID                        stop the server with that ID\n"
        "  export [--profile NAME] DIR    write the new folder DIR that runs the server on\n"
        "                                 another host: run-server.sh, a systemd unit, a\n"
        "                                 container and a Kubernetes manifest\n"
        "  help, --help                   this text\n"
        "  --prepare-first-run            set a fresh account up for the free game\n"
        "\n"
        "Messages go to standard error; a question is answered Yes. Exit codes:\n"
        "0 done, 1 refused or failed (a message says why), 2 unknown command or\n"
        "argument, 3 no such profile or server, 4 no usable game location stored.\n"
        "See halvane(1).");
}

int run(const QStringList& arguments) {
    const QString command = arguments.value(0);
    const QStringList words = arguments.mid(1);
    int code = Done;
    if (HelpWords.contains(command)) {
        if (!words.isEmpty())
            return usage(QStringLiteral("help: unexpected argument ") + words.first());
        print(stdout, helpText());
        return Done;
    }
    if (!Commands.contains(command))
        return usage((command.startsWith(QLatin1Char('-')) ? QStringLiteral("unknown argument ")
                                                           : QStringLiteral("unknown command ")) +
                     command);
    const bool onProfile = command != QLatin1String("status") && command != QLatin1String("stop");
    const int operands = command == QLatin1String("stop") || command == QLatin1String("export");
    const auto parsed =
        parse(command, words, onProfile, command == QLatin1String("status"), operands, &code);
    if (!parsed)
        return code;
    if (command == QLatin1String("status"))
        return status(parsed->json);
    if (command == QLatin1String("stop"))
        return stop(parsed->operands.first());
    return onSettings(command, *parsed);
}

} // namespace halvane::cli
