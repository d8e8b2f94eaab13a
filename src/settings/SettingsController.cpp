#include "settings/SettingsController.h"
#include "settings/Positions.h"

#include "app/AppContext.h"
#include "bots/BotTables.h"
#include "settings/HolderAccess.h"
#include "settings/OptionCatalogue.h"
#include "settings/OptionInterlocks.h"
#include "settings/TextForms.h"

#include <QListWidget>
#include <QSet>
#include <QTabWidget>

namespace halvane {

namespace {
const QString BotsSection = QStringLiteral("Bots");
QString selectedKey(int n) {
    return QStringLiteral("Selected") + QString::number(n);
}
QString teamKey(int n) {
    return QStringLiteral("Team ") + QString::number(n);
}
QString strengthKey(int n) {
    return QStringLiteral("Strength ") + QString::number(n);
}
using positions::TabCount;
} // namespace

SettingsController::SettingsController(QObject& window, QTabWidget& tabs, QListWidget& botList,
                                       BotTables& bots, OptionInterlocks& interlocks,
                                       AppContext& app, SettingsWindow& parts)
    : m_window(window), m_tabs(tabs), m_botList(botList), m_bots(bots), m_interlocks(interlocks),
      m_app(app), m_parts(parts) {}

QString SettingsController::read(const OptionKey& option) const {
    return m_loading->read(QString::fromLatin1(option.section), QString::fromLatin1(option.key),
                           QString::fromLatin1(option.defaultText));
}

QObject* SettingsController::holder(const OptionKey& option) const {
    const QString name = QString::fromLatin1(option.holder);
    if (m_window.objectName() == name)
        return &m_window;
    if (m_holders.isEmpty()) {
        // Every option's control found in one pass over the window.
        for (const OptionKey& key : optionCatalogue())
            m_holders.insert(QString::fromLatin1(key.holder), nullptr);
        m_holders.insert(name, nullptr);
        QSet<QString> shared;
        for (QObject* object : m_window.findChildren<QObject*>()) {
            const auto found = m_holders.find(object->objectName());
            if (found == m_holders.end())
                continue;
            if (*found)
                shared.insert(found.key());
            else
                *found = object;
        }
        for (const QString& sharedName : std::as_const(shared))
            m_holders.remove(sharedName);
    }
    if (QObject* object = m_holders.value(name))
        return object;
    return m_window.findChild<QObject*>(name);
}

void SettingsController::report(const QString& stepMessage) {
    m_app.platform.messages.tell(
        QStringLiteral("Error"),
        stepMessage +
            QStringLiteral("\r\rYou may continue, but please notify Brask of this error."),
        MsgIcon::Information);
}

// A selector whose stored entry was refused would show no entry at all and
// the next save would store -1, refused again at every start. It takes the
// entry of its key's default instead, so the value is reported once and the
// next save heals the store. Other controls keep their previous value, which
// is always one the store accepts.
void SettingsController::refuse(const OptionKey& option, const QString& stepMessage) {
    report(stepMessage);
    if (option.form == TextForm::Position)
        setHolderValue(holder(option), option.form, QString::fromLatin1(option.defaultText));
}

void SettingsController::LoadSettings() {
    LoadSettings(m_app.platform.store);
}

void SettingsController::LoadSettings(const SettingsStore& store) {
    m_loading = &store;
    for (int step = 1; step <= LoadStepCount; ++step)
        loadStep(step);
    m_loading = nullptr;
}

void SettingsController::loadStep(int step) {
    QString message = loadStepMessage(step);
    if (step == 7)
        message += signedText(m_gameType);

    // The keys of this step, in the order the step reads them.
    std::vector<const OptionKey*> keys;
    for (const OptionKey& option : optionCatalogue()) {
        if (option.step == step)
            keys.push_back(&option);
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const OptionKey* a, const OptionKey* b) { return a->sub < b->sub; });

    for (const OptionKey* option : keys) {
        const QString text = read(*option);
        const QString holderName = QString::fromLatin1(option->holder);
        if (holderName == QLatin1String(HolderStatusPanel)) {
            const auto open = parseTruth(text);
            if (!open)
                report(message);
            else if (*open)
                m_parts.RollOut();
            else
                m_parts.Rollin();
        } else if (holderName == QLatin1String(HolderLastTab)) {
            auto tab = parseWholeNumber(text);
            if (tab && *tab == TabCount)
                tab = 0;
            if (!tab || *tab < 0 || *tab >= TabCount)
                report(message);
            else
                m_tabs.setCurrentIndex(*tab);
        } else if (holderName == QLatin1String(HolderBots)) {
            loadBots(message);
        } else if (QLatin1String(option->key) == QLatin1String("GameType")) {
            // Stored as the game's own numbering in old stores: 4 is Capture the Flag.
            const int position = m_gameType == 4 ? 3 : m_gameType;
            if (!setHolderValue(holder(*option), TextForm::Position, QString::number(position)))
                refuse(*option, message);
        } else if (!setHolderValue(holder(*option), option->form, text)) {
            refuse(*option, message);
        }
    }

    switch (step) {
    case 6: {
        // The game type is read here and applied by the next step.
        const auto gameType =
            parseWholeNumber(m_loading->read(QStringLiteral("General"), QStringLiteral("GameType"),
                                             defaultOf("General", "GameType")));
        if (gameType)
            m_gameType = *gameType;
        else
            report(message);
        break;
    }
    case 10:
        m_interlocks.UpdateRandomBotControls();
        break;
    case 11:
        m_interlocks.UpdateBotSkillControls();
        m_interlocks.UpdateBotTypeControls();
        break;
    case 24:
        m_interlocks.UpdateStartStateControls();
        break;
    case 26:
        m_interlocks.UpdateWarmUpControls();
        break;
    case 31:
        m_parts.loadParameterList(*m_loading);
        break;
    case 37:
        m_interlocks.UpdateLogFileControls();
        break;
    case 38:
        m_parts.loadCdDrive(*m_loading);
        m_interlocks.UpdatePasswordControls();
        break;
    default:
        break;
    }
}

void SettingsController::loadBots(const QString& message) {
    const SettingsStore& store = *m_loading;
    for (int n = 0; n < m_botList.count(); ++n) {
        const auto selected = parseTruth(store.read(BotsSection, selectedKey(n), truthText(false)));
        if (selected)
            m_botList.item(n)->setCheckState(*selected ? Qt::Checked : Qt::Unchecked);
        else
            report(message);

        const auto team =
            parseWholeNumber(store.read(BotsSection, teamKey(n), QStringLiteral("0")));
        if (!team || !m_bots.setTeam(n, *team))
            report(message);

        const auto skill =
            parseWholeNumber(store.read(BotsSection, strengthKey(n), QStringLiteral("1")));
        if (!skill || !m_bots.setSkill(n, *skill))
            report(message);
    }
}

bool SettingsController::SaveSettings() {
    return SaveSettings(m_app.platform.store);
}

bool SettingsController::SaveSettings(SettingsStore& store) {
    for (const OptionKey& option : optionCatalogue()) {
        const QString section = QString::fromLatin1(option.section);
        const QString holderName = QString::fromLatin1(option.holder);
        if (holderName.isEmpty()) // kept by their own owners
            continue;
        QString value;
        if (holderName == QLatin1String(HolderStatusPanel)) {
            value = truthText(m_parts.statusPanelOpen());
        } else if (holderName == QLatin1String(HolderLastTab)) {
            value = QString::number(m_tabs.currentIndex());
        } else if (holderName == QLatin1String(HolderBots)) {
            if (!saveBots(store))
                return false;
            continue;
        } else {
            value = holderValue(holder(option), option.form);
        }
        if (!store.write(section, QString::fromLatin1(option.key), value))
            return false;
    }
    return store.flush();
}

bool SettingsController::saveBots(SettingsStore& store) {
    for (int n = 0; n < m_botList.count(); ++n) {
        const bool selected = m_botList.item(n)->checkState() == Qt::Checked;
        if (!store.write(BotsSection, selectedKey(n), truthText(selected)))
            return false;
        // Positions past the tables have no team or skill to keep.
        if (!BotTables::hasSlot(n))
            continue;
        if (!store.write(BotsSection, teamKey(n), QString::number(*m_bots.team(n))) ||
            !store.write(BotsSection, strengthKey(n), QString::number(*m_bots.skill(n))))
            return false;
    }
    return true;
}

} // namespace halvane
