// SPDX-License-Identifier: MIT
#include "records/dbstructure.h"

#include "suggestion.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {

struct StructureTexts {
    Q_DECLARE_TR_FUNCTIONS(DBStructure)
};

const QLatin1String connection("structure");

// Runs one statement on a connection of its own; the first column of what it finds.
QStringList ask(const QString& file, const QString& statement, const QStringList& values, QString& error)
{
    QStringList found;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(file);
        if (!database.open()) {
            error = database.lastError().text();
        } else {
            QSqlQuery query(database);
            bool done = query.prepare(statement);
            for (const QString& value : values)
                query.addBindValue(value);
            done = done && query.exec();
            while (done && query.next())
                found.append(query.value(0).toString());
            if (query.lastError().isValid())
                error = query.lastError().databaseText();
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return found;
}

} // namespace

QStringList DBStructure::tables(const QString& file, QString& error)
{
    return ask(
        file,
        QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite~_%' "
                       "ESCAPE '~' ORDER BY name"),
        {}, error);
}

QStringList DBStructure::schema(const QString& file, const QString& table, QString& error)
{
    const QString all = QStringLiteral("SELECT sql FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                                       "'sqlite~_%' ESCAPE '~' %1ORDER BY name");
    if (table.isEmpty())
        return ask(file, all.arg(QString()), {}, error);
    QStringList found = ask(file, all.arg(QStringLiteral("AND name = ? COLLATE NOCASE ")), {table}, error);
    if (found.isEmpty() && error.isEmpty())
        error = StructureTexts::tr("no such table: %1").arg(table);
    return found;
}

QString DBStructure::columnsOf(const QStringList& words, QString& error)
{
    static const QStringList types{QStringLiteral("text"), QStringLiteral("integer"), QStringLiteral("real"),
                                   QStringLiteral("numeric"), QStringLiteral("blob")};
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(
            QStringLiteral("([A-Za-z_][A-Za-z0-9_]*):(%1)").arg(types.join(QLatin1Char('|')))),
        QRegularExpression::CaseInsensitiveOption);
    QStringList columns;
    for (const QString& word : words) {
        const QRegularExpressionMatch match = form.match(word);
        if (!match.hasMatch()) {
            const QString objection =
                StructureTexts::tr("'%1' is not of the form COLUMN:TYPE with one of the types text, integer, "
                                   "real, numeric and blob")
                    .arg(word);
            error = withSuggestion(objection, likelyMeant(word.section(QLatin1Char(':'), 1), types));
            return {};
        }
        columns.append(QStringLiteral("\"%1\" %2").arg(match.captured(1), match.captured(2).toUpper()));
    }
    return columns.join(QStringLiteral(", "));
}

QString DBStructure::create(const QString& file, const QString& table, const QString& columns)
{
    QString error;
    ask(file, QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(table, columns), {}, error);
    return error;
}
