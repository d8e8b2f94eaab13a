#pragma once

#include "platform/SettingsStore.h"

#include <QList>
#include <QMap>
#include <QStringList>

namespace halvane {

// A settings store held in memory, in the order the values were first
// written: what a profile holds between its file and a window's controls.
class MemorySettingsStore : public SettingsStore {
public:
    explicit MemorySettingsStore(QString location = {}) : m_location(std::move(location)) {}

    QString read(const QString& section, const QString& key,
                 const QString& defaultText) const override;
    bool write(const QString& section, const QString& key, const QString& value) override;
    bool flush() override { return true; }
    QString location() const override { return m_location; }
    QString failureReason() const override { return {}; }

    bool contains(const QString& section, const QString& key) const;
    QStringList sections() const { return m_sections; }
    // The keys of a section in the order they were first written.
    QStringList keys(const QString& section) const;
    bool isEmpty() const { return m_sections.isEmpty(); }
    void setLocation(const QString& location) { m_location = location; }

private:
    struct Section {
        QStringList keys;
        QMap<QString, QString> values;
    };
    QString m_location;
    QStringList m_sections;
    QMap<QString, Section> m_values;
};

} // namespace halvane
