// SPDX-License-Identifier: MIT
#ifndef ROWMODEL_H
#define ROWMODEL_H

#include "window/records/rowview.h"

#include <QAbstractTableModel>

/** A table's rows, as a person wants to see them. Filters and sorts on another thread. */
class RowModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit RowModel(QObject* parent = nullptr);

    void setRows(const Rows& rows, const QStringList& columns);
    void setFilter(const QString& filter);
    void setPlain(const QString& column, bool plain);

    const Rows& rows() const { return m_rows; }
    const RowView& view() const { return m_view; }
    const QVector<int>& seen() const { return m_seen; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

Q_SIGNALS:
    void settled(); ///< what is seen is what was last asked for

private:
    void look();

    Rows m_rows;
    RowView m_view;
    QVector<int> m_seen;
    int m_asked = 0; ///< how often rows or view changed: an answer to an earlier question is none
};

#endif
