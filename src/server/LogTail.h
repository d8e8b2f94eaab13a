#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace halvane {

// Follows a growing log file: the last part of it at first, then what was
// added since, line by line.
class LogTail {
public:
    static constexpr qint64 FirstRead = 64 * 1024;
    static constexpr qint64 MaxRead = 256 * 1024; // per call, so a flood never stalls the window

    void follow(const QString& path);
    const QString& path() const { return m_path; }
    // The complete lines added since the last call. problem is set, once,
    // when the file is gone or cannot be read.
    QStringList readNew(QString* problem);

private:
    QString m_path;
    qint64 m_offset = -1; // -1: nothing read yet
    QByteArray m_partial;
    bool m_reported = false;
    bool m_skipPartLine = false; // a first look that starts inside a line
};

} // namespace halvane
