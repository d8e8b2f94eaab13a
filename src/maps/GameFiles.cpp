#include "maps/GameFiles.h"

#include "maps/ArchiveListing.h"
#include "maps/MapDiscovery.h"
#include "maps/MapRecord.h"
#include "platform/ProgramFolder.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace halvane {

namespace {
// The free game's data come first: it names baseq3 as its mod folder, whose
// files the game searches before those of its base folder.
const char* const DataFolders[] = {"baseoa", "baseq3"};

char16_t gameChar(QChar c, bool capitals) {
    char16_t u = c.unicode();
    if (u == u'\\' || u == u':')
        return u'/';
    if (capitals && u >= u'a' && u <= u'z')
        return char16_t(u - (u'a' - u'A'));
    if (!capitals && u >= u'A' && u <= u'Z')
        return char16_t(u + (u'a' - u'A'));
    return u;
}
} // namespace

QString gameFileKey(const QString& name) {
    QString key = name;
    for (QChar& c : key)
        c = QChar(gameChar(c, false));
    return key;
}

bool loadsBefore(const QString& a, const QString& b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](QChar x, QChar y) { return gameChar(x, true) < gameChar(y, true); });
}

GameFiles GameFiles::list(const QString& gameFolder, const std::atomic<bool>* stop) {
    GameFiles files;
    if (gameFolder.isEmpty())
        return files; // no game known yet: no map is taken for missing
    for (const char* name : DataFolders) {
        const QString folder = findIgnoringCase(gameFolder, QLatin1String(name));
        if (!QFileInfo(folder).isDir())
            continue;
        for (const QString& map : looseMapNames(findIgnoringCase(folder, QStringLiteral("maps"))))
            files.m_maps.insert(gameFileKey(map));
        // Each archive loaded goes before the ones loaded earlier in the
        // game's search, so the last one here wins.
        QStringList archives = archiveNames(folder);
        std::sort(archives.begin(), archives.end(), loadsBefore);
        for (const QString& archive : std::as_const(archives)) {
            if (stop && *stop)
                return GameFiles();
            const QString path = QDir(folder).filePath(archive);
            listArchive(path, [&](const QByteArray& member) { files.addMember(path, member); });
        }
    }
    files.m_listed = true;
    return files;
}

void GameFiles::addMember(const QString& archive, const QByteArray& member) {
    static const QString Maps = QStringLiteral("maps/");
    static const QString Bsp = QStringLiteral(".bsp");
    static const QString LevelShots = QStringLiteral("levelshots/");
    const QString key = gameFileKey(QString::fromLatin1(member));
    if (key.startsWith(Maps) && key.endsWith(Bsp) && key.size() > Maps.size() + Bsp.size())
        m_maps.insert(key.mid(Maps.size(), key.size() - Maps.size() - Bsp.size()));
    else if (key.startsWith(LevelShots))
        m_levelShots.insert(key, {archive, member});
}

bool GameFiles::isMissing(const QString& name) const {
    return m_listed && !m_maps.contains(gameFileKey(trimSpaces(name)));
}

std::optional<ArchiveMember> GameFiles::findLevelShot(const QString& fileName) const {
    const auto found =
        m_levelShots.constFind(gameFileKey(QStringLiteral("levelshots/") + fileName));
    if (found == m_levelShots.constEnd())
        return std::nullopt;
    return *found;
}

} // namespace halvane
