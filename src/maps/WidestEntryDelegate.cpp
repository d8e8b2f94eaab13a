#include "maps/WidestEntryDelegate.h"

#include <QFontMetricsF>
#include <QListWidget>
#include <QtMath>

namespace halvane {

WidestEntryDelegate::WidestEntryDelegate(QListWidget& list)
    : QStyledItemDelegate(&list), m_list(list), m_font(list.font()) {
    m_advances.fill(-1);
    list.setItemDelegate(this);
    list.setUniformItemSizes(true);
    const QAbstractItemModel* model = list.model();
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { count(first, last, +1); });
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { count(first, last, -1); });
    // A changed text may have been the widest: count again at the next
    // layout (entries are replaced, not edited, so this is rare).
    const auto stale = [this] { m_stale = true; };
    connect(model, &QAbstractItemModel::dataChanged, this, stale);
    connect(model, &QAbstractItemModel::modelReset, this, stale);
}

// Without kerning the sum is at least the laid-out width, so the widest
// entry is never cut off.
int WidestEntryDelegate::textWidth(const QString& text) {
    qreal width = 0;
    for (const QChar c : text) {
        if (c.unicode() >= m_advances.size()) {
            width += QFontMetricsF(m_font).horizontalAdvance(c);
            continue;
        }
        qreal& advance = m_advances[c.unicode()];
        if (advance < 0)
            advance = QFontMetricsF(m_font).horizontalAdvance(c);
        width += advance;
    }
    return qCeil(width);
}

void WidestEntryDelegate::count(int first, int last, int change) {
    if (m_stale)
        return;
    if (!m_list.isVisible()) {
        m_stale = true;
        return;
    }
    add(first, last, change);
}

void WidestEntryDelegate::add(int first, int last, int change) {
    for (int row = first; row <= last; ++row) {
        const QListWidgetItem* item = m_list.item(row);
        if (!item)
            continue;
        const int width = textWidth(item->text());
        int& entries = m_widths[width];
        entries += change;
        if (entries <= 0)
            m_widths.erase(width);
    }
}

void WidestEntryDelegate::recount() {
    if (m_font != m_list.font()) {
        m_font = m_list.font();
        m_advances.fill(-1);
    }
    m_stale = false;
    m_widths.clear();
    add(0, m_list.count() - 1, +1);
}

QSize WidestEntryDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    auto* self = const_cast<WidestEntryDelegate*>(this);
    if (m_stale || m_font != m_list.font())
        self->recount();
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (!m_widths.empty()) {
        // The sample entry's size, widened by what the widest text has more.
        const int widest = m_widths.rbegin()->first;
        const int own = self->textWidth(index.data(Qt::DisplayRole).toString());
        if (widest > own)
            size.rwidth() += widest - own;
    }
    return size;
}

} // namespace halvane
