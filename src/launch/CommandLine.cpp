#include "launch/CommandLine.h"
#include "settings/Positions.h"

#include "app/AppInfo.h"

namespace halvane {

QString buildCommandLine(const LaunchOptions& options, const QDateTime& now) {
    QString line;
    if (options.serverType >= positions::ListenServer &&
        options.serverType <= positions::DedicatedServer)
        line += QStringLiteral(" +set dedicated ") + QString::number(options.serverType);
    if (options.nop) {
        line += QStringLiteral(" +sets gamestartup \"") +
                now.toString(QStringLiteral("MM/dd/yyyy HH:mm")) + QLatin1Char('"');
    }
    line += QStringLiteral(" +sets configured_by Halvane_") + AppInfo::versionNumber();
    line += QStringLiteral(" +set com_hunkmegs ") + options.hunkMegs;
    if (options.botType == positions::NoBots)
        line += QStringLiteral(" +set bot_enable 0");
    if (options.requirePassword) {
        line += QStringLiteral(" +set g_password ") + options.serverPassword +
                QStringLiteral(" +set g_needpass 1");
    } else {
        line += QStringLiteral(" +set g_needpass 0");
    }
    // Empty means empty: whether the box is usable plays no part.
    if (!options.netIp.isEmpty())
        line += QStringLiteral(" +set net_ip ") + options.netIp;
    if (!options.netPort.isEmpty())
        line += QStringLiteral(" +set net_port ") + options.netPort;
    // A line of blanks only adds nothing, not a lone blank.
    if (!options.parameters.trimmed().isEmpty())
        line += QLatin1Char(' ') + options.parameters.trimmed();
    if (options.specifyCd)
        line += QStringLiteral(" +set fs_cdpath ") + options.cdDrive + QStringLiteral("\\Quake3\\");
    if (!options.adminName.isEmpty())
        line += QStringLiteral(" +sets admin_name ") + options.adminName;
    if (!options.adminEmail.isEmpty())
        line += QStringLiteral(" +sets admin_email ") + options.adminEmail;
    if (!options.adminUrl.isEmpty())
        line += QStringLiteral(" +sets admin_website ") + options.adminUrl;
    // Quoted, since a folder may hold blanks; the launch refuses one that
    // holds a double quote.
    if (!options.homePath.isEmpty())
        line += QStringLiteral(" +set fs_homepath \"") + options.homePath + QLatin1Char('"');
    line += QStringLiteral(" +exec halvane.cfg");
    return line;
}

QStringList splitCommandLine(const QString& commandLine) {
    QStringList arguments;
    QString current;
    bool inArgument = false; // something (even an empty pair of quotes) was seen
    bool quoted = false;
    for (const QChar c : commandLine) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            inArgument = true;
        } else if (!quoted && (c == QLatin1Char(' ') || c == QLatin1Char('\t'))) {
            if (inArgument) {
                arguments.append(current);
                current.clear();
                inArgument = false;
            }
        } else {
            current += c;
            inArgument = true;
        }
    }
    if (inArgument)
        arguments.append(current);
    return arguments;
}

} // namespace halvane
