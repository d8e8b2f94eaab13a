#pragma once

#include "maps/WidestEntryDelegate.h"

namespace halvane {

class GameFiles;

// Paints the entries of a map list: the widest entry sets the list's width
// (see WidestEntryDelegate), and a map the game does not have is greyed,
// with a tool tip that says so. Whether a map is missing is asked while its
// entry is painted, so only the entries in view are ever looked up.
class MapEntryDelegate : public WidestEntryDelegate {
    Q_OBJECT
public:
    MapEntryDelegate(QListWidget& list, const GameFiles& gameFiles);

    // The entry's data as painted: for a missing map the foreground and the
    // tool tip that mark it, otherwise the item's own.
    QVariant entryData(const QModelIndex& index, int role) const;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    bool isMissing(const QModelIndex& index) const;

    const GameFiles& m_gameFiles;
};

} // namespace halvane
