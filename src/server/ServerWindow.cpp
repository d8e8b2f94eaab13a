#include "server/ServerWindow.h"

#include "platform/Shell.h"
#include "server/AddServerDialog.h"
#include "server/ProfileLauncher.h"
#include "server/ServerManager.h"
#include "server/ServerProtocol.h"
#include "ui/Accessibility.h"
#include "ui_frmServer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>

namespace halvane {

namespace {
constexpr int HistorySize = 50;
// Texts from the network are cut to these many characters for display.
constexpr qsizetype ShownName = 64;
constexpr qsizetype ShownPlayer = 36;
enum Column { Name, Address, Map, GameType, Players, Uptime, State, Profile };

QString duration(qint64 secs) {
    if (secs < 3600)
        return QStringLiteral("%1 min %2 s").arg(secs / 60).arg(secs % 60, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1 h %2 min")
        .arg(secs / 3600)
        .arg(secs / 60 % 60, 2, 10, QLatin1Char('0'));
}

QString clock(const QDateTime& time) {
    return time.date() == QDate::currentDate() ? time.toString(QStringLiteral("HH:mm:ss"))
                                               : time.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

// Why it ended, and how as far as its supervisor saw: "stopped, exit 0".
QString endText(const QString& reason, const QString& exitStatus) {
    return exitStatus.isEmpty() ? reason : reason + QStringLiteral(", ") + exitStatus;
}

QString stateText(const ServerEntry& server) {
    const LaunchRecord& r = server.record;
    if (!r.running())
        return QStringLiteral("ended %1 (%2)")
            .arg(clock(r.ended), endText(r.endReason, r.exitStatus));
    if (server.live.stopping != ServerLive::Stopping::No)
        return QStringLiteral("stopping");
    if (server.live.unanswered >= 2)
        return QStringLiteral("not answering since %1").arg(clock(server.live.silentSince));
    if (!server.live.status)
        return r.added ? QStringLiteral("asking") : QStringLiteral("starting");
    return QStringLiteral("running");
}
} // namespace

ServerWindow::ServerWindow(ServerManager& manager, Shell& shell, QWidget* owner)
    : QWidget(owner, Qt::Window), m_manager(manager), m_shell(shell),
      ui(std::make_unique<Ui::frmServer>()) {
    ui->setupUi(this);
    // The console's tables line up.
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    ui->txtConsole->setFont(fixed);
    ui->txtLog->setFont(fixed);
    ui->cmbCommand->setMaxCount(HistorySize);
    ui->cmbCommand->lineEdit()->setMaxLength(1000); // the engine takes no longer command
    ui->cmdOpenLog->setToolTip(QStringLiteral("Opens the whole log file"));
    nameControls(*this);
    ui->cmbRun->setToolTip(QStringLiteral("The run of the server whose log is shown: the one "
                                          "now, or an earlier one before a restart"));
    connect(ui->lstServers, &QTreeWidget::currentItemChanged, this, [this] {
        m_actionProblem.clear();
        fillRuns(m_manager.find(currentId()));
        showDetails();
    });
    connect(ui->cmbRun, &QComboBox::currentIndexChanged, this,
            [this] { followLog(ui->cmbRun->currentData().toString()); });
    // A server just launched is the one the operator wants to see.
    connect(&m_manager, &ServerManager::launched, this, [this](const QString& id) {
        for (int i = 0; i < ui->lstServers->topLevelItemCount(); ++i) {
            if (ui->lstServers->topLevelItem(i)->data(Name, Qt::UserRole) == id)
                ui->lstServers->setCurrentItem(ui->lstServers->topLevelItem(i));
        }
    });
    ui->cmdClose->setToolTip(QStringLiteral("Closes this window; the servers keep running"));
    connect(ui->cmdClose, &QPushButton::clicked, this, &QWidget::close);

    connect(&m_manager, &ServerManager::listChanged, this, &ServerWindow::rebuildList);
    connect(&m_manager, &ServerManager::serverChanged, this, &ServerWindow::updateRow);
    ui->cmdAddServer->setToolTip(QStringLiteral("Adds a server that Halvane did not start, on "
                                                "this host or another, by its address"));
    connect(ui->cmdAddServer, &QPushButton::clicked, this, [this] {
        auto* dialog = new AddServerDialog(m_manager, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    connect(ui->cmdStop, &QPushButton::clicked, this, [this] { m_manager.stop(currentId()); });
    connect(ui->cmdRestart, &QPushButton::clicked, this,
            [this] { m_manager.restart(currentId()); });
    connect(ui->cmdNextMap, &QPushButton::clicked, this, [this] {
        QPointer<ServerWindow> self(this);
        m_manager.rcon(currentId(), QStringLiteral("vstr nextmap"),
                       [self](const protocol::RconAnswer& answer) {
                           if (self)
                               self->reportAnswer(QStringLiteral("Next map"), answer);
                       });
    });
    connect(ui->cmdRemove, &QPushButton::clicked, this, [this] { m_manager.remove(currentId()); });
    connect(ui->cmdKick, &QPushButton::clicked, this, &ServerWindow::kick);
    connect(ui->cmdSend, &QPushButton::clicked, this, &ServerWindow::sendCommand);
    connect(ui->cmbCommand->lineEdit(), &QLineEdit::returnPressed, this,
            &ServerWindow::sendCommand);
    connect(ui->chkMonitor, &QCheckBox::toggled, this,
            [this](bool on) { m_manager.setMonitor(currentId(), on); });
    connect(ui->cmdOpenLog, &QPushButton::clicked, this, &ServerWindow::openLog);
    ui->cmdLaunchProfile->setToolTip(QStringLiteral("Launches the chosen profile as a server "
                                                    "that reads its own scripts"));
    connect(ui->cmdLaunchProfile, &QPushButton::clicked, this, [this] {
        if (m_profiles && ui->cmbProfile->currentIndex() >= 0)
            m_profiles->launchProfile(ui->cmbProfile->currentText());
    });
    setProfileLauncher(nullptr);
    m_timer.setInterval(1000);
    connect(&m_timer, &QTimer::timeout, this, &ServerWindow::everySecond);
    rebuildList();
}

void ServerWindow::setProfileLauncher(ProfileLauncher* profiles) {
    m_profiles = profiles;
    const QList<QWidget*> row{ui->lblProfile, ui->cmbProfile, ui->cmdLaunchProfile};
    for (QWidget* control : row)
        control->setVisible(profiles != nullptr);
    fillProfiles();
}

// Read again at each showing: profiles are saved and deleted meanwhile.
void ServerWindow::fillProfiles() {
    const QString chosen = ui->cmbProfile->currentText();
    ui->cmbProfile->clear();
    if (m_profiles)
        ui->cmbProfile->addItems(m_profiles->profileNames());
    ui->cmbProfile->setCurrentIndex(qMax(0, ui->cmbProfile->findText(chosen)));
    ui->cmdLaunchProfile->setEnabled(ui->cmbProfile->count() > 0);
}

ServerWindow::~ServerWindow() = default;

QString ServerWindow::currentId() const {
    const QTreeWidgetItem* item = ui->lstServers->currentItem();
    return item ? item->data(Name, Qt::UserRole).toString() : QString();
}

void ServerWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    fillProfiles();
    m_manager.setWatched(true);
    m_timer.start();
}

// Esc closes it, as it does a dialog; the controls leave the key to it.
void ServerWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        close();
    else
        QWidget::keyPressEvent(event);
}

void ServerWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_timer.stop();
    m_manager.setWatched(false);
}

void ServerWindow::rebuildList() {
    const QString current = currentId();
    ui->lstServers->clear();
    QTreeWidgetItem* select = nullptr;
    for (const ServerEntry& server : m_manager.servers()) {
        auto* item = new QTreeWidgetItem(ui->lstServers);
        item->setData(Name, Qt::UserRole, server.record.id);
        fillRow(*item, server);
        if (server.record.id == current || (!select && current.isEmpty()))
            select = item;
    }
    if (!select && ui->lstServers->topLevelItemCount() > 0)
        select = ui->lstServers->topLevelItem(0);
    ui->lstServers->setCurrentItem(select);
    ui->lstServers->header()->resizeSections(QHeaderView::ResizeToContents);
    showDetails();
}

void ServerWindow::updateRow(const QString& id) {
    const ServerEntry* server = m_manager.find(id);
    for (int i = 0; server && i < ui->lstServers->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = ui->lstServers->topLevelItem(i);
        if (item->data(Name, Qt::UserRole).toString() != id)
            continue;
        fillRow(*item, *server);
        // The columns were sized before the first answer: they grow to fit.
        const QFontMetrics metrics(ui->lstServers->font());
        for (int column = 0; column <= Profile; ++column) {
            if (metrics.horizontalAdvance(item->text(column)) + 2 * metrics.averageCharWidth() >
                ui->lstServers->columnWidth(column))
                ui->lstServers->resizeColumnToContents(column);
        }
    }
    if (id == currentId())
        showDetails();
}

void ServerWindow::fillRow(QTreeWidgetItem& item, const ServerEntry& server) const {
    const LaunchRecord& r = server.record;
    const auto& status = server.live.status;
    using protocol::cutForDisplay;
    using protocol::withoutColours;
    // The name it last answered with (or was launched with) stays once it has ended.
    const QString name = withoutColours(r.hostName);
    item.setText(Name, cutForDisplay(name, ShownName));
    item.setToolTip(Name, name.size() > ShownName ? name : QString());
    // No port until the game has said where it listens.
    item.setText(Address,
                 r.port != 0 ? QStringLiteral("%1:%2").arg(r.address).arg(r.port) : r.address);
    item.setText(Map, status ? cutForDisplay(status->value("mapname"), ShownName) : QString());
    item.setText(GameType,
                 status
                     ? cutForDisplay(protocol::gameTypeName(status->value("g_gametype")), ShownName)
                     : QString());
    item.setText(Players, status ? QStringLiteral("%1 / %2")
                                       .arg(status->players.size())
                                       .arg(cutForDisplay(status->value("sv_maxclients"), 8))
                                 : QString());
    item.setText(Uptime, r.added       ? QStringLiteral("added")
                         : r.running() ? duration(r.started.secsTo(QDateTime::currentDateTime()))
                                       : QString());
    item.setText(State, stateText(server));
    item.setText(Profile, r.profile);
    const QBrush ink =
        palette().brush(r.running() ? QPalette::Active : QPalette::Disabled, QPalette::Text);
    for (int column = 0; column <= Profile; ++column)
        item.setForeground(column, ink);
}

// The runs of the chosen server, the current one first, each with its log.
void ServerWindow::fillRuns(const ServerEntry* server) {
    m_runsOf = server ? server->record.id : QString();
    m_runsLog = server ? server->record.logFile : QString();
    const QSignalBlocker blocker(ui->cmbRun);
    ui->cmbRun->clear();
    if (server && !server->record.added) {
        const LaunchRecord& r = server->record;
        ui->cmbRun->addItem(
            r.running()
                ? QStringLiteral("this one, started %1").arg(clock(r.started))
                : QStringLiteral("the last, started %1, ended %2 (%3)")
                      .arg(clock(r.started), clock(r.ended), endText(r.endReason, r.exitStatus)),
            r.logFile);
        for (qsizetype i = r.runs.size() - 1; i >= 0; --i) {
            const ServerRun& run = r.runs[i];
            ui->cmbRun->addItem(QStringLiteral("started %1, ended %2 (%3)")
                                    .arg(clock(run.started), clock(run.ended),
                                         endText(run.endReason, run.exitStatus)),
                                run.logFile);
        }
    }
    followLog(ui->cmbRun->currentData().toString());
}

void ServerWindow::followLog(const QString& path) {
    m_tail.follow(path);
    m_logProblem.clear();
    ui->txtLog->clear();
    if (const ServerEntry* server = m_manager.find(currentId()); server && server->record.added)
        ui->txtLog->setPlainText(QStringLiteral("Halvane did not start this server: its log "
                                                "is kept where it runs."));
    readLog();
    showProblem();
}

void ServerWindow::openLog() {
    const QString path = ui->cmbRun->currentData().toString();
    if (path.isEmpty() || m_shell.openDocument(path))
        return;
    m_actionProblem = QStringLiteral("Open Log File: the log file %1 could not be opened%2")
                          .arg(QDir::toNativeSeparators(path),
                               QFileInfo::exists(path) ? QStringLiteral(": no program opens it")
                                                       : QStringLiteral(": it does not exist"));
    showProblem();
}

void ServerWindow::showDetails() {
    const ServerEntry* server = m_manager.find(currentId());
    // A restart writes a new log: the list of runs follows it.
    if (server && (server->record.id != m_runsOf || server->record.logFile != m_runsLog))
        fillRuns(server);
    const bool running = server && server->record.running();
    const bool settled = running && server->live.stopping == ServerLive::Stopping::No;
    const bool added = server && server->record.added;
    QString rconProblem =
        server ? protocol::rconPasswordProblem(server->record.rconPassword) : QString();
    if (added && !rconProblem.isEmpty())
        rconProblem = QStringLiteral("Add the server again with its console password to use this");
    ui->cmdStop->setEnabled(settled && !added);
    ui->cmdRestart->setEnabled(server && !added &&
                               server->live.stopping == ServerLive::Stopping::No);
    // Halvane has no process of a server it did not start.
    const QString notOurs = QStringLiteral("Not available for a server that Halvane did not start");
    ui->cmdStop->setToolTip(added ? notOurs : QStringLiteral("Stops the chosen server"));
    ui->cmdRestart->setToolTip(added ? notOurs
                                     : QStringLiteral("Stops the chosen server and starts it "
                                                      "again with the same command line"));
    ui->chkMonitor->setToolTip(added ? notOurs
                                     : QStringLiteral("Starts the server again when it ends "
                                                      "without a Stop, or does not answer for a "
                                                      "minute"));
    ui->cmdRemove->setEnabled(server && ServerManager::removable(*server));
    ui->cmdRemove->setToolTip(
        running && !added ? QStringLiteral("Stop the server before it can be removed from the list")
                          : QStringLiteral("Takes the chosen server off the list for good; its "
                                           "log stays"));
    const std::pair<QWidget*, const char*> rconControls[] = {
        {ui->cmdNextMap, "Goes on to the next map of the rotation"},
        {ui->cmdKick, "Removes the chosen player from the server"},
        {ui->cmdSend, "Sends the command to the server's console"},
        {ui->cmbCommand, "A command for the server's console; up and down go through the "
                         "commands sent before"}};
    for (const auto& [control, tip] : rconControls) {
        control->setEnabled(settled && rconProblem.isEmpty());
        control->setToolTip(rconProblem.isEmpty() ? QString::fromLatin1(tip) : rconProblem);
    }
    {
        const QSignalBlocker blocker(ui->chkMonitor);
        ui->chkMonitor->setChecked(server && server->record.monitor);
    }
    ui->chkMonitor->setEnabled(server != nullptr && !added);
    const int restarts = server ? server->record.monitorRestarts : 0;
    ui->lblMonitor->setText(
        restarts > 0 ? QStringLiteral("Restarted %1 %2, last at %3")
                           .arg(restarts)
                           .arg(restarts == 1 ? QStringLiteral("time") : QStringLiteral("times"))
                           .arg(clock(server->record.lastMonitorRestart))
                     : QString());
    ui->cmdOpenLog->setEnabled(!ui->cmbRun->currentData().toString().isEmpty());
    const auto* status = server && server->live.status ? &*server->live.status : nullptr;
    const QString hostName = status ? server->record.hostName : QString();
    ui->lblHostName->setText(protocol::colouredHtml(protocol::cutForDisplay(hostName, ShownName)));
    ui->lblHostName->setToolTip(protocol::withoutColours(hostName));

    // Redrawn only when it changed, so a chosen player stays chosen.
    QString players;
    for (const protocol::Player& p : status ? status->players : QList<protocol::Player>())
        players += QStringLiteral("%1\t%2\t%3\n").arg(p.name).arg(p.score).arg(p.ping);
    if (players != m_shownPlayers) {
        m_shownPlayers = players;
        const QString chosen = ui->lstPlayers->currentItem()
                                   ? ui->lstPlayers->currentItem()->data(0, Qt::UserRole).toString()
                                   : QString();
        ui->lstPlayers->clear();
        for (const protocol::Player& p : status ? status->players : QList<protocol::Player>()) {
            const QString plain = protocol::withoutColours(p.name);
            auto* item = new QTreeWidgetItem(ui->lstPlayers,
                                             {protocol::cutForDisplay(plain, ShownPlayer),
                                              QString::number(p.score), QString::number(p.ping)});
            item->setToolTip(0, plain);
            item->setData(0, Qt::UserRole, p.name);
            if (p.name == chosen)
                ui->lstPlayers->setCurrentItem(item);
        }
    }
    showProblem();
}

// The end of a log, for a server the monitor gave up on: what it said last
// usually tells why it would not come up.
static QString lastLogLines(const QString& path) {
    constexpr int Lines = 6;
    constexpr qint64 Tail = 4096;
    QFile file(path);
    // A pipe would never end a read, and block the window.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return QString();
    file.seek(qMax<qint64>(0, file.size() - Tail));
    QStringList lines = QString::fromLatin1(file.read(Tail)).split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = protocol::withoutColours(line.trimmed());
    lines.removeAll(QString());
    return lines.mid(qMax<qsizetype>(0, lines.size() - Lines)).join(QLatin1Char('\n'));
}

void ServerWindow::showProblem() {
    const ServerEntry* server = m_manager.find(currentId());
    QString gaveUp;
    if (server && !server->record.running() &&
        server->record.endReason.startsWith(QLatin1String("gave up"))) {
        const QString log = QDir::toNativeSeparators(server->record.logFile);
        const QString tail = lastLogLines(server->record.logFile);
        gaveUp = QStringLiteral("The monitor ") + server->record.endReason +
                 (tail.isEmpty() ? QStringLiteral(". Its log %1 says nothing.").arg(log)
                                 : QStringLiteral(". Its log %1 ends with:\n").arg(log) + tail);
    }
    QStringList lines{m_manager.fileProblem(), server ? server->live.problem : QString(), gaveUp,
                      m_actionProblem, m_logProblem};
    lines.removeAll(QString());
    ui->lblProblem->setText(lines.join(QLatin1Char('\n')));
}

void ServerWindow::everySecond() {
    for (const ServerEntry& server : m_manager.servers())
        updateRow(server.record.id);
    readLog();
}

void ServerWindow::readLog() {
    if (const ServerEntry* server = m_manager.find(currentId()); server && server->record.added)
        return;
    QString problem;
    const QStringList lines = m_tail.readNew(&problem);
    if (!problem.isEmpty()) {
        m_logProblem = problem;
        ui->txtLog->appendPlainText(problem);
        showProblem();
    } else if (!lines.isEmpty() && !m_logProblem.isEmpty()) {
        m_logProblem.clear();
        showProblem();
    }
    if (lines.isEmpty())
        return;
    QScrollBar* bar = ui->txtLog->verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    for (const QString& line : lines)
        ui->txtLog->appendPlainText(protocol::withoutColours(line));
    if (atEnd)
        bar->setValue(bar->maximum());
}

void ServerWindow::sendCommand() {
    const QString command = ui->cmbCommand->currentText().trimmed();
    if (command.isEmpty() || !ui->cmdSend->isEnabled())
        return;
    const int earlier = ui->cmbCommand->findText(command);
    if (earlier >= 0)
        ui->cmbCommand->removeItem(earlier);
    ui->cmbCommand->insertItem(0, command);
    ui->cmbCommand->setCurrentIndex(-1);
    ui->cmbCommand->clearEditText();
    ui->txtConsole->appendPlainText(QStringLiteral("> ") + command);
    QPointer<ServerWindow> self(this);
    m_manager.rcon(currentId(), command, [self](const protocol::RconAnswer& answer) {
        if (self)
            self->reportAnswer(QString(), answer);
    });
}

void ServerWindow::kick() {
    const QTreeWidgetItem* player = ui->lstPlayers->currentItem();
    if (!player) {
        m_actionProblem = QStringLiteral("Choose the player to kick first");
        showProblem();
        return;
    }
    QPointer<ServerWindow> self(this);
    const QString name = player->data(0, Qt::UserRole).toString();
    m_manager.kick(currentId(), name, [self, name](const protocol::RconAnswer& answer) {
        if (self)
            self->reportAnswer(
                QStringLiteral("Kick ") +
                    protocol::cutForDisplay(protocol::withoutColours(name), ShownPlayer),
                answer);
    });
}

// Console answers go to the console; an action that failed says so on the
// problem line as well.
void ServerWindow::reportAnswer(const QString& what, const protocol::RconAnswer& answer) {
    const QString& error = answer.error;
    if (!what.isEmpty())
        ui->txtConsole->appendPlainText(QStringLiteral("> ") + what);
    QString shown = protocol::withoutColours(answer.text.trimmed());
    if (!error.isEmpty())
        shown = QStringLiteral("Error: ") + error;
    if (!shown.isEmpty())
        ui->txtConsole->appendPlainText(shown);
    if (!answer.cut.isEmpty())
        ui->txtConsole->appendPlainText(QStringLiteral("(answer cut: %1)").arg(answer.cut));
    m_actionProblem = error.isEmpty() ? QString()
                                      : (what.isEmpty() ? QStringLiteral("Console") : what) +
                                            QStringLiteral(": ") + error;
    showProblem();
}

} // namespace halvane
