// The map data file: the record format byte for byte, counting, look-up and
// the start-up check.
#include "TestSupport.h"

#include "app/AppInfo.h"
#include "maps/MapCatalogue.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

class MapDataTest : public QObject {
    Q_OBJECT
private slots:
    void recordLayoutByteForByte();
    void countFollowsWholeRecords_data();
    void countFollowsWholeRecords();
    void findMap_data();
    void findMap();
    void writeDeleteAndAppend();
    void startUpCheck_data();
    void startUpCheck();
};

// Short fields are padded with blanks, long ones cut at their width without
// spilling into the next.
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

void MapDataTest::countFollowsWholeRecords_data() {
    QTest::addColumn<QByteArray>("content"); // maps.dat; "<none>": no file at all
    QTest::addColumn<int>("records");
    QTest::addColumn<int>("found"); // the number q3dm1 is found at
    const QByteArray three = catalogueOf({"q3dm1", "q3dm2", "q3dm3"});
    QByteArray garbage;
    for (int i = 0; i < 1000; ++i)
        garbage.append(char((i * 37 + 11) % 256));
    QTest::newRow("missing file") << QByteArray("<none>") << 0 << -1;
    QTest::newRow("empty") << QByteArray() << 0 << -1;
    QTest::newRow("70 bytes") << three.left(70) << 0 << -1;
    QTest::newRow("141 bytes") << three.left(141) << 1 << 1;
    QTest::newRow("two records") << three.left(142) << 2 << 1;
    QTest::newRow("garbage") << garbage << 1000 / 71 << -1;
}

void MapDataTest::countFollowsWholeRecords() {
    QFETCH(QByteArray, content);
    QFETCH(int, records);
    QFETCH(int, found);
    TestPlatform platform;
    const QString path = platform.programFolder() + "/maps.dat";
    QFile::remove(path);
    if (content != "<none>")
        platform.writeFile(path, content);
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(int(catalogue.CountMaps()), records);
    QCOMPARE(int(catalogue.snapshot().count()), records);
    QCOMPARE(int(catalogue.FindMap("q3dm1")), found);
    QVERIFY(records == 0 || catalogue.readRecord(qint16(records)));
    // Nothing is changed; counting creates a missing file.
    QVERIFY(QFileInfo(path).isFile());
    QCOMPARE(readAll(path), content == "<none>" ? QByteArray() : content);
}

void MapDataTest::findMap_data() {
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    const QStringList three{"q3dm1", "q3ctf1", "q3tourney2"};
    QTest::newRow("capitals") << three << "Q3CTF1" << 2;
    QTest::newRow("spaces around") << three << "  q3tourney2  " << 3;
    QTest::newRow("part of a name") << three << "q3dm" << -1;
    QTest::newRow("duplicate gives the lower") << QStringList{"a", "dup", "b", "DUP"} << "dup" << 2;
    QTest::newRow("deleted slot never matches") << QStringList{"", "q3dm1"} << "q3dm1" << 2;
    QTest::newRow("blank finds the first deleted") << QStringList{"q3dm1", "", ""} << "   " << 2;
    QTest::newRow("blank without deleted slots") << three << "" << -1;
}

void MapDataTest::findMap() {
    QFETCH(QStringList, files);
    QFETCH(QString, name);
    QFETCH(int, number);
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf(files));
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(int(catalogue.FindMap(name)), number);
    QCOMPARE(int(catalogue.snapshot().find(name)), number);
}

void MapDataTest::writeDeleteAndAppend() {
    TestPlatform platform;
    MapCatalogue catalogue(platform.programFolder());
    catalogue.RecordBuffer = makeMapRecord("One", "one", MapRules::builtIn());
    QVERIFY(catalogue.writeRecord(1));
    QVERIFY(!catalogue.writeRecord(3)); // would leave record 2 undefined
    QVERIFY(!catalogue.readRecord(0));
    QVERIFY(catalogue.append({makeMapRecord("b", "b", MapRules::builtIn())}));
    QVERIFY(catalogue.deleteRecord(1));
    QCOMPARE(catalogue.FindMap("one"), qint16(-1));
    QVERIFY(catalogue.append({makeMapRecord("d", "d", MapRules::builtIn())}));
    QCOMPARE(catalogue.FindMap("d"), qint16(3)); // appended, the slot stays free
    QCOMPARE(readAll(platform.programFolder() + "/maps.dat").size(), 3 * 71);
}

void MapDataTest::startUpCheck_data() {
    QTest::addColumn<QByteArray>("data");      // maps.dat, or "<none>", "<folder>"
    QTest::addColumn<QByteArray>("installed"); // instmaps.dat; empty: none
    QTest::addColumn<QString>("shown");        // the only message; "" for none
    QTest::addColumn<QByteArray>("after");     // maps.dat after the check
    const QByteArray installed = catalogueOf({"q3dm1", "q3dm2"}) + "tail";
    const QByteArray wiped = QByteArray(71, ' ') + catalogueOf({"custom"});
    QTest::newRow("missing, nothing installed")
        << QByteArray("<none>") << QByteArray()
        << message("Warning!",
                   "Unable to find maps.dat!\r\rThis file contains all of the pre-installed "
                   "maps, their names,\r\rand default environment settings.  Contact " +
                       AppInfo::supportContact() + " for assistance.",
                   MsgButtons::Ok, MsgIcon::Critical)
        << QByteArray();
    QTest::newRow("missing, installed copied")
        << QByteArray("<none>") << installed << "" << installed;
    QTest::newRow("first record wiped")
        << wiped << installed
        << message("Notice",
                   "A bug was found in previous versions of Halvane that has caused \rsome of "
                   "the maps in your maps in your maps.dat (map data file) to be erased.  "
                   "\r\rThis has been corrected.\r\rHowever, any custom maps that you had "
                   "specified will need to be re-entered.",
                   MsgButtons::Ok, MsgIcon::Information)
        << installed;
    // Never replaced, never written: it may hold the operator's own maps.
    QTest::newRow("a folder of that name")
        << QByteArray("<folder>") << installed
        << message("Warning!",
                   "maps.dat is there but cannot be read:\r\r<path>\rIt is a folder, not a "
                   "file.\r\rHalvane leaves it as it is and runs without maps. Make it readable "
                   "and start Halvane again to use its maps.",
                   MsgButtons::Ok, MsgIcon::Critical)
        << QByteArray("<folder>");
}

void MapDataTest::startUpCheck() {
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, installed);
    QFETCH(QString, shown);
    QFETCH(QByteArray, after);
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
             shown.isEmpty() ? "0 messages"
                             : shown.replace("<path>", QDir::toNativeSeparators(path)));
    if (data == "<folder>") // nothing found, nothing written
        QVERIFY(catalogue.CountMaps() == 0 && !catalogue.append({makeMapRecord("x", "x", {})}) &&
                !catalogue.backup());
    QCOMPARE(QFileInfo(path).isDir() ? QByteArray("<folder>") : readAll(path), after);
    QCOMPARE(readAll(platform.programFolder() + "/maps.bak"), "the operator's backup");
    // A damaged file is kept beside it.
    QCOMPARE(readAll(platform.programFolder() + "/maps-damaged.dat"),
             data.startsWith(' ') ? data : QByteArray());
}

QTEST_MAIN(MapDataTest)
#include "tst_mapdata.moc"
