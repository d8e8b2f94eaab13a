#pragma once

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <atomic>
#include <optional>

namespace halvane {

// One member of one archive.
struct ArchiveMember {
    QString archive;   // the archive's full path
    QByteArray member; // the member's name as the archive spells it
};

// What the game's data folders hold, as far as the map lists and the preview
// ask: the maps the game can load and the level shots inside its archives.
// The data folders are baseq3 and, beside it, baseoa, the base folder of the
// free game, which runs with baseq3 as its mod folder. Names are matched as
// the game's file system matches archive members: ASCII letters without
// regard to case, '\' and ':' taken for '/'. Loose map files match in any
// case too, as on Windows (the game on Linux wants a loose file's exact name).
class GameFiles {
public:
    // Lists the data folders below gameFolder: their loose maps and the
    // central directories of their .pk3 archives. An archive that cannot be
    // read is passed over, as the game passes it over. Turning *stop true
    // ends the listing early, with nothing listed.
    static GameFiles list(const QString& gameFolder, const std::atomic<bool>* stop = nullptr);

    bool isListed() const { return m_listed; }
    // True when a listing was made and the game has no maps/<name>.bsp,
    // loose or in an archive (the name trimmed of spaces).
    bool isMissing(const QString& name) const;
    // The archive member the game reads for levelshots/<fileName>: of the
    // archives holding it, the one the game searches first.
    std::optional<ArchiveMember> findLevelShot(const QString& fileName) const;

private:
    void addMember(const QString& archive, const QByteArray& member);

    bool m_listed = false;
    QSet<QString> m_maps;                       // names, as keys
    QHash<QString, ArchiveMember> m_levelShots; // member name as key -> member
};

// A file name as the game compares names: ASCII capitals in lower case,
// '\' and ':' as '/'.
QString gameFileKey(const QString& name);
// Whether the game loads archive a before archive b of the same folder (and
// so searches b first): names compared with ASCII letters taken as capitals.
bool loadsBefore(const QString& a, const QString& b);

} // namespace halvane
