#include "platform/WholeFile.h"

#include "platform/PrivateFiles.h"

#include <QFile>
#include <QSaveFile>

namespace halvane {

bool saveWholeFile(const QString& path, const QByteArray& bytes, QString* reason,
                   FileAccess access) {
    QSaveFile file(path);
    // The temporary file is made private before the first byte goes in, so a
    // password is never readable by others, not even for a moment; the
    // rename keeps its modes.
    const bool opened = file.open(QIODevice::WriteOnly) &&
                        (access != FileAccess::Private ||
                         file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    // Qt 6.4's commit() ignores a failure of its own final flush and renames
    // the short file over the old one; so every byte is flushed and checked
    // here first.
    const bool saved = opened && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (!saved) {
        if (reason)
            *reason = file.errorString();
        file.cancelWriting();
    }
    return saved;
}

bool copyWholeFile(const QString& from, const QString& to, QString* reason) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly)) {
        if (reason)
            *reason = source.errorString();
        return false;
    }
    const QByteArray bytes = source.readAll();
    if (source.error() != QFileDevice::NoError) {
        if (reason)
            *reason = source.errorString();
        return false;
    }
    // A copy of a file that holds a password (halvane.cfg) stays the user's alone.
    return saveWholeFile(to, bytes, reason,
                         isPrivate(from) ? FileAccess::Private : FileAccess::Usual);
}

} // namespace halvane
