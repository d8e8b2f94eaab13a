#pragma once

#include <QByteArrayView>
#include <QString>
#include <array>

namespace halvane {

enum class MapField {
    DisplayName,
    FileName,
    FragLimit,
    TimeLimit,
    CaptureLimit,
    Gravity,
    Speed,
    KnockBack
};

// One map of the catalogue: 71 bytes, eight space-padded single-byte text
// fields side by side. This is the only place that knows the layout.
class MapRecord {
public:
    static constexpr int Size = 71;
    struct Layout {
        int offset;
        int width;
    };
    static constexpr std::array<Layout, 8> Fields{
        {{0, 30}, {30, 20}, {50, 3}, {53, 3}, {56, 3}, {59, 4}, {63, 4}, {67, 4}}};

    MapRecord() { m_bytes.fill(' '); }
    static MapRecord fromBytes(const char* bytes);

    // The field without its leading and trailing spaces.
    QString get(MapField field) const;
    // Stores the text cut or padded with spaces to the field's width.
    void set(MapField field, const QString& text);

    bool isDeleted() const { return get(MapField::FileName).isEmpty(); }
    const char* bytes() const { return m_bytes.data(); }
    // The field as stored, padding included.
    QByteArrayView bytes(MapField field) const {
        const Layout layout = Fields[size_t(field)];
        return QByteArrayView(m_bytes.data() + layout.offset, layout.width);
    }

    bool operator==(const MapRecord&) const = default;

private:
    std::array<char, Size> m_bytes;
};

// Trims spaces only, as the record fields are read back.
QString trimSpaces(const QString& text);
inline QByteArrayView trimSpaces(QByteArrayView bytes) {
    const char* begin = bytes.data();
    const char* end = begin + bytes.size();
    while (begin < end && *begin == ' ')
        ++begin;
    while (end > begin && end[-1] == ' ')
        --end;
    return QByteArrayView(begin, end - begin);
}

} // namespace halvane
