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
};

// The game folder prepared for a first run: the user's data folder +
// "Halvane/openarena".
QString defaultFreeGameFolder();

// The stand-in game executable: a shell script that runs the dedicated
// server on the folder's data, passing on every argument.
QByteArray freeGameScript(const QString& folder, const QString& engine);

// When no game location is stored yet, makes folder a game folder over the
// free game (baseoa/ with links to its archives and game code, an empty
// baseq3/, the executable quake3.exe) and stores it as the game location.
// A stored location is never touched. With a program folder, the free game's
// maps are offered there too (see offerFreeGameMaps); when that file cannot
// be written the answer is Failed and says why, the location stays stored.
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
