#include "ui/TipLine.h"

#include "ui/Tips.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QTabBar>
#include <functional>

namespace halvane {

namespace {
// Children a control is made of (a list's viewport, a selector's edit box,
// scroll bars) carry no name of their own or one of Qt's.
bool isPartOfControl(const QObject& child) {
    const QString name = child.objectName();
    return name.isEmpty() || name.startsWith(QLatin1String("qt_"));
}
} // namespace

TipLine::TipLine(QWidget& window, QLabel& tipLine, QObject* parent)
    : QObject(parent), m_window(window), m_tipLine(tipLine) {
    const auto& tips = Tips::table();
    const auto& built = Tips::builtNames();
    QList<QWidget*> widgets = m_window.findChildren<QWidget*>();
    widgets.prepend(&m_window);
    for (QWidget* widget : widgets) {
        const QString key = Tips::keyOf(widget->objectName());
        if (widget->objectName().isEmpty() || (!tips.contains(key) && !built.contains(key)))
            continue;
        watch(*widget);
        // A screen reader speaks the tip as the control's description; the
        // window's empty areas, whose tip is the web site line, get none.
        const QString tip = tipForKey(key);
        if (!tip.isEmpty())
            widget->setAccessibleDescription(Tips::tipLineText(tip));
    }
    for (QWidget* widget : widgets) {
        const QString key = Tips::keyOf(widget->objectName());
        auto* box = qobject_cast<QLineEdit*>(widget);
        if (box && Tips::selectOnFocusNames().contains(key))
            m_selectAll.insert(box);
        if (Tips::selectNothingNames().contains(key)) {
            // A selector hands its focus to its edit box directly, past
            // any filter on that box: watch the selector itself.
            m_selectNothing.insert(widget);
            widget->installEventFilter(this);
        }
    }
    for (QObject* box : std::as_const(m_selectAll))
        box->installEventFilter(this);
}

void TipLine::watch(QWidget& control) {
    QList<QWidget*> parts{&control};
    // Only the pieces the control is made of, in the order of a search of
    // its children; named children are controls with tips (or none) of
    // their own, and so is everything inside them, which is not visited.
    const std::function<void(const QWidget&)> collect = [&](const QWidget& widget) {
        for (QObject* child : widget.children()) {
            auto* part = qobject_cast<QWidget*>(child);
            if (!part || !isPartOfControl(*part))
                continue;
            parts << part;
            collect(*part);
        }
    };
    collect(control);
    for (QWidget* part : parts) {
        if (m_owner.contains(part))
            continue;
        m_owner.insert(part, &control);
        // Every move repeats the tip, not only the first one.
        part->setMouseTracking(true);
        part->installEventFilter(this);
    }
}

QString TipLine::tipForKey(const QString& key) const {
    if (key == QLatin1String("chkDateLog"))
        return Tips::dateLogTip(QDateTime::currentDateTime());
    if (key == QLatin1String("Frame1") || key == QLatin1String("txtMaster"))
        return Tips::masterServersTip();
    if (key == QLatin1String("lblVersion")) {
        const auto* version = m_window.findChild<const QLabel*>(QStringLiteral("lblVersion"));
        return Tips::versionTip(version ? version->text() : QString());
    }
    if (key == QLatin1String("lblBotCount")) {
        int selected = 0;
        if (const auto* bots = m_window.findChild<const QListWidget*>(QStringLiteral("BotList"))) {
            for (int n = 0; n < bots->count(); ++n)
                selected += bots->item(n)->checkState() == Qt::Checked ? 1 : 0;
        }
        return Tips::botCountTip(selected);
    }
    return Tips::table().value(key);
}

QString TipLine::tipOf(const QWidget& control) const {
    const QString key = Tips::keyOf(control.objectName());
    if (!Tips::table().contains(key) && !Tips::builtNames().contains(key))
        return QString();
    return Tips::tipLineText(tipForKey(key));
}

void TipLine::ShowTip(const QString& t) {
    m_tipLine.setText(Tips::tipLineText(t));
}

void TipLine::SelectText(QLineEdit& box) {
    box.setSelection(0, box.text().length());
}

bool TipLine::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseMove: {
        QWidget* control = m_owner.value(watched);
        if (!control)
            break;
        // A move a control inside did not take travels on to its container;
        // the tip is the inner control's (or none), not the container's.
        auto* widget = static_cast<QWidget*>(watched);
        QWidget* under = widget->childAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        if (under && m_owner.value(under) != control)
            break;
        ShowTip(tipForKey(Tips::keyOf(control->objectName())));
        break;
    }
    case QEvent::Enter:
        if (QWidget* control = m_owner.value(watched))
            ShowTip(tipForKey(Tips::keyOf(control->objectName())));
        break;
    case QEvent::FocusIn:
        if (m_selectAll.contains(watched)) {
            SelectText(*static_cast<QLineEdit*>(watched));
        } else if (m_selectNothing.contains(watched)) {
            // The edit box would select its text itself when tabbed into;
            // undo that once its own handling has run.
            auto* combo = qobject_cast<QComboBox*>(watched);
            QLineEdit* edit = combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(watched);
            if (edit)
                QMetaObject::invokeMethod(
                    edit, [edit] { edit->deselect(); }, Qt::QueuedConnection);
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace halvane
