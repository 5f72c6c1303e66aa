// SPDX-License-Identifier: MIT
#ifndef DRIVERPEER_H
#define DRIVERPEER_H

#include <QMap>
#include <QSqlDatabase>
#include <QStringList>
#include <QVariant>

/** What the library does with a database, done once more by Qt's driver alone, to compare with. */
namespace DriverPeer {

using Row = QMap<QString, QVariant>;

/** What a call reports: its result, its rows, and the cause of its failure. */
struct Report {
    bool done = false;
    QVariantList rows;
    QString error;
};

/**
 * Runs one statement, prepared anew, bound by name and read field by field.
 *
 * @param key a further name to bind, to the text of @p keyValue
 */
Report run(const QSqlDatabase& database, const QString& text, const Row& values = {}, const QString& key = {},
           const QVariant& keyValue = {});

/** The texts of the statements. */
QString selection(const QString& table, const Row& conditions);
QString insertion(const QString& table, const Row& row);
QString change(const QString& table, const Row& row, const QString& key);
QString deletion(const QString& table, const Row& conditions);

/** The row as it is stored, scrambled if asked for. */
Row encoded(Row row, bool encode);

/** Rows with what their values are: == would take 5 for '5', and NULL for an empty text. */
QStringList described(const QVariantList& rows);

/** A table's rows as the literals that SQLite would write for them, which tell their types; or why there are
 * none. */
QStringList dump(const QSqlDatabase& database, const QString& table);

} // namespace DriverPeer

#endif
