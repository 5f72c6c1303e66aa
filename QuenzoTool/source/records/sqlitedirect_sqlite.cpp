// SPDX-License-Identifier: MIT
#include "records/sqlitedirect.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QMetaType>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlResult>

#include <sqlite3.h>

// Under this name the driver hands its statements out.
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

namespace {

// A driver with a copy of SQLite built in has statements that must not meet the code of another one.
bool isSqliteOf(const QSqlDriver& driver)
{
    QSqlQuery query(driver.createResult());
    return sqlite3_initialize() == SQLITE_OK && query.exec(QStringLiteral("SELECT sqlite_source_id()"))
        && query.next() && query.value(0).toString() == QLatin1String(sqlite3_sourceid());
}

// As the driver binds them; the values outlive the run.
int bind(sqlite3_stmt* statement, int place, const QVariant& value)
{
    if (value.isNull())
        return sqlite3_bind_null(statement, place);
    switch (value.userType()) {
    case QMetaType::QString: {
        const auto* const text = static_cast<const QString*>(value.constData());
        const auto size = static_cast<sqlite3_uint64>(text->size()) * sizeof(QChar);
        return sqlite3_bind_text64(statement, place, reinterpret_cast<const char*>(text->utf16()), size,
                                   SQLITE_STATIC, SQLITE_UTF16);
    }
    case QMetaType::QByteArray: {
        const auto* const bytes = static_cast<const QByteArray*>(value.constData());
        return sqlite3_bind_blob(statement, place, bytes->constData(), bytes->size(), SQLITE_STATIC);
    }
    case QMetaType::Bool:
    case QMetaType::Int:
        return sqlite3_bind_int(statement, place, value.toInt());
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(statement, place, value.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(statement, place, value.toDouble());
    default:
        return SQLITE_MISMATCH;
    }
}

QString errorOf(sqlite3_stmt* statement)
{
    const auto* const text = static_cast<const QChar*>(sqlite3_errmsg16(sqlite3_db_handle(statement)));
    return QSqlError(QCoreApplication::translate("QSQLiteResult", "Unable to fetch row"), QString(text))
        .text();
}

} // namespace

SqliteRun runBySqlite(const QSqlQuery& query, const QVector<QVariant>& values, QString& error)
{
    static const bool usable = isSqliteOf(*query.driver());
    // Asked for each time: a connection that is closed takes its statements with it.
    auto* const statement = usable ? query.result()->handle().value<sqlite3_stmt*>() : nullptr;
    if (statement == nullptr || sqlite3_bind_parameter_count(statement) != values.size())
        return SqliteRun::NotTried;
    int place = 1;
    for (const QVariant& value : values) {
        if (bind(statement, place++, value) != SQLITE_OK)
            return SqliteRun::NotTried;
    }
    const int result = sqlite3_step(statement);
    if (result != SQLITE_DONE && result != SQLITE_ROW)
        error = errorOf(statement);
    sqlite3_reset(statement);
    return result == SQLITE_DONE || result == SQLITE_ROW ? SqliteRun::Done : SqliteRun::Failed;
}
