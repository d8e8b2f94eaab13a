#pragma once

#include "maps/Latin1Names.h"

#include <QStringList>

namespace halvane {

class MapSnapshot;

// mapsel.txt: the selected maps, one per line, CR LF, single-byte text. The
// file is replaced only once it is written whole; reason says why not.
bool writeMapSelection(const QString& path, const QStringList& entries, QString* reason = nullptr);

struct MapSelectionRead {
    bool ok = true;    // false when the file could not be read
    Latin1Names lines; // the accepted lines as they were read, spaces kept
    QStringList entries() const { return lines.toList(); }
};
// Takes a line that is not blank, is no "//" comment and names a known map.
MapSelectionRead readMapSelection(const QString& path, const MapSnapshot& catalogue);

// Splits single-byte text into lines, whether they end in CR LF or LF alone.
QStringList splitTextLines(const QByteArray& bytes);

} // namespace halvane
