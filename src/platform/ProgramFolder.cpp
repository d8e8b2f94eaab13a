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
