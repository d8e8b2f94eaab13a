#pragma once

#include <QString>

namespace halvane {

// Per-user store of text values addressed by section and key. Reading an
// absent key gives the default; nothing is ever deleted.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual QString read(const QString& section, const QString& key,
                         const QString& defaultText) const = 0;
    // False when the value could not be stored.
    virtual bool write(const QString& section, const QString& key, const QString& value) = 0;
    // Pushes pending writes to disk; false when that failed.
    virtual bool flush() = 0;
    // Where the values are kept, as the operator would look for it: the
    // settings file, or the registry key.
    virtual QString location() const = 0;
    // Why the values cannot be stored there now, in a few words.
    virtual QString failureReason() const = 0;
};

} // namespace halvane
