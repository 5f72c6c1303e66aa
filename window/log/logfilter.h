// SPDX-License-Identifier: MIT
#ifndef LOGFILTER_H
#define LOGFILTER_H

#include <QSortFilterProxyModel>

/** The entries of a LogModel that a person looks for. */
class LogFilter : public QSortFilterProxyModel {
    Q_OBJECT

public:
    enum Kinds { Everything, ToolLog, WarningsAndErrors };

    using QSortFilterProxyModel::QSortFilterProxyModel;

    void set(int kinds, const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    int m_kinds = Everything;
    QString m_text;
};

#endif
