// SPDX-License-Identifier: MIT
// For builds without the interface of the SQLite that Qt uses.
#include "records/sqlitedirect.h"

sqlite3_stmt* SqliteDirect::statementOf(const QSqlQuery& /*query*/)
{
    return nullptr;
}

SqliteDirect::Outcome SqliteDirect::run(sqlite3_stmt* /*statement*/, const RowValues& /*values*/,
                                        TextBuffers& /*buffers*/, std::optional<QSqlError>& /*error*/)
{
    return Outcome::NotTried;
}

SqliteDirect::Outcome SqliteDirect::start(sqlite3_stmt* /*statement*/, const RowValues& /*values*/,
                                          TextBuffers& /*buffers*/, std::optional<QSqlError>& /*error*/)
{
    return Outcome::NotTried;
}

void SqliteDirect::forgetValues(sqlite3_stmt* /*statement*/, TextBuffers& /*buffers*/) { }

bool SqliteDirect::isLasting(const QSqlQuery& /*query*/, const QString& /*table*/)
{
    return false;
}

bool SqliteDirect::wasCompiledAnew(sqlite3_stmt* /*statement*/)
{
    return false;
}

bool SqliteDirect::readsAs(const QSqlDriver& /*driver*/)
{
    return false;
}

void SqliteDirect::read(sqlite3_stmt* /*statement*/, QList<QVariant>& /*rows*/,
                        std::optional<QSqlError>& /*error*/)
{
}

std::optional<bool> SqliteDirect::isInTransaction(const QSqlDriver& /*driver*/)
{
    return std::nullopt;
}
