// SPDX-License-Identifier: MIT
#ifndef SQLITEDIRECT_H
#define SQLITEDIRECT_H

#include <QString>
#include <QVariant>
#include <QVector>

QT_BEGIN_NAMESPACE
class QSqlQuery;
QT_END_NAMESPACE

/** What came of a run by SQLite itself. */
enum class SqliteRun {
    Done,
    Failed,
    NotTried ///< nothing has happened: the run is left to QSqlQuery::exec
};

/**
 * Runs a prepared statement that yields no rows once more, straight through SQLite's own interface: what Qt
 * does around it takes half as long again as the insertion of a row.
 *
 * Not tried when Qt's driver has another SQLite than this library, and for values whose stored form is the
 * driver's matter, dates for one. The connection's lock is to be held.
 *
 * @param query has been run before
 * @param values one for each placeholder, in order; they stay the caller's
 * @param error set when the run failed, to what Qt would say
 */
SqliteRun runBySqlite(const QSqlQuery& query, const QVector<QVariant>& values, QString& error);

#endif
