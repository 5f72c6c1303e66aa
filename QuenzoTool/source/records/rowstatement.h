// SPDX-License-Identifier: MIT
#ifndef ROWSTATEMENT_H
#define ROWSTATEMENT_H

#include "records/rowvalues.h"
#include "records/sqlitedirect.h"
#include "records/statementtext.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include <memory>
#include <optional>

/**
 * A statement that Qt has prepared and run once, and that takes further rows of the same columns. The
 * connection's lock is to be held.
 */
class RowStatement {
public:
    /** @param sharesSqlite whether the query's driver shares SQLite with this library */
    RowStatement(StatementText::Shape shape, QStringList columns, std::unique_ptr<QSqlQuery> query,
                 bool sharesSqlite);

    /** Whether Qt has numbered the placeholders of a query as the values come: some names it cuts short. */
    static bool bindsInOrder(const QSqlQuery& query, const StatementText::Shape& shape,
                             const QStringList& columns);

    bool serves(const StatementText::Shape& shape, const QMap<QString, QVariant>& row) const;

    /** Whether it has the columns of a row. */
    bool fits(const QMap<QString, QVariant>& row) const;

    /**
     * Makes it ready for runs, up to rest() or to the end of the lock.
     *
     * @return false when the connection has been closed since, which ends its statements, or when a select
     * is to be read by Qt
     */
    bool wake();

    /** Whether it is ready, and with that in use. */
    bool isAwake() const { return m_awake; }

    SqliteDirect::Outcome run(const RowValues& values, std::optional<QSqlError>& error);

    /** Appends the rows of a select that has run. */
    void read(QList<QVariant>& rows, std::optional<QSqlError>& error);

    /** Lets go of the values of the last run. */
    void rest();

    /** Whether a change of the schema had it compiled anew since its preparation. */
    bool wasCompiledAnew() const { return SqliteDirect::wasCompiledAnew(m_statement); }

private:
    bool isSelect() const { return m_shape.kind == StatementText::Shape::Select; }
    bool runByQt(const RowValues& values);
    void forgetBoundValues();

    StatementText::Shape m_shape;
    QStringList m_columns;
    std::unique_ptr<QSqlQuery> m_query;
    bool m_sharesSqlite;
    bool m_awake = false;
    sqlite3_stmt* m_statement = nullptr; // while it is ready, if the driver shares SQLite
    SqliteDirect::TextBuffers m_buffers;
};

#endif
