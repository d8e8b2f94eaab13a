#include "server/LogTail.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace halvane {

void LogTail::follow(const QString& path) {
    m_path = path;
    m_offset = -1;
    m_partial.clear();
    m_reported = false;
    m_skipPartLine = false;
}

QStringList LogTail::readNew(QString* problem) {
    QFile file(m_path);
    const QFileInfo info(m_path);
    // A pipe or a device would never end a read, and block the window.
    const bool odd = info.exists() && !info.isFile();
    if (m_path.isEmpty() || odd || !file.open(QIODevice::ReadOnly)) {
        if (!m_reported && problem) {
            *problem = m_path.isEmpty() ? QStringLiteral("This server has no log file")
                                        : QStringLiteral("The log file %1 cannot be read: %2")
                                              .arg(QDir::toNativeSeparators(m_path),
                                                   odd ? QStringLiteral("it is not a regular file")
                                                       : file.errorString());
        }
        m_reported = true;
        m_offset = -1; // read it afresh should it come back
        return {};
    }
    m_reported = false;
    const qint64 size = file.size();
    if (m_offset < 0 || size < m_offset) {
        // First look, or the file was cut or replaced: its last part.
        m_offset = qMax<qint64>(0, size - FirstRead);
        m_partial.clear();
        m_skipPartLine = m_offset > 0;
    }
    if (!file.seek(m_offset))
        return {};
    const QByteArray bytes = file.read(qMin(MaxRead, size - m_offset));
    m_offset += bytes.size();
    m_partial += bytes;
    if (m_skipPartLine) {
        const qsizetype first = m_partial.indexOf('\n');
        if (first < 0)
            return {};
        m_partial.remove(0, first + 1);
        m_skipPartLine = false;
    }
    const qsizetype end = m_partial.lastIndexOf('\n');
    if (end < 0)
        return {};
    QStringList lines;
    for (QByteArray line : m_partial.left(end).split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        lines.append(QString::fromLatin1(line));
    }
    m_partial.remove(0, end + 1);
    return lines;
}

} // namespace halvane
