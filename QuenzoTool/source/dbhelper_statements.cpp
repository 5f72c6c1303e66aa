// SPDX-License-Identifier: MIT
#include "dbhelper.h"

#include "messages.h"
#include "quenzotool.h"
#include "records/connectionlock.h"
#include "records/dbstatement.h"
#include "records/statementtext.h"

namespace {

using Row = QMap<QString, QVariant>;

QVariant encoded(const QVariant& value)
{
    return QuenzoTool::ckEncode(value.toString());
}

QVariant decoded(const QVariant& value)
{
    return QuenzoTool::ckDecode(value.toString());
}

DBStatement insertStatement(QSqlDatabase& database, const QString& tableName, bool bEncode)
{
    const auto text = [tableName](const QStringList& columns) {
        return StatementText::insertRow(tableName, columns);
    };
    return {database, text, bEncode ? encoded : nullptr};
}

DBStatement updateStatement(QSqlDatabase& database, const QString& tableName, const QString& whereKey,
                            const QVariant& whereValue, bool bEncode)
{
    const auto text = [tableName, whereKey](const QStringList& columns) {
        return StatementText::updateRow(tableName, columns, whereKey);
    };
    // An empty key has a placeholder, too: a bare colon.
    const QString key = whereKey.isNull() ? QLatin1String("") : whereKey;
    return {database, text, bEncode ? encoded : nullptr, key, whereValue.toString()};
}

// Three messages, with the lines and functions that logs know them by.
void reportFailure(const DBStatement& statement, const char* what, const QString& tableName, int line,
                   const char* function)
{
    constexpr const char* file = "QuenzoTool/source/dbhelper";
    writeMessage(file, line, function, statement.text());
    writeMessage(file, line + 1, function, QLatin1String(what) + QLatin1Char(' ') + tableName);
    writeMessage(file, line + 2, function, statement.error());
}

} // namespace

bool DBHelper::insertToDatabase(QString tableName, QString column, QVariant value, bool bEncode)
{
    Row row{{column, value.toString()}};
    return insertToDatabase(tableName, row, bEncode);
}

bool DBHelper::insertToDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode)
{
    DBStatement statement = insertStatement(m_db, tableName, bEncode);
    if (statement.run(mapValue))
        return true;
    reportFailure(
        statement, "Error at insert", tableName, 285,
        "bool __cdecl DBHelper::insertToDatabase(class QString,class QMap<class QString,class QVariant> "
        "&,bool)");
    return false;
}

bool DBHelper::insertToDatabase(QString tableName, QList<QVariant>& lsRecord, bool bEncode)
{
    if (lsRecord.isEmpty())
        return true;
    DBStatement statement = insertStatement(m_db, tableName, bEncode);
    for (const QVariant& record : qAsConst(lsRecord)) {
        if (statement.runOrRollBack(record.toMap()))
            continue;
        reportFailure(
            statement, "Error at insert", tableName, 337,
            "bool __cdecl DBHelper::insertToDatabase(class QString,class QList<class QVariant> &,bool)");
        return false;
    }
    return true;
}

bool DBHelper::updateToDatabase(QString tableName, QString whereKey, QVariant whereValue,
                                QMap<QString, QVariant>& mapValue, bool bEncode)
{
    DBStatement statement = updateStatement(m_db, tableName, whereKey, whereValue, bEncode);
    if (statement.run(mapValue))
        return true;
    reportFailure(statement, "Error at update", tableName, 385,
                  "bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class QVariant,class "
                  "QMap<class QString,class QVariant> &,bool)");
    return false;
}

bool DBHelper::updateToDatabase(QString tableName, QString whereKey, QVariant whereValue,
                                QList<QVariant>& lsRecord, bool bEncode)
{
    if (lsRecord.isEmpty())
        return true;
    DBStatement statement = updateStatement(m_db, tableName, whereKey, whereValue, bEncode);
    for (const QVariant& record : qAsConst(lsRecord)) {
        if (statement.run(record.toMap()))
            continue;
        reportFailure(
            statement, "Error at update", tableName, 437,
            "bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class QVariant,class "
            "QList<class QVariant> &,bool)");
        return false;
    }
    return true;
}

bool DBHelper::deleteFromDatabase(QString tableName)
{
    Row everyRow;
    return deleteFromDatabase(tableName, everyRow, false);
}

bool DBHelper::deleteFromDatabase(QString tableName, QString key, QVariant value, bool bEncode)
{
    Row condition{{key, value.toString()}};
    return deleteFromDatabase(tableName, condition, bEncode);
}

bool DBHelper::deleteFromDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode)
{
    const auto text = [tableName](const QStringList& columns) {
        return StatementText::deleteRows(tableName, columns);
    };
    DBStatement statement(m_db, text, bEncode ? encoded : nullptr);
    if (statement.run(mapValue))
        return true;
    reportFailure(
        statement, "Error at delete", tableName, 499,
        "bool __cdecl DBHelper::deleteFromDatabase(class QString,class QMap<class QString,class QVariant> "
        "&,bool)");
    return false;
}

QList<QVariant> DBHelper::selectFromDatabase(QString tableName, bool bEncode)
{
    Row everyRow;
    return selectFromDatabase(tableName, everyRow, bEncode);
}

QList<QVariant> DBHelper::selectFromDatabase(QString tableName, QString key, QString value, bool bEncode)
{
    Row condition{{key, value}};
    return selectFromDatabase(tableName, condition, bEncode);
}

QList<QVariant> DBHelper::selectFromDatabase(QString tableName, QString key, int value, bool bEncode)
{
    return selectFromDatabase(tableName, key, QString::number(value, 10), bEncode);
}

QList<QVariant> DBHelper::selectFromDatabase(QString tableName, QMap<QString, QVariant>& mapValue,
                                             bool bEncode)
{
    const auto text = [tableName](const QStringList& columns) {
        return StatementText::selectRows(tableName, columns);
    };
    DBStatement statement(m_db, text, bEncode ? decoded : nullptr);
    QList<QVariant> rows;
    bool selected = false;
    {
        const ConnectionLock lock;
        selected = statement.run(mapValue) && statement.fetch(rows);
    }
    if (!selected) {
        reportFailure(statement, "Error at select", tableName, 562,
                      "class QList<class QVariant> __cdecl DBHelper::selectFromDatabase(class QString,class "
                      "QMap<class QString,class QVariant> &,bool)");
    }
    return rows;
}
