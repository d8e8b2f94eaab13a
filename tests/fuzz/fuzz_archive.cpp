// The game's archives: any bytes as a .pk3, or (odd first byte) a real zip of the member names the
// input gives, one a line. The listing yields every member as stored, each of them readable, and
// only names ending in "bsp" as maps; the search skips pak0.pk3, names an archive it cannot read
// and adds each new map once.
#include "FuzzSupport.h"

#include "maps/ArchiveListing.h"

#include <QSet>

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Discovering discovering;
    auto& [platform, catalogue, discovery, before] = discovering;
    if (platform.app->state.GameFolder.isEmpty())
        platform.makeGameFolder();
    const QString archive = platform.gameFolder() + "/baseq3/maps.pk3";
    const QByteArray bytes = bytesOf(data, size).mid(1);
    const bool generated = size > 0 && (data[0] & 1);
    const QStringList members = generated ? QString::fromLatin1(bytes).split('\n') : QStringList();
    // libzip takes neither empty nor repeated names, and a name ends at a zero byte.
    if (generated && (QSet<QString>(members.begin(), members.end()).size() != members.size() ||
                      members.contains(QString()) || bytes.contains('\0') ||
                      !test::makeArchive(archive, members)))
        return 0;
    if (!generated)
        writeFile(archive, bytes);
    QFile::remove(platform.gameFolder() + "/baseq3/pak0.pk3");
    QFile::copy(archive, platform.gameFolder() + "/baseq3/pak0.pk3");

    QStringList listed, maps;
    const bool readable = listArchive(archive, [&](const QByteArray& name) {
        listed.append(QString::fromLatin1(name));
        if (const auto map = bspMemberName(name)) {
            FUZZ_CHECK(map->endsWith("bsp") && !map->contains('/'));
            FUZZ_CHECK(QString::fromLatin1(name.left(50)).endsWith(*map));
            maps.append(*map);
        }
    });
    FUZZ_CHECK(!generated || (readable && listed == members));
    // A member reads back whole or not at all.
    for (const QString& name : listed) {
        const auto content = readArchiveMember(archive, name.toLatin1(), 1 << 20);
        FUZZ_CHECK(!generated || content == QByteArray("IBSP"));
    }

    writeFile(catalogue.dataPath(), before);
    platform.messages.clear();
    discovery.setPacing({0, 0});
    discovery.searchArchives();
    FUZZ_CHECK(discovery.pakMaps == maps);
    // A readable archive says nothing but which names had to be cut or left out.
    if (readable) {
        FUZZ_CHECK(platform.messages.shown.size() <= 2);
        for (const ShownMessage& shown : platform.messages.shown)
            FUZZ_CHECK(shown.title == "Map Names Cut" || shown.title == "Map Names Left Out");
    } else {
        FUZZ_CHECK(test::onlyMessage(platform.messages).startsWith("Error|Error: "));
    }
    const QByteArray after = test::readAll(catalogue.dataPath());
    FUZZ_CHECK(after.startsWith(before) && after.size() % MapRecord::Size == 0);
    // Each map once, and found afterwards; a name longer than its field is
    // stored cut, so never found whole, and counts apart.
    QSet<QString> names;
    qsizetype cut = 0;
    for (const QString& map : maps) {
        const QString name = trimSpaces(map.left(qMax<qsizetype>(0, map.size() - 4)));
        if (map.size() > 24)
            ++cut;
        else if (!discoveryAdds(name))
            continue;
        else if (!name.isEmpty() && catalogue.FindMap(name) > 0)
            names.insert(name.toLower());
        else
            FUZZ_CHECK(name.isEmpty());
    }
    FUZZ_CHECK(catalogue.CountMaps() - before.size() / MapRecord::Size <= names.size() + cut);
    return 0;
}
