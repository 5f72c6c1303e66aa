// SPDX-License-Identifier: MIT
#ifndef TREELOOKMODEL_H
#define TREELOOKMODEL_H

#include "window/trees/treelook.h"

#include <QAbstractTableModel>

/** The files of a dry look, and what would become of each. */
class TreeLookModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void show(const QVector<TreeLook::Entry>& entries);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVector<TreeLook::Entry> m_entries;
};

#endif
