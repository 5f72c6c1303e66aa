// SPDX-License-Identifier: MIT
#ifndef RECORDS_CINTERFACE_H
#define RECORDS_CINTERFACE_H

#include "records_data.h"

#include <QVector>

#include <sqlite3.h>

// Runs the C interface over records that are made before; `bindTexts` hands over those of one.
template <typename Record, typename BindTexts>
double insertByCInterface(const Database& database, const QVector<Record>& records, BindTexts bindTexts)
{
    sqlite3* handle = nullptr;
    sqlite3_open(database.path().toUtf8().constData(), &handle);
    const double seconds = secondsOf([&] {
        sqlite3_stmt* statement = nullptr;
        sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(handle, insertion, -1, &statement, nullptr);
        for (const Record& record : records) {
            sqlite3_bind_int(statement, 1, record.id);
            bindTexts(statement, record);
            sqlite3_bind_double(statement, 5, record.id / 8.0);
            sqlite3_step(statement);
            sqlite3_reset(statement);
        }
        sqlite3_finalize(statement);
        sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
    });
    sqlite3_close(handle);
    return seconds;
}

// A row with its texts in one form or another.
template <typename Text> struct Record {
    int id;
    Text name;
    Text package;
    Text parameters;
};

#endif
