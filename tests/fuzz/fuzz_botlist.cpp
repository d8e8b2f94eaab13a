// botlist.txt holding any bytes: names come out trimmed and non-empty, and
// a list written back, one name a line, reads back as the same names.
#include "FuzzSupport.h"

#include "bots/BotListFile.h"

using namespace halvane;
using namespace halvane::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder;
    const QString path = folder.filePath("botlist.txt");
    const QByteArray bytes = bytesOf(data, size);
    writeFile(path, bytes);
    const BotListRead read = readBotList(path);
    FUZZ_CHECK(read.ok == !bytes.isEmpty()); // an empty file is a failed read
    QByteArray written;
    for (const QString& name : read.names) {
        FUZZ_CHECK(!name.isEmpty() && !name.startsWith(' ') && !name.endsWith(' '));
        FUZZ_CHECK(!name.contains('\n') && bytes.contains(name.toLatin1()));
        written += ' ' + name.toLatin1() + "\r\n"; // indented, "//..." is a name
    }
    FUZZ_CHECK(parseBotList(written) == read.names);
    return 0;
}
