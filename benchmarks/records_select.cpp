// SPDX-License-Identifier: MIT
// Everybody has all rows when the time is taken, or has given them back, too.
#include "bench_records.h"
#include "records_data.h"

#include <benchmark/benchmark.h>

#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlTableModel>

#include <string>
#include <utility>

namespace {

enum class Until { RowsAreThere, RowsAreReleased };

void selectRows(benchmark::State& state, Until until)
{
    Stepped helper;
    helper.initDatabase(filledDatabase().path());
    int count = 0;
    QList<QVariant> kept;
    QObject::connect(&helper, &DBHelper::onSelectFinish,
                     [&](const QString& /*tableName*/, const QVariantList& rows) {
                         count = rows.size();
                         if (until == Until::RowsAreThere)
                             kept = rows;
                     });
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        kept.clear();
        state.SetIterationTime(secondsOf([&helper] {
            helper.threadToDatabase(DB_SELECT, table, false, QString());
            helper.commandExec();
        }));
        if (count != rowCount)
            state.SkipWithError("rows are missing");
    }
    helper.closeDB();
}

void selectByPython(benchmark::State& state, Until until)
{
    static const char* const script = R"python(
import sqlite3, sys, time
connection = sqlite3.connect(sys.argv[1])
begin = time.process_time()
cursor = connection.execute("SELECT * FROM channel")
names = [field[0] for field in cursor.description]
rows = [dict(zip(names, row)) for row in cursor]
if sys.argv[3] == "released":
    del rows
print(time.process_time() - begin)
)python";
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(secondsByPython(
            script, filledDatabase(), QLatin1String(until == Until::RowsAreReleased ? "released" : "there")));
    }
}

// The shortest loop that a host would write to get the same list of maps.
void selectByQuery(benchmark::State& state, Until until)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        int count = 0;
        QList<QVariant> found;
        state.SetIterationTime(withConnection(filledDatabase(), [&](QSqlDatabase& connection) {
            return secondsOf([&] {
                QSqlQuery query(connection);
                query.setForwardOnly(true);
                query.exec(QStringLiteral("SELECT * FROM channel"));
                const QSqlRecord record = query.record();
                QStringList names;
                for (int i = 0; i < record.count(); ++i)
                    names.append(record.fieldName(i));
                while (query.next()) {
                    QVariantMap row;
                    for (int i = 0; i < names.size(); ++i)
                        row.insert(names.at(i), query.value(i));
                    found.append(row);
                }
                count = found.size();
                if (until == Until::RowsAreReleased)
                    found.clear();
            });
        }));
        if (count != rowCount)
            state.SkipWithError("rows are missing");
    }
}

// As a view would: each value is asked for once.
void selectByTableModel(benchmark::State& state, Until until)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(withConnection(filledDatabase(), [until](QSqlDatabase& connection) {
            QSqlTableModel model(nullptr, connection);
            return secondsOf([&] {
                model.setTable(table);
                model.select();
                while (model.canFetchMore())
                    model.fetchMore();
                for (int i = 0; i < model.rowCount(); ++i) {
                    for (int column = 0; column < model.columnCount(); ++column)
                        benchmark::DoNotOptimize(model.data(model.index(i, column)));
                }
                if (until == Until::RowsAreReleased)
                    model.clear();
            });
        }));
    }
}

} // namespace

void registerSelects()
{
    const auto add = [](const std::string& row, Until until) {
        const std::pair<const char*, void (*)(benchmark::State&, Until)> contenders[] = {
            {"/quenzo", selectRows},
            {"/python3_dicts", selectByPython},
            {"/QSqlQuery_loop", selectByQuery},
            {"/QSqlTableModel", selectByTableModel},
        };
        for (const auto& [who, function] : contenders)
            benchmark::RegisterBenchmark((row + who).c_str(), function, until)
                ->UseManualTime()
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
    };
    add("select_100000_rows", Until::RowsAreThere);
    add("select_and_release_100000_rows", Until::RowsAreReleased);
}
