#pragma once

#include <QString>

namespace halvane {

// What writing the configuration asks of the other subsystems: the checks
// before it, and the write itself from the controls as they stand.
class ConfigSteps {
public:
    virtual ~ConfigSteps() = default;
    // True when every check passed and the settings were stored; a refusal
    // has told the operator why.
    virtual bool ValidateAll() = 0;
    // Refuses (with its own message) script values the game would split into
    // another command; "Save config file As" validates nothing else.
    virtual bool consoleTextIsSafe() = 0;
    // Writes the server configuration to path; withCommandLine adds the
    // game's command line (commandLine, starting with a blank) as a closing
    // comment. False on any failure, with no message: the caller shows one.
    virtual bool WriteConfig(const QString& path, bool withCommandLine,
                             const QString& commandLine) = 0;
};

} // namespace halvane
