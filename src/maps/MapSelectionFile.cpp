#include "maps/MapSelectionFile.h"

#include "maps/MapCatalogue.h"
#include "platform/WholeFile.h"

#include <QFile>

namespace halvane {

bool writeMapSelection(const QString& path, const QStringList& entries, QString* reason) {
    QByteArray bytes;
    for (const QString& entry : entries) {
        bytes += entry.toLatin1();
        bytes += "\r\n";
    }
    return saveWholeFile(path, bytes, reason);
}

QStringList splitTextLines(const QByteArray& bytes) {
    QStringList lines;
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        const bool last = end < 0;
        if (last)
            end = bytes.size();
        qsizetype stop = end;
        if (stop > start && bytes[stop - 1] == '\r')
            --stop;
        lines.append(QString::fromLatin1(bytes.constData() + start, stop - start));
        start = end + 1;
    }
    return lines;
}

MapSelectionRead readMapSelection(const QString& path, const MapSnapshot& catalogue) {
    MapSelectionRead result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.ok = false;
        return result;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        result.ok = false;
    for (const QString& line : splitTextLines(bytes)) {
        const QString name = trimSpaces(line);
        if (name.isEmpty() || name.startsWith(QLatin1String("//")))
            continue;
        if (catalogue.find(name) > 0)
            result.entries.append(line);
    }
    return result;
}

} // namespace halvane
