// The map data file: the record format byte for byte, counting, look-up,
// the start-up check and the delivered catalogue.
#include "TestSupport.h"

#include "maps/MapCatalogue.h"
#include "maps/MapDefaults.h"
#include "ui/AppInfo.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
MapRules rules(const char* frag, const char* time, const char* capture, const char* gravity,
               const char* speed, const char* knockBack) {
    MapRules r;
    r.fragLimit = QString::fromLatin1(frag);
    r.timeLimit = QString::fromLatin1(time);
    r.captureLimit = QString::fromLatin1(capture);
    r.gravity = QString::fromLatin1(gravity);
    r.speed = QString::fromLatin1(speed);
    r.knockBack = QString::fromLatin1(knockBack);
    return r;
}

QByteArray recordBytes(const QString& display, const QString& file) {
    const MapRecord record =
        makeMapRecord(display, file, rules("20", "15", "8", "800", "320", "1000"));
    return QByteArray(record.bytes(), MapRecord::Size);
}

// Writes records with these file names (blank for a deleted slot).
QByteArray catalogueOf(const QStringList& files) {
    QByteArray bytes;
    for (const QString& file : files)
        bytes += recordBytes(file.isEmpty() ? QString() : QStringLiteral("Name of ") + file, file);
    return bytes;
}
} // namespace

class MapDataTest : public QObject {
    Q_OBJECT
private slots:
    void recordLayoutByteForByte();
    void fieldsAreCutAtTheirWidth_data();
    void fieldsAreCutAtTheirWidth();
    void readingTrimsOnlySpaces();
    void countFollowsWholeRecords_data();
    void countFollowsWholeRecords();
    void countingCreatesAnEmptyFile();
    void findMap_data();
    void findMap();
    void snapshotAnswersLikeFindMap();
    void writeAppendsAndNeverLeavesHoles();
    void writeOverAPartialTail();
    void deleteKeepsTheSlot();
    void garbageFileIsReadWithoutHarm();
    void missingCatalogueWithoutInstalledOneWarns();
    void missingCatalogueIsCopiedFromInstalledOne();
    void unreadableCatalogueIsNeverReplaced();
    void wipedFirstRecordIsRepaired_data();
    void wipedFirstRecordIsRepaired();
    void deletedFirstRecordIsNoDamage();
    void applyRulesToAllKeepsNames();
    void defaultRulesFromStore();
    void deliveredCatalogue();
};

void MapDataTest::recordLayoutByteForByte() {
    const QByteArray expected = "The Longest Yard              "
                                "q3dm17              "
                                "20 15 8  800 320 1000";
    QCOMPARE(expected.size(), 71);
    QCOMPARE(recordBytes(QStringLiteral("The Longest Yard"), QStringLiteral("q3dm17")), expected);
}

void MapDataTest::fieldsAreCutAtTheirWidth_data() {
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("stored");
    QTest::newRow("display name of 35")
        << int(MapField::DisplayName) << QString("A display name of thirty-five chars")
        << QString("A display name of thirty-five ");
    QTest::newRow("file name of 25")
        << int(MapField::FileName) << QString("abcdefghijklmnopqrstuvwxy")
        << QString("abcdefghijklmnopqrst");
    QTest::newRow("frag limit of 4")
        << int(MapField::FragLimit) << QString("1234") << QString("123");
    QTest::newRow("knockback of 5")
        << int(MapField::KnockBack) << QString("12345") << QString("1234");
    QTest::newRow("speed kept as typed")
        << int(MapField::Speed) << QString("32") << QString("32  ");
}

void MapDataTest::fieldsAreCutAtTheirWidth() {
    QFETCH(int, field);
    QFETCH(QString, value);
    QFETCH(QString, stored);
    MapRecord record;
    record.set(MapField(field), value);
    const MapRecord::Layout layout = MapRecord::Fields[size_t(field)];
    QCOMPARE(QString::fromLatin1(record.bytes() + layout.offset, layout.width), stored);
    // Nothing spills into the neighbouring fields.
    QCOMPARE(QByteArray(record.bytes(), layout.offset), QByteArray(layout.offset, ' '));
}

void MapDataTest::readingTrimsOnlySpaces() {
    QByteArray bytes(71, ' ');
    bytes.replace(0, 8, "  a\tb   ");
    const MapRecord record = MapRecord::fromBytes(bytes.constData());
    QCOMPARE(record.get(MapField::DisplayName), QStringLiteral("a\tb"));
    QVERIFY(record.isDeleted());
}

void MapDataTest::countFollowsWholeRecords_data() {
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("records");
    QTest::newRow("empty") << 0 << 0;
    QTest::newRow("70 bytes") << 70 << 0;
    QTest::newRow("one record") << 71 << 1;
    QTest::newRow("141 bytes") << 141 << 1;
    QTest::newRow("two records") << 142 << 2;
}

void MapDataTest::countFollowsWholeRecords() {
    QFETCH(int, bytes);
    QFETCH(int, records);
    TestPlatform platform;
    QByteArray content = catalogueOf({"q3dm1", "q3dm2", "q3dm3"}).left(bytes);
    platform.writeFile(platform.programFolder() + "/maps.dat", content);
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(int(catalogue.CountMaps()), records);
    QCOMPARE(int(catalogue.snapshot().count()), records);
    QCOMPARE(catalogue.FindMap("q3dm1"), qint16(records >= 1 ? 1 : -1));
}

void MapDataTest::countingCreatesAnEmptyFile() {
    TestPlatform platform;
    QFile::remove(platform.programFolder() + "/maps.dat");
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(catalogue.CountMaps(), qint16(0));
    QVERIFY(QFile::exists(platform.programFolder() + "/maps.dat"));
    QCOMPARE(QFileInfo(platform.programFolder() + "/maps.dat").size(), 0);
}

void MapDataTest::findMap_data() {
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    const QStringList three{"q3dm1", "q3ctf1", "q3tourney2"};
    QTest::newRow("exact") << three << "q3ctf1" << 2;
    QTest::newRow("capitals") << three << "Q3CTF1" << 2;
    QTest::newRow("spaces around") << three << "  q3tourney2  " << 3;
    QTest::newRow("unknown") << three << "q3dm99" << -1;
    QTest::newRow("part of a name") << three << "q3dm" << -1;
    QTest::newRow("no records") << QStringList() << "q3dm1" << -1;
    QTest::newRow("duplicate gives the lower") << QStringList{"a", "dup", "b", "DUP"} << "dup" << 2;
    QTest::newRow("deleted slot never matches a name") << QStringList{"", "q3dm1"} << "q3dm1" << 2;
    QTest::newRow("empty name finds the first deleted slot")
        << QStringList{"q3dm1", "", ""} << "" << 2;
    QTest::newRow("blank name finds the first deleted slot")
        << QStringList{"q3dm1", ""} << "   " << 2;
    QTest::newRow("empty name without deleted slots") << three << "" << -1;
}

void MapDataTest::findMap() {
    QFETCH(QStringList, files);
    QFETCH(QString, name);
    QFETCH(int, number);
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf(files));
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(int(catalogue.FindMap(name)), number);
}

void MapDataTest::snapshotAnswersLikeFindMap() {
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf({"a", "", "b"}));
    MapCatalogue catalogue(platform.programFolder());
    MapSnapshot snapshot = catalogue.snapshot();
    snapshot.appended(makeMapRecord("c", "c", MapRules::builtIn()));
    snapshot.appended(makeMapRecord("B", "B", MapRules::builtIn()));
    QCOMPARE(snapshot.find("C"), qint16(4));
    QCOMPARE(snapshot.find("b"), qint16(3));
    QCOMPARE(snapshot.find(""), qint16(2));
}

void MapDataTest::writeAppendsAndNeverLeavesHoles() {
    TestPlatform platform;
    MapCatalogue catalogue(platform.programFolder());
    catalogue.RecordBuffer = makeMapRecord("One", "one", MapRules::builtIn());
    QVERIFY(catalogue.writeRecord(1));
    QVERIFY(!catalogue.writeRecord(3)); // would leave record 2 undefined
    catalogue.RecordBuffer = makeMapRecord("Two", "two", MapRules::builtIn());
    QVERIFY(catalogue.writeRecord(2));
    QCOMPARE(catalogue.CountMaps(), qint16(2));
    QVERIFY(catalogue.readRecord(1));
    QCOMPARE(catalogue.RecordBuffer.get(MapField::DisplayName), QStringLiteral("One"));
    QVERIFY(!catalogue.readRecord(3));
    QVERIFY(!catalogue.readRecord(0));
    QCOMPARE(readAll(platform.programFolder() + "/maps.dat").size(), 142);
}

void MapDataTest::writeOverAPartialTail() {
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf({"a", "b"}).left(100));
    MapCatalogue catalogue(platform.programFolder());
    QVERIFY(catalogue.append({makeMapRecord("c", "c", MapRules::builtIn())}));
    QCOMPARE(catalogue.CountMaps(), qint16(2));
    QCOMPARE(catalogue.FindMap("c"), qint16(2));
}

void MapDataTest::deleteKeepsTheSlot() {
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf({"a", "b", "c"}));
    MapCatalogue catalogue(platform.programFolder());
    QVERIFY(catalogue.deleteRecord(2));
    QCOMPARE(catalogue.CountMaps(), qint16(3));
    QCOMPARE(catalogue.FindMap("b"), qint16(-1));
    QCOMPARE(catalogue.FindMap(""), qint16(2));
    QVERIFY(catalogue.append({makeMapRecord("d", "d", MapRules::builtIn())}));
    QCOMPARE(catalogue.FindMap("d"), qint16(4));
}

void MapDataTest::garbageFileIsReadWithoutHarm() {
    TestPlatform platform;
    QByteArray garbage;
    for (int i = 0; i < 1000; ++i)
        garbage.append(char((i * 37 + 11) % 256));
    platform.writeFile(platform.programFolder() + "/maps.dat", garbage);
    MapCatalogue catalogue(platform.programFolder());
    QCOMPARE(catalogue.CountMaps(), qint16(1000 / 71));
    QCOMPARE(catalogue.FindMap("q3dm1"), qint16(-1));
    QVERIFY(catalogue.readRecord(14));
    QVERIFY(!catalogue.readRecord(15));
    // Nothing of the file is lost by reading it.
    QCOMPARE(readAll(platform.programFolder() + "/maps.dat"), garbage);
}

void MapDataTest::missingCatalogueWithoutInstalledOneWarns() {
    TestPlatform platform;
    QFile::remove(platform.programFolder() + "/maps.dat");
    MapCatalogue catalogue(platform.programFolder());
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& shown = platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Warning!"));
    QCOMPARE(shown.text, "Unable to find maps.dat!\r\rThis file contains all of the pre-installed "
                         "maps, their names,\r\rand default environment settings.  Contact " +
                             AppInfo::supportContact() + " for assistance.");
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Critical);
    QVERIFY(QFile::exists(platform.programFolder() + "/maps.dat"));
    QCOMPARE(catalogue.CountMaps(), qint16(0));
}

void MapDataTest::missingCatalogueIsCopiedFromInstalledOne() {
    TestPlatform platform;
    QFile::remove(platform.programFolder() + "/maps.dat");
    const QByteArray installed = catalogueOf({"q3dm1", "q3dm2"}) + "tail";
    platform.writeFile(platform.programFolder() + "/instmaps.dat", installed);
    MapCatalogue catalogue(platform.programFolder());
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QVERIFY(platform.messages.shown.isEmpty());
    QCOMPARE(readAll(platform.programFolder() + "/maps.dat"), installed);
}

void MapDataTest::unreadableCatalogueIsNeverReplaced() {
    TestPlatform platform;
    QFile::remove(platform.programFolder() + "/maps.dat");
    // Something by that name that cannot be read as a file.
    QDir().mkpath(platform.programFolder() + "/maps.dat/keep");
    platform.writeFile(platform.programFolder() + "/instmaps.dat", catalogueOf({"q3dm1"}));
    MapCatalogue catalogue(platform.programFolder());
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QVERIFY(QFileInfo(platform.programFolder() + "/maps.dat/keep").isDir());
    QCOMPARE(platform.messages.shown.size(), 1);
    QCOMPARE(platform.messages.shown.first().title, QStringLiteral("Warning!"));
    QCOMPARE(catalogue.CountMaps(), qint16(0));
    QCOMPARE(catalogue.FindMap("q3dm1"), qint16(-1));
}

void MapDataTest::wipedFirstRecordIsRepaired_data() {
    QTest::addColumn<QByteArray>("firstRecord");
    QTest::newRow("spaces") << QByteArray(71, ' ');
    QTest::newRow("zero bytes") << QByteArray(71, '\0');
}

void MapDataTest::wipedFirstRecordIsRepaired() {
    QFETCH(QByteArray, firstRecord);
    TestPlatform platform;
    const QByteArray damaged = firstRecord + catalogueOf({"custom"});
    platform.writeFile(platform.programFolder() + "/maps.dat", damaged);
    const QByteArray installed = catalogueOf({"q3dm1"});
    platform.writeFile(platform.programFolder() + "/instmaps.dat", installed);
    MapCatalogue catalogue(platform.programFolder());
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QCOMPARE(readAll(platform.programFolder() + "/maps.dat"), installed);
    // The damaged file is kept rather than lost.
    QCOMPARE(readAll(platform.programFolder() + "/maps.bak"), damaged);
    QCOMPARE(platform.messages.shown.size(), 1);
    const ShownMessage& shown = platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Notice"));
    QCOMPARE(
        shown.text,
        QStringLiteral("A bug was found in previous versions of Halvane that has caused \rsome "
                       "of the maps in your maps in your maps.dat (map data file) to be "
                       "erased.  \r\rThis has been corrected.\r\rHowever, any custom maps "
                       "that you had specified will need to be re-entered."));
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Information);

    // Without an installed catalogue the file stays as it is, silently.
    TestPlatform bare;
    bare.writeFile(bare.programFolder() + "/maps.dat", damaged);
    MapCatalogue left(bare.programFolder());
    left.CheckMapDataFile(bare.messages, AppInfo::supportContact());
    QCOMPARE(readAll(bare.programFolder() + "/maps.dat"), damaged);
    QVERIFY(bare.messages.shown.isEmpty());
}

void MapDataTest::deletedFirstRecordIsNoDamage() {
    TestPlatform platform;
    // A first map whose rules were all blank, then deleted by the operator.
    MapRecord blankRules;
    blankRules.set(MapField::DisplayName, "First");
    blankRules.set(MapField::FileName, "first");
    const QByteArray content = QByteArray(blankRules.bytes(), 71) + catalogueOf({"custom"});
    platform.writeFile(platform.programFolder() + "/maps.dat", content);
    platform.writeFile(platform.programFolder() + "/instmaps.dat", catalogueOf({"q3dm1"}));
    MapCatalogue catalogue(platform.programFolder());
    QVERIFY(catalogue.deleteRecord(1));
    catalogue.CheckMapDataFile(platform.messages, AppInfo::supportContact());
    QVERIFY(platform.messages.shown.isEmpty());
    QCOMPARE(catalogue.FindMap("custom"), qint16(2));
    QCOMPARE(catalogue.FindMap(""), qint16(1));
}

void MapDataTest::applyRulesToAllKeepsNames() {
    TestPlatform platform;
    const QByteArray before = catalogueOf({"a", "", "b"}) + "xy";
    platform.writeFile(platform.programFolder() + "/maps.dat", before);
    MapCatalogue catalogue(platform.programFolder());
    QVERIFY(catalogue.backup());
    QVERIFY(catalogue.applyRulesToAll(rules("1", "2", "3", "4", "5", "6")));
    QCOMPARE(readAll(platform.programFolder() + "/maps.bak"), before);
    const QByteArray after = readAll(platform.programFolder() + "/maps.dat");
    QCOMPARE(after.size(), before.size());
    for (int n = 0; n < 3; ++n) {
        QCOMPARE(after.mid(n * 71, 50), before.mid(n * 71, 50));
        QCOMPARE(after.mid(n * 71 + 50, 21), QByteArray("1  2  3  4   5   6   "));
    }
    QCOMPARE(after.right(2), QByteArray("xy"));
}

void MapDataTest::defaultRulesFromStore() {
    TestPlatform platform;
    QCOMPARE(readDefaultRules(*platform.store), rules("20", "20", "10", "800", "320", "1000"));
    platform.ini->write("Defaults", "Gravity", "400");
    platform.ini->write("Defaults", "CaptureLimit", "");
    const MapRules read = readDefaultRules(*platform.store);
    QCOMPARE(read.gravity, QStringLiteral("400"));
    QCOMPARE(read.captureLimit, QString());
    QVERIFY(writeDefaultRules(*platform.store, rules("1", "2", "3", "4", "5", "6")));
    QCOMPARE(platform.store->writes,
             QStringList({"Defaults/CaptureLimit=3", "Defaults/FragLimit=1", "Defaults/TimeLimit=2",
                          "Defaults/KnockBack=6", "Defaults/Gravity=4", "Defaults/Speed=5"}));
}

void MapDataTest::deliveredCatalogue() {
    const QByteArray installed = readAll(QStringLiteral(HALVANE_BIN_DIR "/instmaps.dat"));
    QCOMPARE(installed.size() % 71, 0);
    QCOMPARE(installed.size() / 71, 30);
    TestPlatform platform;
    platform.writeFile(platform.programFolder() + "/maps.dat", installed);
    MapCatalogue catalogue(platform.programFolder());
    const MapSnapshot snapshot = catalogue.snapshot();
    const QList<QPair<QString, QString>> known{{"q3dm17", "The Longest Yard"},
                                               {"q3tourney2", "The Proving Grounds"},
                                               {"q3ctf1", "Dueling Keeps"},
                                               {"q3dm0", "Introduction"}};
    for (const auto& [file, display] : known) {
        const qint16 n = snapshot.find(file);
        QVERIFY2(n > 0, qPrintable(file));
        QCOMPARE(snapshot.record(n).get(MapField::DisplayName), display);
    }
    for (int n = 1; n <= snapshot.count(); ++n)
        QVERIFY(!snapshot.record(n).isDeleted());
    QCOMPARE(snapshot.record(snapshot.find("q3ctf4")).get(MapField::CaptureLimit),
             QStringLiteral("8"));
}

QTEST_MAIN(MapDataTest)
#include "tst_mapdata.moc"
