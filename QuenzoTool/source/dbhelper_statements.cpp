// SPDX-License-Identifier: MIT
#include "dbhelper.h"

#include "messages.h"
#include "quenzotool.h"
#include "records/dbstatement.h"
#include "records/keptstatements.h"

namespace {

using Row = QMap<QString, QVariant>;
using StatementText::Shape;

Conversion encodedIf(bool bEncode)
{
    return bEncode ? Conversion::Encode : Conversion::None;
}

// A select decodes its conditions where the others encode them.
Row decoded(const Row& conditions)
{
    Row all = conditions;
    for (QVariant& value : all)
        value = QuenzoTool::ckDecode(value.toString());
    return all;
}

// An empty key has a placeholder, too: a bare colon.
QString notNull(const QString& key)
{
    return key.isNull() ? QLatin1String("") : key;
}

// The database's own words, in one line.
QString causeOf(const QSqlError& error)
{
    const QString text = error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
    return text.simplified();
}

// How an operation is named in the described messages, and to a person.
struct Words {
    const char* described;
    const char* plain;
};

constexpr Words insertion{"Error at insert ", "insert into"};
constexpr Words changing{"Error at update ", "update"};
constexpr Words deletion{"Error at delete ", "delete from"};
constexpr Words selection{"Error at select ", "select from"};

// The cause for a person, in one line.
void logCause(const char* operation, const QString& tableName, const DBStatement& statement,
              const char* remark = "")
{
    qCWarning(recordsLog).noquote().nospace()
        << "cannot " << operation << ' ' << tableName.simplified() << ": " << causeOf(statement.error())
        << " (" << statement.text().simplified() << ')' << remark;
}

// Three messages, with the lines and functions that logs know them by, and the cause.
void reportFailure(const DBStatement& statement, const Words& words, const QString& tableName, bool inBurst,
                   int line, const char* function)
{
    constexpr const char* file = "QuenzoTool/source/dbhelper";
    writeMessage(file, line, function, statement.text());
    writeMessage(file, line + 1, function, QLatin1String(words.described) + tableName);
    writeMessage(file, line + 2, function, statement.error().text());
    if (!recordsLog().isWarningEnabled())
        return;
    const bool isUndone = inBurst && !statement.isInTransaction().value_or(true);
    logCause(words.plain, tableName, statement, isUndone ? "; its transaction is rolled back" : "");
}

} // namespace

bool DBHelper::insertToDatabase(QString tableName, QString column, QVariant value, bool bEncode)
{
    Row row{{column, value.toString()}};
    return insertToDatabase(tableName, row, bEncode);
}

bool DBHelper::insertToDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode)
{
    DBStatement statement(m_db, *m_kept, {Shape::Insert, tableName, {}}, encodedIf(bEncode));
    if (statement.run(mapValue))
        return true;
    reportFailure(
        statement, insertion, tableName, m_bTransaction, 285,
        "bool __cdecl DBHelper::insertToDatabase(class QString,class QMap<class QString,class QVariant> "
        "&,bool)");
    return false;
}

bool DBHelper::insertToDatabase(QString tableName, QList<QVariant>& lsRecord, bool bEncode)
{
    return insertRows(tableName, lsRecord, Row(), bEncode);
}

// The rows of a list, and behind them a queued map unless that is empty. A list for one map would cost more
// than the insertion's own preparations.
bool DBHelper::insertRows(const QString& tableName, const QList<QVariant>& rows, const Row& lastRow,
                          bool bEncode)
{
    if (rows.isEmpty() && lastRow.isEmpty())
        return true;
    DBStatement statement(m_db, *m_kept, {Shape::Insert, tableName, {}}, encodedIf(bEncode));
    if (statement.runOrRollBack(rows, lastRow))
        return true;
    reportFailure(
        statement, insertion, tableName, m_bTransaction, 337,
        "bool __cdecl DBHelper::insertToDatabase(class QString,class QList<class QVariant> &,bool)");
    return false;
}

bool DBHelper::updateToDatabase(QString tableName, QString whereKey, QVariant whereValue,
                                QMap<QString, QVariant>& mapValue, bool bEncode)
{
    DBStatement statement(m_db, *m_kept, {Shape::Update, tableName, notNull(whereKey)}, encodedIf(bEncode),
                          whereValue.toString());
    if (statement.run(mapValue))
        return true;
    reportFailure(statement, changing, tableName, m_bTransaction, 385,
                  "bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class QVariant,class "
                  "QMap<class QString,class QVariant> &,bool)");
    return false;
}

bool DBHelper::updateToDatabase(QString tableName, QString whereKey, QVariant whereValue,
                                QList<QVariant>& lsRecord, bool bEncode)
{
    return updateRows(tableName, whereKey, whereValue.toString(), lsRecord, Row(), bEncode);
}

bool DBHelper::updateRows(const QString& tableName, const QString& whereKey, const QString& whereValue,
                          const QList<QVariant>& rows, const Row& lastRow, bool bEncode)
{
    if (rows.isEmpty() && lastRow.isEmpty())
        return true;
    DBStatement statement(m_db, *m_kept, {Shape::Update, tableName, notNull(whereKey)}, encodedIf(bEncode),
                          whereValue);
    if (statement.run(rows, lastRow))
        return true;
    reportFailure(statement, changing, tableName, m_bTransaction, 437,
                  "bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class QVariant,class "
                  "QList<class QVariant> &,bool)");
    return false;
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
    DBStatement statement(m_db, *m_kept, {Shape::Delete, tableName, {}}, encodedIf(bEncode));
    if (statement.run(mapValue))
        return true;
    reportFailure(
        statement, deletion, tableName, m_bTransaction, 499,
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
    DBStatement statement(m_db, *m_kept, {Shape::Select, tableName, {}}, Conversion::None);
    QList<QVariant> rows;
    if (!statement.select(bEncode ? decoded(mapValue) : mapValue, rows)) {
        reportFailure(statement, selection, tableName, m_bTransaction, 562,
                      "class QList<class QVariant> __cdecl DBHelper::selectFromDatabase(class QString,class "
                      "QMap<class QString,class QVariant> &,bool)");
    } else if (statement.error().isValid()) {
        logCause("read all rows of", tableName, statement, "");
    }
    return rows;
}
