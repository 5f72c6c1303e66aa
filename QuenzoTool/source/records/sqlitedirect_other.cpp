// SPDX-License-Identifier: MIT
// For builds without the interface of the SQLite that Qt uses.
#include "records/sqlitedirect.h"

SqliteRun runBySqlite(const QSqlQuery& /*query*/, const QVector<QVariant>& /*values*/, QString& /*error*/)
{
    return SqliteRun::NotTried;
}
