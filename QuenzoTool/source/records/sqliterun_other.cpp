// SPDX-License-Identifier: MIT
// For builds without the interface of the SQLite that Qt uses.
#include "records/sqliterun.h"

SqliteRun runBySqlite(const QSqlQuery& /*query*/, const QVector<QVariant>& /*values*/, QString& /*error*/)
{
    return SqliteRun::NotTried;
}
