#pragma once

#include "config/ServerSettings.h"

#include <QStringList>
#include <tuple>

namespace halvane::test {

// The branches of the server configuration. The change to the base settings (one expression, its
// assignments joined by commas); consecutive lines the file must hold, and lines it must not hold;
// the same case as stored settings (section/key=value, one a line), on which the command line and
// the window must write the same files.
using Change = void (*)(ServerSettings&);
const std::tuple<const char*, Change, QStringList, QStringList, const char*> Branches[] = {
    {"log with its name as typed",
     [](ServerSettings& s) { s.logFile = true, s.logFileName = " server one.log"; },
     {"seta g_log \" server one.log\""},
     {},
     "Advanced/SpecifyLog=1\nAdvanced/LogName= server one.log"},
    {"date-coded log ignores the name",
     [](ServerSettings& s) { s.logFile = s.dateLog = true, s.logFileName = "mine.log"; },
     {"seta g_log \"20260305-0709.log\""},
     {},
     "Advanced/SpecifyLog=1\nAdvanced/DateCodeLog=1\nAdvanced/LogName=mine.log"},
    {"blanks inside a ping count for nothing",
     [](ServerSettings& s) { s.minPing = "0 50"; },
     {"seta sv_minPing 0 50", "seta sv_maxPing 0", "", "seta g_forcerespawn 20"},
     {},
     "Advanced/MinPing=0 50"},
    // The empty line follows the sum of the two numbers, not the lines written.
    {"ping limits not numeric",
     [](ServerSettings& s) { s.minPing = "abc", s.maxPing = "x100"; },
     {"", "seta sv_minPing 0", "seta sv_maxPing 0", "seta g_forcerespawn 20"},
     {},
     "Advanced/MinPing=abc\nAdvanced/MaxPing=x100"},
    {"capture the flag with friendly fire",
     [](ServerSettings& s) { s.gameType = 3, s.friendlyEnabled = s.friendlyFire = true; },
     {"", "seta g_friendlyFire 1", "seta g_weaponrespawn 5"},
     {"seta g_gametype 0"},
     "General/GameType=3\nOptions/FriendlyFire=1\nNetwork/HunkMegs=32\nSettings/LastTab=3\n"
     "Options/Master0= m.example.net \nOptions/Master3=q3.example.org"},
    {"automatic bots without chat",
     [](ServerSettings& s) {
         s.botType = 2, s.disableBotChat = true, s.autoBotSkill = 4, s.minBots = "x";
     },
     {"seta bot_nochat 1", "", "seta g_spskill 5", "seta bot_minplayers x", "",
      "// Execute scripts...", "", "", "// end of file "},
     {"exec srvbots.cfg"},
     "Bots/Enabled=2\nBots/DisableChat=1\nBots/AutoBotSkill=4\nBots/AutoBotCount=3"},
    {"user-defined bots run the fixed script",
     [](ServerSettings& s) { s.botType = 1, s.extraConfig = "my \"x\".cfg "; },
     {"seta bot_minplayers 0", "", "// Execute scripts...", "", "exec srvbots.cfg",
      "exec my \"x\".cfg ", "", "// end of file "},
     {"seta g_spskill 1"},
     "Bots/Enabled=1\nBots/Selected0=True\nBots/Selected2=True\nNetwork/Config=my x.cfg "},
    {"random user-defined bots run no fixed script",
     [](ServerSettings& s) { s.botType = 1, s.autoSelectBots = true; },
     {"// Execute scripts...", "", "", "// end of file "},
     {"exec srvbots.cfg"},
     "Bots/Enabled=1\nBots/AutoSelBots=1"},
    // The most hostile values validation lets through are written exactly.
    {"a semicolon and comment marks between quotes, blanks in a bare value",
     [](ServerSettings& s) {
         s.serverName = "Arena; sets inj 1 // /*", s.motd = "+x;y", s.consolePassword = "p;w+",
         s.maxRate = "25000 //";
     },
     {"seta sv_hostname \"Arena; sets inj 1 // /*\"", "seta g_motd \"+x;y\"", "",
      "seta sv_minPing 0"},
     {},
     "General/Name=Arena; sets inj 1 // /*\nGeneral/Motd=+x;y\nGeneral/RconPassword=p;w+\n"
     "General/Password=letmein\nAdvanced/RequirePW=1\nNetwork/MaxRate=25000 //"},
    {"one byte per character",
     [](ServerSettings& s) { s.serverName = "Caf\u00e9 \u00bbNord\u00ab"; },
     {"seta sv_hostname \"Caf\u00e9 \u00bbNord\u00ab\""},
     {},
     "General/Name=Caf\u00e9 \u00bbNord\u00ab"},
};

} // namespace halvane::test
