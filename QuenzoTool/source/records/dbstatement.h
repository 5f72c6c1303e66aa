// SPDX-License-Identifier: MIT
#ifndef DBSTATEMENT_H
#define DBSTATEMENT_H

#include "records/rowvalues.h"
#include "records/sqlitedirect.h"
#include "records/statementtext.h"

#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <memory>
#include <optional>

class ConnectionLock;
class KeptStatements;
class RowStatement;

/**
 * One call's statement on the shared connection. It is run once a row; a row of the same columns as one
 * before needs neither a new text nor a new preparation.
 *
 * Takes the connection's lock by itself for each operation. A connection that is not open fails here: Qt
 * would write a warning, and would turn to the host's own default connection in the place of one that was
 * removed.
 */
class DBStatement {
public:
    /**
     * @param database the member handle, which is read under the lock
     * @param kept the statements that outlive the call
     * @param key the value of the shape's key, as text
     */
    DBStatement(QSqlDatabase& database, KeptStatements& kept, StatementText::Shape shape,
                Conversion conversion, QString key = {});
    ~DBStatement();
    DBStatement(const DBStatement&) = delete;
    DBStatement& operator=(const DBStatement&) = delete;

    bool run(const QMap<QString, QVariant>& row);

    /**
     * Runs once for each row, up to one that fails. Another thread's statements may come between them.
     *
     * @param lastRow comes behind the list, unless it is empty
     */
    bool run(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow);

    /** A failure also rolls back the transaction that the connection is in, before another thread's
     * statement. */
    bool runOrRollBack(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow);

    /**
     * Runs a select and appends its rows.
     *
     * @return whether it ran; error() is valid also when the reading failed on the way
     */
    bool select(const QMap<QString, QVariant>& conditions, QList<QVariant>& rows);

    /** The text of the last run that failed, or that selected. */
    QString text() const { return m_text; }

    /** Why the last run failed, in the database's words. */
    QSqlError error() const { return m_error.value_or(QSqlError()); }

    /** Whether the connection is in a transaction; nothing when that cannot be told. */
    std::optional<bool> isInTransaction() const;

private:
    bool runEach(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow, ConnectionLock& lock);
    void giveWay(ConnectionLock& lock);
    bool execute(const QMap<QString, QVariant>& row);
    bool isReadyFor(const QMap<QString, QVariant>& row);
    SqliteDirect::Outcome runReady(const QMap<QString, QVariant>& row);
    bool prepareAndRun(const QMap<QString, QVariant>& row);
    void keep(const QStringList& columns);
    void dropReady();
    void rest();
    void fetch(const QMap<QString, QVariant>& conditions, QList<QVariant>& rows);
    void fetchByQt(QList<QVariant>& rows);
    bool isSelect() const { return m_shape.kind == StatementText::Shape::Select; }
    bool isOpen() const;
    void learnOfFailedPreparation();
    void takeText(const QMap<QString, QVariant>& row);

    QSqlDatabase& m_database;
    KeptStatements& m_kept;
    const StatementText::Shape m_shape;
    const Conversion m_conversion;
    const QString m_key;
    std::unique_ptr<QSqlQuery> m_query; // prepared for one row alone
    std::unique_ptr<RowStatement> m_own; // for rows of this call only
    RowStatement* m_ready = nullptr; // took the last row, and takes the next one of its columns
    QString m_text;
    std::optional<QSqlError> m_error; // unset costs nothing
};

#endif
