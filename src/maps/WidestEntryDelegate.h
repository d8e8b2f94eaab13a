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
// While the list is hidden, changes are not counted; the first layout after
// them counts the entries once.
class WidestEntryDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    // Installs itself on the list and switches it to uniform item sizes.
    explicit WidestEntryDelegate(QListWidget& list);

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    // Counts a change while the list is shown; marks the count stale otherwise.
    void count(int first, int last, int change);
    void add(int first, int last, int change);
    void recount();
    int textWidth(const QString& text);

    QListWidget& m_list;
    QFont m_font;
    bool m_stale = true;
    std::map<int, int> m_widths; // text width in pixels -> entries that wide
    // Advances of the single-byte characters, each measured when first met
    // and summed for a text's width: a table look-up per character instead
    // of laying out every text. Negative: not measured yet.
    std::array<qreal, 256> m_advances{};
};

} // namespace halvane
