#pragma once

#include <QString>

namespace halvane {

// The folder the program keeps its own files in (beside the executable).
class ProgramFolder {
public:
    explicit ProgramFolder(QString path) : m_path(std::move(path)) {}
    const QString& path() const { return m_path; }
    // Path of a file below the program's folder, relative with '/'.
    QString file(const QString& relative) const;

private:
    QString m_path;
};

// True when the file can be opened for reading.
bool FileExists(const QString& path);

// Finds an existing path below base whose components match relative without
// regard to letter case; returns base/relative unchanged when none matches.
QString findIgnoringCase(const QString& base, const QString& relative);

} // namespace halvane
