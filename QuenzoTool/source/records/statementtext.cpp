// SPDX-License-Identifier: MIT
#include "records/statementtext.h"

namespace {

QString equation(const QString& column)
{
    return column + QStringLiteral(" = ") + StatementText::placeholder(column);
}

QString equations(const QStringList& columns, const QString& separator)
{
    QStringList parts;
    for (const QString& column : columns)
        parts.append(equation(column));
    return parts.join(separator);
}

QString conditions(const QStringList& columns)
{
    if (columns.isEmpty())
        return {};
    return QStringLiteral(" WHERE ") + equations(columns, QStringLiteral(" and "));
}

} // namespace

QString StatementText::Shape::text(const QStringList& columns) const
{
    switch (kind) {
    case Insert:
        return insertRow(table, columns);
    case Update:
        return updateRow(table, columns, key);
    case Delete:
        return deleteRows(table, columns);
    case Select:
        break;
    }
    return selectRows(table, columns);
}

QString StatementText::placeholder(const QString& column)
{
    return QLatin1Char(':') + column;
}

QString StatementText::insertRow(const QString& table, const QStringList& columns)
{
    const QString separator = QStringLiteral(", ");
    QStringList placeholders;
    for (const QString& column : columns)
        placeholders.append(placeholder(column));
    return QStringLiteral("INSERT INTO ") + table + QLatin1Char('(') + columns.join(separator)
        + QStringLiteral(") VALUES(") + placeholders.join(separator) + QStringLiteral(");");
}

QString StatementText::updateRow(const QString& table, const QStringList& columns, const QString& key)
{
    return QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ")
        + equations(columns, QStringLiteral(", ")) + QStringLiteral(" WHERE ") + equation(key)
        + QLatin1Char(';');
}

QString StatementText::deleteRows(const QString& table, const QStringList& columns)
{
    return QStringLiteral("DELETE FROM ") + table + conditions(columns) + QLatin1Char(';');
}

QString StatementText::selectRows(const QString& table, const QStringList& columns)
{
    return QStringLiteral("SELECT * FROM ") + table + conditions(columns) + QLatin1Char(';');
}
