#include "maps/WidestEntryDelegate.h"

#include <QFontMetrics>
#include <QListWidget>
#include <QtMath>

namespace halvane {

WidestEntryDelegate::WidestEntryDelegate(QListWidget& list)
    : QStyledItemDelegate(&list), m_list(list), m_font(list.font()) {
    list.setItemDelegate(this);
    list.setUniformItemSizes(true);
    const QAbstractItemModel* model = list.model();
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { count(first, last, +1); });
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { count(first, last, -1); });
    // A changed text may have been the widest: count again (entries are
    // replaced, not edited, so this is rare).
    connect(model, &QAbstractItemModel::dataChanged, this, &WidestEntryDelegate::recount);
    connect(model, &QAbstractItemModel::modelReset, this, &WidestEntryDelegate::recount);
    recount();
}

// Without kerning the sum is at least the laid-out width, so the widest
// entry is never cut off.
int WidestEntryDelegate::textWidth(const QString& text) const {
    qreal width = 0;
    for (const QChar c : text) {
        width += c.unicode() < m_advances.size() ? m_advances[c.unicode()]
                                                 : QFontMetricsF(m_font).horizontalAdvance(c);
    }
    return qCeil(width);
}

void WidestEntryDelegate::count(int first, int last, int change) {
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
    m_font = m_list.font();
    const QFontMetricsF metrics(m_font);
    for (size_t c = 0; c < m_advances.size(); ++c)
        m_advances[c] = metrics.horizontalAdvance(QChar(char16_t(c)));
    m_widths.clear();
    count(0, m_list.count() - 1, +1);
}

QSize WidestEntryDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (option.font != m_font)
        const_cast<WidestEntryDelegate*>(this)->recount();
    if (!m_widths.empty()) {
        // The sample entry's size, widened by what the widest text has more.
        const int widest = m_widths.rbegin()->first;
        const int own = textWidth(index.data(Qt::DisplayRole).toString());
        if (widest > own)
            size.rwidth() += widest - own;
    }
    return size;
}

} // namespace halvane
