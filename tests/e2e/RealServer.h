#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

// Helpers for tests that run our scripts in a real dedicated server: a game folder laid out like
// the original game's but holding the free OpenArena data, a stand-in quake3.exe that starts the
// engine, and the server's UDP queries. Everything stays on the loopback interface.
namespace halvane::e2e {

// Empty when the engine and the game data (Debian's packages ioquake3-server and
// openarena-server) are installed; otherwise what is missing, for the test's skip message.
QString missingEngine();

// Builds a game folder: baseoa/ with links to the OpenArena archives and the game library, an empty
// baseq3/ (where our scripts go), home/ for the engine's own files, and an executable quake3.exe
// that runs the engine with baseq3 as the game folder. Returns an error text, empty on success.
QString buildGameFolder(const QString& folder);

// A UDP port on 127.0.0.1 that nothing listens on right now.
quint16 freeUdpPort();

// The server's answer to "getstatus": server info and the players' names.
struct ServerStatus {
    QMap<QString, QString> info; // cvar name -> value
    QSet<QString> players;
};

std::optional<ServerStatus> getStatus(quint16 port);
// Runs a console command through rcon; returns the printed answer.
std::optional<QString> rcon(quint16 port, const QString& password, const QString& command);

// Polls getstatus for up to a minute until the server plays the map, with exactly these players
// when given; none if it never did or the server ended first.
std::optional<ServerStatus> waitForMap(quint16 port, const QString& map,
                                       const std::function<bool()>& serverLives,
                                       const QSet<QString>& players = {});

} // namespace halvane::e2e
