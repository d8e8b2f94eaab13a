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

ProgramFolder locateProgramFolder(const QString& executableFolder, const QString& userFolder,
                                  const QString& stateFolder) {
    QString installed = executableFolder;
    bool systemWide = false;
    const QString shared = QDir::cleanPath(executableFolder + QStringLiteral("/../share/halvane"));
    if (!QFileInfo::exists(installed + QLatin1Char('/') + DeliveredMarker) &&
        QFileInfo::exists(shared + QLatin1Char('/') + DeliveredMarker)) {
        installed = shared;
        systemWide = isSharedSystemData(shared);
    }
    if (!systemWide && canWriteIn(installed))
        return ProgramFolder(installed, installed, stateFolder);

    // A failure here shows later, as the message of the file that could
    // not be read or written.
    QDir().mkpath(userFolder);
    const QString botList = userFolder + QStringLiteral("/botlist.txt");
    if (!QFileInfo::exists(botList) &&
        QFile::copy(installed + QStringLiteral("/botlist.txt"), botList))
        QFile::setPermissions(botList, QFile::permissions(botList) | QFile::WriteOwner);
    return ProgramFolder(userFolder, installed, stateFolder);
}

QString userProgramFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Halvane/program");
}

// The XDG state home on Linux (~/.local/state/Halvane); elsewhere the
// program's local data folder.
QString userStateFolder() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QStringLiteral("/.local/state");
    return base + QStringLiteral("/Halvane");
#else
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
#endif
}

bool FileExists(const QString& path) {
    if (path.isEmpty())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly);
}

namespace {
// The first existing path below folder that spells parts[from...] in any
// letter case, or an empty text. The exact spelling of a name is tried
// first, then every other: "Maps" and "maps" may both exist, each holding
// other files.
QString findBelow(const QString& folder, const QStringList& parts, qsizetype from) {
    if (from == parts.size())
        return folder;
    const QDir dir(folder);
    const QString& part = parts[from];
    if (QFileInfo::exists(dir.filePath(part))) {
        const QString found = findBelow(dir.filePath(part), parts, from + 1);
        if (!found.isEmpty())
            return found;
    }
    const QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        if (entry == part || entry.compare(part, Qt::CaseInsensitive) != 0)
            continue;
        const QString found = findBelow(dir.filePath(entry), parts, from + 1);
        if (!found.isEmpty())
            return found;
    }
    return QString();
}
} // namespace

QString findIgnoringCase(const QString& base, const QString& relative) {
    const QString plain = QDir::cleanPath(base + QLatin1Char('/') + relative);
    if (QFileInfo::exists(plain))
        return plain;
    const QStringList parts = QString(relative)
                                  .replace(QLatin1Char('\\'), QLatin1Char('/'))
                                  .split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QString found = findBelow(base, parts, 0);
    return found.isEmpty() ? plain : found;
}

} // namespace halvane
