#include "settings/OptionCatalogue.h"

#include "app/AppInfo.h"

#include <array>

namespace halvane {

namespace {

using F = TextForm;

// The master-server defaults are runtime strings, so they are kept as static
// byte arrays the table can point at.
const QByteArray master0 = AppInfo::masterServer0().toLatin1();
const QByteArray master1 = AppInfo::masterServer1().toLatin1();

const std::array kCatalogue{
    OptionKey{"Settings", "CheckNewMaps", "False", "mnuSettingsMapCheck", F::Truth, 0},
    OptionKey{"Settings", "StatusBar", "True", HolderStatusPanel, F::Truth, 1},
    OptionKey{"Settings", "LastTab", "0", HolderLastTab, F::WholeNumber, 2},
    // The game location, kept by the path dialog alone.
    OptionKey{"Settings", "Path", "", "", F::Plain, 0},
    OptionKey{"Settings", "Exe", "", "", F::Plain, 0},
    OptionKey{"General", "Name", "My Quake 3 Arena Server", "txtServerName", F::Plain, 3},
    OptionKey{"General", "Motd", "Configured with Halvane", "txtMOTD", F::Plain, 4},
    OptionKey{"General", "Password", "", "txtServerPW", F::Plain, 5},
    OptionKey{"General", "RconPassword", "", "txtConsolePW", F::Plain, 6},
    OptionKey{"General", "GameType", "0", "cmbGameType", F::Position, 7},
    OptionKey{"General", "AdminName", "", "txtAdminName", F::Plain, 8},
    OptionKey{"General", "AdminEmail", "", "txtAdminEmail", F::Plain, 8},
    OptionKey{"General", "AdminURL", "", "txtAdminURL", F::Plain, 8},
    OptionKey{"Bots", "Enabled", "0", "cmbBotType", F::Position, 9},
    OptionKey{"Bots", "Skill", "3", "cmbBotSkill", F::Position, 9},
    OptionKey{"Bots", "DisableChat", "0", "chkDisableBotChat", F::WholeNumber, 9},
    OptionKey{"Bots", "RocketJump", "1", "chkRocketJump", F::WholeNumber, 9},
    OptionKey{"Bots", "NoBotJumps", "0", "chkNoBotJump", F::WholeNumber, 9},
    OptionKey{"Bots", "AutoBotSkill", "3", "cmbAutoBotSkill", F::Position, 11},
    OptionKey{"Bots", "AutoBotCount", "2", "txtMinBots", F::Plain, 11},
    OptionKey{"Bots", "RandomSkill", "0", "chkRandomBotSkill", F::WholeNumber, 11},
    // "Selected" n, "Team " n and "Strength " n for every bot-list position.
    OptionKey{"Bots", "", "", HolderBots, F::Plain, 9, 1},
    OptionKey{"Bots", "AutoSelBots", "0", "chkAutoSelectBots", F::WholeNumber, 10},
    OptionKey{"Bots", "RandomBotNum", "", "txtRandomBots", F::Plain, 10},
    OptionKey{"Limits", "MaxPlayers", "6", "txtMaxPlayers", F::Plain, 12},
    OptionKey{"Limits", "PlayerRespawn", "10", "txtPlayerRespawn", F::Plain, 13},
    OptionKey{"Limits", "InactivityTimeout", "180", "txtInactivity", F::Plain, 14},
    OptionKey{"Options", "QuadMultiplier", "3", "txtQuad", F::Plain, 15},
    OptionKey{"Options", "WeaponRespawn", "5", "txtRespawn", F::Plain, 16},
    OptionKey{"Options", "AllowVoting", "0", "chkVote", F::WholeNumber, 17},
    OptionKey{"Options", "AllowDemoRecording", "0", "chkDemoRecording", F::WholeNumber, 18},
    OptionKey{"Options", "ServerType", "2", "cmbServerType", F::Position, 19},
    OptionKey{"Options", "EnableCheats", "0", "chkCheating", F::WholeNumber, 20},
    OptionKey{"Options", "CheckClientPAKs", "1", "chkPAKCheat", F::WholeNumber, 21},
    OptionKey{"Options", "FriendlyFire", "0", "chkFriendly", F::WholeNumber, 22},
    OptionKey{"Options", "StartState", "0", "chkStartState", F::WholeNumber, 23},
    OptionKey{"Options", "StartClose", "0", "optClose", F::Truth, 24},
    OptionKey{"Options", "StartMin", "1", "optMinimize", F::Truth, 24},
    OptionKey{"Options", "AutoJoin", "1", "chkAutoJoin", F::WholeNumber, 25},
    OptionKey{"Options", "AutoBalance", "1", "chkAutoBalance", F::WholeNumber, 25},
    OptionKey{"Options", "WarmUp", "0", "chkWarmUp", F::WholeNumber, 26, 1},
    OptionKey{"Options", "WarmUpTime", "20", "txtWarmUpTime", F::Plain, 26, 1},
    OptionKey{"Options", "Master0", master0.constData(), "txtMaster_0", F::Plain, 26},
    OptionKey{"Options", "Master1", master1.constData(), "txtMaster_1", F::Plain, 26},
    OptionKey{"Options", "Master2", "", "txtMaster_2", F::Plain, 26},
    OptionKey{"Options", "Master3", "", "txtMaster_3", F::Plain, 26},
    OptionKey{"Options", "Master4", "", "txtMaster_4", F::Plain, 26},
    OptionKey{"Network", "HunkMegs", "16", "txtHunkMegs", F::Plain, 27},
    OptionKey{"Network", "NetIP", "", "txtNetIP", F::Plain, 28},
    OptionKey{"Network", "NetPort", "", "txtNetPort", F::Plain, 29},
    OptionKey{"Network", "MaxRate", "10000", "txtMaxRate", F::Plain, 30},
    OptionKey{"Network", "Config", "", "txtCfg", F::Plain, 0},
    OptionKey{"Advanced", "CDLine", "", "txtCmdParameters", F::Plain, 0},
    OptionKey{"Advanced", "NOP", "0", "chkNOP", F::WholeNumber, 32},
    OptionKey{"Advanced", "SpecifyCD", "0", "chkSpecifyCD", F::WholeNumber, 33},
    OptionKey{"Advanced", "CDLetter", "", "txtCDROM", F::Plain, 0},
    OptionKey{"Advanced", "RequirePW", "0", "chkRequirePassword", F::WholeNumber, 34},
    OptionKey{"Advanced", "PrivateClients", "0", "txtPrivateClients", F::Plain, 35},
    OptionKey{"Advanced", "MinPing", "0", "txtMinPing", F::Plain, 36},
    OptionKey{"Advanced", "MaxPing", "0", "txtMaxPing", F::Plain, 36},
    OptionKey{"Advanced", "SpecifyLog", "0", "chkLogFile", F::WholeNumber, 37},
    OptionKey{"Advanced", "DateCodeLog", "0", "chkDateLog", F::WholeNumber, 37},
    OptionKey{"Advanced", "LogName", "", "txtLogFile", F::Plain, 37},
    // Default rules for maps added later; read and written by the map catalogue.
    OptionKey{"Defaults", "CaptureLimit", "10", "", F::Plain, 0},
    OptionKey{"Defaults", "FragLimit", "20", "", F::Plain, 0},
    OptionKey{"Defaults", "TimeLimit", "20", "", F::Plain, 0},
    OptionKey{"Defaults", "KnockBack", "1000", "", F::Plain, 0},
    OptionKey{"Defaults", "Gravity", "800", "", F::Plain, 0},
    OptionKey{"Defaults", "Speed", "320", "", F::Plain, 0},
};

const std::array<const char*, LoadStepCount> kStepMessages{
    "Error setting status bar visibility",
    "Error setting last tab",
    "Error setting server name",
    "Error setting MOTD",
    "Error setting Server password",
    "Error setting console password",
    "Error setting Game Type to ", // followed by the stored number
    "Error setting Admin Properties",
    "Error setting Bot Properties",
    "Error setting auto selected bots",
    "Error setting autobot information",
    "Error setting Max Players",
    "Error setting Player respawn value",
    "Error setting Inactivity timeout",
    "Error setting Quad damage",
    "Error setting weapon respawn",
    "Error setting Vote checkbox",
    "Error setting Synch clients",
    "Error setting server type value",
    "Error setting devmap value",
    "Error setting pure server",
    "Error setting Friendly fire",
    "Error setting Startup state",
    "Error setting Shutdown options",
    "Error setting auto-join/auto-balance",
    "Error setting Master servers",
    "Error setting memory allocation",
    "Error setting net IP",
    "Error setting net port",
    "Error setting Max rate",
    "Error setting parameters",
    "Error setting NOP status",
    "Error setting CD properties",
    "Error setting password requirements",
    "Error setting private clients",
    "Error setting min/max ping",
    "Error setting log filename information",
    "Error setting warm up time information",
};

} // namespace

std::span<const OptionKey> optionCatalogue() {
    return kCatalogue;
}

const OptionKey* findOption(const QString& section, const QString& key) {
    for (const OptionKey& option : kCatalogue) {
        if (section == QLatin1String(option.section) && key == QLatin1String(option.key))
            return &option;
    }
    return nullptr;
}

QString defaultOf(const QString& section, const QString& key) {
    const OptionKey* option = findOption(section, key);
    return option ? QString::fromLatin1(option->defaultText) : QString();
}

QString loadStepMessage(int step) {
    if (step < 1 || step > LoadStepCount)
        return QString();
    return QString::fromLatin1(kStepMessages[step - 1]);
}

} // namespace halvane
