// SPDX-License-Identifier: MIT
// For builds without the interface of the SQLite that Qt uses.
#include "records/directrun.h"

DirectRun runDirectly(const QSqlQuery& /*query*/, const QVector<QVariant>& /*values*/, QString& /*error*/)
{
    return DirectRun::NotTried;
}
