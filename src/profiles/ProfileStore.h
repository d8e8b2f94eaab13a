#pragma once

#include "profiles/Profile.h"

#include <QStringList>

namespace halvane {

// The profiles, one file each (<name>.ini) in one folder readable by the
// user alone. Every operation says what went wrong as a whole sentence that
// names the file and the reason, or returns an empty text; nothing is
// changed when it fails, and no other profile is touched.
class ProfileStore {
public:
    explicit ProfileStore(QString folder) : m_folder(std::move(folder)) {}

    const QString& folder() const { return m_folder; }
    QString filePath(const QString& name) const;
    // The names of the profile files there, sorted without regard to case;
    // files whose names are no profile names are left out.
    QStringList names() const;
    bool exists(const QString& name) const;

    QString load(const QString& name, Profile& profile) const;
    // Creates or replaces the profile's file as a whole.
    QString save(const QString& name, const Profile& profile) const;
    // Refuses a new name that another profile has.
    QString rename(const QString& from, const QString& to) const;
    QString remove(const QString& name) const;

private:
    QString m_folder;
};

} // namespace halvane
