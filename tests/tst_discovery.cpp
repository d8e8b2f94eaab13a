// Finding new maps: the archive search over real zip archives, the loose map
// files, the import list, and the damaged inputs each of them may meet.
#include "TestSupport.h"

#include "maps/ArchiveListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"

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
    bool searchAtStartup = false;

    Fixture() {
        platform.makeGameFolder();
        discovery.pause = [this] {
            shown.append(discovery.searchWindow().header() + '|' +
                         discovery.searchWindow().status());
        };
        discovery.LoadMaps = [this] { ++loads; };
        discovery.searchAtStartup = [this] { return searchAtStartup; };
    }
    QString baseq3() const { return platform.gameFolder() + "/baseq3"; }
    void known(const QStringList& files) {
        std::vector<MapRecord> records;
        for (const QString& file : files)
            records.push_back(makeMapRecord(file, file, MapRules::builtIn()));
        catalogue.append(records);
    }
    QStringList fileNames() {
        QStringList names;
        const MapSnapshot snapshot = catalogue.snapshot();
        for (int n = 1; n <= snapshot.count(); ++n)
            names.append(snapshot.record(n).get(MapField::FileName));
        return names;
    }
};
} // namespace

class DiscoveryTest : public QObject {
    Q_OBJECT
private slots:
    void archiveSearch_data();
    void archiveSearch();
    void looseMapsAndImportList();
    void damagedInputs();
};

void DiscoveryTest::archiveSearch_data() {
    QTest::addColumn<QString>("cancelAt"); // the line on which Cancel is pressed
    QTest::addColumn<QStringList>("maps");
    QTest::addColumn<int>("lines"); // entry lines shown
    QTest::newRow("whole search") << ""
                                  << QStringList({"q3dm1", "", "newmap", "capmap", "nodo", "c"})
                                  << 7;
    // Stops after the entry under way, keeps what it added, ends as usual.
    QTest::newRow("Cancel") << "Skipping: q3dm1" << QStringList({"q3dm1", "", "newmap"}) << 2;
}

void DiscoveryTest::archiveSearch() {
    QFETCH(QString, cancelAt);
    QFETCH(QStringList, maps);
    QFETCH(int, lines);
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
                         "maps/nodotbsp", "maps/xbsp", deep + "/c.bsp", deep + "b/d.bsp"}));
    f.platform.writeFile(f.baseq3() + "/notes.txt", "not an archive");
    const auto record = f.discovery.pause;
    f.discovery.pause = [&] {
        record();
        if (f.discovery.searchWindow().status() == cancelAt)
            f.discovery.searchWindow().findChild<QPushButton*>("cmdCancel")->click();
    };

    f.discovery.searchArchives();

    QCOMPARE(f.fileNames(), maps);
    const QStringList entries{
        "Searching for PK3 files...|Adding: newmap", "Searching for PK3 files...|Skipping: q3dm1",
        "Searching for PK3 files...|Adding: capmap", "Searching for PK3 files...|Skipping: newmap",
        "Searching for PK3 files...|Adding: nodo",
        "Searching for PK3 files...|Skipping: ", // the deleted slot
        "Searching for PK3 files...|Adding: c"};
    QCOMPARE(f.shown, QStringList{"Getting Map Names...|baseq3\\zz.pk3"} + entries.mid(0, lines) +
                          QStringList{"Done|Finished loading maps"});
    // The damaged archive is named and the search goes on past it.
    QCOMPARE(onlyMessage(f.platform.messages),
             message("Error", "Error: " + QDir::toNativeSeparators(f.baseq3() + "/bad.pk3"),
                     MsgButtons::Ok, MsgIcon::Critical));
    QCOMPARE(f.loads, 1);
    QCOMPARE(f.platform.desktop.busyDepth, 0);
}

void DiscoveryTest::looseMapsAndImportList() {
    Fixture f;
    f.known({"known"});
    f.platform.ini->write("Defaults", "FragLimit", "7");
    for (const char* name : {"b.bsp", "a.bsp", "KNOWN.bsp", "readme.txt", "C.BSP", ".bsp",
                             "a_loose_map_of_22chars.bsp"})
        f.platform.writeFile(f.baseq3() + "/MAPS/" + name, "IBSP");
    const QString list = f.platform.writeFile(f.platform.programFolder() + "/maplist.txt",
                                              "// a comment\r\nnewone\r\nB\n\r\n\r\n"
                                              "NEWONE\r\n onespace\r\n/notacomment\r\n");
    // The next start finds every map by the name its record stores: the
    // empty one in the blank slot, the long one cut to 20. Nothing is added
    // twice, and the operator hears once that a name was cut.
    for (int start = 0; start < 2; ++start)
        f.discovery.GetMapsFromBaseDir();
    QVERIFY(!QFile::exists(list));
    QCOMPARE(f.fileNames(), QStringList({"known", "", "a", "a_loose_map_of_22cha", "b", "C",
                                         "newone", "onespace", "/notacomment"}));
    QCOMPARE(onlyMessage(f.platform.messages),
             message("Map Names Cut",
                     "maps.dat keeps 20 characters of a map's file name, so these maps were added "
                     "under their first 20:\r\ra_loose_map_of_22chars\r\rThe game loads a map by "
                     "its whole name: to play one of them, give its .bsp file a name of at most 20 "
                     "characters.",
                     MsgButtons::Ok, MsgIcon::Information));
    QCOMPARE(f.catalogue.snapshot().record(3).get(MapField::FragLimit), QStringLiteral("7"));
    QVERIFY(f.shown.isEmpty()); // no archive search unless asked for
}

void DiscoveryTest::damagedInputs() {
    Fixture f;
    f.known({"a"});
    f.catalogue.deleteRecord(1);
    f.platform.writeFile(f.baseq3() + "/maps", "a file where the folder should be");
    f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", QByteArray(2000, '\n'));
    f.discovery.GetMapsFromBaseDir();
    // The deleted slot answers for every empty line: nothing is added.
    QCOMPARE(f.catalogue.CountMaps(), qint16(1));
    QVERIFY(f.platform.messages.shown.isEmpty());
    // A catalogue six maps short of full takes the new loose map and five of
    // the list's ten, which stay; discovery ends there and the list waits.
    f.platform.writeFile(f.platform.programFolder() + "/maps.dat",
                         catalogueOf(QStringList(32760, "filler")));
    QFile::remove(f.baseq3() + "/maps");
    f.platform.writeFile(f.baseq3() + "/maps/new.bsp", "IBSP");
    const QByteArray ten = "m1\r\nm2\r\nm3\r\nm4\r\nm5\r\nm6\r\nm7\r\nm8\r\nm9\r\nm10\r\n";
    const QString list = f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", ten);
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.fileNames().mid(32760), QStringList({"new", "m1", "m2", "m3", "m4", "m5"}));
    QCOMPARE(readAll(list), ten);
    QCOMPARE(f.catalogue.CurrentMapRecord, qint16(-1));
    QVERIFY(onlyMessage(f.platform.messages)
                .contains("5 of the 10 new maps found in "
                          "maplist.txt could not be added"));
}

QTEST_MAIN(DiscoveryTest)
#include "tst_discovery.moc"
