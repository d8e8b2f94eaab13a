#include "bots/BotsController.h"

#include "app/AppContext.h"
#include "bots/BotListFile.h"
#include "bots/BotTables.h"
#include "settings/TextForms.h"
#include "ui_frmBots.h"

#include <QFocusEvent>

namespace halvane {

const QString BotsController::NoBotsTip =
    QStringLiteral("No bots selected.  Select the bots you want to add to your server, and then "
                   "click the 'Create Bot Script' button.");

BotsController::BotsController(Ui::frmBots& form, const QLineEdit& maxPlayers, BotTables& tables,
                               AppContext& app)
    : ui(form), m_maxPlayers(maxPlayers), m_tables(tables), m_app(app) {
    connect(ui.BotList, &QListWidget::currentRowChanged, this, [this] {
        showCurrentBot();
        Countbots();
    });
    // A click on the current entry, or on its check box, changes no row.
    connect(ui.BotList, &QListWidget::itemClicked, this, [this] {
        showCurrentBot();
        Countbots();
    });
    connect(ui.BotList, &QListWidget::itemChanged, this, [this] { Countbots(); });
    connect(ui.cmbBotTeam, &QComboBox::currentIndexChanged, this, &BotsController::storeTeam);
    connect(ui.cmbBotSkill, &QComboBox::currentIndexChanged, this, &BotsController::storeSkill);
    connect(ui.btnEditBotList, &QAbstractButton::clicked, this, &BotsController::editBotList);
    connect(ui.btnBotRefresh, &QAbstractButton::clicked, this, &BotsController::LoadBotList);
    ui.txtRandomBots->installEventFilter(this);
}

bool BotsController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui.txtRandomBots && event->type() == QEvent::FocusOut && !m_warning) {
        // Focus lost to a message box or another window is no leaving.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            randomBotsLeft();
    }
    return QObject::eventFilter(watched, event);
}

void BotsController::randomBotsLeft() {
    if (leadingNumber(ui.txtRandomBots->text()) <= leadingNumber(m_maxPlayers.text()))
        return;
    m_warning = true;
    m_app.platform.messages.tell(
        QStringLiteral("Warning"),
        QStringLiteral("This number exceeds the maximum number of players you have specified for "
                       "the server (") +
            m_maxPlayers.text() +
            QStringLiteral(").\r\rIt is suggested that this number be less than the maximum "
                           "players."),
        MsgIcon::Information);
    m_warning = false;
    // After the box has finished losing the focus, which would clear the selection.
    QMetaObject::invokeMethod(
        this,
        [this] {
            ui.txtRandomBots->setFocus(Qt::OtherFocusReason);
            ui.txtRandomBots->selectAll();
        },
        Qt::QueuedConnection);
}

void BotsController::LoadBotList() {
    ui.BotList->clear();
    const BotListRead read = readBotList(m_app.platform.folder.file(QStringLiteral("botlist.txt")));
    // Only positions with a team and skill slot are offered: a longer list
    // would have nowhere to keep the rest, and one message says so.
    const QStringList offered = read.names.mid(0, BotTables::Slots);
    {
        // Counting starts once the whole list stands.
        const QSignalBlocker blocker(ui.BotList);
        for (const QString& name : offered) {
            auto* item = new QListWidgetItem(name, ui.BotList);
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            item->setCheckState(Qt::Unchecked);
        }
    }
    if (!read.ok) {
        m_app.platform.messages.tell(QStringLiteral("Halvane"),
                                     QStringLiteral("Error reading botlist.txt"), MsgIcon::None);
    }
    if (read.names.size() > offered.size()) {
        m_app.platform.messages.tell(
            QStringLiteral("Halvane"),
            QStringLiteral("botlist.txt lists %1 bots, but only the first %2 can be offered.\r\r"
                           "%3 bots were left out.")
                .arg(read.names.size())
                .arg(offered.size())
                .arg(read.names.size() - offered.size()),
            MsgIcon::Information);
    }
}

int BotsController::Countbots() {
    int selected = 0;
    for (int i = 0; i < ui.BotList->count(); ++i) {
        if (ui.BotList->item(i)->checkState() == Qt::Checked)
            ++selected;
    }
    if (selected == 0)
        emit tip(NoBotsTip);
    ui.lblBotCount->setText(botCountCaption(selected));
    return selected;
}

// Shows the current entry's team and skill; the selectors' change handling
// then stores the same values back, which changes nothing.
void BotsController::showCurrentBot() {
    const int position = ui.BotList->currentRow();
    const auto team = m_tables.team(position);
    const auto skill = m_tables.skill(position);
    if (!team || !skill)
        return;
    ui.cmbBotTeam->setCurrentIndex(*team);
    ui.cmbBotSkill->setCurrentIndex(*skill);
}

// No current entry, a position without a slot, or a selector left with no
// choice: nothing to store.
void BotsController::storeTeam(int index) {
    if (index >= 0)
        m_tables.setTeam(ui.BotList->currentRow(), qint16(index));
}

void BotsController::storeSkill(int index) {
    if (index >= 0)
        m_tables.setSkill(ui.BotList->currentRow(), qint16(index));
}

void BotsController::editBotList() {
    if (!m_app.platform.shell.editTextFile(
            m_app.platform.folder.file(QStringLiteral("botlist.txt")))) {
        m_app.platform.messages.tell(QStringLiteral("Warning"),
                                     QStringLiteral("Error opening botlist.txt!"),
                                     MsgIcon::Information);
    }
}

std::vector<BotEntry> botEntries(const QListWidget& list, const BotTables& tables) {
    std::vector<BotEntry> entries;
    entries.reserve(size_t(list.count()));
    for (int i = 0; i < list.count(); ++i) {
        BotEntry entry;
        entry.name = list.item(i)->text();
        entry.selected = list.item(i)->checkState() == Qt::Checked;
        entry.team = tables.team(i).value_or(0);
        entry.skill = tables.skill(i).value_or(1);
        entries.push_back(entry);
    }
    return entries;
}

} // namespace halvane
