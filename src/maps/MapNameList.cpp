#include "maps/MapNameList.h"

#include "maps/GameFiles.h"
#include "maps/MapRecord.h"

#include <QBrush>
#include <QGuiApplication>
#include <QPalette>

namespace halvane {

MapNameList::MapNameList(const GameFiles& gameFiles, QObject* parent)
    : QAbstractListModel(parent), m_gameFiles(gameFiles) {}

int MapNameList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

void MapNameList::decode() const {
    if (!m_pending)
        return;
    m_names = m_pending->toList();
    m_pending.reset();
}

const QStringList& MapNameList::names() const {
    decode();
    return m_names;
}

QString MapNameList::name(int row) const {
    if (m_pending)
        return row >= 0 && row < count() ? m_pending->at(row) : QString();
    return m_names.value(row);
}

bool MapNameList::isMissing(int row) const {
    return m_gameFiles.isMissing(name(row));
}

QVariant MapNameList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return name(index.row());
    case Qt::ForegroundRole:
        if (isMissing(index.row()))
            return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        return {};
    case Qt::ToolTipRole:
        if (isMissing(index.row())) {
            return QStringLiteral("The game does not have this map: no maps/%1.bsp in its data "
                                  "folders or their .pk3 archives, so the server cannot load it.")
                .arg(trimSpaces(name(index.row())));
        }
        return {};
    default:
        return {};
    }
}

void MapNameList::setNames(const QStringList& names) {
    beginResetModel();
    m_pending.reset();
    m_names = names;
    endResetModel();
}

void MapNameList::setNames(Latin1Names names) {
    beginResetModel();
    m_names.clear();
    m_pending = std::move(names);
    endResetModel();
}

void MapNameList::insert(int row, const QStringList& names) {
    if (names.isEmpty())
        return;
    decode();
    row = qBound(0, row, count());
    beginInsertRows({}, row, row + int(names.size()) - 1);
    if (row == count())
        m_names.append(names);
    else
        m_names = m_names.mid(0, row) + names + m_names.mid(row);
    endInsertRows();
}

void MapNameList::remove(int row) {
    if (row < 0 || row >= count())
        return;
    decode();
    beginRemoveRows({}, row, row);
    m_names.removeAt(row);
    endRemoveRows();
}

void MapNameList::move(int from, int to) {
    if (from < 0 || from >= count() || to < 0 || to >= count() || from == to)
        return;
    decode();
    // The model's destination is the row before which the entry lands,
    // counted before it leaves.
    beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    m_names.move(from, to);
    endMoveRows();
}

void MapNameList::rename(int row, const QString& name) {
    if (row < 0 || row >= count())
        return;
    decode();
    m_names[row] = name;
    emit dataChanged(index(row), index(row));
}

void MapNameList::marksChanged() {
    if (count() > 0)
        emit dataChanged(index(0), index(count() - 1), {Qt::ForegroundRole, Qt::ToolTipRole});
}

} // namespace halvane
