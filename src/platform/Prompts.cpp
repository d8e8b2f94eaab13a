#include "platform/Prompts.h"

#include <QApplication>
#include <QInputDialog>

namespace halvane {

std::optional<QString> QtPrompts::askText(const QString& title, const QString& label,
                                          const QString& initial) {
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(), title, label,
                                               QLineEdit::Normal, initial, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

std::optional<QString> QtPrompts::choose(const QString& title, const QString& label,
                                         const QStringList& entries) {
    bool ok = false;
    const QString entry =
        QInputDialog::getItem(QApplication::activeWindow(), title, label, entries, 0, false, &ok);
    if (!ok)
        return std::nullopt;
    return entry;
}

} // namespace halvane
