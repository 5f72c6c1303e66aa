// SPDX-License-Identifier: MIT
#include "records_data.h"

#include "records_cinterface.h"

#include <QProcess>

#include <ctime>
#include <sqlite3.h>

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

namespace {

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

} // namespace

QList<QVariant>& rows()
{
    static QList<QVariant> all = makeRows();
    return all;
}

Database::Database()
{
    execute("CREATE TABLE channel(id INTEGER, name TEXT, package TEXT, parameters TEXT, price REAL)");
}

void Database::execute(const char* sql) const
{
    sqlite3* handle = nullptr;
    sqlite3_open(path().toUtf8().constData(), &handle);
    if (sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("%s: %s", sql, sqlite3_errmsg(handle));
    sqlite3_close(handle);
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

double secondsByPython(const char* script, const Database& database, const QString& argument)
{
    QProcess process;
    process.start(
        QStringLiteral("/usr/bin/python3"),
        {QStringLiteral("-c"), QLatin1String(script), database.path(), QString::number(rowCount), argument});
    process.waitForFinished(-1);
    return process.readAllStandardOutput().toDouble();
}

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
