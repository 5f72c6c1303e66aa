// SPDX-License-Identifier: MIT
#include "window/trees/treelookmodel.h"

void TreeLookModel::show(const QVector<TreeLook::Entry>& entries)
{
    beginResetModel();
    m_entries = entries;
    endResetModel();
}

int TreeLookModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_entries.size();
}

int TreeLookModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant TreeLookModel::data(const QModelIndex& index, int role) const
{
    const TreeLook::Entry& entry = m_entries.at(index.row());
    if (role != Qt::DisplayRole)
        return {};
    if (index.column() == 1)
        return entry.path;
    switch (entry.fate) {
    case TreeLook::Goes:
        return tr("goes");
    case TreeLook::Replaces:
        return tr("replaces a file");
    case TreeLook::Stays:
        return tr("stays");
    }
    return {};
}

QVariant TreeLookModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return section == 0 ? tr("What happens") : tr("File");
}
