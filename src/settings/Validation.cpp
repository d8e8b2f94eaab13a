#include "settings/Validation.h"
#include "settings/Positions.h"

#include "app/AppContext.h"
#include "app/NamedChildren.h"
#include "config/ConsoleText.h"
#include "settings/SettingsController.h"
#include "settings/TextForms.h"
#include "ui_frmAdvanced.h"
#include "ui_frmBots.h"
#include "ui_frmGeneral.h"
#include "ui_frmMaps.h"
#include "ui_frmOptions.h"

#include <QFocusEvent>
#include <QHash>
#include <QKeyEvent>
#include <QSet>
#include <QTabWidget>
#include <cmath>

namespace halvane {

namespace {
using namespace positions;

const QString Warning = QStringLiteral("Warning");

double valueOf(const QLineEdit* box) {
    return leadingNumber(box->text());
}

void fillWhenEmpty(QLineEdit* box, const QString& text) {
    if (box->text().isEmpty())
        box->setText(text);
}

// A box holding no number (or nothing) becomes "0"; "007" stays as typed.
void zeroWhenNoNumber(QLineEdit* box) {
    if (valueOf(box) == 0.0 && box->text() != QLatin1String("0"))
        box->setText(QStringLiteral("0"));
}

bool isTypedDigit(const QKeyEvent* key) {
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    const QString text = key->text();
    return text.size() == 1 && text[0] >= QLatin1Char('0') && text[0] <= QLatin1Char('9');
}

// Keys that move around or leave the box rather than type a character into
// it. Control with a letter is a control character (copy, paste, undo...).
bool typesNothing(const QKeyEvent* key) {
    switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Delete:
        return true;
    default:
        break;
    }
    if (key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) {
        if (key->key() >= Qt::Key_A && key->key() <= Qt::Key_Z)
            return false;
    }
    return key->text().isEmpty();
}
} // namespace

Validation::Validation(Ui::frmGeneral& general, Ui::frmBots& bots, Ui::frmMaps& maps,
                       Ui::frmOptions& options, Ui::frmAdvanced& advanced, QTabWidget& tabs,
                       AppContext& app, SettingsController& settings, QObject* parent)
    : QObject(parent), m_general(general), m_bots(bots), m_maps(maps), m_options(options),
      m_advanced(advanced), m_tabs(tabs), m_app(app), m_settings(settings) {}

const QStringList& Validation::numericBoxes() {
    static const QStringList boxes{
        QStringLiteral("txtHunkMegs"),        QStringLiteral("txtInactivity"),
        QStringLiteral("txtMapCapturelimit"), QStringLiteral("txtMapFragLimit"),
        QStringLiteral("txtMapGravity"),      QStringLiteral("txtMapKnockback"),
        QStringLiteral("txtMapSpeed"),        QStringLiteral("txtMapTimeLimit"),
        QStringLiteral("txtMaxPing"),         QStringLiteral("txtMaxPlayers"),
        QStringLiteral("txtMinBots"),         QStringLiteral("txtMinPing"),
        QStringLiteral("txtPlayerRespawn"),   QStringLiteral("txtQuad"),
        QStringLiteral("txtRandomBots"),      QStringLiteral("txtRespawn"),
        QStringLiteral("txtWarmUpTime")};
    return boxes;
}

void Validation::installGuards() {
    QWidget* window = m_tabs.window();
    // The boxes found in one pass over the window, not one search of the
    // whole window per name; a name two boxes share is searched for as
    // before.
    QHash<QString, QLineEdit*> boxes;
    for (const QString& name : numericBoxes())
        boxes.insert(name, nullptr);
    QSet<QString> shared;
    findNamedChildren<QLineEdit>(*window, boxes, shared);
    for (const QString& name : numericBoxes()) {
        QLineEdit* box =
            shared.contains(name) ? window->findChild<QLineEdit*>(name) : boxes.value(name);
        if (box) {
            box->installEventFilter(this);
            m_numeric.append(box);
            // Typing is filtered key by key; a paste, a drop or the context
            // menu changes the text at once, and only by the operator.
            connect(box, &QLineEdit::textEdited, this, [this, box] { keepDigits(box); });
        }
    }
    m_advanced.txtLogFile->installEventFilter(this);
    m_advanced.txtPrivateClients->installEventFilter(this);
}

bool Validation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && m_numeric.contains(watched))
        return refuseKey(watched, event);
    if (event->type() == QEvent::FocusOut) {
        // Another window taking over (a message box, a menu) is no leaving.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        const bool leaving =
            reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
        if (leaving &&
            (watched == m_advanced.txtLogFile || watched == m_advanced.txtPrivateClients)) {
            // Let the box finish leaving first (it drops its selection then),
            // so that the check's own selection and focus are what remain.
            watched->event(event);
            if (watched == m_advanced.txtLogFile)
                txtLogFileLostFocus();
            else
                txtPrivateClientsLostFocus();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

bool Validation::refuseKey(QObject*, QEvent* event) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Backspace || isTypedDigit(key) || typesNothing(key))
        return false;
    m_app.platform.desktop.beep();
    return true;
}

void Validation::keepDigits(QLineEdit* box) {
    const QString text = box->text();
    QString digits;
    int cursor = box->cursorPosition();
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] >= QLatin1Char('0') && text[i] <= QLatin1Char('9'))
            digits += text[i];
        else if (i < box->cursorPosition())
            --cursor;
    }
    if (digits == text)
        return;
    box->setText(digits);
    box->setCursorPosition(cursor);
}

void Validation::txtLogFileLostFocus() {
    static const QString forbidden = QStringLiteral("\\/:*?\"><|");
    const QString text = m_advanced.txtLogFile->text();
    for (const QChar c : forbidden) {
        if (text.contains(c)) {
            m_app.platform.messages.tell(
                QStringLiteral("Invalid filename"),
                QStringLiteral("A filename cannot contain any of the following characters:\r\r"
                               "\\ / : * ? \" > < |"),
                MsgIcon::Critical);
            m_advanced.txtLogFile->selectAll();
            m_advanced.txtLogFile->setFocus();
            return;
        }
    }
}

void Validation::txtPrivateClientsLostFocus() {
    const double privateClients = valueOf(m_advanced.txtPrivateClients);
    const double maxPlayers = std::round(valueOf(m_general.txtMaxPlayers));
    if (privateClients > maxPlayers) {
        m_app.platform.messages.tell(
            Warning,
            QStringLiteral("The number of private clients (") +
                m_advanced.txtPrivateClients->text() +
                QStringLiteral(") exceeds the maxiumum number of players specified (") +
                m_general.txtMaxPlayers->text() +
                QStringLiteral("). \r\rThis number should be the same, or less than the "
                               "maxiumum number of clients."),
            MsgIcon::Information);
    } else if (privateClients == 0.0) {
        m_app.platform.messages.tell(
            Warning,
            QStringLiteral("Setting the number of private clients will remove the password "
                           "required to connect to your server for all clients.\r\rIf you wish "
                           "to disable the password, uncheck 'Require Password' instead."),
            MsgIcon::Information);
    }
}

void Validation::focusAdvancedBox(QLineEdit* box) {
    m_tabs.setCurrentIndex(AdvancedTab);
    box->setSelection(0, box->text().size());
    box->setFocus();
}

void Validation::focusBox(QWidget* box) {
    for (int i = 0; i < m_tabs.count(); ++i) {
        if (m_tabs.widget(i)->isAncestorOf(box))
            m_tabs.setCurrentIndex(i);
    }
    QLineEdit* edit = qobject_cast<QLineEdit*>(box);
    if (auto* combo = qobject_cast<QComboBox*>(box))
        edit = combo->lineEdit();
    if (edit)
        edit->selectAll();
    box->setFocus();
}

QWidget* Validation::unsafeBox(QString& message, bool commandLineToo) const {
    using P = ConsolePlace;
    struct Written {
        QWidget* box;
        QString text;
        P place;
        bool written;
    };
    const auto line = [](QLineEdit* box, P place, bool written = true) {
        return Written{box, box->text(), place, written};
    };
    const auto combo = [](QComboBox* box, P place) {
        return Written{box, box->currentText(), place, true};
    };
    const bool ownLogName =
        m_advanced.chkLogFile->isChecked() && !m_advanced.chkDateLog->isChecked();
    const bool masters = m_options.Frame1->isEnabled();
    // In the order the values are written: halvane.cfg, the shown map's
    // rules (they go into the rotation lines), then the command line.
    const Written values[] = {
        line(m_advanced.txtLogFile, P::Quoted, ownLogName),
        line(m_general.txtMaxPlayers, P::Unquoted),
        line(m_general.txtServerName, P::Quoted),
        line(m_general.txtMOTD, P::Quoted),
        line(m_advanced.txtMinPing, P::Unquoted),
        line(m_advanced.txtMaxPing, P::Unquoted),
        line(m_general.txtPlayerRespawn, P::Unquoted),
        line(m_general.txtInactivity, P::Unquoted),
        line(m_options.txtWarmUpTime, P::Quoted, m_options.chkWarmUp->isChecked()),
        line(m_advanced.txtConsolePW, P::Quoted),
        line(m_advanced.txtMaxRate, P::Unquoted),
        line(m_options.txtMaster_0, P::Unquoted, masters),
        line(m_options.txtMaster_1, P::Unquoted, masters),
        line(m_options.txtMaster_2, P::Unquoted, masters),
        line(m_options.txtMaster_3, P::Unquoted, masters),
        line(m_options.txtMaster_4, P::Unquoted, masters),
        line(m_options.txtRespawn, P::Unquoted),
        line(m_options.txtQuad, P::Unquoted),
        line(m_bots.txtMinBots, P::Unquoted, m_bots.cmbBotType->currentIndex() == AutomaticBots),
        combo(m_advanced.txtCfg, P::Unquoted),
        line(m_maps.txtMapTimeLimit, P::Rotation),
        line(m_maps.txtMapFragLimit, P::Rotation),
        line(m_maps.txtMapCapturelimit, P::Rotation),
        line(m_maps.txtMapSpeed, P::Rotation),
        line(m_maps.txtMapGravity, P::Rotation),
        line(m_maps.txtMapKnockback, P::Rotation),
        line(m_advanced.txtHunkMegs, P::CommandLine),
        line(m_advanced.txtServerPW, P::CommandLine, m_advanced.chkRequirePassword->isChecked()),
        line(m_advanced.txtNetIP, P::CommandLine),
        line(m_advanced.txtNetPort, P::CommandLine),
        combo(m_advanced.txtCmdParameters, P::Parameters),
        line(m_advanced.txtCDROM, P::CommandLine, m_advanced.chkSpecifyCD->isChecked()),
        line(m_general.txtAdminName, P::CommandLine),
        line(m_general.txtAdminEmail, P::CommandLine),
        line(m_general.txtAdminURL, P::CommandLine),
    };
    for (const Written& value : values) {
        if (!value.written ||
            (!commandLineToo && (value.place == P::CommandLine || value.place == P::Parameters)))
            continue;
        const QString caption = value.box->accessibleName().isEmpty() ? value.box->objectName()
                                                                      : value.box->accessibleName();
        message = consoleRefusal(caption, value.text, value.place);
        if (!message.isEmpty())
            return value.box;
    }
    return nullptr;
}

bool Validation::consoleTextIsSafe(bool commandLineToo) {
    QString message;
    QWidget* box = unsafeBox(message, commandLineToo);
    if (!box)
        return true;
    m_app.platform.messages.tell(QStringLiteral("Warning!"), message, MsgIcon::Critical);
    focusBox(box);
    return false;
}

bool Validation::ValidateAll() {
    QString failure;
    bool passed = false;
    try {
        passed = checkAll(failure);
    } catch (...) {
        passed = false;
    }
    if (passed)
        return true;
    if (!failure.isEmpty())
        m_app.platform.messages.tell(QStringLiteral("Warning!"), failure, MsgIcon::Critical);
    return false;
}

// The checks in their fixed order. A check that has told or asked the
// operator already fails with an empty message.
bool Validation::checkAll(QString& failure) {
    MessageBoxes& messages = m_app.platform.messages;

    if (m_advanced.chkLogFile->isChecked() && !m_advanced.chkDateLog->isChecked() &&
        m_advanced.txtLogFile->text().trimmed().isEmpty()) {
        messages.tell(
            QStringLiteral("Error"),
            QStringLiteral(
                "You have chosen to specify a log filename, but no filename is specified"),
            MsgIcon::None);
        focusAdvancedBox(m_advanced.txtLogFile);
        return false;
    }
    if (m_general.txtServerName->text().isEmpty()) {
        failure = QStringLiteral("Server name is required");
        return false;
    }
    if (m_general.txtMaxPlayers->text().isEmpty()) {
        failure = QStringLiteral("Maxiumum Player value is required");
        return false;
    }

    fillWhenEmpty(m_maps.txtMapFragLimit, QStringLiteral("0"));
    fillWhenEmpty(m_maps.txtMapTimeLimit, QStringLiteral("0"));
    fillWhenEmpty(m_options.txtQuad, QStringLiteral("3"));
    fillWhenEmpty(m_options.txtRespawn, QStringLiteral("5"));

    if (valueOf(m_advanced.txtHunkMegs) < 12)
        m_advanced.txtHunkMegs->setText(QStringLiteral("12"));

    if (m_general.cmbGameType->currentIndex() == CaptureTheFlag &&
        valueOf(m_advanced.txtHunkMegs) < 32) {
        if (messages.askYesNo(Warning,
                              QStringLiteral("The amount of allocated memory should be increased "
                                             "to at least 26 for CTF games.\r\rWould you like to "
                                             "set it to 32 beofre starting?"),
                              MsgIcon::Question))
            m_advanced.txtHunkMegs->setText(QStringLiteral("32"));
    }

    const int serverType = m_general.cmbServerType->currentIndex();
    if (valueOf(m_advanced.txtHunkMegs) > 64 &&
        (serverType == PrivateServer || serverType == DedicatedServer)) {
        if (messages.askYesNo(Warning,
                              QStringLiteral("The amount of allocated memory (") +
                                  m_advanced.txtHunkMegs->text() +
                                  QStringLiteral("MB) far exceeds the typical requirements, would "
                                                 "you like to change this first?"),
                              MsgIcon::None)) {
            focusAdvancedBox(m_advanced.txtHunkMegs);
            return false;
        }
    }
    if (valueOf(m_advanced.txtHunkMegs) < 56 && serverType == ListenServer) {
        if (messages.askYesNo(Warning,
                              QStringLiteral("The amount of allocated memory (") +
                                  m_advanced.txtHunkMegs->text() +
                                  QStringLiteral("MB) is lower than recommended for a listen "
                                                 "server, would you like to change this first?"),
                              MsgIcon::None)) {
            focusAdvancedBox(m_advanced.txtHunkMegs);
            return false;
        }
    }

    if (m_bots.cmbBotType->currentIndex() == AutomaticBots &&
        (valueOf(m_bots.txtMinBots) < 1 || valueOf(m_bots.txtMinBots) > 32)) {
        failure = QStringLiteral("You have selected autobots, but the number of bots is "
                                 "invalid.\r\rAcceptable values are 1 through 32.  (2-4 is "
                                 "recommended)");
        return false;
    }

    zeroWhenNoNumber(m_general.txtPlayerRespawn);
    zeroWhenNoNumber(m_general.txtInactivity);

    const QString address = m_advanced.txtNetIP->text();
    if (!address.isEmpty() && address.size() < 8) {
        failure = QStringLiteral("The specified network IP address does not appear to be valid");
        return false;
    }

    if (m_advanced.chkSpecifyCD->isChecked() && m_advanced.txtCDROM->text().size() != 2) {
        failure = QStringLiteral("The drive letter you have specified for your CD ROM is "
                                 "invalid.\r\rEither uncheck the box next to it, or enter a valid "
                                 "drive letter (example: D:)");
        return false;
    }

    // The executable's name is repeated in halvane.cfg's closing comment.
    if (const qsizetype at = firstConsoleBreak(m_app.state.GameExeName, ConsolePlace::Quoted);
        at >= 0) {
        failure =
            consoleRefusal(QStringLiteral("The game's file name"), m_app.state.GameExeName[at]);
        return false;
    }
    if (QWidget* box = unsafeBox(failure)) {
        focusBox(box);
        return false;
    }

    // A store that refuses the settings stops the launch without a message.
    return m_settings.SaveSettings();
}

} // namespace halvane
