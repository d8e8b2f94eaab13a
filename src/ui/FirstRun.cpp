#include "ui/FirstRun.h"

#include "maps/ArchiveListing.h"
#include "maps/MapSelectionFile.h"
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

FirstRunResult prepareFirstRun(SettingsStore& store, const QString& folder,
                               const FreeGameSources& sources, const QString& programFolder) {
    const QString stored =
        store.read(QStringLiteral("Settings"), QStringLiteral("Path"), QString());
    if (!stored.isEmpty())
        return {FirstRunResult::AlreadyStored,
                QStringLiteral("A game location is already stored: ") + stored};

    const QStringList archives =
        QDir(sources.dataFolder).entryList({QStringLiteral("*.pk3")}, QDir::Files, QDir::Name);
    if (!QFileInfo(sources.engine).isExecutable() || archives.isEmpty() ||
        !QFileInfo::exists(sources.gameLibrary))
        return failed(QStringLiteral("The free game is not installed; install the Debian packages "
                                     "ioquake3-server and openarena-server."));

    const QString baseoa = folder + QStringLiteral("/baseoa");
    QDir dir;
    if (!dir.mkpath(baseoa) || !dir.mkpath(folder + QStringLiteral("/baseq3")) ||
        !dir.mkpath(folder + QStringLiteral("/home")))
        return failed(QStringLiteral("Cannot make the game folder ") + folder);
    for (const QString& archive : archives) {
        if (!linkInto(sources.dataFolder + QLatin1Char('/') + archive, baseoa))
            return failed(QStringLiteral("Cannot link ") + archive + QStringLiteral(" into ") +
                          baseoa);
    }
    if (!linkInto(sources.gameLibrary, baseoa))
        return failed(QStringLiteral("Cannot link the game code into ") + baseoa);

    const QString script = folder + QLatin1Char('/') + ExeName;
    QString reason;
    if (!saveWholeFile(script, freeGameScript(folder, sources.engine), &reason))
        return failed(QStringLiteral("Cannot write ") + script + QStringLiteral(": ") + reason);
    QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                      QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                      QFile::ExeOther);

    if (!store.write(QStringLiteral("Settings"), QStringLiteral("Path"), folder) ||
        !store.write(QStringLiteral("Settings"), QStringLiteral("Exe"), ExeName) || !store.flush())
        return failed(QStringLiteral("Cannot store the game location"));
    // The free game's maps do not load in the 16 MB the original game's server
    // got by with; 64 MB is the most a dedicated server gets without a warning.
    const QString network = QStringLiteral("Network"), hunk = QStringLiteral("HunkMegs");
    if (store.read(network, hunk, QString()).isEmpty() &&
        (!store.write(network, hunk, QStringLiteral("64")) || !store.flush()))
        return failed(QStringLiteral("Cannot store the game's memory size"));
    if (!programFolder.isEmpty()) {
        QStringList paths;
        for (const QString& archive : archives)
            paths.append(baseoa + QLatin1Char('/') + archive);
        QString failure;
        offerFreeGameMaps(paths, programFolder, &failure);
        if (!failure.isEmpty())
            return failed(QStringLiteral("Prepared the free game in ") + folder +
                          QStringLiteral(", but ") + failure);
    }
    return {FirstRunResult::Prepared, QStringLiteral("Prepared the free game in ") + folder};
}

} // namespace halvane
