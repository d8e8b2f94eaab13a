#include "platform/UserFiles.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace halvane {

QString userProfileFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Halvane/profiles");
}

bool makeUserOnlyFolder(const QString& path) {
    if (path.isEmpty() || !QDir().mkpath(path))
        return false;
#ifdef Q_OS_WIN
    return true; // the user's own profile folders are private already
#else
    return QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                           QFileDevice::ExeOwner);
#endif
}

bool makeUserOnlyFile(const QString& path) {
#ifdef Q_OS_WIN
    return QFile::exists(path);
#else
    return QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
#endif
}

} // namespace halvane
