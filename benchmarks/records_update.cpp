// SPDX-License-Identifier: MIT
#include "bench_records.h"
#include "records_data.h"

#include <benchmark/benchmark.h>

#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

namespace {

constexpr int keyCount = 20000;

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
            for (int i = 0; i < keyCount; ++i) {
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
            for (int i = 0; i < keyCount; ++i) {
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

void selectByKey(benchmark::State& state)
{
    const KeyedDatabase database;
    Stepped helper;
    helper.initDatabase(database.path());
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        int found = 0;
        state.SetIterationTime(secondsOf([&helper, &found] {
            for (int i = 0; i < keyCount; ++i)
                found += helper.selectFromDatabase(table, QStringLiteral("id"), i, false).size();
        }));
        if (found != keyCount)
            state.SkipWithError("rows are missing");
    }
    helper.closeDB();
}

// The list of maps that a caller of ours gets.
void selectKeysByQuery(benchmark::State& state)
{
    const KeyedDatabase database;
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(withConnection(database, [](QSqlDatabase& connection) {
            QSqlQuery query(connection);
            query.setForwardOnly(true);
            query.prepare(QStringLiteral("SELECT * FROM channel WHERE id = :id"));
            return secondsOf([&query] {
                for (int i = 0; i < keyCount; ++i) {
                    query.bindValue(QStringLiteral(":id"), QString::number(i));
                    query.exec();
                    const QSqlRecord record = query.record();
                    QList<QVariant> found;
                    while (query.next()) {
                        QVariantMap row;
                        for (int column = 0; column < record.count(); ++column)
                            row.insert(record.fieldName(column), query.value(column));
                        found.append(row);
                    }
                    benchmark::DoNotOptimize(found);
                }
            });
        }));
    }
}

void selectKeysByPython(benchmark::State& state)
{
    static const char* const script = R"python(
import sqlite3, sys, time
connection = sqlite3.connect(sys.argv[1])
begin = time.process_time()
for i in range(20000):
    cursor = connection.execute("SELECT * FROM channel WHERE id = ?", (str(i),))
    names = [field[0] for field in cursor.description]
    rows = [dict(zip(names, row)) for row in cursor]
print(time.process_time() - begin)
)python";
    const KeyedDatabase database;
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(secondsByPython(script, database));
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
    add("select_20000_rows_by_key,_a_call_each/quenzo", selectByKey);
    add("select_20000_rows_by_key,_a_call_each/python3_execute", selectKeysByPython);
    add("select_20000_rows_by_key,_a_call_each/QSqlQuery_prepared_once", selectKeysByQuery);
}
