// SPDX-License-Identifier: MIT
#include "window/log/logmodel.h"

void LogModel::append(const QVector<LogEntry>& entries)
{
    const QVector<LogEntry> latest = entries.mid(qMax(0, entries.size() - capacity));
    const int surplus = m_entries.size() + latest.size() - capacity;
    if (surplus > 0) {
        // More than need be: what follows is moved each time.
        const int removed = qMin(m_entries.size(), surplus + capacity / 10);
        beginRemoveRows({}, 0, removed - 1);
        m_entries.remove(0, removed);
        endRemoveRows();
    }
    beginInsertRows({}, m_entries.size(), m_entries.size() + latest.size() - 1);
    m_entries += latest;
    endInsertRows();
}

void LogModel::clear()
{
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

void LogModel::retranslate()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (!m_entries.isEmpty())
        Q_EMIT dataChanged(index(0, Kind), index(m_entries.size() - 1, Kind));
}

int LogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_entries.size();
}

int LogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString LogModel::nameOf(int kind)
{
    switch (kind) {
    case LogEntry::Tool:
        return tr("Log");
    case LogEntry::Detail:
        return tr("Detail");
    case LogEntry::Information:
        return tr("Information");
    case LogEntry::Warning:
        return tr("Warning");
    default:
        return tr("Error");
    }
}

QVariant LogModel::data(const QModelIndex& index, int role) const
{
    const LogEntry& entry = m_entries.at(index.row());
    if (role == KindRole)
        return entry.kind;
    if (role == TextRole)
        return entry.text;
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Time:
        return entry.time;
    case Kind:
        return nameOf(entry.kind);
    default:
        return entry.text.section(QLatin1Char('\n'), 0, 0);
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Time:
        return tr("Time");
    case Kind:
        return tr("Kind");
    default:
        return tr("Text");
    }
}
