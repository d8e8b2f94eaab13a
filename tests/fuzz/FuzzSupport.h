#pragma once
// What every fuzz target shares: the application object, rules, files.
#include "TestSupport.h"

#include "config/ConsoleText.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>

namespace halvane::fuzz {

// A broken rule is a finding like a crash: abort, so libFuzzer keeps the input.
inline void check(bool kept, const char* rule, int line) {
    if (!kept) {
        std::fprintf(stderr, "rule broken at line %d: %s\n", line, rule);
        std::abort();
    }
}

// Whether discovery adds a map found under this name: the name as its record
// keeps it must be one the game's console can take (or empty, a blank slot).
inline bool discoveryAdds(const QString& found) {
    const QString stored =
        makeMapRecord(QString(), found, MapRules::builtIn()).get(MapField::FileName);
    return stored.isEmpty() || isConsoleSafeMapName(stored);
}

inline QByteArray bytesOf(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    check(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "file written", 0);
}

// A program folder whose catalogue starts as three records, one a deleted
// slot, and the discovery of new maps over it.
struct Discovering {
    test::TestPlatform platform;
    MapCatalogue catalogue{platform.programFolder()};
    MapDiscovery discovery{catalogue, *platform.app, nullptr};
    const QByteArray before = test::catalogueOf({"q3dm1", "", "Q3CTF1"});
};

} // namespace halvane::fuzz

#define FUZZ_CHECK(rule) halvane::fuzz::check((rule), #rule, __LINE__)

// The Qt readers need an application object: one, offscreen, for the run.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static int argc = 1;
    static char name[] = "fuzz", *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(argc, argv);
    return 0;
}
