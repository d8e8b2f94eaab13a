// maplist.txt holding any bytes, imported at start-up: the list goes, the catalogue only grows, by
// whole records with the import's fixed rules, and afterwards every name the list offers is known.
#include "FuzzSupport.h"

#include "maps/MapSelectionFile.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Discovering discovering;
    auto& [platform, catalogue, discovery, before] = discovering;
    const QString list = platform.programFolder() + "/maplist.txt";
    const QByteArray bytes = bytesOf(data, size);
    writeFile(catalogue.dataPath(), before);
    writeFile(list, bytes);
    catalogue.CurrentMapRecord = 0;

    discovery.GetMapsFromBaseDir();
    FUZZ_CHECK(!QFile::exists(list) && catalogue.CurrentMapRecord == 0);
    const QByteArray after = test::readAll(catalogue.dataPath());
    FUZZ_CHECK(after.startsWith(before) && after.size() % MapRecord::Size == 0);
    qsizetype offered = 0;
    for (const QString& line : splitTextLines(bytes)) {
        if (line.startsWith("//") || line.startsWith("  "))
            continue;
        ++offered;
        // A longer name is stored cut, so never found whole; a name the
        // console would split is left out.
        if (line.size() <= 20 && discoveryAdds(line))
            FUZZ_CHECK(catalogue.FindMap(line) >= 1);
    }
    const int known = int(before.size() / MapRecord::Size);
    FUZZ_CHECK(catalogue.CountMaps() - known <= offered);
    for (int n = known + 1; n <= catalogue.CountMaps(); ++n) {
        FUZZ_CHECK(catalogue.readRecord(n));
        FUZZ_CHECK(QByteArray(catalogue.RecordBuffer.bytes() + 50, 21) == "20 20 0  800 320 1000");
    }
    return 0;
}
