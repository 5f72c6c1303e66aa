// SPDX-License-Identifier: MIT
#ifndef LOGMODEL_H
#define LOGMODEL_H

#include "window/log/logentry.h"

#include <QAbstractTableModel>

/** The latest entries, the oldest first. */
class LogModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Time, Kind, Text, ColumnCount };
    enum Role { KindRole = Qt::UserRole, TextRole }; ///< the kind as a number; the text with all of its lines
    static constexpr int capacity = 20000;

    using QAbstractTableModel::QAbstractTableModel;

    void append(const QVector<LogEntry>& entries);
    void clear();
    void retranslate();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static QString nameOf(int kind);

private:
    QVector<LogEntry> m_entries;
};

#endif
