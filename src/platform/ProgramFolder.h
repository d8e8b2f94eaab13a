#pragma once

#include <QString>

namespace halvane {

QString userStateFolder();

// The folder the program keeps its own files in (beside the executable), the
// folder it reads its delivered files from (the map catalogue it was
// installed with, help pages, pictures), and the user's state folder, where
// it keeps what it started and the servers' logs. The first two are one
// folder unless the program was installed where its user cannot write: then
// its own files are kept in a folder of the user's. Tests point all three at
// temporary folders.
class ProgramFolder {
public:
    explicit ProgramFolder(QString path, QString stateFolder = userStateFolder())
        : m_path(std::move(path)), m_installed(m_path), m_state(std::move(stateFolder)) {}
    ProgramFolder(QString path, QString installed, QString stateFolder)
        : m_path(std::move(path)), m_installed(std::move(installed)),
          m_state(std::move(stateFolder)) {}
    const QString& path() const { return m_path; }
    const QString& installed() const { return m_installed; }
    const QString& stateFolder() const { return m_state; }
    // Path of a file below the program's folder, relative with '/'.
    QString file(const QString& relative) const;
    // Path of a delivered file below the installed folder.
    QString installedFile(const QString& relative) const;

private:
    QString m_path;
    QString m_installed;
    QString m_state;
};

// The program's folder for an executable in executableFolder. The delivered
// files lie beside it, or in share/halvane of the prefix it was installed
// to. Their folder is the program's folder when the user may write there;
// otherwise userFolder is, filled on first use with the delivered bot list
// (for the user to edit). A folder of the system's shared data (/usr/share)
// is never written, even by root.
ProgramFolder locateProgramFolder(const QString& executableFolder, const QString& userFolder,
                                  const QString& stateFolder = userStateFolder());

// The user's own program folder: Halvane/program in the user's data folder.
QString userProgramFolder();

// True when the file can be opened for reading.
bool FileExists(const QString& path);

// Finds an existing path below base whose components match relative without
// regard to letter case; returns base/relative unchanged when none matches.
QString findIgnoringCase(const QString& base, const QString& relative);

} // namespace halvane
