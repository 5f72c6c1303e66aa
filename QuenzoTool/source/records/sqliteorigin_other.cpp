// SPDX-License-Identifier: MIT
// For systems whose loader has no way to prove it that we know of.
#include "records/sqlitedirect.h"

bool SqliteDirect::isSharedWith(const QSqlDriver& /*driver*/)
{
    return false;
}
