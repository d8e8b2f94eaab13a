#pragma once

#include "settings/OptionPage.h"

class QAction;
class QTabWidget;

namespace halvane {

class StatusPanel;

// The options the main window's frame holds rather than a page: whether the
// status panel is open, the tab shown, and the map search at start-up.
class FrameOptions : public OptionPage {
public:
    FrameOptions(StatusPanel& panel, QTabWidget& tabs, QAction& mapCheck);

    std::optional<bool> save(SettingsStore& store, const OptionKey& option) const override;

protected:
    QObject* holder(const OptionKey& option) const override;
    void loadOption(const SettingsStore& store, const OptionKey& option,
                    const Refused& refused) override;

private:
    StatusPanel& m_panel;
    QTabWidget& m_tabs;
    QAction& m_mapCheck;
};

} // namespace halvane
