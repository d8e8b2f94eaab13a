#include "ui/StatusPanel.h"

#include "ui/Twips.h"

#include <QAction>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPointer>
#include <QThread>

namespace halvane {

namespace {
// The pause between two steps of the animation; events run between steps.
constexpr int PauseMilliseconds = 1;
} // namespace

StatusPanel::StatusPanel(QWidget& window, QWidget& area, QWidget& tipArea, QLabel& tip,
                         QWidget& bar, QWidget& widthGuide, QAction& menuItem, QObject* parent)
    : QObject(parent), m_window(window), m_area(area), m_tipArea(tipArea), m_tip(tip), m_bar(bar),
      m_widthGuide(widthGuide), m_menuItem(menuItem) {
    // The tip line and the bar are placed from the window's height (place()),
    // not by the layout: the layout keeps the tabs and the buttons at the
    // top, at their own height, and a stretch takes whatever the window has
    // below them, so nothing but the status panel moves when it rolls.
    if (auto* layout = qobject_cast<QBoxLayout*>(m_area.layout())) {
        layout->removeWidget(&m_tipArea);
        layout->removeWidget(&m_bar);
        for (int n = 0; n < layout->count(); ++n)
            layout->setStretch(n, 0);
        layout->addStretch(1);
    }
    m_bar.raise();
    m_window.installEventFilter(this);
    m_area.installEventFilter(this);
}

int StatusPanel::heightTwips() const {
    const int pixels = m_window.height();
    if (m_setTwips >= 0 && twipsToPixels(m_setTwips, m_window) == pixels)
        return m_setTwips;
    return pixelsToTwips(pixels, m_window);
}

void StatusPanel::setHeightTwips(int twips) {
    m_setTwips = twips;
    m_window.resize(m_window.width(), twipsToPixels(twips, m_window));
    place();
}

bool StatusPanel::isOpen() const {
    if (m_rolling)
        return m_rollingOpen;
    return heightTwips() >= OpenThresholdTwips;
}

// One step of the animation: lets pending events run, pauses, sets the
// height. False when the window went away or was closed meanwhile.
bool StatusPanel::step(int twips) {
    if (m_window.isVisible()) {
        QPointer<StatusPanel> self(this);
        QCoreApplication::processEvents();
        if (!self || !m_window.isVisible())
            return false;
        QThread::msleep(PauseMilliseconds);
    }
    setHeightTwips(twips);
    return true;
}

void StatusPanel::RollOut() {
    if (m_rolling)
        return;
    m_rolling = true;
    m_rollingOpen = true;
    QPointer<StatusPanel> self(this);
    for (int h = heightTwips(); h < OpenLimitTwips; h += StepTwips) {
        if (!step(h))
            break;
        if (h > TipVisibleTwips && !m_tipArea.isVisible()) {
            m_tipArea.setVisible(true);
            m_tip.setVisible(true);
            place();
        }
    }
    if (!self)
        return;
    m_rolling = false;
    m_menuItem.setChecked(true);
}

void StatusPanel::Rollin() {
    if (m_rolling)
        return;
    m_rolling = true;
    m_rollingOpen = false;
    QPointer<StatusPanel> self(this);
    for (int h = heightTwips(); h >= ClosedTwips; h -= StepTwips) {
        if (!step(h))
            break;
    }
    if (!self)
        return;
    m_rolling = false;
    m_menuItem.setChecked(false);
}

void StatusPanel::toggle() {
    if (m_rolling)
        return;
    if (heightTwips() < OpenThresholdTwips)
        RollOut();
    else
        Rollin();
}

int StatusPanel::barTopFor(int twips) const {
    return twipsToPixels(twips - BarAboveBottomTwips + CaptionTwips, m_window);
}

int StatusPanel::tipHeightFor(int twips) const {
    return qMax(0, twipsToPixels(twips - TipShorterTwips, m_window));
}

void StatusPanel::place() {
    if (m_window.isMinimized())
        return;
    const int h = heightTwips();
    // As wide as the tab control; the layout's margins say where that is even
    // before the layout has caught up with a resize.
    int left = m_widthGuide.x();
    int width = m_widthGuide.width();
    if (const QLayout* layout = m_area.layout()) {
        const QMargins margins = layout->contentsMargins();
        left = margins.left();
        width = m_area.width() - margins.left() - margins.right();
    }
    const int barTop = barTopFor(h);
    const int barHeight = qMin(m_bar.maximumHeight(), m_bar.sizeHint().height());
    m_bar.setGeometry(left, barTop, width, barHeight);
    if (m_tipArea.isVisible()) {
        const int tipHeight = tipHeightFor(h);
        m_tipArea.setGeometry(left, barTop - tipHeight, width, tipHeight);
    }
}

bool StatusPanel::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Resize || (watched == &m_area && type == QEvent::LayoutRequest) ||
        type == QEvent::Show)
        place();
    return QObject::eventFilter(watched, event);
}

} // namespace halvane
