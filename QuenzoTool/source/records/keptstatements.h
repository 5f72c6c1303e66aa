// SPDX-License-Identifier: MIT
#ifndef KEPTSTATEMENTS_H
#define KEPTSTATEMENTS_H

#include "records/rowstatement.h"

#include <QPointer>
#include <QSqlDriver>

#include <list>

/**
 * The statements that a connection has run lately, so that single rows need not be prepared one by one.
 *
 * Nobody can tell: they rest between their runs, without a lock and without a value, SQLite compiles them
 * anew when the schema changes, and Qt's driver ends them when the connection is closed by whomever. The
 * connection's lock is to be held.
 */
class KeptStatements {
public:
    /**
     * Null when none serves; latest first, so that the next row finds it at once. Never one that is awake: a
     * host's SQL function may write a row while a row is being written.
     */
    RowStatement* find(const StatementText::Shape& shape, const QMap<QString, QVariant>& row);

    RowStatement* add(RowStatement&& statement);

    void drop(const RowStatement* statement);

    void clear();

    /** Whether the driver shares SQLite with this library. */
    bool sharesSqlite(const QSqlDriver& driver);

private:
    void dropOldest();

    std::list<RowStatement> m_statements;
    QPointer<const QSqlDriver> m_driver;
    bool m_sharesSqlite = false;
};

#endif
