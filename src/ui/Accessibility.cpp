#include "ui/Accessibility.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

namespace halvane {

namespace {
QString spoken(QString caption) {
    // Called for every label and control of the main window at start-up,
    // so by hand rather than by a pattern that would be compiled first:
    // an '&' not followed by another marks the access key and goes.
    if (caption.contains(QLatin1Char('&'))) {
        QString kept;
        kept.reserve(caption.size());
        for (qsizetype i = 0; i < caption.size(); ++i) {
            const bool accessKey = caption[i] == QLatin1Char('&') &&
                                   (i + 1 == caption.size() || caption[i + 1] != QLatin1Char('&'));
            if (!accessKey)
                kept.append(caption[i]);
        }
        caption = kept.replace(QStringLiteral("&&"), QStringLiteral("&"));
    }
    caption = caption.simplified();
    while (caption.endsWith(QLatin1Char(':')) || caption.endsWith(QLatin1Char('-')))
        caption.chop(1);
    return caption.trimmed();
}

// The index of a control array's member, named "name_index"; -1 for a
// name without one.
int arrayIndexOf(const QString& objectName) {
    qsizetype digits = objectName.size();
    while (digits > 0 && objectName[digits - 1] >= QLatin1Char('0') &&
           objectName[digits - 1] <= QLatin1Char('9'))
        --digits;
    if (digits == objectName.size() || digits == 0 || objectName[digits - 1] != QLatin1Char('_'))
        return -1;
    return objectName.mid(digits).toInt();
}

// The drop-down list and the edit box of a selector are met by themselves
// (the edit box has the focus, the list when it is open): each is spoken
// with the selector's name, which Qt would leave empty ("text").
// The list is made by the selector when it is first needed: naming it
// early would build sixteen drop-down lists at start-up; without
// makeList, a list not yet made is left to SelectorListNamer.
void nameSelectorParts(QComboBox* combo, bool makeList = true) {
    const QString name = combo->accessibleName();
    if (name.isEmpty())
        return;
    QAbstractItemView* list = makeList ? combo->view() : combo->findChild<QAbstractItemView*>();
    if (list && list->accessibleName().isEmpty())
        list->setAccessibleName(name);
    if (combo->lineEdit() && combo->lineEdit()->accessibleName().isEmpty())
        combo->lineEdit()->setAccessibleName(name);
}

// Names a selector's list once the selector has made it: the list's frame,
// a child of the selector, is polished before it first shows.
class SelectorListNamer : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ChildPolished)
            nameSelectorParts(static_cast<QComboBox*>(watched), false);
        return QObject::eventFilter(watched, event);
    }
};

// Qt names a selector by its current entry on Linux and macOS and leaves its
// label to a relation, so a screen reader's list of controls shows "Hard
// core" twice where the operator needs to know which skill it is. This one
// is named as every other control is (its accessible name, else its label)
// on every platform; the entry is its value.
class NamedSelector : public QAccessibleWidget {
public:
    explicit NamedSelector(QComboBox* combo) : QAccessibleWidget(combo, QAccessible::ComboBox) {}

    QString text(QAccessible::Text t) const override {
        return t == QAccessible::Value ? combo()->currentText() : QAccessibleWidget::text(t);
    }
    // The drop-down list, and the edit box of an editable selector.
    int childCount() const override { return combo()->isEditable() ? 2 : 1; }
    QAccessibleInterface* child(int index) const override {
        nameSelectorParts(combo()); // also the edit box of one made editable later
        if (index == 0)
            return QAccessible::queryAccessibleInterface(combo()->view());
        if (index == 1 && combo()->isEditable())
            return QAccessible::queryAccessibleInterface(combo()->lineEdit());
        return nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (child->object() == combo()->view())
            return 0;
        return combo()->isEditable() && child->object() == combo()->lineEdit() ? 1 : -1;
    }
    QAccessibleInterface* focusChild() const override {
        return combo()->isEditable() ? child(1) : nullptr;
    }
    QAccessible::State state() const override {
        QAccessible::State s = QAccessibleWidget::state();
        s.expandable = true;
        s.expanded = combo()->view()->isVisible();
        s.editable = combo()->isEditable();
        return s;
    }
    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString& action) override {
        if (action != showMenuAction() && action != pressAction())
            return QAccessibleWidget::doAction(action);
        if (combo()->view()->isVisible())
            combo()->hidePopup();
        else
            combo()->showPopup();
    }

private:
    QComboBox* combo() const { return static_cast<QComboBox*>(widget()); }
};

QAccessibleInterface* namedSelectors(const QString& className, QObject* object) {
    auto* combo = qobject_cast<QComboBox*>(object);
    return combo && className == QLatin1String("QComboBox") ? new NamedSelector(combo) : nullptr;
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

void speakSelectorsByName() {
    static const bool installed = (QAccessible::installFactory(namedSelectors), true);
    Q_UNUSED(installed);
}

void nameControls(QWidget& root) {
    for (QLabel* label : root.findChildren<QLabel*>()) {
        QWidget* buddy = label->buddy();
        if (buddy && buddy->accessibleName().isEmpty() && !spoken(label->text()).isEmpty())
            buddy->setAccessibleName(spoken(label->text()));
    }
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
        const int index = arrayIndexOf(widget->objectName());
        if (!name.isEmpty() && index >= 0)
            name += QLatin1Char(' ') + QString::number(index + 1);
        if (!name.isEmpty())
            widget->setAccessibleName(name);
    }
    auto* listNamer = new SelectorListNamer(&root);
    for (QComboBox* combo : root.findChildren<QComboBox*>()) {
        nameSelectorParts(combo, false);
        combo->installEventFilter(listNamer);
    }
    // A tab control takes the focus itself; its pages are its tabs' captions.
    for (QTabWidget* tabs : root.findChildren<QTabWidget*>()) {
        if (tabs->accessibleName().isEmpty())
            tabs->setAccessibleName(QStringLiteral("Tabs"));
    }
}

} // namespace halvane
