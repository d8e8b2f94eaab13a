#pragma once

#include <QStringList>
#include <vector>

namespace halvane {

class MapSnapshot;

// mapsel.txt: the selected maps, one per line, CR LF, single-byte text. The
// file is replaced only once it is written whole; reason says why not.
bool writeMapSelection(const QString& path, const QStringList& entries, QString* reason = nullptr);

struct MapSelectionRead {
    bool ok = true;      // false when the file could not be read
    QStringList entries; // the accepted lines as they were read, spaces kept
};
// Takes a line that is not blank, is no "//" comment and names a known map.
// An entry that spells a map's name as names holds it (by record number)
// shares that text.
MapSelectionRead readMapSelection(const QString& path, const MapSnapshot& catalogue,
                                  const std::vector<QString>& names = {});

// Splits single-byte text into lines, whether they end in CR LF or LF alone.
QStringList splitTextLines(const QByteArray& bytes);

} // namespace halvane
