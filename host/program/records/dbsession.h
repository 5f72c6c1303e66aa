// SPDX-License-Identifier: MIT
#ifndef DBSESSION_H
#define DBSESSION_H

#include <QString>
#include <QVariantList>

class Console;
struct DBRequest;

/** What came of a request. */
struct DBOutcome {
    QVariantList rows; ///< of a select
    int written = 0; ///< rows that were written directly, up to the first that failed
    int changed = 0; ///< rows that the last statement has changed or removed
    QString error; ///< what failed and why, and what is written; empty when all went well
};

/** Runs one request on its database file, through the queue or directly; the process's only one. */
DBOutcome runRequest(DBRequest request, Console& console);

#endif
