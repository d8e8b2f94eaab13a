#pragma once

#include <QString>

namespace halvane {

class SettingsStore;

// Where the free game comes from: Debian's ioquake3 dedicated server and the
// OpenArena data and game code.
struct FreeGameSources {
    QString engine = QStringLiteral("/usr/lib/ioquake3/ioq3ded");
    QString dataFolder = QStringLiteral("/usr/share/games/openarena/baseoa");
    QString gameLibrary = QStringLiteral("/usr/lib/openarena-server/baseoa/qagamex86_64.so");
};

struct FirstRunResult {
    enum Outcome { Prepared, AlreadyStored, Failed };
    Outcome outcome = Failed;
    QString message;
    bool gameReady = false; // the game folder can be used, even if something else failed
};

// The game folder prepared for a first run: the user's data folder +
// "Halvane/openarena".
QString defaultFreeGameFolder();

// The stand-in game executable: a shell script that runs the dedicated
// server on the folder's data, passing on every argument.
QByteArray freeGameScript(const QString& folder, const QString& engine);

// Whether Debian's free game is installed where sources say.
bool freeGameInstalled(const FreeGameSources& sources);

// Makes folder a game folder over the free game: baseoa/ with links to its
// archives and game code, an empty baseq3/, and the executable quake3.exe.
// With a program folder, the free game's maps are offered there too (see
// offerFreeGameMaps); when that file cannot be written the answer is Failed
// and says why, but the game is ready. Stores nothing.
FirstRunResult prepareFreeGame(const QString& folder, const FreeGameSources& sources = {},
                               const QString& programFolder = {});

// The stand-in executable for a game's own server program: a shell script
// that runs engine with folder searched first for the scripts.
QByteArray engineScript(const QString& folder, const QString& engine);

// Makes folder a game folder whose quake3.exe runs engine, so a location of
// a server program of another name passes the check at each start.
FirstRunResult prepareEngineFolder(const QString& folder, const QString& engine);

// The free game needs more game memory than the original game's default:
// stores 64 MB unless a size is stored. False when the store refused.
bool storeFreeGameMemory(SettingsStore& store);

// When no usable game location is stored (none, or one without quake3.exe),
// prepares the free game in folder (prepareFreeGame) and stores it as the
// game location with the memory it needs. A usable stored location is never
// touched; the answer then says how to replace it.
FirstRunResult prepareFirstRun(SettingsStore& store, const QString& folder,
                               const FreeGameSources& sources = {},
                               const QString& programFolder = {});

// The free game keeps its maps in baseoa, where the map search does not look.
// So that a first launch plays at once, names every map of the archives in
// the import list maplist.txt and picks the first three deathmatch maps as
// the rotation in mapsel.txt, each written only when that file is missing.
// Returns the map names found; failure, when given, says which file could
// not be written and why.
QStringList offerFreeGameMaps(const QStringList& archives, const QString& programFolder,
                              QString* failure = nullptr);

} // namespace halvane
