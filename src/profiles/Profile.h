#pragma once

#include "settings/MemorySettingsStore.h"

#include <QByteArray>
#include <QStringList>

namespace halvane {

// A named server configuration: every key of the settings store and the
// chosen maps in play order.
struct Profile {
    MemorySettingsStore settings;
    QStringList maps;
};

// The profile a window's settings were last opened from or saved as, empty
// when none: what an export of those settings is named after.
class CurrentProfile {
public:
    virtual ~CurrentProfile() = default;
    virtual QString currentName() const = 0;
};

// Why name cannot name a profile, as the end of a sentence ("it holds a
// slash (/)"), or empty when it can. Names become file and folder names
// and command-line words, so they stay short and plain.
QString profileNameProblem(const QString& name);
inline constexpr int ProfileNameMax = 64;

// The refusal of a name as the operator reads it.
QString profileNameRefusal(const QString& name);

// The profile file: an INI text in UTF-8 with CR LF line ends, a [Profile]
// section naming the format, the store's sections and keys, the maps as
// [Maps] Map1..MapN, and a closing comment that shows the file is whole.
// Backslashes and control characters in keys and values are escaped.
QByteArray profileBytes(const Profile& profile);
// Empty when bytes hold a whole profile, now in profile; otherwise why not
// ("the file is empty", "line 7 is damaged", ...).
QString parseProfile(const QByteArray& bytes, Profile& profile);
inline constexpr qint64 ProfileFileMax = 4 * 1024 * 1024;

} // namespace halvane
