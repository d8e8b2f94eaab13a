#include "settings/HolderAccess.h"

#include "settings/TextForms.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

namespace halvane {

QString holderValue(const QObject* holder, TextForm form) {
    if (const auto* edit = qobject_cast<const QLineEdit*>(holder))
        return edit->text();
    if (const auto* combo = qobject_cast<const QComboBox*>(holder))
        return form == TextForm::Position ? QString::number(combo->currentIndex())
                                          : combo->currentText();
    if (const auto* check = qobject_cast<const QCheckBox*>(holder))
        return form == TextForm::Truth ? truthText(check->isChecked())
                                       : QString::number(check->isChecked() ? 1 : 0);
    if (const auto* button = qobject_cast<const QAbstractButton*>(holder))
        return truthText(button->isChecked());
    if (const auto* action = qobject_cast<const QAction*>(holder))
        return truthText(action->isChecked());
    return QString();
}

static std::optional<bool> checkedFrom(TextForm form, const QString& text) {
    if (form == TextForm::Truth)
        return parseTruth(text);
    const auto number = parseWholeNumber(text);
    if (!number || (*number != 0 && *number != 1))
        return std::nullopt;
    return *number == 1;
}

bool setHolderValue(QObject* holder, TextForm form, const QString& text) {
    if (auto* edit = qobject_cast<QLineEdit*>(holder)) {
        edit->setText(text);
        return true;
    }
    if (auto* combo = qobject_cast<QComboBox*>(holder)) {
        if (form != TextForm::Position) {
            combo->setEditText(text);
            return true;
        }
        const auto position = parseWholeNumber(text);
        if (!position || *position < 0 || *position >= combo->count())
            return false;
        combo->setCurrentIndex(*position);
        return true;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(holder)) {
        const auto checked = checkedFrom(form, text);
        if (!checked)
            return false;
        button->setChecked(*checked);
        return true;
    }
    if (auto* action = qobject_cast<QAction*>(holder)) {
        const auto checked = checkedFrom(form, text);
        if (!checked)
            return false;
        action->setChecked(*checked);
        return true;
    }
    return false;
}

} // namespace halvane
