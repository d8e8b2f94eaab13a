// Builds the pre-installed map catalogue instmaps.dat from its text source,
// through the same record code the program reads it with.
//   makeinstmaps <source.txt> <instmaps.dat>
#include "maps/MapRecord.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>
#include <cstdio>

using namespace halvane;

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: makeinstmaps <source.txt> <instmaps.dat>\n");
        return 2;
    }
    QFile source(QString::fromLocal8Bit(argv[1]));
    if (!source.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "makeinstmaps: cannot read %s\n", argv[1]);
        return 1;
    }
    const MapField order[] = {MapField::DisplayName, MapField::FileName,     MapField::FragLimit,
                              MapField::TimeLimit,   MapField::CaptureLimit, MapField::Gravity,
                              MapField::Speed,       MapField::KnockBack};
    QByteArray bytes;
    int lineNumber = 0;
    while (!source.atEnd()) {
        ++lineNumber;
        // The source is UTF-8; the records hold one byte per character.
        const QString line = QString::fromUtf8(source.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char('|'));
        if (fields.size() != 8 || fields[1].trimmed().isEmpty()) {
            std::fprintf(stderr, "%s:%d: expected 8 fields with a file name\n", argv[1],
                         lineNumber);
            return 1;
        }
        MapRecord record;
        for (int i = 0; i < 8; ++i) {
            const QString value = fields[i].trimmed();
            if (value.size() > MapRecord::Fields[size_t(i)].width) {
                std::fprintf(stderr, "%s:%d: field %d is longer than %d characters\n", argv[1],
                             lineNumber, i + 1, MapRecord::Fields[size_t(i)].width);
                return 1;
            }
            record.set(order[i], value);
        }
        bytes.append(record.bytes(), MapRecord::Size);
    }
    QSaveFile target(QString::fromLocal8Bit(argv[2]));
    if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size() ||
        !target.commit()) {
        std::fprintf(stderr, "makeinstmaps: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
