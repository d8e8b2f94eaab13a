// What the sections of halvane_bench share: the tests' platform of fakes
// over real temporary folders, medians, and letting the windows lay out and
// paint.
#pragma once

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <vector>
#include <zip.h>

namespace halvane::bench {

// The tests' platform of fakes over a temporary program folder, game folder
// and a real settings file, with the game's location stored.
struct BenchPlatform : test::TestPlatform {
    BenchPlatform() {
        makeGameFolder();
        QDir().mkpath(game() + QStringLiteral("/baseq3/maps"));
    }
    QString program() const { return programFolder(); }
    QString game() const { return gameFolder(); }
};

// One archive holding these members, each with a few bytes.
inline bool writeArchive(const QString& path, const QStringList& members) {
    static const char content[] = "IBSP and some bytes of map data";
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return false;
    for (const QString& member : members) {
        zip_source_t* source = zip_source_buffer(archive, content, sizeof content, 0);
        zip_file_add(archive, member.toLatin1().constData(), source, 0);
    }
    return zip_close(archive) == 0;
}

inline double median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// The median of the ratios of pairs timed one after the other.
inline double medianRatio(const std::vector<double>& measured, const std::vector<double>& base) {
    std::vector<double> ratios;
    for (size_t i = 0; i < measured.size() && i < base.size(); ++i) {
        if (base[i] > 0)
            ratios.push_back(measured[i] / base[i]);
    }
    return median(ratios);
}

// Runs what a click left pending: the lists' delayed layout, then the paint.
inline void settle() {
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace halvane::bench
