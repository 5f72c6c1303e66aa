// SPDX-License-Identifier: MIT
#ifndef STATEMENTTEXT_H
#define STATEMENTTEXT_H

#include <QString>
#include <QStringList>

/**
 * The texts of the database statements. Names are pasted in as they are; a column's value is stood for by a
 * placeholder, the column's name behind a colon.
 */
namespace StatementText {

/** What a statement does, but for the columns of its row. */
struct Shape {
    enum Kind { Insert, Update, Delete, Select };
    Kind kind;
    QString table;
    QString key; ///< update only, and never null there: the condition's column

    QString text(const QStringList& columns) const;
};

QString placeholder(const QString& column);

QString insertRow(const QString& table, const QStringList& columns);

/** Sets the columns where the key column has the value of its placeholder, which may be one of the columns'.
 */
QString updateRow(const QString& table, const QStringList& columns, const QString& key);

/** Without columns every row is meant, otherwise those that equal the placeholders in all of them. */
QString deleteRows(const QString& table, const QStringList& columns);
QString selectRows(const QString& table, const QStringList& columns);

} // namespace StatementText

#endif
