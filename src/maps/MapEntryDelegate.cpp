#include "maps/MapEntryDelegate.h"

#include "maps/GameFiles.h"
#include "maps/MapRecord.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QListWidget>
#include <QToolTip>

namespace halvane {

MapEntryDelegate::MapEntryDelegate(QListWidget& list, const GameFiles& gameFiles)
    : WidestEntryDelegate(list), m_gameFiles(gameFiles) {}

bool MapEntryDelegate::isMissing(const QModelIndex& index) const {
    return m_gameFiles.isMissing(index.data(Qt::DisplayRole).toString());
}

QVariant MapEntryDelegate::entryData(const QModelIndex& index, int role) const {
    if (role == Qt::ToolTipRole && isMissing(index)) {
        return QStringLiteral("The game does not have this map: no maps/%1.bsp in its data "
                              "folders or their .pk3 archives, so the server cannot load it.")
            .arg(trimSpaces(index.data(Qt::DisplayRole).toString()));
    }
    if (role == Qt::ForegroundRole && isMissing(index)) {
        const QWidget* view = qobject_cast<const QWidget*>(parent());
        return view->palette().brush(QPalette::Disabled, QPalette::Text);
    }
    return index.data(role);
}

void MapEntryDelegate::initStyleOption(QStyleOptionViewItem* option,
                                       const QModelIndex& index) const {
    WidestEntryDelegate::initStyleOption(option, index);
    const QVariant foreground = entryData(index, Qt::ForegroundRole);
    if (foreground.canConvert<QBrush>())
        option->palette.setBrush(QPalette::Text, foreground.value<QBrush>());
}

bool MapEntryDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event && view && event->type() == QEvent::ToolTip) {
        const QString tip = entryData(index, Qt::ToolTipRole).toString();
        if (!tip.isEmpty()) {
            QToolTip::showText(event->globalPos(), tip, view);
            return true;
        }
    }
    return WidestEntryDelegate::helpEvent(event, view, option, index);
}

} // namespace halvane
