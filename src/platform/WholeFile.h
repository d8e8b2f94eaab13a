#pragma once

#include <QByteArray>
#include <QString>

namespace halvane {

// Who may read a saved file: as the user's other files (an existing file keeps
// its modes), or the user alone (0600, also when the file existed with wider
// modes), for files that hold passwords.
enum class FileAccess { Usual, Private };

// Replaces the file at path as a whole: the bytes go to a temporary file
// beside it, which takes the file's place only once every byte has reached
// the disk. On any failure the old file stays as it was (or stays missing)
// and reason, when given, says why.
bool saveWholeFile(const QString& path, const QByteArray& bytes, QString* reason = nullptr,
                   FileAccess access = FileAccess::Usual);

// saveWholeFile for a file that holds a password: readable by the user alone.
inline bool savePrivateFile(const QString& path, const QByteArray& bytes,
                            QString* reason = nullptr) {
    return saveWholeFile(path, bytes, reason, FileAccess::Private);
}

// Copies a file over another in the same way; a copy of a file that only its
// owner may read is made the same.
bool copyWholeFile(const QString& from, const QString& to, QString* reason = nullptr);

} // namespace halvane
