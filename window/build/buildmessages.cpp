// SPDX-License-Identifier: MIT
#include "window/build/buildmessages.h"

void BuildMessages::clear()
{
    beginResetModel();
    m_messages.clear();
    endResetModel();
}

void BuildMessages::add(const QString& folder, const QString& text)
{
    beginInsertRows({}, m_messages.size(), m_messages.size());
    m_messages.append({folder, text});
    endInsertRows();
}

int BuildMessages::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_messages.size();
}

int BuildMessages::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BuildMessages::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const Message& message = m_messages.at(index.row());
    return index.column() == FolderColumn ? message.folder : message.text;
}

QVariant BuildMessages::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return section == FolderColumn ? tr("Channel") : tr("Message");
}

void BuildMessages::setTexts()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}
