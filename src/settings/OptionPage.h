#pragma once

#include "settings/OptionCatalogue.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <functional>
#include <optional>

namespace halvane {

class SettingsStore;

// The options one part of the main window (a tab's page, or the frame) holds
// in its controls, moved between the settings store and those controls. The
// load goes one step at a time, so that the steps keep their order across
// the pages; the save one option at a time, in the catalogue's order.
class OptionPage {
public:
    // Told once for each stored value that a step could not apply; the text
    // is added to the step's message (empty for most steps).
    using Refused = std::function<void(const QString& detail)>;

    virtual ~OptionPage() = default;

    // Puts the stored options of load step `step` that this page holds into
    // their controls, in the step's order, then runs the page's own rules
    // that close the step.
    void load(const SettingsStore& store, int step, const Refused& refused);
    // Writes an option from its control when this page holds it: nullopt
    // when another part holds it, false when the store refused the write.
    virtual std::optional<bool> save(SettingsStore& store, const OptionKey& option) const;

protected:
    // The control holding an option's live value, or nullptr when it is not
    // one of this page's.
    virtual QObject* holder(const OptionKey& option) const = 0;
    // Puts one option's stored value into its control. A selector whose
    // stored entry is refused takes the entry of its key's default instead,
    // so the value is reported once and the next save heals the store; other
    // controls keep their previous value, always one the store accepts.
    virtual void loadOption(const SettingsStore& store, const OptionKey& option,
                            const Refused& refused);
    // The page's own rules once a step has put its values in.
    virtual void loaded(const SettingsStore& store, int step, const Refused& refused);

    static QString storedText(const SettingsStore& store, const OptionKey& option);
    // The option's control among the children of page, found by its object
    // name. The page's objects are gathered by name in one pass at the first
    // look-up, instead of one search per option; a name two objects share is
    // searched for each time.
    QObject* childHolder(const QObject& page, const OptionKey& option) const;
    // Puts a text into the option's control with the fallback above.
    void apply(const OptionKey& option, const QString& text, const Refused& refused,
               const QString& detail = QString());

private:
    mutable QHash<QString, QPointer<QObject>> m_holders;
    mutable QSet<QString> m_shared;
};

} // namespace halvane
