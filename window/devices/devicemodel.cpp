// SPDX-License-Identifier: MIT
#include "window/devices/devicemodel.h"

namespace {

enum Column : int { SerialColumn, StateColumn, AdviceColumn, ColumnCount };

} // namespace

void DeviceModel::setDevices(const QVector<Device>& devices)
{
    if (devices == m_devices)
        return;
    beginResetModel();
    m_devices = devices;
    endResetModel();
}

void DeviceModel::setTexts()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (!m_devices.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(m_devices.size() - 1, ColumnCount - 1));
}

int DeviceModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_devices.size();
}

int DeviceModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DeviceModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const Device& device = m_devices.at(index.row());
    switch (index.column()) {
    case SerialColumn:
        return device.serial;
    case StateColumn:
        return role == Qt::ToolTipRole ? device.state : DeviceList::stateText(device);
    default:
        return DeviceList::advice(device);
    }
}

QVariant DeviceModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case SerialColumn:
        return tr("Device");
    case StateColumn:
        return tr("State");
    default:
        return tr("What to do");
    }
}
