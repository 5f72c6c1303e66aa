// SPDX-License-Identifier: MIT
#ifndef ROWFORMAT_H
#define ROWFORMAT_H

#include <QJsonObject>
#include <QStringList>
#include <QVariantList>

/**
 * Rows of the database, each a QVariant that holds a QVariantMap of column to value, as text. Bytes show as
 * Base64.
 */
namespace RowFormat {

/** Columns side by side under their names, for a terminal: one line a row, with nothing that could steer it.
 * What is null shows as <null>. */
QStringList table(const QVariantList& rows);

/** A line of names and one a row; what is null is empty, what is an empty text is quoted. */
QStringList csv(const QVariantList& rows);

QJsonObject json(const QVariantMap& row);

} // namespace RowFormat

#endif
