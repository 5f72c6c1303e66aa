// SPDX-License-Identifier: MIT
// The database class beside SQLite's own interfaces. Every insert is one transaction into a new file, to its
// commit; the rows are made before. Times are the processor's, of the thread at work: what else a shared
// machine does is not in them.
#include "bench_codec.h"

#include <dbhelper.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QMutex>
#include <QProcess>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlTableModel>
#include <QTemporaryDir>

#include <ctime>
#include <functional>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int rowCount = 100000;
const QString table = QStringLiteral("channel");
const char* const creation = "CREATE TABLE channel(id INTEGER, name TEXT, package TEXT, parameters TEXT, "
                             "price REAL)";
const char* const insertion = "INSERT INTO channel(id, name, package, parameters, price) VALUES(:id, :name, "
                              ":package, :parameters, :price)";

QString nameOf(int i)
{
    return QStringLiteral("channel %1").arg(i);
}

QString packageOf(int i)
{
    return QStringLiteral("com.example.game.channel%1").arg(i % 1000);
}

QString parametersOf(int i)
{
    return QStringLiteral("appid=%1&appkey=5f4dcc3b5aa765d61d8327deb882cf99").arg(100000 + i);
}

QList<QVariant> makeRows()
{
    QList<QVariant> rows;
    for (int i = 0; i < rowCount; ++i)
        rows.append(QVariantMap{{QStringLiteral("id"), i},
                                {QStringLiteral("name"), nameOf(i)},
                                {QStringLiteral("package"), packageOf(i)},
                                {QStringLiteral("parameters"), parametersOf(i)},
                                {QStringLiteral("price"), i / 8.0}});
    return rows;
}

QList<QVariant>& rows()
{
    static QList<QVariant> all = makeRows();
    return all;
}

// The worker without its pause.
class Stepped : public DBHelper {
public:
    using DBHelper::commandExec;
};

// A new file with the empty table, for one run.
class Database {
public:
    Database() { execute(creation); }

    QString path() const { return m_folder.filePath(QStringLiteral("records.db")); }

    void execute(const char* sql) const
    {
        sqlite3* handle = nullptr;
        sqlite3_open(path().toUtf8().constData(), &handle);
        if (sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql, sqlite3_errmsg(handle));
        sqlite3_close(handle);
    }

private:
    QTemporaryDir m_folder;
};

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

double secondsOf(const std::function<void()>& work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    };
    const double begin = now();
    work();
    return now() - begin;
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
double insertQueued(const Database& database, bool encode)
{
    Stepped helper;
    helper.initDatabase(database.path());
    const double seconds = secondsOf([&helper, encode] {
        helper.threadToDatabase(DB_INSERT, table, rows(), QString(), QVariant(), encode, QString());
        helper.commandExec();
    });
    helper.closeDB();
    return seconds;
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

template <typename Text> struct Record {
    int id;
    Text name;
    Text package;
    Text parameters;
};

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

// Texts in the form that is stored, ready before the measurement.
double insertUtf8TextsByCInterface(const Database& database)
{
    static const QVector<Record<QByteArray>> records = [] {
        QVector<Record<QByteArray>> all;
        for (int i = 0; i < rowCount; ++i)
            all.append({i, nameOf(i).toUtf8(), packageOf(i).toUtf8(), parametersOf(i).toUtf8()});
        return all;
    }();
    return insertByCInterface(
        database, records, [](sqlite3_stmt* statement, const Record<QByteArray>& record) {
            int place = 2;
            for (const QByteArray* text : {&record.name, &record.package, &record.parameters})
                sqlite3_bind_text(statement, place++, text->constData(), text->size(), SQLITE_STATIC);
        });
}

// Named connections of Qt's own, taken down in the right order.
double withConnection(const Database& database, const std::function<double(QSqlDatabase&)>& work)
{
    double seconds = 0;
    {
        QSqlDatabase connection =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("peer"));
        connection.setDatabaseName(database.path());
        connection.open();
        seconds = work(connection);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("peer"));
    return seconds;
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

// The time that the peer's process measures itself: neither its start nor its making of the rows.
double secondsByPython(const char* script, const Database& database)
{
    QProcess process;
    process.start(QStringLiteral("/usr/bin/python3"),
                  {QStringLiteral("-c"), QLatin1String(script), database.path(), QString::number(rowCount)});
    process.waitForFinished(-1);
    return process.readAllStandardOutput().toDouble();
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

const Database& filledDatabase()
{
    static const Database& database = [] {
        auto* const made = new Database;
        insertUtf8TextsByCInterface(*made);
        return std::ref(*made);
    }();
    return database;
}

void selectRows(benchmark::State& state)
{
    Stepped helper;
    helper.initDatabase(filledDatabase().path());
    int found = 0;
    QObject::connect(&helper, &DBHelper::onSelectFinish,
                     [&found](const QString&, const QVariantList& rows) { found = rows.size(); });
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(secondsOf([&helper] {
            helper.threadToDatabase(DB_SELECT, table, false, QString());
            helper.commandExec();
        }));
        if (found != rowCount)
            state.SkipWithError("rows are missing");
    }
    helper.closeDB();
}

void selectByPython(benchmark::State& state)
{
    static const char* const script = R"python(
import sqlite3, sys, time
connection = sqlite3.connect(sys.argv[1])
begin = time.process_time()
cursor = connection.execute("SELECT * FROM channel")
names = [field[0] for field in cursor.description]
rows = [dict(zip(names, row)) for row in cursor]
print(time.process_time() - begin)
)python";
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(secondsByPython(script, filledDatabase()));
    }
}

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

// The shortest loop that a host would write to get the same list of maps.
void selectByQuery(benchmark::State& state)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        QList<QVariant> found;
        state.SetIterationTime(withConnection(filledDatabase(), [&found](QSqlDatabase& connection) {
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
            });
        }));
        if (found.size() != rowCount)
            state.SkipWithError("rows are missing");
    }
}

// As a view would: each value is asked for once.
void selectByTableModel(benchmark::State& state)
{
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        state.SetIterationTime(withConnection(filledDatabase(), [](QSqlDatabase& connection) {
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
            });
        }));
    }
}

// A command as a host's line of code queues one: the texts are made at the call, the row was there before.
// Its number is none that the worker knows, so that taking it off again is cheap.
template <typename Queue, typename Append> void queueSomething(Queue& queue, Append append)
{
    static QVariantMap row = rows().at(0).toMap();
    (queue.*append)(static_cast<DB_COMMAND>(-1), QString::fromLatin1("channel"), row,
                    QString::fromLatin1("id"), QVariant(QString::fromLatin1("7")), false,
                    QString::fromLatin1("tag"));
}

// The seconds that a command takes while as many as the benchmark's argument are queued before it.
void measureQueue(benchmark::State& state, const std::function<void()>& queueOne,
                  const std::function<void()>& takeOne)
{
    constexpr int commandsAtOnce = 1000;
    for (qint64 i = 0; i < state.range(0); ++i)
        queueOne();
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const double seconds = secondsOf([&queueOne] {
            for (int i = 0; i < commandsAtOnce; ++i)
                queueOne();
        });
        state.SetIterationTime(seconds / commandsAtOnce);
        for (int i = 0; i < commandsAtOnce; ++i)
            takeOne();
    }
}

void queueCommand(benchmark::State& state)
{
    using Append = bool (DBHelper::*)(DB_COMMAND, QString, QVariantMap&, QString, QVariant, bool, QString);
    Stepped helper;
    measureQueue(
        state, [&helper] { queueSomething(helper, Append(&DBHelper::threadToDatabase)); },
        [&helper] { helper.commandExec(); });
}

// The same command put behind a plain list under a mutex.
class LockedList {
public:
    ~LockedList() { qDeleteAll(m_list); }

    bool append(DB_COMMAND command, QString tableName, QVariantMap& row, QString key, QVariant value,
                bool encode, QString tag)
    {
        Q_UNUSED(key)
        Q_UNUSED(value)
        auto record = std::make_unique<ST_DB_COMMAND>();
        record->command = command;
        record->tableName = std::move(tableName);
        record->mapValue = row;
        record->bEncode = encode;
        record->usrExt = std::move(tag);
        const QMutexLocker locker(&m_mutex);
        m_list.append(record.release());
        return true;
    }

    void takeFirst() { delete m_list.takeFirst(); }

private:
    QMutex m_mutex;
    QList<ST_DB_COMMAND*> m_list;
};

void appendToLockedList(benchmark::State& state)
{
    LockedList list;
    measureQueue(
        state, [&list] { queueSomething(list, &LockedList::append); }, [&list] { list.takeFirst(); });
}

struct Contender {
    std::string name;
    Insertion insert;
};

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
    const auto plain = [](const Database& database) { return insertQueued(database, false); };
    addAll("insert_100000_rows,_one_list", plain);
    add("insert_100000_rows,_one_list", {"QSqlQuery_prepared_once", insertByPreparedQuery});
    addAll("insert_100000_rows,_a_command_each", insertQueuedRowByRow);
    addAll("insert_100000_rows,_a_direct_call_each", insertDirectly);
    const auto encoded = [](const Database& database) { return insertQueued(database, true); };
    add("insert_100000_rows,_one_list,_encoded", {"quenzo", encoded});
    add("insert_100000_rows,_one_list,_encoded", {"not_encoded", plain});
}

void registerOthers()
{
    const auto measuredByHand = [](const char* name, void (*function)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(name, function)->UseManualTime();
    };
    const std::pair<const char*, void (*)(benchmark::State&)> once[] = {
        {"update_20000_rows_by_key,_a_call_each/quenzo", updateByKey},
        {"update_20000_rows_by_key,_a_call_each/C_interface_prepared_once", updateByCInterface},
        {"update_20000_rows_by_key,_a_call_each/python3_execute", updateByPython},
        {"select_100000_rows/quenzo", selectRows},
        {"select_100000_rows/python3_dicts", selectByPython},
        {"select_100000_rows/QSqlQuery_loop", selectByQuery},
        {"select_100000_rows/QSqlTableModel", selectByTableModel},
    };
    for (const auto& [name, function] : once)
        measuredByHand(name, function)->Iterations(1)->Unit(benchmark::kMillisecond);
    for (const int queued : {10, 1000000}) {
        const std::string row = "queue_a_command_behind_" + std::to_string(queued);
        measuredByHand((row + "/quenzo").c_str(), queueCommand)->Arg(queued)->Iterations(500);
        measuredByHand((row + "/locked_list").c_str(), appendToLockedList)->Arg(queued)->Iterations(500);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    registerInsertions();
    registerOthers();
    registerCodec();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
