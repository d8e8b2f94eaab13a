#include "config/ScriptFile.h"

#include <QDir>

namespace halvane {

FolderNames::FolderNames(QString folder) : m_folder(std::move(folder)) {
    const QStringList names = QDir(m_folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names)
        m_entries.insert(name.toLower(), name);
}

QString FolderNames::path(const QString& name) const {
    return m_folder + QLatin1Char('/') + m_entries.value(name.toLower(), name);
}

} // namespace halvane
