// SPDX-License-Identifier: MIT
#ifndef JSONPLACE_H
#define JSONPLACE_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Where something stands in a JSON text. */
namespace JsonPlace {

/** Where a byte of a text is, as people count: "line 3, column 7". */
QString lineAndColumn(const QByteArray& text, int offset);

/** The JSON pointer of a value inside the one that another pointer leads to. */
QString below(const QString& pointer, const QString& key);
QString below(const QString& pointer, int index);

/**
 * The pointers of keys that their object has already had: a parser keeps one of the values in silence.
 *
 * @param text JSON that a parser has found sound
 */
QStringList repeatedKeys(const QByteArray& text);

} // namespace JsonPlace

#endif
