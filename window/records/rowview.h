// SPDX-License-Identifier: MIT
#ifndef ROWVIEW_H
#define ROWVIEW_H

#include <QSet>
#include <QStringList>
#include <QVariantList>
#include <QVector>

#include <memory>

/** The rows of a table, each a QVariant that holds a QVariantMap; shared, since they may be many. */
using Rows = std::shared_ptr<const QVariantList>;

/** How a person wants to see a table's rows. */
struct RowView {
    QStringList columns; ///< in their order
    QSet<QString> plain; ///< columns whose scrambled texts are shown as they were
    QString filter; ///< a row is seen when one of its cells contains this, in any case; empty for all
    int sortColumn = -1; ///< -1 for the order of the database
    Qt::SortOrder order = Qt::AscendingOrder;

    /** What a cell shows. Bytes show as Base64, as everywhere else. */
    QString cell(const QVariantMap& row, int column) const;

    /** The numbers of the rows that are seen, in the order in which they are. Takes a while with many. */
    QVector<int> seen(const QVariantList& rows) const;

    /** The rows that are seen, with their texts as they are shown plain. */
    QVariantList taken(const QVariantList& rows, const QVector<int>& numbers) const;

private:
    QVariant value(const QVariantMap& row, const QString& column) const;
    bool matches(const QVariantMap& row) const;
};

#endif
