// SPDX-License-Identifier: MIT
#ifndef JSONROW_H
#define JSONROW_H

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/** A row of the database as it is written in a JSON object. */
namespace JsonRow {

/**
 * Reads an object of names to texts, numbers, true, false and null. Whole numbers are integers, those with a
 * fraction or an exponent reals. What cannot be kept as it is written is an error: two values for one column,
 * as SQLite compares names; a null character in a name; an integer beyond 64 bits; half a surrogate pair.
 *
 * @param[out] error why there is no row; left empty when there is one
 */
QVariantMap parse(const QByteArray& object, QString& error);

} // namespace JsonRow

#endif
