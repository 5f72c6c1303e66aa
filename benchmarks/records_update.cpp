// SPDX-License-Identifier: MIT
#include "bench_records.h"
#include "records_data.h"

#include <benchmark/benchmark.h>

#include <sqlite3.h>

namespace {

constexpr int updateCount = 20000;

// The filled table, with an index on what the updates ask for.
class KeyedDatabase : public Database {
public:
    KeyedDatabase()
    {
        insertUtf8TextsByCInterface(*this);
        execute("CREATE UNIQUE INDEX ids ON channel(id)");
    }
};

void updateByKey(benchmark::State& state)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const KeyedDatabase database;
        Stepped helper;
        helper.initDatabase(database.path());
        state.SetIterationTime(secondsOf([&helper] {
            QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"));
            connection.transaction();
            QVariantMap row{{QStringLiteral("name"), QString()}};
            for (int i = 0; i < updateCount; ++i) {
                row.first() = nameOf(i + 1);
                helper.updateToDatabase(table, QStringLiteral("id"), i, row, false);
            }
            connection.commit();
        }));
        helper.closeDB();
    }
}

void updateByCInterface(benchmark::State& state)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const KeyedDatabase database;
        sqlite3* handle = nullptr;
        sqlite3_open(database.path().toUtf8().constData(), &handle);
        state.SetIterationTime(secondsOf([handle] {
            sqlite3_stmt* statement = nullptr;
            sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
            sqlite3_prepare_v2(handle, "UPDATE channel SET name = :name WHERE id = :id", -1, &statement,
                               nullptr);
            for (int i = 0; i < updateCount; ++i) {
                const QString name = nameOf(i + 1);
                const QString id = QString::number(i);
                sqlite3_bind_text16(statement, 1, name.utf16(), name.size() * 2, SQLITE_STATIC);
                sqlite3_bind_text16(statement, 2, id.utf16(), id.size() * 2, SQLITE_STATIC);
                sqlite3_step(statement);
                sqlite3_reset(statement);
            }
            sqlite3_finalize(statement);
            sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
        }));
        sqlite3_close(handle);
    }
}

void updateByPython(benchmark::State& state)
{
    static const char* const script = R"python(
import sqlite3, sys, time
connection = sqlite3.connect(sys.argv[1])
begin = time.process_time()
for i in range(20000):
    connection.execute("UPDATE channel SET name = ? WHERE id = ?", ("channel %d" % (i + 1), str(i)))
connection.commit()
print(time.process_time() - begin)
)python";
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const KeyedDatabase database;
        state.SetIterationTime(secondsByPython(script, database));
    }
}

} // namespace

void registerUpdates()
{
    const auto add = [](const char* name, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, function)
            ->UseManualTime()
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    };
    add("update_20000_rows_by_key,_a_call_each/quenzo", updateByKey);
    add("update_20000_rows_by_key,_a_call_each/C_interface_prepared_once", updateByCInterface);
    add("update_20000_rows_by_key,_a_call_each/python3_execute", updateByPython);
}
