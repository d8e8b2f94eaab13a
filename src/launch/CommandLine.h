#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace halvane {

// What the game's command line is made of, read from the main window's
// controls at the moment of a launch. Texts are as typed.
struct LaunchOptions {
    int serverType = 2; // 0 listen, 1 private, 2 dedicated
    bool nop = false;   // N-0-P support: the start time for the server browser
    QString hunkMegs;
    int botType = 0; // 0 disabled, 1 user-defined, 2 automatic
    bool requirePassword = false;
    QString serverPassword;
    QString netIp;
    QString netPort;
    QString parameters; // the extra parameter line
    bool specifyCd = false;
    QString cdDrive;
    QString adminName;
    QString adminEmail;
    QString adminUrl;
    // A server's own script folder, read by the game before the game folder;
    // empty for a server that reads the game folder's scripts.
    QString homePath;
    // Not on the command line: whether the launch writes the fixed bot script
    // first, and what the window does once the server runs.
    bool autoSelectBots = false;
    bool startState = false;      // chkStartState: minimise or close after a start
    bool closeAfterStart = false; // optClose: close rather than minimise
};

// Where a launch's options come from: each call reads them as they stand then.
class LaunchOptionsSource {
public:
    virtual ~LaunchOptionsSource() = default;
    virtual LaunchOptions launchOptions() const = 0;
};

// The text appended to the executable's name; every piece starts with a blank.
QString buildCommandLine(const LaunchOptions& options, const QDateTime& now);

// Splits a command line into arguments as a command processor would: blanks
// separate, double quotes group words and are dropped ("" is an empty argument).
QStringList splitCommandLine(const QString& commandLine);

} // namespace halvane
