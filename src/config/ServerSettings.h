#pragma once

#include "settings/Positions.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <array>
#include <vector>

namespace halvane {

// One entry of the bot list by position: what the bot scripts need of it.
struct BotEntry {
    QString name;
    bool selected = false;
    qint16 team = 0;  // 0 red, 1 blue
    qint16 skill = 1; // 0 "I can win" .. 4 "Nightmare!"
};

// The options of the main window as they stand at one moment: filled from the
// controls when a script is written, handed to the writers, then dropped.
// Texts are the controls' texts as typed; selectors are list positions.
struct ServerSettings {
    QString versionCaption; // lblVersion
    QDateTime takenAt;      // local time of the write, for the date-coded log name
    QString gameExeName;

    bool logFile = false, dateLog = false; // chkLogFile, chkDateLog
    QString logFileName;                   // txtLogFile
    int gameType = 0;                      // cmbGameType
    QString maxPlayers, serverName, motd;  // txtMaxPlayers, txtServerName, txtMOTD
    QString minPing, maxPing;              // txtMinPing, txtMaxPing
    QString playerRespawn, inactivity;     // txtPlayerRespawn, txtInactivity
    bool autoJoin = false, autoBalance = false;
    bool warmUp = false;
    QString warmUpTime;
    QString consolePassword; // txtConsolePW
    bool pureServer = false; // chkPAKCheat
    QString maxRate;
    bool mastersEnabled = false; // Frame1 enabled
    std::array<QString, 5> masters;
    bool noBotJump = false, rocketJump = false;
    bool cheating = false;                               // chkCheating: devmap instead of map
    QStringList selectedMaps;                            // SelMap, in play order
    bool friendlyEnabled = false, friendlyFire = false;  // chkFriendly enabled, checked
    QString weaponRespawn, quad;                         // txtRespawn, txtQuad
    bool vote = false, syncClients = false;              // chkVote, chkDemoRecording
    int botType = 0;                                     // cmbBotType
    bool disableBotChat = false, autoSelectBots = false; // chkDisableBotChat, chkAutoSelectBots
    int autoBotSkill = 0;                                // cmbAutoBotSkill
    QString minBots;                                     // txtMinBots
    QString extraConfig;                                 // txtCfg
    bool randomBotSkill = false;                         // chkRandomBotSkill
    QString randomBots;                                  // txtRandomBots
    std::vector<BotEntry> bots;                          // BotList with the team and skill tables

    bool randomBotSets() const { return botType == positions::UserDefinedBots && autoSelectBots; }
};

// Where the writers' options come from: each call reads them as they stand then.
class ServerSettingsSource {
public:
    virtual ~ServerSettingsSource() = default;
    virtual ServerSettings serverSettings() const = 0;
};

} // namespace halvane
