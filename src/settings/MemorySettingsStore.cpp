#include "settings/MemorySettingsStore.h"

namespace halvane {

QString MemorySettingsStore::read(const QString& section, const QString& key,
                                  const QString& defaultText) const {
    const auto found = m_values.constFind(section);
    if (found == m_values.constEnd())
        return defaultText;
    return found->values.value(key, defaultText);
}

bool MemorySettingsStore::write(const QString& section, const QString& key, const QString& value) {
    if (!m_values.contains(section))
        m_sections.append(section);
    Section& entries = m_values[section];
    if (!entries.values.contains(key))
        entries.keys.append(key);
    entries.values.insert(key, value);
    return true;
}

bool MemorySettingsStore::contains(const QString& section, const QString& key) const {
    const auto found = m_values.constFind(section);
    return found != m_values.constEnd() && found->values.contains(key);
}

QStringList MemorySettingsStore::keys(const QString& section) const {
    return m_values.value(section).keys;
}

} // namespace halvane
