#pragma once

#include "maps/Latin1Names.h"

#include <QAbstractListModel>
#include <QStringList>
#include <optional>

namespace halvane {

class GameFiles;

// The entries of one map list: map names as the list shows them, spaces
// included. A map the game does not have is greyed, with a tool tip that
// says so; whether it is missing is asked of the game's files only when a
// view asks for an entry's data, so only the entries in view are looked up.
// The operations of the Maps tab are row operations here, one model signal
// each, so a list of tens of thousands of maps moves in one step. A list
// filled from single-byte names keeps them so until an operation needs
// them all as text: start-up makes text only of the entries in view.
class MapNameList : public QAbstractListModel {
    Q_OBJECT
public:
    explicit MapNameList(const GameFiles& gameFiles, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    const QStringList& names() const;
    int count() const { return int(m_pending ? m_pending->size() : m_names.size()); }
    QString name(int row) const;

    void setNames(const QStringList& names);
    void setNames(Latin1Names names);
    void insert(int row, const QStringList& names);
    void append(const QStringList& names) { insert(count(), names); }
    void remove(int row);
    void move(int from, int to);
    void rename(int row, const QString& name);
    void clear() { setNames(QStringList()); }

    // The game's files were listed anew: the marks of every entry may change.
    void marksChanged();

private:
    bool isMissing(int row) const;
    // Makes text of names still held as single bytes.
    void decode() const;

    const GameFiles& m_gameFiles;
    mutable QStringList m_names;
    // The names as they were given, while no operation has needed them as text.
    mutable std::optional<Latin1Names> m_pending;
};

} // namespace halvane
