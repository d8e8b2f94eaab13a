#pragma once

#include <QFont>
#include <QStyledItemDelegate>
#include <array>
#include <map>

class QListWidget;

namespace halvane {

// Lets a list of tens of thousands of entries lay itself out without
// measuring each one: the list takes every entry to be as large as the
// widest (uniform item sizes), and this delegate keeps that width up to date
// as entries come and go, so a long name still widens the scrolled area.
class WidestEntryDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    // Installs itself on the list and switches it to uniform item sizes.
    explicit WidestEntryDelegate(QListWidget& list);

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void count(int first, int last, int change);
    void recount();
    int textWidth(const QString& text) const;

    QListWidget& m_list;
    QFont m_font;
    // Advances of the single-byte characters, summed for a text's width: a
    // table look-up per character instead of laying out every text.
    std::array<qreal, 256> m_advances{};
    std::map<int, int> m_widths; // text width in pixels -> entries that wide
};

} // namespace halvane
