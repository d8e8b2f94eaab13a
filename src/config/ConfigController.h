#pragma once

#include "bots/BotScripts.h"
#include "config/ConfigWriter.h"
#include "config/ServerSettings.h"

namespace halvane {

struct AppContext;
class MapCatalogue;
class RandomSource;

// What the launch and the File menu call to write the game's scripts: reads
// the controls at the moment of the call and hands them to the writers.
class ConfigController {
public:
    ConfigController(const ServerSettingsSource& form, MapCatalogue& catalogue, AppContext& app,
                     RandomSource& random);

    // Writes the server configuration to path (and the rotation and random
    // bot scripts). withCommandLine adds the game's command line as a closing
    // comment; commandLine is its argument part, starting with a blank.
    // False on any failure, with no message: the caller shows one.
    bool WriteConfig(const QString& path, bool withCommandLine, const QString& commandLine);
    // Writes baseq3/srvbots.cfg for the bots chosen in the list (nothing when
    // "Randomize Bots" is checked); reports its own failure.
    void MakeBotScript();

    ServerSettings snapshot() const;
    BotScriptWriter& botScripts() { return m_bots; }
    ConfigWriter& writer() { return m_writer; }

private:
    const ServerSettingsSource& m_form;
    BotScriptWriter m_bots;
    ConfigWriter m_writer;
};

} // namespace halvane
