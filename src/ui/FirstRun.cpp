#include "ui/FirstRun.h"

#include "maps/ArchiveListing.h"
#include "maps/MapSelectionFile.h"
#include "platform/ProgramFolder.h"
#include "platform/SettingsStore.h"
#include "platform/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <algorithm>

namespace halvane {

namespace {
const QString ExeName = QStringLiteral("quake3.exe");

// One word for sh, whatever the path holds.
QString shellWord(const QString& text) {
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

bool linkInto(const QString& source, const QString& folder) {
    const QString link = folder + QLatin1Char('/') + QFileInfo(source).fileName();
    if (QFileInfo(link).isSymLink() || QFileInfo::exists(link))
        return true;
    return QFile::link(source, link);
}

FirstRunResult failed(const QString& message) {
    return {FirstRunResult::Failed, message};
}

} // namespace

QStringList offerFreeGameMaps(const QStringList& archives, const QString& programFolder,
                              QString* failure) {
    QStringList maps;
    for (const QString& archive : archives) {
        // An unreadable archive only means fewer maps on offer.
        listArchive(archive, [&maps](const QByteArray& member) {
            const auto file = bspMemberName(member);
            if (!file)
                return;
            const QString map = file->chopped(4); // without ".bsp"
            if (!map.isEmpty() && !maps.contains(map))
                maps.append(map);
        });
    }
    if (maps.isEmpty())
        return maps;
    // Both files share one format: a name per line.
    const QString maplist = programFolder + QStringLiteral("/maplist.txt");
    QString reason;
    if (!QFileInfo::exists(maplist) && !writeMapSelection(maplist, maps, &reason) && failure)
        *failure = QStringLiteral("cannot write ") + maplist + QStringLiteral(": ") + reason;

    const QString mapsel = programFolder + QStringLiteral("/mapsel.txt");
    if (!QFileInfo::exists(mapsel)) {
        QStringList deathmatch = maps.filter(QRegularExpression(QStringLiteral("^oa_dm\\d+$")));
        std::sort(deathmatch.begin(), deathmatch.end(), [](const QString& a, const QString& b) {
            return a.mid(5).toInt() < b.mid(5).toInt();
        });
        const QStringList rotation = deathmatch.isEmpty() ? maps : deathmatch;
        if (!writeMapSelection(mapsel, rotation.mid(0, 3), &reason) && failure)
            *failure = QStringLiteral("cannot write ") + mapsel + QStringLiteral(": ") + reason;
    }
    return maps;
}

QString defaultFreeGameFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Halvane/openarena");
}

QByteArray freeGameScript(const QString& folder, const QString& engine) {
    const QString line =
        QStringLiteral("exec ") + shellWord(engine) +
        QStringLiteral(" +set com_basegame baseoa +set fs_game baseq3 +set fs_basepath ") +
        shellWord(folder) + QStringLiteral(" +set fs_homepath ") +
        shellWord(folder + QStringLiteral("/home")) +
        QStringLiteral(" +set com_legacyprotocol 71 +set com_protocol 71 +set vm_game 0 \"$@\"\n");
    return QByteArrayLiteral("#!/bin/sh\n"
                             "# The free OpenArena game on the ioquake3 dedicated server, set up "
                             "by Halvane as its game.\n") +
           line.toUtf8();
}

bool freeGameInstalled(const FreeGameSources& sources) {
    return QFileInfo(sources.engine).isExecutable() && QFileInfo::exists(sources.gameLibrary) &&
           !QDir(sources.dataFolder).entryList({QStringLiteral("*.pk3")}, QDir::Files).isEmpty();
}

namespace {
// The stand-in executable quake3.exe in folder, and the folders the game
// needs: the location check at each start looks for that name.
FirstRunResult writeStandIn(const QString& folder, const QByteArray& script) {
    QDir dir;
    if (!dir.mkpath(folder + QStringLiteral("/baseq3")))
        return failed(QStringLiteral("Cannot make the game folder ") + folder +
                      QStringLiteral("/baseq3"));
    const QString path = folder + QLatin1Char('/') + ExeName;
    QString reason;
    if (!saveWholeFile(path, script, &reason))
        return failed(QStringLiteral("Cannot write ") + path + QStringLiteral(": ") + reason);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                    QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                    QFile::ExeOther);
    return {FirstRunResult::Prepared, QString(), true};
}
} // namespace

FirstRunResult prepareFreeGame(const QString& folder, const FreeGameSources& sources,
                               const QString& programFolder) {
    const QStringList archives =
        QDir(sources.dataFolder).entryList({QStringLiteral("*.pk3")}, QDir::Files, QDir::Name);
    if (!freeGameInstalled(sources))
        return failed(QStringLiteral("The free game is not installed; install the Debian packages "
                                     "ioquake3-server and openarena-server."));

    const QString baseoa = folder + QStringLiteral("/baseoa");
    QDir dir;
    if (!dir.mkpath(baseoa) || !dir.mkpath(folder + QStringLiteral("/home")))
        return failed(QStringLiteral("Cannot make the game folder ") + folder);
    for (const QString& archive : archives) {
        if (!linkInto(sources.dataFolder + QLatin1Char('/') + archive, baseoa))
            return failed(QStringLiteral("Cannot link ") + archive + QStringLiteral(" into ") +
                          baseoa);
    }
    if (!linkInto(sources.gameLibrary, baseoa))
        return failed(QStringLiteral("Cannot link the game code into ") + baseoa);
    if (const FirstRunResult written = writeStandIn(folder, freeGameScript(folder, sources.engine));
        written.outcome == FirstRunResult::Failed)
        return written;

    if (!programFolder.isEmpty()) {
        QStringList paths;
        for (const QString& archive : archives)
            paths.append(baseoa + QLatin1Char('/') + archive);
        QString failure;
        offerFreeGameMaps(paths, programFolder, &failure);
        if (!failure.isEmpty())
            return {FirstRunResult::Failed,
                    QStringLiteral("Prepared the free game in ") + folder +
                        QStringLiteral(", but ") + failure,
                    true};
    }
    return {FirstRunResult::Prepared, QStringLiteral("Prepared the free game in ") + folder, true};
}

QByteArray engineScript(const QString& folder, const QString& engine) {
    return QByteArrayLiteral("#!/bin/sh\n"
                             "# The game's own server program, set up by Halvane as its game: "
                             "the scripts Halvane writes here come first.\n") +
           (QStringLiteral("exec ") + shellWord(engine) + QStringLiteral(" +set fs_homepath ") +
            shellWord(folder) + QStringLiteral(" \"$@\"\n"))
               .toUtf8();
}

FirstRunResult prepareEngineFolder(const QString& folder, const QString& engine) {
    FirstRunResult written = writeStandIn(folder, engineScript(folder, engine));
    if (written.gameReady)
        written.message = QStringLiteral("Prepared a game folder for ") + engine +
                          QStringLiteral(" in ") + folder;
    return written;
}

bool storeFreeGameMemory(SettingsStore& store) {
    // The free game's maps do not load in the 16 MB the original game's server
    // got by with; 64 MB is the most a dedicated server gets without a warning.
    const QString network = QStringLiteral("Network"), hunk = QStringLiteral("HunkMegs");
    return !store.read(network, hunk, QString()).isEmpty() ||
           (store.write(network, hunk, QStringLiteral("64")) && store.flush());
}

FirstRunResult prepareFirstRun(SettingsStore& store, const QString& folder,
                               const FreeGameSources& sources, const QString& programFolder) {
    // A location the next start would forget (no quake3.exe there) is no location.
    const QString stored =
        store.read(QStringLiteral("Settings"), QStringLiteral("Path"), QString());
    if (!stored.isEmpty() && FileExists(findIgnoringCase(stored, ExeName)))
        return {FirstRunResult::AlreadyStored,
                QStringLiteral("A game location is already stored and stays as it is: ") + stored +
                    QStringLiteral(". To play the free game instead, start Halvane, open "
                                   "Settings, Set Quake 3 path (Ctrl+P), press \"Use the "
                                   "installed free game\" and then Okay.")};

    FirstRunResult result = prepareFreeGame(folder, sources, programFolder);
    if (!result.gameReady)
        return result;
    // Stored even when the maps could not be offered: the game itself is ready.
    if (!store.write(QStringLiteral("Settings"), QStringLiteral("Path"), folder) ||
        !store.write(QStringLiteral("Settings"), QStringLiteral("Exe"), ExeName) || !store.flush())
        return failed(QStringLiteral("Cannot store the game location in ") + store.location() +
                      QStringLiteral(": ") + store.failureReason());
    if (!storeFreeGameMemory(store))
        return failed(QStringLiteral("Cannot store the game's memory size in ") + store.location() +
                      QStringLiteral(": ") + store.failureReason());
    return result;
}

} // namespace halvane
