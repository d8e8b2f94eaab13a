#include "platform/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace halvane {

namespace {
constexpr QFileDevice::Permissions OwnerFile = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr QFileDevice::Permissions OwnerFolder = OwnerFile | QFileDevice::ExeOwner;
constexpr QFileDevice::Permissions Others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                                            QFileDevice::ExeGroup | QFileDevice::ReadOther |
                                            QFileDevice::WriteOther | QFileDevice::ExeOther;
} // namespace

bool makeFilePrivate(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() || info.isDir())
        return false;
    // The owner's execute bit (a script the user made runnable) may stay.
    const QFileDevice::Permissions kept = (info.permissions() & QFileDevice::ExeOwner) | OwnerFile;
    return QFile::setPermissions(path, kept);
}

bool makePrivateFolder(const QString& path) {
    if (path.isEmpty())
        return false;
    if (!QFileInfo(path).isDir() && !QDir().mkpath(path))
        return false;
    return QFile::setPermissions(path, OwnerFolder);
}

bool isPrivate(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && !(info.permissions() & Others);
}

} // namespace halvane
