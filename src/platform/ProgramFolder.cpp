#include "platform/ProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace halvane {

namespace {
const QString DeliveredMarker = QStringLiteral("instmaps.dat");

// Whether this user may create files in the folder: tried, not worked out
// from permission bits, which say nothing of read-only mounts, access lists
// or root.
bool canWriteIn(const QString& folder) {
    QTemporaryFile probe(folder + QStringLiteral("/.halvane-XXXXXX"));
    return probe.open();
}

// Inside one of the data folders all users share (/usr/share, /usr/local/share).
bool isSharedSystemData(const QString& folder) {
    const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    for (const QString& shared :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QString base = QFileInfo(shared).canonicalFilePath();
        if (shared != own && !base.isEmpty() &&
            (canonical + QLatin1Char('/')).startsWith(base + QLatin1Char('/')))
            return true;
    }
    return false;
}
} // namespace

QString ProgramFolder::file(const QString& relative) const {
    return findIgnoringCase(m_path, relative);
}

QString ProgramFolder::installedFile(const QString& relative) const {
    return findIgnoringCase(m_installed, relative);
}

ProgramFolder locateProgramFolder(const QString& executableFolder, const QString& userFolder) {
    QString installed = executableFolder;
    bool systemWide = false;
    const QString shared = QDir::cleanPath(executableFolder + QStringLiteral("/../share/halvane"));
    if (!QFileInfo::exists(installed + QLatin1Char('/') + DeliveredMarker) &&
        QFileInfo::exists(shared + QLatin1Char('/') + DeliveredMarker)) {
        installed = shared;
        systemWide = isSharedSystemData(shared);
    }
    if (!systemWide && canWriteIn(installed))
        return ProgramFolder(installed);

    // A failure here shows later, as the message of the file that could
    // not be read or written.
    QDir().mkpath(userFolder);
    const QString botList = userFolder + QStringLiteral("/botlist.txt");
    if (!QFileInfo::exists(botList) &&
        QFile::copy(installed + QStringLiteral("/botlist.txt"), botList))
        QFile::setPermissions(botList, QFile::permissions(botList) | QFile::WriteOwner);
    return ProgramFolder(userFolder, installed);
}

QString userProgramFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Halvane/program");
}

bool FileExists(const QString& path) {
    if (path.isEmpty())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly);
}

QString findIgnoringCase(const QString& base, const QString& relative) {
    const QString plain = QDir::cleanPath(base + QLatin1Char('/') + relative);
    if (QFileInfo::exists(plain))
        return plain;
    QString current = base;
    const QStringList parts = QString(relative)
                                  .replace(QLatin1Char('\\'), QLatin1Char('/'))
                                  .split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const QDir dir(current);
        const QString exact = dir.filePath(part);
        if (QFileInfo::exists(exact)) {
            current = exact;
            continue;
        }
        bool found = false;
        const QStringList entries =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString& entry : entries) {
            if (entry.compare(part, Qt::CaseInsensitive) == 0) {
                current = dir.filePath(entry);
                found = true;
                break;
            }
        }
        if (!found)
            return plain;
    }
    return current;
}

} // namespace halvane
