// SPDX-License-Identifier: MIT
// Statements with any names and values, in the forms for maps and lists, do to a database in memory what Qt's
// driver does by itself, and report the same.
#include "driverpeer.h"
#include "fuzz.h"
#include "messagelog.h"

#include <dbhelper.h>

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>

using namespace DriverPeer;
using Fuzz::require;

namespace {

class Library : public DBHelper {
public:
    Library() = default;
};

const QStringList schema{
    QStringLiteral("CREATE TABLE a(id UNIQUE, name, state INTEGER, \"odd name\" REAL)"),
    QStringLiteral("CREATE TABLE b(id INTEGER UNIQUE ON CONFLICT ROLLBACK, name TEXT CHECK(name != 'bad'))"),
    QStringLiteral("CREATE VIEW v AS SELECT id, name FROM a"),
};

// What one call is given.
struct Work {
    DB_COMMAND command = DB_SELECT;
    QString table;
    Row values;
    QList<QVariant> rows;
    bool isList = false;
    QString key;
    QVariant keyValue;
    bool encode = false;
};

QString nameOf(Fuzz::Input& input, const QStringList& known)
{
    const int choice = input.below(known.size() + 1);
    return choice < known.size() ? known.at(choice) : input.text();
}

QVariant valueOf(Fuzz::Input& input)
{
    switch (input.below(8)) {
    case 0:
        return {};
    case 1:
        return input.text();
    case 2:
        return static_cast<qlonglong>(input.number());
    case 3:
        return static_cast<double>(input.number()) / 8;
    case 4:
        return input.someBytes();
    case 5:
        return input.below(2) == 0;
    case 6:
        return QDate(2026, 1, 1).addDays(input.byte());
    default:
        return input.byte();
    }
}

Row rowOf(Fuzz::Input& input)
{
    Row row;
    for (int columns = input.below(4); columns > 0; --columns) {
        const QString column =
            nameOf(input, {QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("state")});
        row.insert(column, valueOf(input));
    }
    return row;
}

Work workOf(Fuzz::Input& input)
{
    Work work;
    work.command = static_cast<DB_COMMAND>(input.below(4));
    work.table = nameOf(input, {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("v")});
    work.encode = input.below(4) == 0;
    work.isList = (work.command == DB_INSERT || work.command == DB_UPDATE) && input.below(2) == 0;
    work.values = rowOf(input);
    for (int rows = work.isList ? input.below(4) : 0; rows > 0; --rows)
        work.rows.append(rowOf(input));
    if (work.command == DB_UPDATE) {
        work.key = nameOf(input, {QStringLiteral("id"), QStringLiteral("name")});
        work.keyValue = valueOf(input);
    }
    return work;
}

bool write(DBHelper& library, Work& work)
{
    if (work.command == DB_DELETE)
        return library.deleteFromDatabase(work.table, work.values, work.encode);
    if (work.command == DB_INSERT)
        return work.isList ? library.insertToDatabase(work.table, work.rows, work.encode)
                           : library.insertToDatabase(work.table, work.values, work.encode);
    return work.isList
        ? library.updateToDatabase(work.table, work.key, work.keyValue, work.rows, work.encode)
        : library.updateToDatabase(work.table, work.key, work.keyValue, work.values, work.encode);
}

Report call(DBHelper& library, MessageLog& log, Work work)
{
    Report report;
    if (work.command == DB_SELECT)
        report.rows = library.selectFromDatabase(work.table, work.values, false);
    else
        report.done = write(library, work);
    const QStringList texts = log.takeDebugTexts();
    report.error = texts.value(2);
    if (work.command == DB_SELECT)
        report.done = texts.isEmpty();
    require(report.done == texts.isEmpty(), "what fails is told");
    return report;
}

Report expected(QSqlDatabase& peer, const Work& work)
{
    const Row bound = encoded(work.values, work.encode && work.command != DB_SELECT);
    if (work.command == DB_SELECT)
        return run(peer, selection(work.table, bound), bound);
    if (work.command == DB_DELETE)
        return run(peer, deletion(work.table, bound), bound);
    Report report{true, {}, {}};
    const QList<QVariant> rows = work.isList ? work.rows : QList<QVariant>{work.values};
    for (auto row = rows.cbegin(); report.done && row != rows.cend(); ++row) {
        const Row one = encoded(row->toMap(), work.encode);
        report = work.command == DB_INSERT
            ? run(peer, insertion(work.table, one), one)
            : run(peer, change(work.table, one, work.key), one, work.key, work.keyValue);
    }
    if (!report.done && work.isList && work.command == DB_INSERT)
        peer.rollback();
    return report;
}

void executeOnBoth(QSqlDatabase& peer, const QString& sql)
{
    QSqlQuery ours(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QSqlQuery theirs(peer);
    require(ours.exec(sql) == theirs.exec(sql), "a host's statement does the same in both");
}

void compare(QSqlDatabase& peer, Fuzz::Input& input)
{
    MessageLog log;
    Library library;
    require(library.initDatabase(QStringLiteral(":memory:")), "a database in memory opens");
    require(peer.open(), "a database in memory opens");
    for (const QString& sql : schema)
        executeOnBoth(peer, sql);
    while (!input.atEnd()) {
        if (input.below(16) == 0) {
            executeOnBoth(peer, input.below(2) == 0 ? QStringLiteral("BEGIN") : QStringLiteral("COMMIT"));
            continue;
        }
        const Work work = workOf(input);
        const Report theirs = expected(peer, work);
        const Report ours = call(library, log, work);
        require(ours.done == theirs.done, "a call succeeds where the driver's statements do");
        require(ours.error == theirs.error, "a failure has the driver's reason");
        require(described(ours.rows) == described(theirs.rows), "the rows are the driver's");
    }
    for (const char* table : {"a", "b", "sqlite_master"})
        require(dump(QSqlDatabase::database(QStringLiteral("Quenzo")), QLatin1String(table))
                    == dump(peer, QLatin1String(table)),
                "the tables are the same in the end");
    library.closeDB();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::startApplication();
    Fuzz::Input input(data, size);
    const QString name = QStringLiteral("peer");
    {
        QSqlDatabase peer = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        peer.setDatabaseName(QStringLiteral(":memory:"));
        compare(peer, input);
    }
    QSqlDatabase::removeDatabase(name);
    return 0;
}
