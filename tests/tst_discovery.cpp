// Finding new maps: the archive search over real zip archives, the loose map
// files, the import list, and the damaged inputs each of them may meet.
#include "TestSupport.h"

#include "maps/ArchiveListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"

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
    void memberRule_data();
    void memberRule();
    void listingKeepsCentralDirectoryOrder();
    void listingRefusesWhatIsNoArchive();
    void archiveSearch();
    void searchOfAnEmptyFolder();
    void looseMaps();
    void unreadableMapsFolder();
    void importList();
    void importListOfBlankLines();
    void searchAtStartupComesFirst();
    void unwritableCatalogueEndsDiscovery();
};

void DiscoveryTest::memberRule_data() {
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QString>("map"); // empty: not taken
    QTest::newRow("map in maps folder") << QByteArray("maps/q3dm1.bsp") << "q3dm1.bsp";
    QTest::newRow("no folder") << QByteArray("loose.bsp") << "loose.bsp";
    QTest::newRow("deeper folder") << QByteArray("a/b/c.bsp") << "c.bsp";
    QTest::newRow("capital extension") << QByteArray("maps/big.BSP") << "";
    QTest::newRow("mixed extension") << QByteArray("maps/big.Bsp") << "";
    QTest::newRow("no dot") << QByteArray("maps/nodotbsp") << "nodotbsp";
    QTest::newRow("picture") << QByteArray("levelshots/q3dm1.jpg") << "";
    QTest::newRow("folder entry") << QByteArray("maps/") << "";
    QTest::newRow("cut at 50 characters")
        << QByteArray("maps/" + QByteArray(45, 'x') + ".bsp") << "";
    QTest::newRow("exactly 50 characters")
        << QByteArray("maps/" + QByteArray(41, 'x') + ".bsp") << QString(41, 'x') + ".bsp";
}

void DiscoveryTest::memberRule() {
    QFETCH(QByteArray, member);
    QFETCH(QString, map);
    const std::optional<QString> found = bspMemberName(member);
    QCOMPARE(found.value_or(QString()), map);
}

void DiscoveryTest::listingKeepsCentralDirectoryOrder() {
    QTemporaryDir dir;
    const QString path = dir.filePath("order.pk3");
    const QStringList members{"zeta/z.bsp", "alpha/a.bsp", "maps/", "maps/m.bsp"};
    QVERIFY(makeArchive(path, members));
    QStringList listed;
    QVERIFY(listArchive(path,
                        [&](const QByteArray& name) { listed.append(QString::fromLatin1(name)); }));
    QCOMPARE(listed, members);
}

void DiscoveryTest::listingRefusesWhatIsNoArchive() {
    QTemporaryDir dir;
    TestPlatform platform;
    const QString garbage = platform.writeFile(dir.filePath("garbage.pk3"), QByteArray(5000, 'G'));
    const QString empty = platform.writeFile(dir.filePath("empty.pk3"), QByteArray());
    QByteArray cut = QByteArray("PK\x03\x04", 4) + QByteArray(100, '\0');
    const QString truncated = platform.writeFile(dir.filePath("cut.pk3"), cut);
    for (const QString& path : {garbage, empty, truncated, dir.filePath("missing.pk3")}) {
        int members = 0;
        QVERIFY2(!listArchive(path, [&](const QByteArray&) { ++members; }), qPrintable(path));
        QCOMPARE(members, 0);
    }
}

void DiscoveryTest::archiveSearch() {
    Fixture f;
    f.known({"q3dm1"});
    QVERIFY(makeArchive(f.baseq3() + "/b.pk3", {"maps/newmap.bsp", "maps/q3dm1.bsp"}));
    f.platform.writeFile(f.baseq3() + "/bad.pk3", QByteArray(3000, 'x'));
    QVERIFY(makeArchive(f.baseq3() + "/pak0.pk3", {"maps/skipme.bsp"}));
    QVERIFY(makeArchive(f.baseq3() + "/Pak0.pk3", {"maps/capmap.bsp"}));
    QVERIFY(makeArchive(f.baseq3() + "/zz.pk3",
                        {"levelshots/newmap.jpg", "maps/newmap.bsp", "maps/upper.BSP",
                         "maps/nodotbsp", "textures/x.tga", "maps/bsp"}));
    f.platform.writeFile(f.baseq3() + "/notes.txt", "not an archive");

    f.discovery.searchArchives();

    QCOMPARE(f.discovery.pakMaps, QStringList({"newmap.bsp", "q3dm1.bsp", "capmap.bsp",
                                               "newmap.bsp", "nodotbsp", "bsp"}));
    QCOMPARE(f.fileNames(), QStringList({"q3dm1", "newmap", "capmap", "nodo"}));
    QCOMPARE(f.shown, QStringList({"Getting Map Names...|baseq3\\zz.pk3",
                                   "Searching for PK3 files...|Adding: newmap",
                                   "Searching for PK3 files...|Skipping: q3dm1",
                                   "Searching for PK3 files...|Adding: capmap",
                                   "Searching for PK3 files...|Skipping: newmap",
                                   "Searching for PK3 files...|Adding: nodo",
                                   "Done|Finished loading maps"}));
    QCOMPARE(f.platform.messages.shown.size(), 1);
    const ShownMessage& shown = f.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Error"));
    QCOMPARE(shown.text, "Error: " + QDir::toNativeSeparators(f.baseq3() + "/bad.pk3"));
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Critical);
    QCOMPARE(f.loads, 1);
    QCOMPARE(f.platform.desktop.busyDepth, 0);
    QVERIFY(!f.discovery.searchWindow().isVisible());
    // New maps get the default rules.
    const MapSnapshot snapshot = f.catalogue.snapshot();
    QCOMPARE(snapshot.record(2).get(MapField::CaptureLimit), QStringLiteral("10"));
    QCOMPARE(snapshot.record(2).get(MapField::DisplayName), QStringLiteral("newmap"));
}

void DiscoveryTest::searchOfAnEmptyFolder() {
    Fixture f;
    f.discovery.searchArchives();
    QVERIFY(f.discovery.pakList.isEmpty());
    QCOMPARE(f.shown, QStringList({"Getting Map Names...|", "Done|Finished loading maps"}));
    QCOMPARE(f.loads, 1);
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void DiscoveryTest::looseMaps() {
    Fixture f;
    f.known({"known"});
    f.platform.ini->write("Defaults", "FragLimit", "7");
    for (const char* name : {"b.bsp", "a.bsp", "known.bsp", "KNOWN.bsp", "readme.txt", "C.BSP"})
        f.platform.writeFile(f.baseq3() + "/MAPS/" + name, "IBSP");
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.fileNames(), QStringList({"known", "a", "b", "C"}));
    QCOMPARE(f.catalogue.snapshot().record(2).get(MapField::FragLimit), QStringLiteral("7"));
    QCOMPARE(f.catalogue.CurrentMapRecord, qint16(0));
    QVERIFY(f.shown.isEmpty()); // no archive search unless asked for
    // A second run finds nothing new.
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.catalogue.CountMaps(), qint16(4));
}

void DiscoveryTest::unreadableMapsFolder() {
    {
        Fixture f;
        f.platform.writeFile(f.baseq3() + "/maps", "a file where the folder should be");
        f.discovery.GetMapsFromBaseDir();
        QCOMPARE(f.catalogue.CountMaps(), qint16(0));
        QCOMPARE(f.catalogue.CurrentMapRecord, qint16(0));
    }
    Fixture f;
    f.platform.writeFile(f.baseq3() + "/maps/hidden.bsp", "IBSP");
    QFile::setPermissions(f.baseq3() + "/maps", QFileDevice::Permissions());
    f.discovery.GetMapsFromBaseDir();
    QFile::setPermissions(f.baseq3() + "/maps",
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    // Whoever may read the folder gets its map; nobody gets an error.
    QVERIFY(f.catalogue.CountMaps() <= 1);
    QVERIFY(f.platform.messages.shown.isEmpty());
}

void DiscoveryTest::importList() {
    Fixture f;
    f.known({"q3dm1"});
    const QString list =
        f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", "// a comment\r\n"
                                                                          "  indented\r\n"
                                                                          "newone\r\n"
                                                                          "Q3DM1\n"
                                                                          "\r\n"
                                                                          "\r\n"
                                                                          "NEWONE\r\n"
                                                                          " onespace\r\n"
                                                                          "/notacomment\r\n");
    f.discovery.GetMapsFromBaseDir();
    QVERIFY(!QFile::exists(list));
    QCOMPARE(f.fileNames(), QStringList({"q3dm1", "newone", "", "onespace", "/notacomment"}));
    const MapSnapshot snapshot = f.catalogue.snapshot();
    const MapRecord& added = snapshot.record(2);
    QCOMPARE(added.get(MapField::DisplayName), QStringLiteral("newone"));
    QCOMPARE(QByteArray(added.bytes() + 50, 21), QByteArray("20 20 0  800 320 1000"));
    QCOMPARE(snapshot.record(4).get(MapField::DisplayName), QStringLiteral("onespace"));
}

void DiscoveryTest::importListOfBlankLines() {
    Fixture f;
    f.known({"a"});
    f.catalogue.deleteRecord(1);
    f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", QByteArray(2000, '\n'));
    f.discovery.GetMapsFromBaseDir();
    // The deleted slot answers for every empty line: nothing is added.
    QCOMPARE(f.catalogue.CountMaps(), qint16(1));
    QVERIFY(!QFile::exists(f.platform.programFolder() + "/maplist.txt"));
}

void DiscoveryTest::searchAtStartupComesFirst() {
    Fixture f;
    f.searchAtStartup = true;
    QVERIFY(makeArchive(f.baseq3() + "/custom.pk3", {"maps/both.bsp"}));
    f.platform.writeFile(f.baseq3() + "/maps/both.bsp", "IBSP");
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.fileNames(), QStringList({"both"}));
    QVERIFY(f.shown.contains("Searching for PK3 files...|Adding: both"));
    QCOMPARE(f.loads, 1);
}

void DiscoveryTest::unwritableCatalogueEndsDiscovery() {
    Fixture f;
    QFile::remove(f.platform.programFolder() + "/maps.dat");
    QDir().mkpath(f.platform.programFolder() + "/maps.dat"); // cannot be written as a file
    f.platform.writeFile(f.baseq3() + "/maps/new.bsp", "IBSP");
    const QString list = f.platform.writeFile(f.platform.programFolder() + "/maplist.txt", "x\r\n");
    f.discovery.GetMapsFromBaseDir();
    QCOMPARE(f.catalogue.CurrentMapRecord, qint16(-1));
    // It ended before the import list, which stays for the next run.
    QVERIFY(QFile::exists(list));
}

QTEST_MAIN(DiscoveryTest)
#include "tst_discovery.moc"
