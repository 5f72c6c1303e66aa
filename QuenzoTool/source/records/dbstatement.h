// SPDX-License-Identifier: MIT
#ifndef DBSTATEMENT_H
#define DBSTATEMENT_H

#include <QList>
#include <QMap>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

/**
 * One call's query on the shared connection. It is run once a row; a row of the same columns as the one
 * before needs neither a new text nor a new preparation.
 *
 * Takes the connection's lock by itself for each operation. A connection that is not open fails here: Qt
 * would write a warning, and would turn to the host's own default connection in the place of one that was
 * removed.
 */
class DBStatement {
public:
    using Text = std::function<QString(const QStringList& columns)>;
    using Conversion = QVariant (*)(const QVariant& value);

    /**
     * @param database the member handle, which is read under the lock
     * @param text builds the statement for the columns of a row
     * @param convert turns a row's value into the one that is bound; null binds it as it is
     * @param lastColumn if not null, bound behind the columns of each row, to @p lastValue as it is
     */
    DBStatement(QSqlDatabase& database, Text text, Conversion convert, const QString& lastColumn = {},
                const QVariant& lastValue = {});
    ~DBStatement();
    DBStatement(const DBStatement&) = delete;
    DBStatement& operator=(const DBStatement&) = delete;

    bool run(const QMap<QString, QVariant>& row);

    /** A failure also rolls back the transaction that the connection is in, before another thread's
     * statement. */
    bool runOrRollBack(const QMap<QString, QVariant>& row);

    /**
     * Appends the rows that the last run yields. The lock is to be held since that run.
     *
     * @return false when the database failed on the way; the rows before are appended
     */
    bool fetch(QList<QVariant>& rows);

    /** The text of the last run. */
    QString text() const { return m_text; }

    /** Why the last run failed, in the database's words. */
    QString error() const { return m_error; }

private:
    bool execute(const QMap<QString, QVariant>& row);
    void takeColumns(const QMap<QString, QVariant>& row);
    bool prepare(const QMap<QString, QVariant>& row);
    bool bindsInOrder() const;
    bool rebind(const QMap<QString, QVariant>& row);
    QVariant converted(const QVariant& value) const
    {
        return m_convert != nullptr ? m_convert(value) : value;
    }

    QSqlDatabase& m_database;
    std::unique_ptr<QSqlQuery> m_query;
    Text m_makeText;
    Conversion m_convert;
    QString m_text;
    QStringList m_columns;
    bool m_rebindable = false; // another row of the same columns needs no preparation
    QString m_lastColumn;
    QVariant m_lastValue;
    QString m_error;
};

#endif
