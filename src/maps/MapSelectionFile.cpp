#include "maps/MapSelectionFile.h"

#include "maps/MapCatalogue.h"
#include "platform/WholeFile.h"

#include <QFile>
#include <cstring>

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
// alone, with its offset in bytes.
template <typename Take> void forEachTextLine(QByteArrayView bytes, Take take) {
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    for (const char* start = begin; start < end;) {
        const void* found = std::memchr(start, '\n', size_t(end - start));
        const char* stop = found ? static_cast<const char*>(found) : end;
        const char* next = stop + 1;
        if (stop > start && stop[-1] == '\r')
            --stop;
        take(QByteArrayView(start, stop - start), start - begin);
        start = next;
    }
}
} // namespace

QStringList splitTextLines(const QByteArray& bytes) {
    QStringList lines;
    forEachTextLine(
        bytes, [&](QByteArrayView line, qsizetype) { lines.append(QString::fromLatin1(line)); });
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
    // Looked up as bytes, and kept as spans of the file's bytes: a line
    // becomes text only when the list needs it.
    result.lines = Latin1Names(bytes);
    int next = 1;
    forEachTextLine(bytes, [&](QByteArrayView line, qsizetype offset) {
        const QByteArrayView name = trimSpaces(line);
        if (name.isEmpty() || (name.size() >= 2 && name[0] == '/' && name[1] == '/'))
            return;
        if (catalogue.knows(name, next))
            result.lines.addSpan(offset, line.size());
    });
    return result;
}

} // namespace halvane
