// SPDX-License-Identifier: MIT
// For builds without the interface of the SQLite that Qt uses.
#include "records/sqlitedirect.h"

SqliteDirect::Outcome SqliteDirect::run(const QSqlQuery& /*query*/, const RowValues& /*values*/,
                                        TextBuffers& /*buffers*/, QSqlError& /*error*/)
{
    return Outcome::NotTried;
}

void SqliteDirect::forgetValues(const QSqlQuery& /*query*/) { }

bool SqliteDirect::isLasting(const QSqlQuery& /*query*/, const QString& /*table*/)
{
    return false;
}

bool SqliteDirect::wasCompiledAnew(const QSqlQuery& /*query*/)
{
    return false;
}

SqliteDirect::Outcome SqliteDirect::read(const QSqlQuery& /*query*/, const QStringList& /*names*/,
                                         QList<QVariant>& /*rows*/, QSqlError& /*error*/)
{
    return Outcome::NotTried;
}

std::optional<bool> SqliteDirect::isInTransaction(const QSqlDriver& /*driver*/)
{
    return std::nullopt;
}
