#include "ui/Accessibility.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

namespace halvane {

namespace {
QString spoken(QString caption) {
    // Called for every label and control of the main window at start-up:
    // the pattern is compiled once, and captions without '&' skip it.
    if (caption.contains(QLatin1Char('&'))) {
        static const QRegularExpression accessKey(QStringLiteral("&(?!&)"));
        caption.remove(accessKey);
        caption.replace(QStringLiteral("&&"), QStringLiteral("&"));
    }
    caption = caption.simplified();
    while (caption.endsWith(QLatin1Char(':')) || caption.endsWith(QLatin1Char('-')))
        caption.chop(1);
    return caption.trimmed();
}
} // namespace

bool isInputControl(const QWidget& widget) {
    // The edit box inside a selector is spoken as the selector.
    if (qobject_cast<const QLineEdit*>(&widget))
        return !qobject_cast<const QComboBox*>(widget.parentWidget()) &&
               !qobject_cast<const QAbstractSpinBox*>(widget.parentWidget());
    return qobject_cast<const QComboBox*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QAbstractButton*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget);
}

void nameControls(QWidget& root) {
    for (QLabel* label : root.findChildren<QLabel*>()) {
        QWidget* buddy = label->buddy();
        if (buddy && buddy->accessibleName().isEmpty() && !spoken(label->text()).isEmpty())
            buddy->setAccessibleName(spoken(label->text()));
    }
    static const QRegularExpression arrayIndex(QStringLiteral("_([0-9]+)$"));
    for (QWidget* widget : root.findChildren<QWidget*>()) {
        if (!isInputControl(*widget) || !widget->accessibleName().isEmpty())
            continue;
        if (auto* button = qobject_cast<QAbstractButton*>(widget);
            button && !spoken(button->text()).isEmpty())
            continue; // its caption is spoken
        QString name;
        for (QWidget* up = widget->parentWidget(); up && up != &root; up = up->parentWidget()) {
            if (auto* frame = qobject_cast<QGroupBox*>(up);
                frame && !spoken(frame->title()).isEmpty()) {
                name = spoken(frame->title());
                break;
            }
        }
        const auto index = arrayIndex.match(widget->objectName());
        if (!name.isEmpty() && index.hasMatch())
            name += QLatin1Char(' ') + QString::number(index.captured(1).toInt() + 1);
        if (!name.isEmpty())
            widget->setAccessibleName(name);
    }
}

} // namespace halvane
