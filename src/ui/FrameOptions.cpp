#include "ui/FrameOptions.h"

#include "platform/SettingsStore.h"
#include "settings/Positions.h"
#include "settings/TextForms.h"
#include "ui/StatusPanel.h"

#include <QAction>
#include <QTabWidget>

namespace halvane {

namespace {
bool holds(const OptionKey& option, const char* name) {
    return QLatin1String(option.holder) == QLatin1String(name);
}
} // namespace

FrameOptions::FrameOptions(StatusPanel& panel, QTabWidget& tabs, QAction& mapCheck)
    : m_panel(panel), m_tabs(tabs), m_mapCheck(mapCheck) {}

QObject* FrameOptions::holder(const OptionKey& option) const {
    if (holds(option, HolderStatusPanel))
        return &m_panel;
    if (holds(option, HolderLastTab))
        return &m_tabs;
    if (QLatin1String(option.holder) == m_mapCheck.objectName())
        return &m_mapCheck;
    return nullptr;
}

void FrameOptions::loadOption(const SettingsStore& store, const OptionKey& option,
                              const Refused& refused) {
    const QString text = storedText(store, option);
    if (holds(option, HolderStatusPanel)) {
        const auto open = parseTruth(text);
        if (!open)
            refused(QString());
        else if (*open)
            m_panel.RollOut();
        else
            m_panel.Rollin();
    } else if (holds(option, HolderLastTab)) {
        auto tab = parseWholeNumber(text);
        // One past the last tab stands for the first.
        if (tab && *tab == positions::TabCount)
            tab = 0;
        if (!tab || *tab < 0 || *tab >= positions::TabCount)
            refused(QString());
        else
            m_tabs.setCurrentIndex(*tab);
    } else {
        OptionPage::loadOption(store, option, refused);
    }
}

std::optional<bool> FrameOptions::save(SettingsStore& store, const OptionKey& option) const {
    QString value;
    if (holds(option, HolderStatusPanel))
        value = truthText(m_panel.isOpen());
    else if (holds(option, HolderLastTab))
        value = QString::number(m_tabs.currentIndex());
    else
        return OptionPage::save(store, option);
    return store.write(QString::fromLatin1(option.section), QString::fromLatin1(option.key), value);
}

} // namespace halvane
