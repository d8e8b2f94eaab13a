#include "settings/OptionPage.h"

#include "app/NamedChildren.h"
#include "platform/SettingsStore.h"
#include "settings/HolderAccess.h"

#include <QSet>

#include <algorithm>
#include <vector>

namespace halvane {

void OptionPage::load(const SettingsStore& store, int step, const Refused& refused) {
    // The keys of this step, in the order the step reads them.
    std::vector<const OptionKey*> keys;
    for (const OptionKey& option : optionCatalogue()) {
        if (option.step == step && holder(option))
            keys.push_back(&option);
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const OptionKey* a, const OptionKey* b) { return a->sub < b->sub; });
    for (const OptionKey* option : keys)
        loadOption(store, *option, refused);
    loaded(store, step, refused);
}

std::optional<bool> OptionPage::save(SettingsStore& store, const OptionKey& option) const {
    const QObject* control = holder(option);
    if (!control)
        return std::nullopt;
    return store.write(QString::fromLatin1(option.section), QString::fromLatin1(option.key),
                       holderValue(control, option.form));
}

void OptionPage::loadOption(const SettingsStore& store, const OptionKey& option,
                            const Refused& refused) {
    apply(option, storedText(store, option), refused);
}

void OptionPage::loaded(const SettingsStore&, int, const Refused&) {}

QString OptionPage::storedText(const SettingsStore& store, const OptionKey& option) {
    return store.read(QString::fromLatin1(option.section), QString::fromLatin1(option.key),
                      QString::fromLatin1(option.defaultText));
}

QObject* OptionPage::childHolder(const QObject& page, const OptionKey& option) const {
    const QString name = QString::fromLatin1(option.holder);
    // Keys kept elsewhere have no holder name, and every child has a name.
    if (name.isEmpty())
        return nullptr;
    if (m_holders.isEmpty()) {
        // Only the names of the catalogue's controls are gathered.
        for (const OptionKey& key : optionCatalogue())
            m_holders.insert(QString::fromLatin1(key.holder), nullptr);
        m_holders.insert(name, nullptr);
        findNamedChildren<QObject>(page, m_holders, m_shared);
        for (const QString& sharedName : std::as_const(m_shared))
            m_holders.remove(sharedName);
    }
    if (QObject* object = m_holders.value(name))
        return object;
    return m_shared.contains(name) ? page.findChild<QObject*>(name) : nullptr;
}

void OptionPage::apply(const OptionKey& option, const QString& text, const Refused& refused,
                       const QString& detail) {
    QObject* control = holder(option);
    if (setHolderValue(control, option.form, text))
        return;
    refused(detail);
    if (option.form == TextForm::Position)
        setHolderValue(control, option.form, QString::fromLatin1(option.defaultText));
}

} // namespace halvane
