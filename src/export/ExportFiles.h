#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace halvane {

// What a server folder for another host is made of: plain values taken from
// a profile (or the current settings) at the moment of the export.
struct ExportInput {
    QString name; // the profile's name, as typed
    QString engine = QStringLiteral("/usr/lib/ioquake3/ioq3ded");
    QStringList gameArguments; // the game's command line, split, with no password in it
    quint16 port = 27960;
    QMap<QString, QByteArray> scripts; // path below baseq3 ('/'-separated) -> bytes
    QByteArray passwords;              // baseq3/passwords.cfg
};

struct ExportFile {
    QString path; // relative to the folder, '/'-separated
    QByteArray bytes;
    bool executable = false;
    bool ownerOnly = false; // holds a password
};

namespace exporting {

// The free game's files as Debian installs them.
inline const QString FreeGameFolder = QStringLiteral("/usr/lib/openarena-server");
// Where the container image and the Kubernetes pod keep the folder.
inline const QString ContainerHome = QStringLiteral("/srv/halvane");
inline const QString PasswordFile = QStringLiteral("passwords.cfg");

// The name as it may appear in a unit, a user or a Kubernetes object:
// lower-case letters, digits and single dashes, at most 24 characters.
QString slug(const QString& name);
// Where the unit expects the folder on the host.
QString hostFolder(const QString& name);

// The engine's arguments for a game home folder: the free game's set-up,
// then the game's own command line, then the passwords file. withAddress
// false leaves out net_ip, which names an address of the operator's host,
// not of a container.
QStringList serverArguments(const ExportInput& input, const QString& home, bool withAddress);

// The game's command line without its server password: the password, if
// any, in *password.
QStringList withoutPassword(const QStringList& arguments, QString* password);

QByteArray runScript(const ExportInput& input);
QByteArray systemdUnit(const ExportInput& input);
QByteArray containerfile(const ExportInput& input);
QByteArray containerIgnore();
QByteArray compose(const ExportInput& input);
QByteArray kubernetes(const ExportInput& input);
QByteArray readme(const ExportInput& input);

// Every file of the folder, scripts included, in a fixed order.
QList<ExportFile> exportFiles(const ExportInput& input);

} // namespace exporting
} // namespace halvane
