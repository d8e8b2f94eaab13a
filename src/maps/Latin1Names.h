#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <cstring>
#include <vector>

namespace halvane {

// Names in single-byte text, each a stretch of one shared text: a list of
// tens of thousands of map names is read from a file without making a
// string per name, and each name becomes text only when it is asked for.
class Latin1Names {
public:
    Latin1Names() = default;
    explicit Latin1Names(QByteArray text) : m_text(std::move(text)), m_used(m_text.size()) {}

    // Adds the bytes of text from offset on, length long, as the next name.
    void addSpan(qsizetype offset, qsizetype length) { m_spans.push_back({offset, length}); }
    // Appends name to the text and adds it. Room made by reserve() is
    // filled in place, as a catalogue's names are added one by one.
    void add(QByteArrayView name) {
        const qsizetype at = m_used;
        m_used += name.size();
        if (m_used > m_text.size())
            m_text.resize(qMax(m_used, 2 * m_text.size()));
        std::memcpy(m_text.data() + at, name.data(), size_t(name.size()));
        addSpan(at, name.size());
    }
    void reserve(qsizetype names, qsizetype bytes) {
        m_spans.reserve(size_t(names));
        if (m_text.size() < m_used + bytes)
            m_text.resize(m_used + bytes);
    }

    qsizetype size() const { return qsizetype(m_spans.size()); }
    bool isEmpty() const { return m_spans.empty(); }
    QByteArrayView bytes(qsizetype i) const {
        const Span span = m_spans[size_t(i)];
        return QByteArrayView(m_text.constData() + span.offset, span.length);
    }
    QString at(qsizetype i) const { return QString::fromLatin1(bytes(i)); }
    QStringList toList() const {
        QStringList list;
        list.reserve(size());
        for (qsizetype i = 0; i < size(); ++i)
            list.append(at(i));
        return list;
    }

private:
    struct Span {
        qsizetype offset;
        qsizetype length;
    };
    QByteArray m_text;
    qsizetype m_used = 0; // bytes of m_text that names may lie in
    std::vector<Span> m_spans;
};

} // namespace halvane
