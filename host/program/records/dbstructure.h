// SPDX-License-Identifier: MIT
#ifndef DBSTRUCTURE_H
#define DBSTRUCTURE_H

#include <QStringList>

/** The tables of a database file, of which the library knows nothing. */
namespace DBStructure {

/** The names of the tables. @param[out] error why they cannot be read; left alone otherwise */
QStringList tables(const QString& file, QString& error);

/** The statements that make the tables, or one of them. */
QStringList schema(const QString& file, const QString& table, QString& error);

/**
 * Reads COLUMN:TYPE words into what stands between the brackets of a statement.
 *
 * @param[out] error which word is none; left alone otherwise
 */
QString columnsOf(const QStringList& words, QString& error);

/** Makes a table, and the file with it if there is none. Returns what kept it from that; empty when nothing
 * did. */
QString create(const QString& file, const QString& table, const QString& columns);

} // namespace DBStructure

#endif
