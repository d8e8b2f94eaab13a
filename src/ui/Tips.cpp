#include "ui/Tips.h"

#include "app/AppInfo.h"

#include <vector>

namespace halvane::Tips {

namespace {

struct TipRow {
    std::vector<const char*> names;
    const char* text;
};

// Controls that share a text share a row.
const TipRow Rows[] = {
    {{"BotList"},
     "Select the bots you want to add to your server, and then click the 'Create Bot Script' "
     "button."},
    {{"btnBotRefresh"}, "Refreshes the list of bots"},
    {{"btnEditBotList"},
     "Opens the bot list in Notepad.  Be sure to [ Refresh ] the list if you make any changes."},
    {{"chkAutoBalance"},
     "For Teamplay/CTF games only -- When checked, clients are forced to join the team with the "
     "least players - to keep it even."},
    {{"chkAutoJoin"},
     "For Teamplay/CTF maps only - When checked, clients are forced to join a team."},
    {{"chkAutoSelectBots"},
     "When checked, Halvane will randomly assign bots not to exceed the specified number of bots, "
     "with random skill level, and to alternating teams."},
    {{"chkCheating"},
     "This starts each map with the devmap command, allowing clients to cheat by using commands "
     "such as \\give all to instantly obtain all weapons, etc."},
    {{"chkDemoRecording"},
     "When checked, players can easily record demos during game play.  This feature may slow down "
     "server performance, and is not neccessarily needed for clients to record demos."},
    {{"chkDisableBotChat"}, "When this box is checked, the bots will shut up! ;-)"},
    {{"chkFriendly"},
     "Available for Teamplay/CTF maps only - when checked, players are able to frag their own team "
     "members."},
    {{"chkLogFile"},
     "When checked, this allows you to specify the name of the log that Q3A will create"},
    {{"chkNoBotJump"}, "When checked, bots cannot jump.  Like pulling the legs off of frogs :-)"},
    {{"chkNOP"}, "Enables support for N-O-P, a server statistics program"},
    {{"chkPAKCheat"},
     "Pure servers are those that check client PAK files for modifications.  Clients with modified "
     "PAK files are not allowed to join your server.  This helps to prevent cheating."},
    {{"chkRandomBotSkill"},
     "When this box is checked, Halvane will assign a skill level for each bot at random."},
    {{"chkRequirePassword"},
     "When this box is checked, clients need to enter a password at the console.  For more "
     "information on this, please see the FAQ on the Halvane website."},
    {{"chkRocketJump"}, "When checked, bot's are smart enough to know how to rocket jump!"},
    {{"chkSpecifyCD", "txtCDROM"},
     "When this box is checked, Quake3 will reference the selected CD Rom drive.  Use this setting "
     "only if the CD drive letter has changed since you installed Q3A."},
    {{"chkStartState"},
     "When checked, Halvane will perform the specifed action when you launch a server"},
    {{"chkVote"},
     "Allows players to call for and vote on changes including: map, map restart, kick, and "
     "g_gametype"},
    {{"chkWarmUp"},
     "When checked, players are given the specified number of seconds to warm up before a "
     "tournament begins."},
    {{"cmdAddMaps"}, "Allows you to add custom maps to the list."},
    {{"cmdAddSelMap"}, "Add map to the list of selected maps"},
    {{"cmdClose"}, "Save all settings and exit Halvane"},
    {{"cmdDefault"},
     "This button allows you to set the current values for Frag Limit, Time Limit, Capture Limit, "
     "Speed, Gravity, and Knock Back for all maps, and any maps you add in the future."},
    {{"cmdEditCfg"}, "Allows you to edit the currently selected config file."},
    {{"cmdMapClearAll"}, "Clear all selected maps"},
    {{"cmdMapCtf"}, "Select all CTF maps (does not clear any other selections)"},
    {{"cmdMapDm"}, "Selects all deathmatch maps (does not clear any other selections)"},
    {{"cmdMapDown"}, "Move the selected map down"},
    {{"cmdMapSelectAll"}, "Select all maps"},
    {{"cmdMapTourney"}, "Selects all tournament maps (does not clear any other selections)"},
    {{"cmdMapUp"}, "Move the selected map up"},
    {{"cmdRandomize"}, "Click this button to randomize the order of the selected maps"},
    {{"cmdRemSelMap"}, "Remove map from the list of selected maps"},
    {{"cmdSearchMaps"},
     "Search the PK3 files in your baseq3 folder for new custom maps.  You can also check for new "
     "maps when Halvane starts by setting it on the Settings menu."},
    {{"cmdSetPath"}, "Set the path to your Quake 3 Arena executable file"},
    {{"cmdStart"}, "Starts the game server with all the selected options"},
    {{"Label1", "txtServerName"}, "Enter the name of your server"},
    {{"Label10"}, "Select the type of game you would like to host."},
    {{"Label11", "txtHunkMegs"},
     "Sets the amount of memory allocated (com_hunkmegs) for the game server.  A value of 16 is "
     "recommended for Tourney and FFA, 32 for CTF and Teamplay games."},
    {{"Label12"}, "This stands for Megabytes (one million bytes).  You didn't know that?!"},
    {{"Label13", "txtNetIP"},
     "Optional - If you are on a multi-homed server and the default IP is not what you want to use "
     "for your Quake 3 server, this IP address will need to be used instead"},
    {{"Label14", "txtNetPort"},
     "Optional - Allows you to specify the port number for your server (default = 27960)"},
    {{"Label15", "txtMaxRate"},
     "Sets the maximum rate a client may have set when connected to the server.  A suggested "
     "setting is 8000 to 10000.  8000 will favor modem users, 10000 favors Cable/DSL users."},
    {{"Label16"}, "Selects the skill level for the selected bot"},
    {{"Label17"},
     "Sets the maximum ping required to connect to the server.  Use this setting to keep the HPBs "
     "away.  This setting is ignored if left blank."},
    {{"Label2", "txtMOTD"},
     "(MOTD) This will be displayed below the server name when players connect to your server"},
    {{"Label20"},
     "Go to the Halvane web site where you can check out the latest news, and download the latest "
     "version!"},
    {{"Label24"}, "Selects the team for the selected bot"},
    {{"Label25"}, "Select an additional config file to be executed after the server loads."},
    {{"Label27"}, "This takes you to the website where you can fill out a bug report"},
    {{"Label29"},
     "Select the type of server you plan to run.  A listen server is one you can play on.  A "
     "dedicated server will report to the master server(s), a private server does not."},
    {{"Label3"}, "Use these settings to help control the type of clients that connect."},
    {{"Label33"},
     "When auto bots are selected, Q3:A will assign all bot the skill level you select here"},
    {{"Label34", "txtMinBots"},
     "When autobots are used, this number will determine the minimum number of players on your "
     "server at any one time, real or bots."},
    {{"Label36", "txtInactivity"},
     "Sets the amount of time (in seconds) that a player can remain inactive before being kicked"},
    {{"Label37", "txtPlayerRespawn"},
     "Sets the amount of time (in seconds) that can pass after being gibbed before being respawned "
     "into the game"},
    {{"Label39", "txtAdminName"},
     "When this field is populated, your name will show up on the server information in GameSpy "
     "and related utilities"},
    {{"Label4", "txtConsolePW"},
     "If populated, this password will be used in conjunction with the /rcon command to issue "
     "commands to the server console"},
    {{"Label40", "txtAdminEmail"},
     "When this field is populated, your email address will show up on the server information in "
     "GameSpy and related utilities"},
    {{"Label41", "txtMapGravity"}, "Enter the gravity specified for this map (default = 800)"},
    {{"Label42"},
     "Enter any additional command line arguments that you would like to use when starting a "
     "server"},
    {{"Label43", "txtMapSpeed"}, "Enter the player speed for this map (default=320)"},
    {{"Label44", "txtMapKnockback"},
     "Enter the amount of kickback force players experience when hit with, or firing a weapon.  "
     "(Default = 1000)"},
    {{"Label45", "txtMapTimeLimit"}, "Enter the time limit specified for this map"},
    {{"Label46", "txtMapFragLimit"}, "Enter the amount of frags required to complete this map."},
    {{"Label47", "txtMapCapturelimit"},
     "Enter the amount of captures (CTF games only) required to complete this map."},
    {{"Label5", "txtMaxPlayers"}, "Sets the maximum number of players allowed at once"},
    {{"Label7"},
     "Sets the minimum ping required to connect to the server.  Use this setting to keep LPBs "
     "away.  This setting is ignored if left blank."},
    {{"label75", "txtAdminURL"},
     "When this field is populated, your web site address will show up on the server information "
     "in GameSpy and related utilities"},
    {{"Label8"},
     "When a player has the quad damage, the damage incurred by any weapon will be multiplied by "
     "the amount specified here.  (Default = 3)"},
    {{"Label9", "txtRespawn"},
     "Sets the number of seconds to wait before respawning weapons.  A value of 0 disables this "
     "feature.  A value of 1 does NOT create the same effect as the weapons stay option in Quake "
     "II."},
    {{"lblPrivateClients", "txtPrivateClients"},
     "This sets how many clients will need to enter a password (at the console using the /password "
     "command) to connect to your server."},
    {{"MapList"}, "Select the maps you want to use on your server"},
    {{"optClose"}, "When selected, Halvane will close when the server is started."},
    {{"optMinimize"},
     "When selected, Halvane will minimize to the task bar when the server is started."},
    {{"txtLogFile"}, "Enter the log file name for Q3A here."},
    {{"txtMaxPing"},
     "Sets the maximum ping required to connect to the server.  Use this setting to keep the HPBs "
     "away.  This setting is ignored if left blank or set to 0."},
    {{"txtMinPing"},
     "Sets the minimum ping required to connect to the server.  Use this setting to keep LPBs "
     "away.  This setting is ignored if left blank or set to 0."},
    {{"txtQuad"},
     "When a player has the quad damage, the damage incurred by any weapon will be multiplied by "
     "the amount specified here"},
    {{"txtRandomBots"},
     "Specify the number of bots Halvane should select.  This number cannot exceed the maximum "
     "number of players defined on the General tab."},
    {{"txtServerPW"},
     "This password will be required (by the specified number of clients) to connect to your "
     "server.  See the FAQ on the Halvane webiste for more details."},
    {{"txtWarmUpTime"},
     "Specified how many seconds players are given to warm-up before a tournament begins."},
    {{"Label23"}, nullptr}, // the mail link: mailLinkTip()
    {{"Image1", "Label19", "Label22"}, "tm"},
    // The window's empty area: the window, its central area, the tab
    // control with its strip and its pages.
    {{"frmMain", "centralwidget", "Picture1", "SSTab1", "tabGeneral", "tabBots", "tabMaps",
      "tabOptions", "tabAdvanced", "tabAbout"},
     ""},
};

} // namespace

const QHash<QString, QString>& table() {
    static const QHash<QString, QString> tips = [] {
        QHash<QString, QString> result;
        for (const TipRow& row : Rows) {
            const QString text = row.text ? QString::fromLatin1(row.text) : mailLinkTip();
            for (const char* name : row.names)
                result.insert(QString::fromLatin1(name), text);
        }
        return result;
    }();
    return tips;
}

const QStringList& builtNames() {
    static const QStringList names{QStringLiteral("chkDateLog"), QStringLiteral("Frame1"),
                                   QStringLiteral("txtMaster"), QStringLiteral("lblVersion"),
                                   QStringLiteral("lblBotCount")};
    return names;
}

QString keyOf(const QString& objectName) {
    // By hand rather than by pattern: every control's name is looked up when
    // the window is made.
    qsizetype digits = objectName.size();
    while (digits > 0 && objectName[digits - 1] >= QLatin1Char('0') &&
           objectName[digits - 1] <= QLatin1Char('9'))
        --digits;
    if (digits == objectName.size() || digits == 0 || objectName[digits - 1] != QLatin1Char('_'))
        return objectName;
    return objectName.left(digits - 1);
}

QString dateLogTip(const QDateTime& now) {
    return QStringLiteral(
               "When checked, Q3A will log all data to a file using the date and time (") +
           now.toString(QStringLiteral("yyyyMMdd")) + QLatin1Char('-') +
           now.toString(QStringLiteral("HHmm")) + QStringLiteral(".log).");
}

QString masterServersTip() {
    return QStringLiteral("Enter additional master servers that you wish to report to - only "
                          "available if you select \"dedicated server\" for the server type on "
                          "the general tab");
}

QString versionTip(const QString& versionCaption) {
    return QStringLiteral("Version information (") + versionCaption + QLatin1Char(')');
}

QString botCountTip(int selectedBots) {
    return QString::number(selectedBots) +
           QStringLiteral(
               " bots selected - This is the total amount of bots that you have selected");
}

QString mailLinkTip() {
    return QStringLiteral("Sends an e-mail to the author of Halvane.  Please report bugs with the "
                          "bug report form below instead.");
}

QString siteLine() {
    return QStringLiteral("Visit the Halvane website at ") + AppInfo::productSiteAddress();
}

QString tipLineText(const QString& t) {
    if (t.isEmpty())
        return siteLine();
    if (t == QLatin1String("tm"))
        return AppInfo::trademarkNotice();
    return t;
}

const QStringList& selectOnFocusNames() {
    static const QStringList names{
        QStringLiteral("lblMap"),           QStringLiteral("txtAdminEmail"),
        QStringLiteral("txtAdminName"),     QStringLiteral("txtAdminURL"),
        QStringLiteral("txtCDROM"),         QStringLiteral("txtConsolePW"),
        QStringLiteral("txtHunkMegs"),      QStringLiteral("txtInactivity"),
        QStringLiteral("txtLogFile"),       QStringLiteral("txtMapCapturelimit"),
        QStringLiteral("txtMapFragLimit"),  QStringLiteral("txtMapGravity"),
        QStringLiteral("txtMapKnockback"),  QStringLiteral("txtMapSpeed"),
        QStringLiteral("txtMapTimeLimit"),  QStringLiteral("txtMaster"),
        QStringLiteral("txtMaxPing"),       QStringLiteral("txtMaxPlayers"),
        QStringLiteral("txtMaxRate"),       QStringLiteral("txtMinBots"),
        QStringLiteral("txtMinPing"),       QStringLiteral("txtMOTD"),
        QStringLiteral("txtNetIP"),         QStringLiteral("txtNetPort"),
        QStringLiteral("txtPlayerRespawn"), QStringLiteral("txtPrivateClients"),
        QStringLiteral("txtQuad"),          QStringLiteral("txtRandomBots"),
        QStringLiteral("txtRespawn"),       QStringLiteral("txtServerName"),
        QStringLiteral("txtServerPW"),      QStringLiteral("txtWarmUpTime")};
    return names;
}

const QStringList& selectNothingNames() {
    static const QStringList names{QStringLiteral("txtCmdParameters"), QStringLiteral("txtCfg")};
    return names;
}

} // namespace halvane::Tips
