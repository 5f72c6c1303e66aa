// SPDX-License-Identifier: MIT
#ifndef RECORDS_DATA_H
#define RECORDS_DATA_H

#include <dbhelper.h>

#include <QSqlDatabase>
#include <QTemporaryDir>

#include <functional>

// What the benchmarks of records share: the rows, files with them, and the measuring.

constexpr int rowCount = 100000;
const QString table = QStringLiteral("channel");
const char* const insertion = "INSERT INTO channel(id, name, package, parameters, price) VALUES(:id, :name, "
                              ":package, :parameters, :price)";

QString nameOf(int i);
QString packageOf(int i);
QString parametersOf(int i);

/** All rows, each a map. */
QList<QVariant>& rows();

// The worker without its pause.
class Stepped : public DBHelper {
public:
    using DBHelper::commandExec;
};

// A new file with the empty table, for one run.
class Database {
public:
    Database();

    QString path() const { return m_folder.filePath(QStringLiteral("records.db")); }
    void execute(const char* sql) const;

private:
    QTemporaryDir m_folder;
};

// A file with all rows.
const Database& filledDatabase();

// The processor's time of this thread: what else a shared machine does is not in it.
double secondsOf(const std::function<void()>& work);

// Named connections of Qt's own, taken down in the right order.
double withConnection(const Database& database, const std::function<double(QSqlDatabase&)>& work);

// The time that the peer's process measures itself: neither its start nor its making of the rows.
double secondsByPython(const char* script, const Database& database, const QString& argument = {});

// Inserts all rows by the C interface, with texts in the form that is stored, ready before the measurement.
double insertUtf8TextsByCInterface(const Database& database);

#endif
