#include "config/ScriptFile.h"

#include <QDir>
#include <QFileInfo>

namespace halvane {

FolderNames::FolderNames(QString folder) : m_folder(std::move(folder)) {}

QString FolderNames::path(const QString& name) const {
    const QString exact = m_folder + QLatin1Char('/') + name;
    if (QFileInfo::exists(exact))
        return exact;
    if (!m_listed) {
        m_listed = true;
        const QStringList names =
            QDir(m_folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QString& entry : names)
            m_entries.insert(entry.toLower(), entry);
    }
    return m_folder + QLatin1Char('/') + m_entries.value(name.toLower(), name);
}

} // namespace halvane
