#pragma once

#include "settings/Positions.h"

#include <QList>
#include <QObject>
#include <array>

class QTabWidget;
class QWidget;

namespace halvane {

// Only the frames of the tab that is shown take input: a tab change enables
// the frames of the tab now shown and disables those of the tab left. This
// overrides the interlocks' state of the frames themselves while their tab is
// shown; the controls inside keep their own state.
class TabFrames : public QObject {
    Q_OBJECT
public:
    static constexpr int TabCount = positions::TabCount;

    TabFrames(QTabWidget& tabs, QWidget& window, QObject* parent = nullptr);

    // The object names of the frames of a tab (none for About).
    static QStringList frameNames(int tab);

private:
    void tabChanged(int shown);
    void setFramesEnabled(int tab, bool enabled);

    QTabWidget& m_tabs;
    std::array<QList<QWidget*>, TabCount> m_frames;
    int m_previous;
};

} // namespace halvane
