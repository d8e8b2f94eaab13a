#pragma once

#include <QByteArray>
#include <QString>

namespace halvane {

// Replaces the file at path as a whole: the bytes go to a temporary file
// beside it, which takes the file's place only once every byte has reached
// the disk. On any failure the old file stays as it was (or stays missing)
// and reason, when given, says why.
bool saveWholeFile(const QString& path, const QByteArray& bytes, QString* reason = nullptr);

// Copies a file over another in the same way.
bool copyWholeFile(const QString& from, const QString& to, QString* reason = nullptr);

} // namespace halvane
