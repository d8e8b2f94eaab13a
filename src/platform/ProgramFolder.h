#pragma once

#include <QString>

namespace halvane {

QString userStateFolder();

// The folder the program keeps its own files in (beside the executable), and
// the user's state folder, where it keeps what it started and the servers'
// logs (tests point both at temporary folders).
class ProgramFolder {
public:
    explicit ProgramFolder(QString path, QString stateFolder = userStateFolder())
        : m_path(std::move(path)), m_state(std::move(stateFolder)) {}
    const QString& path() const { return m_path; }
    const QString& stateFolder() const { return m_state; }
    // Path of a file below the program's folder, relative with '/'.
    QString file(const QString& relative) const;

private:
    QString m_path;
    QString m_state;
};

// True when the file can be opened for reading.
bool FileExists(const QString& path);

// Finds an existing path below base whose components match relative without
// regard to letter case; returns base/relative unchanged when none matches.
QString findIgnoringCase(const QString& base, const QString& relative);

} // namespace halvane
