// SPDX-License-Identifier: MIT
#ifndef ROWSTATEMENT_H
#define ROWSTATEMENT_H

#include "records/rowvalues.h"
#include "records/sqlitedirect.h"
#include "records/statementtext.h"

#include <QSqlQuery>
#include <QStringList>

#include <memory>

/**
 * A statement that Qt has prepared and run once, and that takes further rows of the same columns. The
 * connection's lock is to be held.
 */
class RowStatement {
public:
    /** @param direct whether the query's driver shares SQLite with this library */
    RowStatement(StatementText::Shape shape, QStringList columns, std::unique_ptr<QSqlQuery> query,
                 bool direct);

    /** Whether Qt has numbered the placeholders of a query as the values come: some names it cuts short. */
    static bool bindsInOrder(const QSqlQuery& query, const StatementText::Shape& shape,
                             const QStringList& columns);

    bool serves(const StatementText::Shape& shape, const QMap<QString, QVariant>& row) const;

    /** Not tried when the connection has been closed since, which ends its statements. */
    SqliteDirect::Outcome run(const RowValues& values, QSqlError& error);

    const QSqlQuery& query() const { return *m_query; }

private:
    bool isAlive() const;
    bool runByQt(const RowValues& values);
    void forgetValues();

    StatementText::Shape m_shape;
    QStringList m_columns;
    std::unique_ptr<QSqlQuery> m_query;
    bool m_direct;
    SqliteDirect::TextBuffers m_buffers;
};

#endif
