#include "platform/ProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace halvane {

QString ProgramFolder::file(const QString& relative) const {
    return findIgnoringCase(m_path, relative);
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
