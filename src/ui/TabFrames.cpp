#include "ui/TabFrames.h"

#include "app/NamedChildren.h"

#include <QHash>
#include <QSet>
#include <QTabWidget>

namespace halvane {

TabFrames::TabFrames(QTabWidget& tabs, QWidget& window, QObject* parent)
    : QObject(parent), m_tabs(tabs), m_previous(tabs.currentIndex()) {
    // The frames found in one pass over the window, not one search of the
    // whole window per frame; a name two widgets share is searched for as
    // before.
    QHash<QString, QWidget*> frames;
    for (int tab = 0; tab < TabCount; ++tab) {
        for (const QString& name : frameNames(tab))
            frames.insert(name, nullptr);
    }
    QSet<QString> shared;
    findNamedChildren<QWidget>(window, frames, shared);
    for (int tab = 0; tab < TabCount; ++tab) {
        for (const QString& name : frameNames(tab)) {
            QWidget* frame =
                shared.contains(name) ? window.findChild<QWidget*>(name) : frames.value(name);
            if (frame)
                m_frames[tab] << frame;
        }
    }
    connect(&m_tabs, &QTabWidget::currentChanged, this, &TabFrames::tabChanged);
}

QStringList TabFrames::frameNames(int tab) {
    switch (tab) {
    case 0:
        return {QStringLiteral("Frame4"), QStringLiteral("Frame6"), QStringLiteral("Frame3"),
                QStringLiteral("Frame2")};
    case 1:
        return {QStringLiteral("Frame16")};
    case 2:
        return {QStringLiteral("Frame14"), QStringLiteral("Frame15"), QStringLiteral("Picture3")};
    case 3:
        return {QStringLiteral("Frame7"), QStringLiteral("Frame1"), QStringLiteral("Frame8"),
                QStringLiteral("Frame9")};
    case 4:
        return {QStringLiteral("Frame12"), QStringLiteral("Frame5"), QStringLiteral("Frame10"),
                QStringLiteral("Frame11")};
    default:
        return {};
    }
}

void TabFrames::setFramesEnabled(int tab, bool enabled) {
    if (tab < 0 || tab >= TabCount)
        return;
    for (QWidget* frame : std::as_const(m_frames[tab]))
        frame->setEnabled(enabled);
}

void TabFrames::tabChanged(int shown) {
    const int left = m_previous;
    m_previous = shown;
    if (left == shown)
        return;
    setFramesEnabled(shown, true);
    setFramesEnabled(left, false);
}

} // namespace halvane
