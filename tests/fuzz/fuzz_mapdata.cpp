// maps.dat holding any bytes: the start-up check, the count, look-ups and
// record reads agree with the file, and what is written reads back.
#include "FuzzSupport.h"

#include "maps/MapCatalogue.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder;
    static const QByteArray installed = test::catalogueOf({"q3dm1", "q3ctf1"});
    const QByteArray bytes = bytesOf(data, size);
    MapCatalogue catalogue(folder.path());
    writeFile(catalogue.dataPath(), bytes);
    writeFile(catalogue.installedPath(), installed);
    writeFile(catalogue.backupPath(), "the operator's backup");

    // The start-up check replaces the file only when its first record names
    // no map (spaces, or the zero bytes old damage left), keeping the damaged
    // file under a name of its own and the operator's backup as it was.
    FakeMessageBoxes messages;
    catalogue.CheckMapDataFile(messages, "someone");
    if (test::readAll(catalogue.dataPath()) != bytes) {
        const MapRecord first = MapRecord::fromBytes(bytes.leftJustified(MapRecord::Size, 'x'));
        FUZZ_CHECK(trimSpaces(first.get(MapField::FileName).remove(QChar(0))).isEmpty());
        FUZZ_CHECK(test::readAll(catalogue.dataPath()) == installed && messages.shown.size() == 1);
        const QString damaged = folder.path() + "/maps-damaged.dat";
        FUZZ_CHECK(test::readAll(damaged) == bytes && QFile::remove(damaged));
        writeFile(catalogue.dataPath(), bytes);
    }
    FUZZ_CHECK(test::readAll(catalogue.backupPath()) == "the operator's backup");
    FUZZ_CHECK(messages.shown.size() <= 1);

    const qint16 count = catalogue.CountMaps();
    FUZZ_CHECK(count == qMin<qsizetype>(bytes.size() / MapRecord::Size, MapCatalogue::MaxRecords));
    const MapSnapshot snapshot = catalogue.snapshot();
    FUZZ_CHECK(snapshot.count() == count);
    for (int n = 1; n <= count; ++n) {
        FUZZ_CHECK(catalogue.readRecord(n));
        const MapRecord& record = catalogue.RecordBuffer;
        FUZZ_CHECK(record == MapRecord::fromBytes(bytes.constData() + (n - 1) * MapRecord::Size));
        // Both ways the same record, never after this one and of this name:
        // for a name held twice, the first record holding it.
        const QString name = record.get(MapField::FileName);
        QString shouted = QLatin1Char(' ') + name;
        for (QChar& c : shouted)
            c = c.unicode() < 128 ? c.toUpper() : c;
        const qint16 found = catalogue.FindMap(shouted);
        FUZZ_CHECK(found >= 1 && found <= n && found == snapshot.find(name));
        FUZZ_CHECK(snapshot.record(found).get(MapField::FileName).toLower() == name.toLower());
    }

    // Appended, a record reads back as written, cut to its fields, and leaves
    // the ones before it alone; a deleted slot keeps its place.
    if (count == MapCatalogue::MaxRecords)
        return 0; // full
    const QString text = QString::fromLatin1(bytes.left(40));
    const MapRecord made = makeMapRecord(text, text.mid(3), MapRules::builtIn());
    FUZZ_CHECK(made.get(MapField::DisplayName) == trimSpaces(text.left(30)) &&
               made.get(MapField::FileName) == trimSpaces(text.mid(3, 20)));
    FUZZ_CHECK(catalogue.writeRecord(count + 1, made) && catalogue.readRecord(count + 1));
    FUZZ_CHECK(catalogue.RecordBuffer == made && catalogue.CountMaps() == count + 1);
    const qsizetype whole = qsizetype(count) * MapRecord::Size;
    FUZZ_CHECK(test::readAll(catalogue.dataPath()).left(whole) == bytes.left(whole));
    FUZZ_CHECK(catalogue.deleteRecord(count + 1) && catalogue.readRecord(count + 1));
    FUZZ_CHECK(catalogue.RecordBuffer.isDeleted() && catalogue.CountMaps() == count + 1);
    return 0;
}
