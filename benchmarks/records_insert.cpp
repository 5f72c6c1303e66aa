// SPDX-License-Identifier: MIT
// Every insert is one transaction into a new file, to its commit; the rows are made before.
#include "bench_records.h"
#include "records_cinterface.h"

#include <quenzotool.h>

#include <benchmark/benchmark.h>

#include <QSqlQuery>

#include <string>
#include <vector>

namespace {

int countOf(const Database& database)
{
    sqlite3* handle = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(database.path().toUtf8().constData(), &handle);
    sqlite3_prepare_v2(handle, "SELECT count(*) FROM channel", -1, &statement, nullptr);
    sqlite3_step(statement);
    const int count = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(handle);
    return count;
}

// Each returns the seconds that its insertion of all rows took.
using Insertion = std::function<double(const Database&)>;

void measureInsertion(benchmark::State& state, const Insertion& insert)
{
    rows();
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const Database database;
        state.SetIterationTime(insert(database));
        if (countOf(database) != rowCount)
            state.SkipWithError("rows are missing");
    }
}

// One command with all rows.
double insertList(const Database& database, QList<QVariant>& list, bool encode)
{
    Stepped helper;
    helper.initDatabase(database.path());
    const double seconds = secondsOf([&helper, &list, encode] {
        helper.threadToDatabase(DB_INSERT, table, list, QString(), QVariant(), encode, QString());
        helper.commandExec();
    });
    helper.closeDB();
    return seconds;
}

// The texts that encoding makes of the rows, made before.
double insertEncodedBefore(const Database& database)
{
    static QList<QVariant> encoded = [] {
        QList<QVariant> all;
        for (const QVariant& row : qAsConst(rows())) {
            QVariantMap map = row.toMap();
            for (QVariant& value : map)
                value = QuenzoTool::ckEncode(value.toString());
            all.append(map);
        }
        return all;
    }();
    return insertList(database, encoded, false);
}

const QVector<QVariantMap>& rowMaps()
{
    static const QVector<QVariantMap> maps = [] {
        QVector<QVariantMap> all;
        for (const QVariant& row : qAsConst(rows()))
            all.append(row.toMap());
        return all;
    }();
    return maps;
}

// A command for each row.
double insertQueuedRowByRow(const Database& database)
{
    Stepped helper;
    helper.initDatabase(database.path());
    rowMaps();
    const double seconds = secondsOf([&helper] {
        for (QVariantMap row : rowMaps())
            helper.threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString());
        while (helper.isRunning())
            helper.commandExec();
    });
    helper.closeDB();
    return seconds;
}

// A direct call for each row, in the host's transaction.
double insertDirectly(const Database& database)
{
    Stepped helper;
    helper.initDatabase(database.path());
    rowMaps();
    const double seconds = secondsOf([&helper] {
        QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"));
        connection.transaction();
        for (QVariantMap row : rowMaps())
            helper.insertToDatabase(table, row, false);
        connection.commit();
    });
    helper.closeDB();
    return seconds;
}

// The texts that a Qt program has, which SQLite converts.
double insertQtTextsByCInterface(const Database& database)
{
    static const QVector<Record<QString>> records = [] {
        QVector<Record<QString>> all;
        for (int i = 0; i < rowCount; ++i)
            all.append({i, nameOf(i), packageOf(i), parametersOf(i)});
        return all;
    }();
    return insertByCInterface(database, records, [](sqlite3_stmt* statement, const Record<QString>& record) {
        int place = 2;
        for (const QString* text : {&record.name, &record.package, &record.parameters})
            sqlite3_bind_text16(statement, place++, text->utf16(), text->size() * 2, SQLITE_STATIC);
    });
}

double insertByPreparedQuery(const Database& database)
{
    return withConnection(database, [](QSqlDatabase& connection) {
        return secondsOf([&connection] {
            connection.transaction();
            {
                QSqlQuery query(connection);
                query.prepare(QLatin1String(insertion));
                for (const QVariant& row : qAsConst(rows())) {
                    const QVariantMap values = row.toMap();
                    query.bindValue(QStringLiteral(":id"), values.value(QStringLiteral("id")));
                    query.bindValue(QStringLiteral(":name"), values.value(QStringLiteral("name")));
                    query.bindValue(QStringLiteral(":package"), values.value(QStringLiteral("package")));
                    query.bindValue(QStringLiteral(":parameters"),
                                    values.value(QStringLiteral("parameters")));
                    query.bindValue(QStringLiteral(":price"), values.value(QStringLiteral("price")));
                    query.exec();
                }
            }
            connection.commit();
        });
    });
}

double insertByPython(const Database& database)
{
    static const char* const script = R"python(
import sqlite3, sys, time
rows = [(i, "channel %d" % i, "com.example.game.channel%d" % (i % 1000),
         "appid=%d&appkey=5f4dcc3b5aa765d61d8327deb882cf99" % (100000 + i), i / 8.0) for i in range(int(sys.argv[2]))]
connection = sqlite3.connect(sys.argv[1])
begin = time.process_time()
connection.executemany("INSERT INTO channel(id, name, package, parameters, price) VALUES(?, ?, ?, ?, ?)", rows)
connection.commit()
print(time.process_time() - begin)
)python";
    return secondsByPython(script, database);
}

struct Contender {
    std::string name;
    Insertion insert;
};

} // namespace

void registerInsertions()
{
    const std::vector<Contender> peers{
        {"C_interface_prepared_once", insertQtTextsByCInterface},
        {"C_interface_prepared_once,_UTF-8_ready", insertUtf8TextsByCInterface},
        {"python3_executemany", insertByPython},
    };
    const auto add = [](const std::string& row, const Contender& contender) {
        benchmark::RegisterBenchmark((row + '/' + contender.name).c_str(), measureInsertion, contender.insert)
            ->UseManualTime()
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    };
    const auto addAll = [&add, &peers](const std::string& row, const Insertion& ours) {
        add(row, {"quenzo", ours});
        for (const Contender& peer : peers)
            add(row, peer);
    };
    const auto plain = [](const Database& database) { return insertList(database, rows(), false); };
    addAll("insert_100000_rows,_one_list", plain);
    add("insert_100000_rows,_one_list", {"QSqlQuery_prepared_once", insertByPreparedQuery});
    addAll("insert_100000_rows,_a_command_each", insertQueuedRowByRow);
    addAll("insert_100000_rows,_a_direct_call_each", insertDirectly);
    const auto encoded = [](const Database& database) { return insertList(database, rows(), true); };
    add("insert_100000_rows,_one_list,_encoded", {"quenzo", encoded});
    add("insert_100000_rows,_one_list,_encoded", {"not_encoded", plain});
    add("insert_100000_rows,_one_list,_encoded", {"encoded_before", insertEncodedBefore});
}
