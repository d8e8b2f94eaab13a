#include "ui/StatusPanel.h"

#include "ui/Twips.h"

#include <QAction>
#include <QLabel>

namespace halvane {

StatusPanel::StatusPanel(QWidget& window, QLabel& tip, QAction& menuItem, QObject* parent)
    : QObject(parent), m_window(window), m_tip(tip), m_menuItem(menuItem) {}

int StatusPanel::heightTwips() const {
    return pixelsToTwips(m_window.frameGeometry().height(), m_window);
}

void StatusPanel::setHeightTwips(int twips) {
    const int frame = m_window.frameGeometry().height() - m_window.height();
    m_window.resize(m_window.width(), twipsToPixels(twips, m_window) - frame);
}

bool StatusPanel::isOpen() const {
    return heightTwips() >= OpenThresholdTwips;
}

void StatusPanel::RollOut() {
    int h = heightTwips();
    while (h < OpenLimitTwips) {
        setHeightTwips(h);
        if (h > TipVisibleTwips)
            m_tip.setVisible(true);
        h += StepTwips;
    }
    m_menuItem.setChecked(true);
}

void StatusPanel::Rollin() {
    int h = heightTwips();
    while (h >= ClosedTwips) {
        setHeightTwips(h);
        h -= StepTwips;
    }
    m_menuItem.setChecked(false);
}

void StatusPanel::toggle() {
    if (heightTwips() < OpenThresholdTwips)
        RollOut();
    else
        Rollin();
}

} // namespace halvane
