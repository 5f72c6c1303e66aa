// SPDX-License-Identifier: MIT
#ifndef ROWVALUES_H
#define ROWVALUES_H

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

/** What becomes of a row's values before they are bound. */
enum class Conversion { None, Encode };

/** The values that one run of a statement binds, in order. */
struct RowValues {
    const QMap<QString, QVariant>& row;
    Conversion conversion;
    const QString* last; ///< bound behind the row's, as it is; null for none

    int count() const { return row.size() + (last != nullptr ? 1 : 0); }
};

/** A row's value as it is bound. */
QVariant converted(const QVariant& value, Conversion conversion);

/**
 * A row without its values, and where these stand in a result: of fields with the same name the last one
 * counts.
 */
struct RowPattern {
    QMap<QString, QVariant> row;
    QVector<int> indexes; ///< in the row's order

    explicit RowPattern(const QStringList& names);
};

#endif
