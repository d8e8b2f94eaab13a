#include "maps/MapRecord.h"

#include <cstring>

namespace halvane {

QString trimSpaces(const QString& text) {
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == QLatin1Char(' '))
        ++start;
    while (end > start && text[end - 1] == QLatin1Char(' '))
        --end;
    return text.mid(start, end - start);
}

MapRecord MapRecord::fromBytes(const char* bytes) {
    MapRecord record;
    std::memcpy(record.m_bytes.data(), bytes, Size);
    return record;
}

QString MapRecord::get(MapField field) const {
    // Trimmed as bytes, so that the text is made once: a catalogue load
    // reads tens of thousands of names.
    return QString::fromLatin1(trimSpaces(bytes(field)));
}

void MapRecord::set(MapField field, const QString& text) {
    const Layout layout = Fields[size_t(field)];
    // Characters beyond Latin-1 have no single byte; they become '?'.
    const QByteArray bytes = text.left(layout.width).toLatin1();
    for (int i = 0; i < layout.width; ++i)
        m_bytes[size_t(layout.offset + i)] = i < bytes.size() ? bytes[i] : ' ';
}

} // namespace halvane
