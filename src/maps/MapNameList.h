#pragma once

#include <QAbstractListModel>
#include <QStringList>

namespace halvane {

class GameFiles;

// The entries of one map list: map names as the list shows them, spaces
// included. A map the game does not have is greyed, with a tool tip that
// says so; whether it is missing is asked of the game's files only when a
// view asks for an entry's data, so only the entries in view are looked up.
// The operations of the Maps tab are row operations here, one model signal
// each, so a list of tens of thousands of maps moves in one step.
class MapNameList : public QAbstractListModel {
    Q_OBJECT
public:
    explicit MapNameList(const GameFiles& gameFiles, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    const QStringList& names() const { return m_names; }
    int count() const { return int(m_names.size()); }
    QString name(int row) const { return m_names.value(row); }

    void setNames(const QStringList& names);
    void insert(int row, const QStringList& names);
    void append(const QStringList& names) { insert(count(), names); }
    void remove(int row);
    void move(int from, int to);
    void rename(int row, const QString& name);
    void clear() { setNames({}); }

    // The game's files were listed anew: the marks of every entry may change.
    void marksChanged();

private:
    bool isMissing(int row) const;

    const GameFiles& m_gameFiles;
    QStringList m_names;
};

} // namespace halvane
