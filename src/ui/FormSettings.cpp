#include "ui/FormSettings.h"

#include "app/AppContext.h"
#include "bots/BotsController.h"
#include "ui/MainForm.h"

namespace halvane {

namespace {
bool checked(const QAbstractButton* box) {
    return box->isChecked();
}
// The control's own enabled state, as the interlocks (and, for Frame1, the
// tab change) set it; a disabled frame around it does not count.
bool ownEnabled(const QWidget* widget) {
    return !widget->testAttribute(Qt::WA_ForceDisabled);
}
} // namespace

ServerSettings readServerSettings(const MainForm& ui, const BotTables& tables,
                                  const AppState& state) {
    ServerSettings s;
    s.versionCaption = ui.lblVersion->text();
    s.takenAt = QDateTime::currentDateTime();
    s.gameExeName = state.GameExeName;
    s.logFile = checked(ui.chkLogFile);
    s.dateLog = checked(ui.chkDateLog);
    s.logFileName = ui.txtLogFile->text();
    s.gameType = ui.cmbGameType->currentIndex();
    s.maxPlayers = ui.txtMaxPlayers->text();
    s.serverName = ui.txtServerName->text();
    s.motd = ui.txtMOTD->text();
    s.minPing = ui.txtMinPing->text();
    s.maxPing = ui.txtMaxPing->text();
    s.playerRespawn = ui.txtPlayerRespawn->text();
    s.inactivity = ui.txtInactivity->text();
    s.autoJoin = checked(ui.chkAutoJoin);
    s.autoBalance = checked(ui.chkAutoBalance);
    s.warmUp = checked(ui.chkWarmUp);
    s.warmUpTime = ui.txtWarmUpTime->text();
    s.consolePassword = ui.txtConsolePW->text();
    s.pureServer = checked(ui.chkPAKCheat);
    s.maxRate = ui.txtMaxRate->text();
    s.mastersEnabled = ownEnabled(ui.Frame1);
    s.masters = {ui.txtMaster_0->text(), ui.txtMaster_1->text(), ui.txtMaster_2->text(),
                 ui.txtMaster_3->text(), ui.txtMaster_4->text()};
    s.noBotJump = checked(ui.chkNoBotJump);
    s.rocketJump = checked(ui.chkRocketJump);
    s.cheating = checked(ui.chkCheating);
    const QAbstractItemModel& selected = *ui.SelMap->model();
    for (int i = 0; i < selected.rowCount(); ++i)
        s.selectedMaps.append(selected.index(i, 0).data().toString());
    s.friendlyEnabled = ownEnabled(ui.chkFriendly);
    s.friendlyFire = checked(ui.chkFriendly);
    s.weaponRespawn = ui.txtRespawn->text();
    s.quad = ui.txtQuad->text();
    s.vote = checked(ui.chkVote);
    s.syncClients = checked(ui.chkDemoRecording);
    s.botType = ui.cmbBotType->currentIndex();
    s.disableBotChat = checked(ui.chkDisableBotChat);
    s.autoSelectBots = checked(ui.chkAutoSelectBots);
    s.autoBotSkill = ui.cmbAutoBotSkill->currentIndex();
    s.minBots = ui.txtMinBots->text();
    s.extraConfig = ui.txtCfg->currentText();
    s.randomBotSkill = checked(ui.chkRandomBotSkill);
    s.randomBots = ui.txtRandomBots->text();
    s.bots = botEntries(*ui.BotList, tables);
    return s;
}

LaunchOptions launchOptionsFrom(const MainForm& ui) {
    LaunchOptions options;
    options.serverType = ui.cmbServerType->currentIndex();
    options.nop = ui.chkNOP->isChecked();
    options.hunkMegs = ui.txtHunkMegs->text();
    options.botType = ui.cmbBotType->currentIndex();
    options.requirePassword = ui.chkRequirePassword->isChecked();
    options.serverPassword = ui.txtServerPW->text();
    options.netIp = ui.txtNetIP->text();
    options.netPort = ui.txtNetPort->text();
    options.parameters = ui.txtCmdParameters->currentText();
    options.specifyCd = ui.chkSpecifyCD->isChecked();
    options.cdDrive = ui.txtCDROM->text();
    options.adminName = ui.txtAdminName->text();
    options.adminEmail = ui.txtAdminEmail->text();
    options.adminUrl = ui.txtAdminURL->text();
    options.autoSelectBots = ui.chkAutoSelectBots->isChecked();
    options.startState = ui.chkStartState->isChecked();
    options.closeAfterStart = ui.optClose->isChecked();
    return options;
}

} // namespace halvane
