// SPDX-License-Identifier: MIT
#ifndef SQLITEDIRECT_H
#define SQLITEDIRECT_H

#include "records/rowvalues.h"

#include <QList>
#include <QSqlError>
#include <QString>
#include <QVariant>

#include <optional>
#include <string>
#include <vector>

QT_BEGIN_NAMESPACE
class QSqlDriver;
class QSqlQuery;
QT_END_NAMESPACE
struct sqlite3_stmt;

/**
 * The way straight to SQLite, past the bookkeeping of Qt's driver, which takes longer than SQLite's own work.
 * What is stored and read, and what a failure says, is what the driver would make of it.
 *
 * Each function says so when it cannot serve: the caller then goes through QSqlQuery, as builds without
 * SQLite's interface always do. The connection's lock is to be held.
 */
namespace SqliteDirect {

/**
 * Whether the driver calls the very copy of SQLite that this library calls. A copy of its own, even of the
 * same version, has its own state and may be built otherwise: its statements must never meet the code of
 * another one.
 */
bool isSharedWith(const QSqlDriver& driver);

enum class Outcome {
    Done,
    Failed,
    NotTried ///< nothing has happened: the run is left to QSqlQuery::exec
};

/** Texts on their way into the database, in the memory of the texts before. */
using TextBuffers = std::vector<std::string>;

/** The statement of a query of a shared driver, until the connection is closed; null for none. */
sqlite3_stmt* statementOf(const QSqlQuery& query);

/**
 * Runs a prepared statement that yields no rows once more. Not tried for values whose stored form is the
 * driver's matter, dates for one.
 *
 * @param buffers as long as the statement refers to the values, up to forgetValues()
 * @param error set when the run failed, to what Qt would say
 */
Outcome run(sqlite3_stmt* statement, const RowValues& values, TextBuffers& buffers,
            std::optional<QSqlError>& error);

/**
 * The same for a select, up to its first row, from where read() goes on. One that has failed is at rest
 * again.
 */
Outcome start(sqlite3_stmt* statement, const RowValues& values, TextBuffers& buffers,
              std::optional<QSqlError>& error);

/** Takes the values off a statement that has run, and gives back what long texts have needed. */
void forgetValues(sqlite3_stmt* statement, TextBuffers& buffers);

/**
 * Whether a statement on this table means the same whenever it is run again: whatever changes its meaning
 * makes SQLite compile it anew, as long as the table is the main database's own.
 */
bool isLasting(const QSqlQuery& query, const QString& table);

/** Whether a change of the schema had the statement compiled anew since its preparation. */
bool wasCompiledAnew(sqlite3_stmt* statement);

/** Whether read() gives the values that the driver would: a host may have asked it for reals in another form.
 */
bool readsAs(const QSqlDriver& driver);

/**
 * Appends the rows of a select that has just been run, and ends it. Of fields with the same name the last one
 * counts.
 *
 * @param error set when the reading failed on the way; the rows before are appended
 */
void read(sqlite3_stmt* statement, QList<QVariant>& rows, std::optional<QSqlError>& error);

/** Whether the connection is in a transaction; nothing when that cannot be told. */
std::optional<bool> isInTransaction(const QSqlDriver& driver);

} // namespace SqliteDirect

#endif
