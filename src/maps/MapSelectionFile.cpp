#include "maps/MapSelectionFile.h"

#include "maps/MapCatalogue.h"
#include "platform/WholeFile.h"

#include <QFile>
#include <functional>

namespace halvane {

bool writeMapSelection(const QString& path, const QStringList& entries, QString* reason) {
    QByteArray bytes;
    for (const QString& entry : entries) {
        bytes += entry.toLatin1();
        bytes += "\r\n";
    }
    return saveWholeFile(path, bytes, reason);
}

namespace {
// Hands over each line of single-byte text, whether it ends in CR LF or LF
// alone.
void forEachTextLine(QByteArrayView bytes, const std::function<void(QByteArrayView line)>& take) {
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        if (end < 0)
            end = bytes.size();
        qsizetype stop = end;
        if (stop > start && bytes[stop - 1] == '\r')
            --stop;
        take(bytes.sliced(start, stop - start));
        start = end + 1;
    }
}
} // namespace

QStringList splitTextLines(const QByteArray& bytes) {
    QStringList lines;
    forEachTextLine(bytes, [&](QByteArrayView line) { lines.append(QString::fromLatin1(line)); });
    return lines;
}

MapSelectionRead readMapSelection(const QString& path, const MapSnapshot& catalogue,
                                  const std::vector<QString>& names) {
    MapSelectionRead result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.ok = false;
        return result;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        result.ok = false;
    // Looked up as bytes: only the lines taken become text.
    forEachTextLine(bytes, [&](QByteArrayView line) {
        const QByteArrayView name = trimSpaces(line);
        if (name.isEmpty() || name.startsWith("//"))
            return;
        const qint16 number = catalogue.find(name);
        if (number < 1)
            return;
        if (size_t(number) < names.size() && names[size_t(number)] == QLatin1StringView(line))
            result.entries.append(names[size_t(number)]);
        else
            result.entries.append(QString::fromLatin1(line));
    });
    return result;
}

} // namespace halvane
