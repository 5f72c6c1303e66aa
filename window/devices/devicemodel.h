// SPDX-License-Identifier: MIT
#ifndef DEVICEMODEL_H
#define DEVICEMODEL_H

#include "window/devices/devicelist.h"

#include <QAbstractTableModel>

/** The attached devices, a row each: serial, state, what makes it ready. */
class DeviceModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    const QVector<Device>& devices() const { return m_devices; }
    void setDevices(const QVector<Device>& devices);

    /** To be called when the language has changed. */
    void setTexts();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVector<Device> m_devices;
};

#endif
