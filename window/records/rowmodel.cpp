// SPDX-License-Identifier: MIT
#include "window/records/rowmodel.h"

#include "window/background.h"

#include <QFont>

RowModel::RowModel(QObject* parent)
    : QAbstractTableModel(parent)
    , m_rows(std::make_shared<const QVariantList>())
{
}

void RowModel::setRows(const Rows& rows, const QStringList& columns)
{
    beginResetModel();
    const Rows former = m_rows;
    m_rows = rows;
    m_seen.clear();
    m_view.plain.intersect(QSet<QString>(columns.cbegin(), columns.cend()));
    if (m_view.columns != columns)
        m_view.sortColumn = -1;
    m_view.columns = columns;
    endResetModel();
    look();
    QThreadPool::globalInstance()->start([former] {}); // many rows take their time to go
}

void RowModel::setFilter(const QString& filter)
{
    m_view.filter = filter;
    look();
}

void RowModel::setPlain(const QString& column, bool plain)
{
    if (plain)
        m_view.plain.insert(column);
    else
        m_view.plain.remove(column);
    look();
}

void RowModel::sort(int column, Qt::SortOrder order)
{
    m_view.sortColumn = column;
    m_view.order = order;
    look();
}

void RowModel::look()
{
    const int asked = ++m_asked;
    inBackground(
        this, [rows = m_rows, view = m_view] { return view.seen(*rows); },
        [this, asked](const QVector<int>& seen) {
            if (asked != m_asked)
                return;
            beginResetModel();
            m_seen = seen;
            endResetModel();
            Q_EMIT settled();
        });
}

int RowModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_seen.size();
}

int RowModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_view.columns.size();
}

QVariant RowModel::data(const QModelIndex& index, int role) const
{
    const QVariantMap row = m_rows->at(m_seen.at(index.row())).toMap();
    const bool isNull = row.value(m_view.columns.at(index.column())).isNull();
    if (role == Qt::DisplayRole)
        return isNull ? tr("nothing") : m_view.cell(row, index.column());
    if (role == Qt::ToolTipRole)
        return isNull ? QVariant() : m_view.cell(row, index.column());
    if (role == Qt::FontRole && isNull) {
        QFont slanted;
        slanted.setItalic(true);
        return slanted;
    }
    return {};
}

QVariant RowModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    return orientation == Qt::Horizontal ? QVariant(m_view.columns.at(section)) : QVariant(section + 1);
}
