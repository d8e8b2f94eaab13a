#include "profiles/ProfileStore.h"

#include "platform/PrivateFiles.h"
#include "platform/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace halvane {

namespace {
const QString Suffix = QStringLiteral(".ini");

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}
} // namespace

QString ProfileStore::filePath(const QString& name) const {
    return m_folder + QLatin1Char('/') + name + Suffix;
}

QStringList ProfileStore::names() const {
    QStringList names;
    const QDir dir(m_folder);
    for (const QFileInfo& file :
         dir.entryInfoList({QLatin1Char('*') + Suffix}, QDir::Files | QDir::Hidden)) {
        const QString name = file.fileName().chopped(Suffix.size());
        if (profileNameProblem(name).isEmpty())
            names.append(name);
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

bool ProfileStore::exists(const QString& name) const {
    if (!profileNameProblem(name).isEmpty())
        return false;
    const QFileInfo file(filePath(name));
    return file.exists() && !file.isDir();
}

QString ProfileStore::load(const QString& name, Profile& profile) const {
    if (!profileNameProblem(name).isEmpty())
        return profileNameRefusal(name);
    const QString path = filePath(name);
    const QFileInfo info(path);
    const QString opening =
        QStringLiteral("The profile ") + shown(path) + QStringLiteral(" cannot be read: ");
    if (!info.exists())
        return opening + QStringLiteral("there is no such file.");
    if (info.isDir())
        return opening + QStringLiteral("it is a folder.");
    if (info.size() > ProfileFileMax)
        return opening + QStringLiteral("the file is far larger than a profile.");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return opening + file.errorString() + QLatin1Char('.');
    const QByteArray bytes = file.read(ProfileFileMax + 1);
    if (file.error() != QFileDevice::NoError)
        return opening + file.errorString() + QLatin1Char('.');
    const QString problem = parseProfile(bytes, profile);
    if (!problem.isEmpty())
        return opening + problem + QLatin1Char('.');
    profile.settings.setLocation(path);
    return {};
}

QString ProfileStore::save(const QString& name, const Profile& profile) const {
    if (!profileNameProblem(name).isEmpty())
        return profileNameRefusal(name);
    const QString path = filePath(name);
    const QString opening =
        QStringLiteral("The profile ") + shown(path) + QStringLiteral(" cannot be saved: ");
    if (!makePrivateFolder(m_folder))
        return opening + QStringLiteral("the folder ") + shown(m_folder) +
               QStringLiteral(" cannot be made or is not yours.");
    if (QFileInfo(path).isDir())
        return opening + QStringLiteral("it is a folder.");
    // It may hold the server's passwords.
    QString reason;
    if (!savePrivateFile(path, profileBytes(profile), &reason))
        return opening + reason + QLatin1Char('.');
    return {};
}

QString ProfileStore::rename(const QString& from, const QString& to) const {
    if (!profileNameProblem(to).isEmpty())
        return profileNameRefusal(to);
    const QString source = filePath(from), target = filePath(to);
    if (!exists(from))
        return QStringLiteral("The profile ") + shown(source) +
               QStringLiteral(" cannot be renamed: there is no such file.");
    // Only a change of letter case may land on the same file.
    if (QFileInfo::exists(target) && from.compare(to, Qt::CaseInsensitive) != 0)
        return QStringLiteral("The profile ") + shown(source) +
               QStringLiteral(" cannot be renamed: a profile named \"") + to +
               QStringLiteral("\" exists already (") + shown(target) + QStringLiteral(").");
    if (from == to)
        return {};
    QFile file(source);
    if (!file.rename(target))
        return QStringLiteral("The profile ") + shown(source) +
               QStringLiteral(" cannot be renamed to ") + shown(target) + QStringLiteral(": ") +
               file.errorString() + QLatin1Char('.');
    return {};
}

QString ProfileStore::remove(const QString& name) const {
    const QString path = filePath(name);
    if (!exists(name))
        return QStringLiteral("The profile ") + shown(path) +
               QStringLiteral(" cannot be deleted: there is no such file.");
    QFile file(path);
    if (!file.remove())
        return QStringLiteral("The profile ") + shown(path) +
               QStringLiteral(" cannot be deleted: ") + file.errorString() + QLatin1Char('.');
    return {};
}

} // namespace halvane
