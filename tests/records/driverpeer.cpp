// SPDX-License-Identifier: MIT
#include "driverpeer.h"

#include <quenzotool.h>

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using DriverPeer::Row;

namespace {

QStringList placeholders(const Row& row, const QString& form)
{
    QStringList parts;
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        parts.append(QString(form).replace(QLatin1Char('%'), value.key()));
    return parts;
}

QString conditions(const Row& row)
{
    const QString all = placeholders(row, QStringLiteral("% = :%")).join(QStringLiteral(" and "));
    return row.isEmpty() ? QString() : QStringLiteral(" WHERE ") + all;
}

QString described(const QVariant& value)
{
    const QString text = value.userType() == QMetaType::QByteArray
        ? QString::fromLatin1(value.toByteArray().toHex())
        : value.toString();
    return QLatin1String(value.typeName()) + (value.isNull() ? QStringLiteral(" null") : QString())
        + QStringLiteral(" '") + text + QLatin1Char('\'');
}

} // namespace

namespace DriverPeer {

Report run(const QSqlDatabase& database, const QString& text, const Row& values, const QString& key,
           const QVariant& keyValue)
{
    QSqlQuery query(database);
    Report report;
    bool done = query.prepare(text);
    for (auto value = values.cbegin(); done && value != values.cend(); ++value)
        query.bindValue(QLatin1Char(':') + value.key(), *value);
    if (done && !key.isEmpty())
        query.bindValue(QLatin1Char(':') + key, keyValue.toString());
    report.done = done && query.exec();
    if (!report.done)
        report.error = query.lastError().text();
    while (report.done && query.next()) {
        const QSqlRecord record = query.record();
        Row row;
        for (int i = 0; i < record.count(); ++i)
            row.insert(record.fieldName(i), query.value(i));
        report.rows.append(row);
    }
    return report;
}

QString selection(const QString& table, const Row& row)
{
    return QStringLiteral("SELECT * FROM %1%2;").arg(table, conditions(row));
}

QString insertion(const QString& table, const Row& row)
{
    const QString separator = QStringLiteral(", ");
    return QStringLiteral("INSERT INTO %1(%2) VALUES(%3);")
        .arg(table, placeholders(row, QStringLiteral("%")).join(separator),
             placeholders(row, QStringLiteral(":%")).join(separator));
}

QString change(const QString& table, const Row& row, const QString& key)
{
    const QString values = placeholders(row, QStringLiteral("% = :%")).join(QStringLiteral(", "));
    return QStringLiteral("UPDATE %1 SET %2 WHERE %3 = :%3;").arg(table, values, key);
}

QString deletion(const QString& table, const Row& row)
{
    return QStringLiteral("DELETE FROM %1%2;").arg(table, conditions(row));
}

Row encoded(Row row, bool encode)
{
    for (QVariant& value : row)
        value = encode ? QVariant(QuenzoTool::ckEncode(value.toString())) : value;
    return row;
}

QStringList described(const QVariantList& rows)
{
    QStringList lines;
    for (const QVariant& one : rows) {
        const Row row = one.toMap();
        QStringList fields;
        for (auto value = row.cbegin(); value != row.cend(); ++value)
            fields.append(value.key() + QLatin1Char('=') + ::described(*value));
        lines.append(fields.join(QStringLiteral(", ")));
    }
    return lines;
}

QStringList dump(const QSqlDatabase& database, const QString& table)
{
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("SELECT * FROM %1 LIMIT 0").arg(table)))
        return {query.lastError().text()};
    const QSqlRecord record = query.record();
    QStringList literals{QStringLiteral("rowid")};
    for (int i = 0; i < record.count(); ++i)
        literals.append(
            QStringLiteral("'%1 ' || typeof(\"%1\") || ' ' || quote(\"%1\")").arg(record.fieldName(i)));
    const QString line = literals.join(QStringLiteral(" || ', ' || "));
    if (!query.exec(QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid").arg(line, table)))
        return {query.lastError().text()};
    QStringList lines;
    while (query.next())
        lines.append(query.value(0).toString());
    return lines;
}

} // namespace DriverPeer
