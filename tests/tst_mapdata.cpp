// The map data file: the record format byte for byte, counting, look-up and the start-up check;
// finding new maps: the archive search over real zip archives, the loose map files, the import
// list, and the damaged inputs each of them may meet.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "maps/ArchiveListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"

#include <QProcess>
#include <QPushButton>
#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
struct Fixture {
    TestPlatform platform;
    MapCatalogue catalogue{platform.programFolder()};
    MapDiscovery discovery{catalogue, *platform.app, nullptr};
    QStringList shown; // header|status at every pause
    int loads = 0;

    Fixture() {
        platform.makeGameFolder();
        discovery.setPacing({0, 0});
        QObject::connect(&discovery, &MapDiscovery::lineShown, [this] {
            shown.append(discovery.searchWindow().header() + '|' +
                         discovery.searchWindow().status());
        });
        QObject::connect(&discovery, &MapDiscovery::searchEnded, [this] { ++loads; });
    }
    QString baseq3() const { return platform.gameFolder() + "/baseq3"; }
    void known(const QStringList& files) {
        platform.writeFile(catalogue.dataPath(), catalogueOf(files));
    }
    QStringList fileNames() {
        QStringList names;
        const MapSnapshot snapshot = catalogue.snapshot();
        for (int n = 1; n <= snapshot.count(); ++n)
            names.append(snapshot.record(n).get(MapField::FileName));
        return names;
    }
};

QString leftOutNotice(const QString& count, const QString& names) {
    return message("Map Names Left Out",
                   count +
                       " not added: the game's console cannot take a map name that holds a "
                       "control character, a double quote, a semicolon, a blank or a comment "
                       "mark, and would read the rest as another command:\r\r" +
                       names +
                       "\r\rTo play one of them, give its .bsp file a name of letters, digits "
                       "and signs such as - and _.",
                   MsgButtons::Ok, MsgIcon::Information);
}

// maps.dat ("<none>": no file, "<folder>": a folder of that name) and instmaps.dat ("": none); the
// only message at start-up, whether maps.dat is then instmaps.dat's copy, else as it was; its
// records, a name and the number it is found at.
const QString Quiet = "0 messages";
const QByteArray Three = catalogueOf({"q3dm1", "q3ctf1", "q3tourney2"});
const QByteArray Installed = catalogueOf({"q3dm1", "q3dm2"}) + "tail";
const QByteArray Garbage = [] {
    QByteArray bytes;
    for (int i = 0; i < 1000; ++i)
        bytes.append(char((i * 37 + 11) % 256));
    return bytes;
}();
const std::tuple<const char*, QByteArray, QByteArray, QString, bool, int, QString, int> MapFiles[] =
    {
        {"missing, nothing installed", "<none>", "",
         message(
             "Warning!",
             "Unable to find maps.dat!\r\rThis file contains all of the pre-installed maps, their "
             "names,\r\rand default environment settings.  Contact " +
                 AppInfo::supportContact() + " for assistance.",
             MsgButtons::Ok, MsgIcon::Critical),
         false, 0, "q3dm1", -1},
        {"missing, installed copied", "<none>", Installed, Quiet, true, 2, "q3dm2", 2},
        {"first record wiped", QByteArray(71, ' ') + catalogueOf({"custom"}), Installed,
         message(
             "Notice",
             "A bug was found in previous versions of Halvane that has caused \rsome of the maps "
             "in your maps in your maps.dat (map data file) to be erased.  \r\rThis has been "
             "corrected.\r\rHowever, any custom maps that you had specified will need to be "
             "re-entered.",
             MsgButtons::Ok, MsgIcon::Information),
         true, 2, "custom", -1},
        // Never replaced, never written: it may hold the operator's own maps.
        {"a folder of that name", "<folder>", Installed,
         message("Warning!",
                 "maps.dat is there but cannot be read:\r\r<path>\rIt is a folder, not a file.\r\r"
                 "Halvane leaves it as it is and runs without maps. Make it readable and start "
                 "Halvane again to use its maps.",
                 MsgButtons::Ok, MsgIcon::Critical),
         false, 0, "q3dm1", -1},
        {"empty", QByteArray(), "", Quiet, false, 0, "q3dm1", -1},
        {"70 bytes", Three.left(70), "", Quiet, false, 0, "q3dm1", -1},
        {"141 bytes", Three.left(141), "", Quiet, false, 1, "q3dm1", 1},
        {"two records", Three.left(142), "", Quiet, false, 2, "q3dm1", 1},
        {"garbage", Garbage, "", Quiet, false, 1000 / 71, "q3dm1", -1},
        {"capitals", Three, "", Quiet, false, 3, "Q3CTF1", 2},
        {"spaces around", Three, "", Quiet, false, 3, "  q3tourney2  ", 3},
        {"part of a name", Three, "", Quiet, false, 3, "q3dm", -1},
        {"accented capitals", catalogueOf({"q3dm1", QStringLiteral(u"\u00c9TAPE")}), "", Quiet,
         false, 2, QStringLiteral(u"\u00e9tape"), 2},
        {"no single byte", Three, "", Quiet, false, 3, QStringLiteral(u"q3dm1\u0100"), -1},
        {"duplicate gives the lower", catalogueOf({"a", "dup", "b", "DUP"}), "", Quiet, false, 4,
         "dup", 2},
        {"deleted slot never matches", catalogueOf({"", "q3dm1"}), "", Quiet, false, 2, "q3dm1", 2},
        {"blank finds the first deleted", catalogueOf({"q3dm1", "", ""}), "", Quiet, false, 3,
         "   ", 2},
        {"blank without deleted slots", Three, "", Quiet, false, 3, "", -1},
};

// The line on which Cancel is pressed, the maps found and the entry lines shown.
const std::tuple<const char*, QString, QStringList, int> Searches[] = {
    {"whole search", "", {"q3dm1", "", "newmap", "capmap", "nodo", "c"}, 10},
    // Stops after the entry under way, keeps what it added, ends as usual.
    {"Cancel", "Skipping: q3dm1", {"q3dm1", "", "newmap"}, 2},
};

// How the archive was made or damaged; whether it is listed and its member read.
const std::tuple<const char*, QString, bool, bool> Zips[] = {
    {"as libzip writes it", "", true, true},
    {"archive comment", "comment", true, true},
    {"64-bit records, stored", "zip -fz -0", true, true},
    {"64-bit records, deflated", "zip -fz", true, true},
    {"member damaged", "flip", true, false},
    {"directory cut", "cut", false, false},
};
} // namespace

class MapDataTest : public QObject {
    Q_OBJECT
private slots:
    void recordLayoutByteForByte();
    void startUpCountAndLookUp_data() { addRows(MapFiles); }
    void startUpCountAndLookUp();
    void archiveSearch_data() { addRows(Searches); }
    void archiveSearch();
    void zipReader_data() { addRows(Zips); }
    void zipReader();
    void looseMapsAndImportList();
    void damagedInputs();
};

// Short fields are padded with blanks, long ones cut at their width without spilling into the next.
void MapDataTest::recordLayoutByteForByte() {
    const auto bytes = [](const MapRecord& record) {
        return QByteArray(record.bytes(), MapRecord::Size);
    };
    QCOMPARE(
        bytes(makeMapRecord("The Longest Yard", "q3dm17", {"20", "15", "8", "800", "320", "1000"})),
        QByteArray("The Longest Yard              q3dm17              20 15 8  800 320 1000"));
    QCOMPARE(bytes(makeMapRecord("A display name of thirty-five chars", "abcdefghijklmnopqrstuvwxy",
                                 {"1234", "15", "8", "800", "320", "10000"})),
             QByteArray("A display name of thirty-five abcdefghijklmnopqrst12315 8  800 320 1000"));
}

void MapDataTest::startUpCountAndLookUp() {
    const auto& [row, data, installed, told, replaced, records, name, found] = fetchRow(MapFiles);
    TestPlatform platform;
    const QString path = platform.programFolder() + "/maps.dat";
    QFile::remove(path);
    platform.writeFile(platform.programFolder() + "/maps.bak", "the operator's backup");
    if (data == "<folder>")
        QDir().mkpath(path);
    else if (data != "<none>")
        platform.writeFile(path, data);
    if (!installed.isEmpty())
        platform.writeFile(platform.programFolder() + "/instmaps.dat", installed);
    MapCatalogue catalogue(platform.programFolder());
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QCOMPARE(onlyMessage(platform.messages),
             QString(told).replace("<path>", QDir::toNativeSeparators(path)));
    QCOMPARE(std::tuple(int(catalogue.CountMaps()), int(catalogue.snapshot().count()),
                        int(catalogue.FindMap(name)), int(catalogue.snapshot().find(name))),
             std::tuple(records, records, found, found));
    QVERIFY(records == 0 || catalogue.readRecord(qint16(records)));
    if (data == "<folder>") // nothing written
        QVERIFY(!catalogue.append({makeMapRecord("x", "x", {})}) && !catalogue.backup());
    QCOMPARE(QFileInfo(path).isDir() ? QByteArray("<folder>") : readAll(path), replaced ? installed
                                                                               : data == "<none>"
                                                                                   ? QByteArray()
                                                                                   : data);
    QCOMPARE(readAll(platform.programFolder() + "/maps.bak"), "the operator's backup");
    // A damaged file is kept beside it.
    QCOMPARE(readAll(platform.programFolder() + "/maps-damaged.dat"),
             replaced && data != "<none>" ? data : QByteArray());
}

void MapDataTest::archiveSearch() {
    const auto& [row, cancel, maps, lines] = fetchRow(Searches);
    const QString cancelAt = cancel; // the lambda below takes it
    Fixture f;
    f.known({"q3dm1", ""});
    QVERIFY(makeArchive(f.baseq3() + "/b.pk3", {"maps/newmap.bsp", "maps/q3dm1.bsp"}));
    f.platform.writeFile(f.baseq3() + "/bad.pk3", QByteArray(3000, 'x'));
    QVERIFY(makeArchive(f.baseq3() + "/pak0.pk3", {"maps/skipme.bsp"}));
    QVERIFY(makeArchive(f.baseq3() + "/Pak0.pk3", {"maps/capmap.bsp"}));
    // Any folder counts; names are cut at 50 characters before the test for "bsp".
    const QString deep = "a/" + QString(42, 'b');
    QVERIFY(makeArchive(f.baseq3() + "/zz.pk3",
                        {"levelshots/newmap.jpg", "maps/newmap.bsp", "maps/upper.BSP",
                         "maps/nodotbsp", "maps/xbsp", deep + "/c.bsp", deep + "b/d.bsp",
                         // names the console would split: left out, told once
                         "maps/c\nquit\n.bsp", "maps/q\";sets inj_map 1;\".bsp",
                         "maps/two words.bsp"}));
    f.platform.writeFile(f.baseq3() + "/notes.txt", "not an archive");
    QObject::connect(&f.discovery, &MapDiscovery::lineShown, [&] {
        if (f.discovery.searchWindow().status() == cancelAt)
            f.discovery.searchWindow().findChild<QPushButton*>("cmdCancel")->click();
    });

    f.discovery.searchArchives();

    QCOMPARE(f.fileNames(), maps);
    // "Skipping: " alone is the deleted slot.
    const QStringList entries =
        QStringList{"Adding: newmap",     "Skipping: q3dm1",  "Adding: capmap",
                    "Skipping: newmap",   "Adding: nodo",     "Skipping: ",
                    "Adding: c",          "Skipping: c quit", "Skipping: q\";sets inj_map 1;\"",
                    "Skipping: two words"}
            .replaceInStrings(QRegularExpression("^"), "Searching for PK3 files...|");
    QCOMPARE(f.shown, QStringList{"Getting Map Names...|baseq3\\zz.pk3"} + entries.mid(0, lines) +
                          QStringList{"Done|Finished loading maps"});
    // The damaged archive is named and the search goes on past it.
    QStringList told{message("Error", "Error: " + QDir::toNativeSeparators(f.baseq3() + "/bad.pk3"),
                             MsgButtons::Ok, MsgIcon::Critical)};
    if (cancelAt.isEmpty())
        told << leftOutNotice("3 maps were", "c[code 10]quit[code 10]\rq\";sets inj_map 1;\"\r"
                                             "two words");
    QCOMPARE(described(f.platform.messages), told);
    QCOMPARE(std::pair(f.loads, f.platform.desktop.busyDepth), std::pair(1, 0));
}

// The program's own zip reader against archives written by other tools.
void MapDataTest::zipReader() {
    const auto& [row, shape, listed, read] = fetchRow(Zips);
    TestPlatform platform;
    const QString folder = platform.programFolder(), path = folder + "/a.pk3";
    const QByteArray shot = Garbage.repeated(5);
    const QStringList names{"maps/a.bsp", "levelshots/a.jpg"};
    if (shape.startsWith("zip")) {
        for (const QString& name : names)
            platform.writeFile(folder + '/' + name, name.endsWith("jpg") ? shot : "IBSP");
        QProcess zip;
        zip.setWorkingDirectory(folder);
        zip.start("zip", shape.split(' ').mid(1) + QStringList{"-q", path} + names);
        QVERIFY(zip.waitForFinished() && zip.exitCode() == 0);
    } else {
        QVERIFY(makeArchive(path, names, {{names[1], shot}}));
    }
    QByteArray bytes = readAll(path);
    if (shape == "comment")
        bytes = bytes.chopped(2) + QByteArray("\x05\0notes", 7);
    if (shape == "flip")
        bytes[bytes.indexOf("PK\1\2") - 10] ^= 1; // within the last member's data
    if (shape == "cut")
        bytes.chop(30);
    platform.writeFile(path, bytes);
    QStringList members;
    QCOMPARE(listArchive(path, [&](const QByteArray& name) { members.append(name); }), listed);
    QCOMPARE(members, listed ? names : QStringList());
    QCOMPARE(readArchiveMember(path, "levelshots/a.jpg", 5000).value_or("none"),
             read ? shot : "none");
    QVERIFY(!readArchiveMember(path, "levelshots/a.jpg", 4999)); // over the limit
}

void MapDataTest::looseMapsAndImportList() {
    Fixture f;
    f.known({"known"});
    f.platform.ini->write("Defaults", "FragLimit", "7");
    for (const char* name : {"b.bsp", "a.bsp", "KNOWN.bsp", "readme.txt", "C.BSP", ".bsp",
                             "a_loose_map_of_22chars.bsp", "q\";sets inj_map 1;\".bsp"})
        f.platform.writeFile(f.baseq3() + "/MAPS/" + name, "IBSP");
    const QString list = f.platform.writeFile(f.platform.programFolder() + "/maplist.txt",
                                              "// a comment\r\nnewone\r\nB\n\r\n\r\n"
                                              "NEWONE\r\n onespace\r\n/notacomment\r\n"
                                              "tab\tquit\r\nnew one\r\n");
    // The next start finds every map by the name its record stores: the
    // empty one in the blank slot, the long one cut to 20. Nothing is added
    // twice, and the operator hears once that a name was cut.
    for (int start = 0; start < 2; ++start)
        f.discovery.GetMapsFromBaseDir();
    QVERIFY(!QFile::exists(list));
    QCOMPARE(f.fileNames(), QStringList({"known", "", "a", "a_loose_map_of_22cha", "b", "C",
                                         "newone", "onespace", "/notacomment"}));
    // A name the console would split is left out, at every start it is found.
    const QString loose = "q\";sets inj_map 1;\"";
    QCOMPARE(described(f.platform.messages),
             QStringList({message("Map Names Cut",
                                  "maps.dat keeps 20 characters of a map's file name, so these "
                                  "maps were added under their first 20:\r\r"
                                  "a_loose_map_of_22chars\r\rThe game loads a map by its whole "
                                  "name: to play one of them, give its .bsp file a name of at most "
                                  "20 characters.",
                                  MsgButtons::Ok, MsgIcon::Information),
                          leftOutNotice("3 maps were", loose + "\rtab[code 9]quit\rnew one"),
                          leftOutNotice("1 map was", loose)}));
    QCOMPARE(f.catalogue.snapshot().record(3).get(MapField::FragLimit), QStringLiteral("7"));
    QVERIFY(f.shown.isEmpty()); // no archive search unless asked for
}

void MapDataTest::damagedInputs() {
    Fixture f;
    f.known({""});
    f.platform.writeFile(f.baseq3() + "/maps", "a file where the folder should be");
    f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", QByteArray(2000, '\n'));
    f.discovery.GetMapsFromBaseDir();
    // The deleted slot answers for every empty line: nothing is added.
    QCOMPARE(f.catalogue.CountMaps(), qint16(1));
    QVERIFY(f.platform.messages.shown.isEmpty());
    // A catalogue six maps short of full takes the new loose map and five of
    // the list's ten, which stay; discovery ends there and the list waits.
    f.known(QStringList(32760, "filler"));
    QFile::remove(f.baseq3() + "/maps");
    f.platform.writeFile(f.baseq3() + "/maps/new.bsp", "IBSP");
    const QByteArray ten = "m1\r\nm2\r\nm3\r\nm4\r\nm5\r\nm6\r\nm7\r\nm8\r\nm9\r\nm10\r\n";
    const QString list = f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", ten);
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.fileNames().mid(32760), QStringList({"new", "m1", "m2", "m3", "m4", "m5"}));
    QCOMPARE(readAll(list), ten);
    QCOMPARE(f.catalogue.CurrentMapRecord, qint16(-1));
    QVERIFY(onlyMessage(f.platform.messages)
                .contains("5 of the 10 new maps found in maplist.txt could not be added"));
}

QTEST_MAIN(MapDataTest)
#include "tst_mapdata.moc"
