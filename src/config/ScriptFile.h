#pragma once

#include "platform/PrivateFiles.h"
#include "platform/WholeFile.h"

#include <QFile>
#include <QHash>
#include <QString>
#include <QStringList>

namespace halvane {

// A game script being written: one byte per character, each line ended by
// CR LF. The file is created anew; a write that fails partway leaves the
// lines written so far, so it is a plain file and not a save-and-rename.
// A private script (one that holds a password) is created readable by the
// user alone, and an existing one is tightened before anything is written.
class ScriptFile {
public:
    explicit ScriptFile(const QString& path, FileAccess access = FileAccess::Usual)
        : m_file(path), m_access(access) {}
    ~ScriptFile() { close(); }

    bool open() {
        if (m_access == FileAccess::Private) {
            m_ok = m_file.open(QIODevice::WriteOnly | QIODevice::Truncate,
                               QFileDevice::ReadOwner | QFileDevice::WriteOwner);
            // Tightened while still empty. A file system without modes (a
            // FAT drive) refuses; the script is written all the same.
            if (m_ok)
                makeFilePrivate(m_file.fileName());
        } else {
            m_ok = m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        }
        return m_ok;
    }
    // Writes text and the line end; after a failure nothing more is written.
    bool line(const QString& text = QString()) {
        if (!m_ok)
            return false;
        QByteArray bytes = text.toLatin1();
        bytes.append("\r\n", 2);
        m_ok = m_file.write(bytes) == bytes.size();
        return m_ok;
    }
    bool ok() const { return m_ok; }
    // Flushes and closes; true when every line reached the file.
    bool close() {
        if (!m_file.isOpen())
            return m_ok;
        if (!m_file.flush())
            m_ok = false;
        m_file.close();
        if (m_file.error() != QFileDevice::NoError)
            m_ok = false;
        return m_ok;
    }

private:
    QFile m_file;
    FileAccess m_access;
    bool m_ok = false;
};

// Finds the names of one folder without regard to letter case. A name that
// exists as spelled is taken with one look at that file; the folder is listed
// only for a name that does not, and then once however many more follow, so
// thousands of old scripts in the folder cost nothing when they are replaced.
class FolderNames {
public:
    explicit FolderNames(QString folder);
    // folder/name, spelled as the existing file is where one matches.
    QString path(const QString& name) const;

private:
    QString m_folder;
    mutable bool m_listed = false;
    mutable QHash<QString, QString> m_entries; // lower-cased name -> name on disk
};

} // namespace halvane
