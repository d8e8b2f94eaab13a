// mapsel.txt holding any bytes: only lines naming catalogue maps are taken,
// as written and in file order, and a saved selection reads back unchanged.
#include "FuzzSupport.h"

#include "maps/MapCatalogue.h"
#include "maps/MapSelectionFile.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder;
    static const MapCatalogue catalogue(folder.path());
    if (!QFile::exists(catalogue.dataPath()))
        writeFile(catalogue.dataPath(), test::catalogueOf({"q3dm1", "Q3CTF1", "", "a b", "dup"}));
    const MapSnapshot snapshot = catalogue.snapshot();
    const QString path = folder.filePath("mapsel.txt");
    const QByteArray bytes = bytesOf(data, size);
    writeFile(path, bytes);

    const MapSelectionRead read = readMapSelection(path, snapshot);
    FUZZ_CHECK(read.ok);
    const QStringList lines = splitTextLines(bytes);
    qsizetype line = 0;
    for (const QString& entry : read.entries()) {
        while (line < lines.size() && lines[line] != entry)
            ++line;
        FUZZ_CHECK(line++ < lines.size()); // a line of the file, in file order
        FUZZ_CHECK(snapshot.find(entry) > 0 && !trimSpaces(entry).startsWith("//"));
    }
    FUZZ_CHECK(writeMapSelection(path, read.entries()));
    const QByteArray written = read.entries().join("\r\n").toLatin1();
    FUZZ_CHECK(test::readAll(path) == (written.isEmpty() ? written : written + "\r\n"));
    FUZZ_CHECK(readMapSelection(path, snapshot).entries() == read.entries());
    return 0;
}
