#include "maps/WhenShown.h"

#include <QEvent>
#include <QWidget>

namespace halvane {

WhenShown::WhenShown(QWidget& widget) : m_widget(widget) {
    m_widget.installEventFilter(this);
}

void WhenShown::run(std::function<void()> work) {
    if (m_widget.isVisible()) {
        m_pending = nullptr;
        work();
    } else {
        m_pending = std::move(work);
    }
}

bool WhenShown::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_widget && event->type() == QEvent::Show && m_pending) {
        const std::function<void()> work = std::exchange(m_pending, nullptr);
        work();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace halvane
