#include "ui/MainWindow.h"

#include "app/AppContext.h"
#include "app/AppInfo.h"
#include "bots/BotsController.h"
#include "bots/RandomSource.h"
#include "config/ConfigController.h"
#include "config/ConfigFileCommands.h"
#include "export/ServerExport.h"
#include "launch/LaunchController.h"
#include "launch/ParameterMemory.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"
#include "maps/MapsController.h"
#include "profiles/Profile.h"
#include "server/ServerControl.h"
#include "settings/OptionCatalogue.h"
#include "settings/OptionInterlocks.h"
#include "settings/SettingsController.h"
#include "settings/TextForms.h"
#include "settings/Validation.h"
#include "ui/AboutPage.h"
#include "ui/Accessibility.h"
#include "ui/AdvancedPage.h"
#include "ui/BotsPage.h"
#include "ui/FormSettings.h"
#include "ui/FrameOptions.h"
#include "ui/GeneralPage.h"
#include "ui/HelpMenu.h"
#include "ui/ImagePlugins.h"
#include "ui/MainForm.h"
#include "ui/MapsPage.h"
#include "ui/OptionsPage.h"
#include "ui/ProfileCommands.h"
#include "ui/StatusPanel.h"
#include "ui/TabFrames.h"
#include "ui/TipLine.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QMenu>
#include <QWindow>

namespace halvane {

namespace {
const QStringList GameTypes{QStringLiteral("Free for all"), QStringLiteral("Tournament"),
                            QStringLiteral("Team Play"), QStringLiteral("Capture the Flag")};
const QStringList ServerTypes{QStringLiteral("Listen Server"), QStringLiteral("Private Server"),
                              QStringLiteral("Dedicated Server")};
const QStringList SkillNames{QStringLiteral("I can win"), QStringLiteral("Bring it on"),
                             QStringLiteral("Hurt me plenty"), QStringLiteral("Hard core"),
                             QStringLiteral("Nightmare!")};
const QStringList TeamNames{QStringLiteral("Red"), QStringLiteral("Blue")};
const QStringList BotTypes{QStringLiteral("Disable Bots"), QStringLiteral("User-Definable"),
                           QStringLiteral("Automatic")};
// Scripts of the game itself that are no extra script to include.
const QStringList NotIncludable{QStringLiteral("OnTheWay.cfg"), QStringLiteral("q3config.cfg"),
                                QStringLiteral("halvane.cfg")};

// Fills a selector and leaves it with no entry chosen, so that the settings
// load's choice of entry 0 is a change like any other.
void fill(QComboBox* combo, const QStringList& entries) {
    const QSignalBlocker blocker(combo);
    combo->clear();
    combo->addItems(entries);
    combo->setCurrentIndex(-1);
}
} // namespace

MainWindow::MainWindow(AppContext& app, WindowRole role)
    : m_app(app), m_role(role), ui(std::make_unique<MainForm>()) {
    speakSelectorsByName();
    leaveImagePluginsUnloaded();
    ui->setup(this);
    m_interlocks = std::make_unique<OptionInterlocks>(
        ui->tabGeneral->form(), ui->tabOptions->form(), ui->tabAdvanced->form(), m_app);
    m_statusPanel =
        std::make_unique<StatusPanel>(*this, *ui->centralwidget, *ui->scrTip, *ui->txtTip,
                                      *ui->btnStatus, *ui->SSTab1, *ui->mnuViewStatusBar);
    m_tips = std::make_unique<TipLine>(*this, *ui->txtTip);
    m_tabFrames = std::make_unique<TabFrames>(*ui->SSTab1, *this);
    m_help = std::make_unique<HelpMenu>(*this, *ui, ui->tabAbout->form(),
                                        *ui->tabAdvanced->form().Label6, m_app);
    nameControls(*this);
    m_parameters = std::make_unique<ParameterMemory>(*ui->txtCmdParameters, *ui->chkSpecifyCD,
                                                     *ui->txtCDROM, m_app);
    ui->tabAdvanced->useParameterMemory(*m_parameters);
    ui->tabBots->useBotTables(m_botTables);
    m_frameOptions =
        std::make_unique<FrameOptions>(*m_statusPanel, *ui->SSTab1, *ui->mnuSettingsMapCheck);
    m_settings = std::make_unique<SettingsController>(
        std::vector<OptionPage*>{m_frameOptions.get(), ui->tabGeneral, ui->tabBots, ui->tabOptions,
                                 ui->tabAdvanced},
        m_app);
    // Not a child widget: the main window is disabled while the dialog is
    // open, and a child would be disabled with it.
    m_pathDialog = std::make_unique<PathDialog>(m_app, *this);
    m_random = std::make_unique<TimeSeededRandom>();
    m_catalogue = std::make_unique<MapCatalogue>(m_app.platform.folder.path(),
                                                 m_app.platform.folder.installed());
    m_maps = std::make_unique<MapsController>(*this, ui->tabMaps->form(),
                                              MapListMenu{*ui->mnuMapList, *ui->mnuMapSelect,
                                                          *ui->mnuMapNew, *ui->mnuMapEdit,
                                                          *ui->mnuMapDelete, *ui->mnuMapsSelectAll},
                                              m_app, *m_catalogue);
    connect(m_maps.get(), &MapsController::closeRequested, this, &QWidget::close);
    connect(m_interlocks.get(), &OptionInterlocks::gameTypeChosen, m_maps.get(),
            &MapsController::suggestMaps);
    m_bots = std::make_unique<BotsController>(ui->tabBots->form(), *ui->txtMaxPlayers, m_botTables,
                                              m_app);
    connect(m_bots.get(), &BotsController::tip, m_tips.get(), &TipLine::ShowTip);
    m_formSettings = std::make_unique<FormSettings>(*ui, m_botTables, m_app.state);
    m_config = std::make_unique<ConfigController>(*m_formSettings, *m_catalogue, m_app, *m_random);

    m_validation = std::make_unique<Validation>(
        ui->tabGeneral->form(), ui->tabBots->form(), ui->tabMaps->form(), ui->tabOptions->form(),
        ui->tabAdvanced->form(), *ui->SSTab1, m_app, *m_settings);
    m_validation->installGuards();
    m_configCommands = std::make_unique<ConfigFileCommands>(
        ConfigFileControls{ui->mnuFileMakeCfg, ui->mnuFileSaveAs, ui->cmdEditCfg, ui->txtCfg},
        m_app, *this);
    m_launch =
        std::make_unique<LaunchController>(*m_formSettings, *ui->cmdStart, m_app, *this, *this);
    if (m_role == WindowRole::Main)
        m_servers = std::make_unique<ServerControl>(*this, *ui, *m_formSettings, *m_formSettings,
                                                    m_app, *m_launch);
    else
        SkipSaveOnClose = true;
    m_export = std::make_unique<ServerExport>(findChild<QMenu*>(QStringLiteral("mnuServer")), *this,
                                              *m_formSettings, *m_formSettings, *m_catalogue,
                                              *m_random, m_app);
    if (m_role == WindowRole::Main) {
        m_profiles = std::make_unique<ProfileCommands>(*this, m_app, *m_servers);
        m_servers->setProfileLauncher(m_profiles.get());
        m_export->setCurrentProfile(m_profiles.get());
    }

    connect(ui->cmdClose, &QAbstractButton::clicked, this, &QWidget::close);
    connect(ui->cmdSetPath, &QAbstractButton::clicked, this, &MainWindow::cmdSetPath);
    connect(ui->btnStatus, &QAbstractButton::clicked, m_statusPanel.get(), &StatusPanel::toggle);
    connectMenus();
}

MainWindow::~MainWindow() = default;

void MainWindow::connectMenus() {
    connect(ui->mnuFileClose, &QAction::triggered, this, &QWidget::close);
    connect(ui->mnuSettingsQ3Path, &QAction::triggered, this, &MainWindow::cmdSetPath);
    connect(ui->mnuViewStatusBar, &QAction::triggered, this, [this] {
        // The check mark follows the panel, not the click.
        ui->mnuViewStatusBar->setChecked(!ui->mnuViewStatusBar->isChecked());
        m_statusPanel->toggle();
    });
    const std::pair<QAction*, int> tabs[] = {
        {ui->mnuSettingsGeneral, 0}, {ui->mnuSettingsBots, 1},     {ui->mnuSettingsMaps, 2},
        {ui->mnuSettingsOptions, 3}, {ui->mnuSettingsAdvanced, 4}, {ui->mnuHelpAbout, 5}};
    for (const auto& [action, index] : tabs) {
        connect(action, &QAction::triggered, this,
                [this, index = index] { ui->SSTab1->setCurrentIndex(index); });
    }
}

bool MainWindow::ValidateAll() {
    return m_validation->ValidateAll();
}

bool MainWindow::consoleTextIsSafe() {
    return m_validation->consoleTextIsSafe(false);
}

bool MainWindow::WriteConfig(const QString& path, bool withCommandLine,
                             const QString& commandLine) {
    return m_config->WriteConfig(path, withCommandLine, commandLine);
}

void MainWindow::saveParameterList() {
    m_parameters->saveParameterList();
}

void MainWindow::loadParameterList() {
    m_parameters->loadParameterList();
}

void MainWindow::CommitShownMap() {
    m_maps->CommitShownMap();
}

void MainWindow::MakeBotScript() {
    m_config->MakeBotScript();
}

void MainWindow::start() {
    m_pathDialog->load();
}

bool MainWindow::loadWithoutWindow() {
    if (!PathDialog::readStoredLocation(m_app.state, m_app.platform.store))
        return false;
    // The archive search is the window's, with its progress shown; loose
    // maps and the import list are still taken in as at every start.
    m_searchArchivesAtStart = false;
    load();
    // On the first tab, as the window shows itself: the tab's frame rules
    // decide what a write takes, so a command writes what the window would
    // right after its start.
    ui->SSTab1->setCurrentIndex(0);
    return !m_ended;
}

void MainWindow::showMainWindow() {
    if (!m_loaded) {
        load();
        if (m_ended)
            return;
    }
    setEnabled(true);
    // The first tab before the window shows: shown on the tab "LastTab"
    // restored, the window would lay that tab out (the long map lists) only
    // to leave it. The tab change runs its frame rules all the same.
    ui->SSTab1->setCurrentIndex(0);
    show();
    ui->txtMOTD->setFocus();
    activateWindow();
    m_maps->listGameFiles();
}

void MainWindow::endProgram() {
    m_ended = true;
    QCoreApplication::quit();
}

// The start-up sequence, step by step. A failing step reports itself and
// the ones after it still run.
void MainWindow::load() {
    m_loaded = true;
    // 1.
    SkipSaveOnClose = false;

    // 2. A second copy says so and ends without storing anything.
    if (m_app.platform.desktop.anotherCopyRunning()) {
        m_app.platform.messages.tell(QStringLiteral("What have you been smoking?"),
                                     QStringLiteral("Halvane is already running"),
                                     MsgIcon::Information);
        SkipSaveOnClose = true;
        close();
        endProgram();
        return;
    }

    // 3.
    m_app.state.StartupInProgress = true;

    // 4. The default map picture (maps/default.jpg).
    m_maps->showStartupPicture();
    // 5. to 15.
    loadSteps(true, nullptr);
    // 16.
    ui->Label20->setText(AppInfo::productSiteAddress());
    ui->Label23->setText(AppInfo::authorMailAddress());
}

void MainWindow::LoadControls() {
    fill(ui->cmbGameType, GameTypes);
    fill(ui->cmbServerType, ServerTypes);
    fill(ui->cmbBotSkill, SkillNames);
    fill(ui->cmbAutoBotSkill, SkillNames);
    fill(ui->cmbBotTeam, TeamNames);
    fill(ui->cmbBotType, BotTypes);

    QStringList scripts;
    if (!m_app.state.GameFolder.isEmpty()) {
        QDir baseq3(m_app.state.gameFile(QStringLiteral("baseq3")));
        scripts =
            baseq3.entryList({QStringLiteral("*.cfg")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    }
    {
        const QSignalBlocker blocker(ui->txtCfg);
        ui->txtCfg->clear();
        for (const QString& script : scripts) {
            if (!NotIncludable.contains(script))
                ui->txtCfg->addItem(script);
        }
    }
    ui->txtCfg->setEditText(
        m_app.platform.store.read(QStringLiteral("Network"), QStringLiteral("Config"), QString()));
    ui->cmdEditCfg->setEnabled(!ui->txtCfg->currentText().isEmpty());
}

void MainWindow::saveProfile(Profile& profile) {
    MemorySettingsStore& store = profile.settings;
    m_settings->SaveSettings(store);
    // The keys other parts keep: the game location as it is now, the
    // remembered parameter lines and the default map rules.
    for (const OptionKey& option : optionCatalogue()) {
        if (QLatin1String(option.holder).isEmpty()) {
            const QString section = QString::fromLatin1(option.section);
            const QString key = QString::fromLatin1(option.key);
            store.write(
                section, key,
                m_app.platform.store.read(section, key, QString::fromLatin1(option.defaultText)));
        }
    }
    store.write(QStringLiteral("Settings"), QStringLiteral("Path"), m_app.state.GameFolder);
    store.write(QStringLiteral("Settings"), QStringLiteral("Exe"), m_app.state.GameExeName);
    m_parameters->storeOfferedLines(store);
    profile.maps = m_maps->selectedMaps();
}

QStringList MainWindow::openProfile(const Profile& profile) {
    const SettingsStore& store = profile.settings;
    // The default map rules live only in the store.
    for (const OptionKey& option : optionCatalogue()) {
        const QString section = QString::fromLatin1(option.section);
        const QString key = QString::fromLatin1(option.key);
        if (section == QLatin1String("Defaults") && profile.settings.contains(section, key))
            m_app.platform.store.write(section, key, store.read(section, key, {}));
    }
    const QStringList unknown = m_maps->setSelectedMaps(profile.maps);
    m_app.state.StartupInProgress = true;
    m_settings->LoadSettings(store);
    ui->txtCfg->setEditText(store.read(QStringLiteral("Network"), QStringLiteral("Config"), {}));
    m_bots->Countbots();
    m_interlocks->SetGameType();
    m_app.state.StartupInProgress = false;
    return unknown;
}

QStringList MainWindow::loadUnshown(const QStringList* selectedMaps) {
    m_loaded = true;
    SkipSaveOnClose = true;
    m_app.state.StartupInProgress = true;
    return loadSteps(false, selectedMaps);
}

QStringList MainWindow::loadSteps(bool lookInGameFolder, const QStringList* selectedMaps) {
    // 5.
    m_maps->CheckMapDataFile();
    if (lookInGameFolder) {
        // 6.
        const auto checkNewMaps = parseTruth(m_app.platform.store.read(
            QStringLiteral("Settings"), QStringLiteral("CheckNewMaps"), truthText(false)));
        ui->mnuSettingsMapCheck->setChecked(checkNewMaps.value_or(false));
        // 7.
        m_maps->GetMapsFromBaseDir(m_searchArchivesAtStart && ui->mnuSettingsMapCheck->isChecked());
    }
    // 8.
    m_bots->LoadBotList();
    // 9.
    QStringList unknown;
    if (selectedMaps)
        unknown = m_maps->LoadMaps(*selectedMaps);
    else
        m_maps->LoadMaps();
    // 10.
    LoadControls();
    // 11.
    m_settings->LoadSettings();
    // 12.
    ui->lblVersion->setText(AppInfo::versionCaption());
    // 13.
    m_bots->Countbots();
    // 14.
    m_interlocks->SetGameType();
    // 15.
    m_app.state.StartupInProgress = false;
    return unknown;
}

void MainWindow::cmdSetPath() {
    m_app.state.PathDialogRequested = true;
    m_app.state.ShowStoredPath = true;
    setEnabled(false);
    m_pathDialog->load();
    if (m_pathDialog->windowHandle() && windowHandle())
        m_pathDialog->windowHandle()->setTransientParent(windowHandle());
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (m_pathDialog->isVisible() && !m_ended) {
        event->ignore();
        return;
    }
    unload();
    event->accept();
}

// The shut-down sequence.
void MainWindow::unload() {
    if (m_unloaded)
        return;
    m_unloaded = true;
    if (!SkipSaveOnClose && m_loaded) {
        // 1. The shown map's rules back into its record.
        m_maps->commitOnClose();
        // 2.
        m_maps->SaveMaps();
        // 3.
        m_parameters->saveParameterList();
        // 4.
        if (!m_settings->SaveSettings()) {
            // The program still ends, but not without saying what was lost.
            const SettingsStore& store = m_app.platform.store;
            m_app.platform.messages.tell(
                QStringLiteral("Warning!"),
                QStringLiteral("Your settings could not be stored in ") + store.location() +
                    QStringLiteral("\r\rReason: ") + store.failureReason() +
                    QStringLiteral(".\r\rSettings changed since they were last stored may be "
                                   "missing at the next start."),
                MsgIcon::Critical);
        }
    }
    endProgram();
}

} // namespace halvane
