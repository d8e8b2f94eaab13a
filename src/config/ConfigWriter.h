#pragma once

#include "config/ServerSettings.h"

namespace halvane {

struct AppState;
class BotScriptWriter;
class MapCatalogue;
class MessageBoxes;
class ScriptFile;

// Writes the server configuration (halvane.cfg or any file the operator
// names), the map rotation scripts and, through the bot script writer, the
// random bot sets; makes the support folders and start-up scripts first.
class ConfigWriter {
public:
    ConfigWriter(const AppState& state, MessageBoxes& messages, MapCatalogue& catalogue,
                 BotScriptWriter& bots);

    // True when the whole file was written and closed. A failure stops the
    // write where it stands, keeps what was written and shows no message:
    // the caller says what went wrong.
    bool WriteConfig(const ServerSettings& settings, const QString& path, bool withCommandLine,
                     const QString& commandLine);

    // Makes baseq3/srvbots and baseq3/srvmaps; a failure is reported here and
    // the write goes on.
    void MakeSubFolders();

    // The four comment lines of default.cfg and autoexec.cfg.
    static bool writeStartupScript(const QString& path);

private:
    bool writeMapSection(ScriptFile& out, const ServerSettings& settings);

    const AppState& m_state;
    MessageBoxes& m_messages;
    MapCatalogue& m_catalogue;
    BotScriptWriter& m_bots;
};

} // namespace halvane
