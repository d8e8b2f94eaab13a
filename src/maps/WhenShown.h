#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace halvane {

// Work that only shows in a widget: done at once while the widget can be
// seen, otherwise as it is next shown, before it is painted. Only the latest
// work waits: each one replaces what the one before it would have shown.
class WhenShown : public QObject {
public:
    explicit WhenShown(QWidget& widget);

    void run(std::function<void()> work);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& m_widget;
    std::function<void()> m_pending;
};

} // namespace halvane
