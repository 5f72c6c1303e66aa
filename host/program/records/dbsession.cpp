// SPDX-License-Identifier: MIT
#include "records/dbsession.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "records/dbrequest.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSqlDatabase>
#include <QSqlError>
#include <QTimer>

#include <algorithm>

namespace {

struct DBSession {
    Q_DECLARE_TR_FUNCTIONS(DBSession)
};

const QLatin1String rowsTag("rows");
const QLatin1String endTag("end");

// What the connection last failed at; it is this thread's, and the worker is idle.
QString connectionError()
{
    return QSqlDatabase::database(QStringLiteral("Quenzo"), false).lastError().text();
}

void queueRequest(DBHelper& database, DBRequest& request)
{
    if (request.writes()) {
        const QString column = request.conditionColumn();
        database.threadToDatabase(request.command, request.table, request.rows, column,
                                  request.conditions.value(column), request.encode, QString());
    } else {
        database.threadToDatabase(request.command, request.table, request.conditions, QString(), QVariant(),
                                  request.encode, rowsTag);
    }
    // Queued commands report nothing, but a select's rows come in their turn: these say that all have run.
    database.threadToDatabase(DB_SELECT, QStringLiteral("(SELECT 1)"), false, endTag);
}

QVariantList waitUntilDrained(DBHelper& database, Console& console)
{
    constexpr int intervalMs = 20;
    QVariantList rows;
    bool ended = false;
    const QObject receiver;
    QObject::connect(&database, &DBHelper::onSelectFinish, &receiver,
                     [&](const QString&, const QVariantList& found, const QString& tag) {
                         if (tag == rowsTag)
                             rows = found;
                         ended = ended || tag == endTag;
                     });
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        console.showProgress(DBSession::tr("waiting for the database"));
        // The flag stays true from the last command to the commit of its burst.
        if (ended && !database.isRunning())
            loop.quit();
    });
    timer.start(intervalMs);
    database.StartThread();
    loop.exec();
    console.clearProgress();
    return rows;
}

bool writeRow(DBHelper& database, const DBRequest& request, QVariantMap row)
{
    if (request.command == DB_INSERT)
        return database.insertToDatabase(request.table, row, request.encode);
    const QString column = request.conditionColumn();
    return database.updateToDatabase(request.table, column, request.conditions.value(column), row,
                                     request.encode);
}

// Row by row: a list's failure does not tell how far it came.
void runDirectly(DBHelper& database, DBRequest& request, DBOutcome& outcome)
{
    if (request.command == DB_SELECT) {
        outcome.rows = database.selectFromDatabase(request.table, request.conditions, request.encode);
    } else if (request.command == DB_DELETE) {
        database.deleteFromDatabase(request.table, request.conditions, request.encode);
    } else {
        const auto failed =
            std::find_if(request.rows.cbegin(), request.rows.cend(),
                         [&](const QVariant& row) { return !writeRow(database, request, row.toMap()); });
        outcome.written = int(failed - request.rows.cbegin());
    }
}

QString failureText(const DBRequest& request, const QString& cause)
{
    switch (request.command) {
    case DB_INSERT:
        return DBSession::tr("cannot insert into %1: %2.").arg(request.table, cause);
    case DB_UPDATE:
        return DBSession::tr("cannot update %1: %2.").arg(request.table, cause);
    case DB_DELETE:
        return DBSession::tr("cannot delete from %1: %2.").arg(request.table, cause);
    case DB_SELECT:
        break;
    }
    return DBSession::tr("cannot select from %1: %2.").arg(request.table, cause);
}

// What a failed statement has left in the file.
QString remainsText(const DBRequest& request, int written)
{
    if (request.rows.size() < 2)
        return {};
    if (request.direct) {
        return DBSession::tr("This is row %1 of %2; those before it stay written.")
            .arg(QString::number(written + 1), QString::number(request.rows.size()));
    }
    return request.command == DB_INSERT
        ? DBSession::tr("No row is written.")
        : DBSession::tr("What the rows before this one changed stays written.");
}

// The driver adds what it was doing, in words of its own.
QString causeOf(QString text)
{
    for (const char* doing :
         {"Unable to fetch row", "Unable to execute statement", "Parameter count mismatch",
          "Unable to commit transaction", "Error opening database"}) {
        if (text.endsWith(QLatin1String(doing)) && text.size() > int(qstrlen(doing)))
            text.chop(int(qstrlen(doing)));
    }
    return text.trimmed();
}

QString errorOf(const DBRequest& request, const DBOutcome& outcome)
{
    // A failed statement gives three messages: its text, the operation and the cause.
    const QStringList messages = Diagnostics::takeAll();
    if (messages.size() >= 3) {
        QStringList sentences{failureText(request, causeOf(messages.at(2)))};
        const QString remains = remainsText(request, outcome.written);
        if (!remains.isEmpty())
            sentences.append(remains);
        sentences.append(DBSession::tr("The statement: %1").arg(messages.at(0)));
        return sentences.join(QLatin1Char(' '));
    }
    // A failed commit goes to the tool's log, beside the connection.
    const QString cause = connectionError();
    if (!messages.isEmpty() || cause.isEmpty())
        return messages.join(QStringLiteral("; "));
    return DBSession::tr("the transaction on %1 cannot be committed: %2. Nothing is written.")
        .arg(request.table, causeOf(cause));
}

} // namespace

DBOutcome runRequest(DBRequest request, Console& console)
{
    DBOutcome outcome;
    DBHelper& database = *DBHelper::getInstance();
    if (!database.initDatabase(request.file)) {
        outcome.error = DBSession::tr("the database '%1' cannot be opened: %2")
                            .arg(request.file, causeOf(connectionError()));
        return outcome;
    }
    if (request.direct) {
        runDirectly(database, request, outcome);
    } else {
        queueRequest(database, request);
        outcome.rows = waitUntilDrained(database, console);
    }
    outcome.error = errorOf(request, outcome);
    database.closeDB();
    DBHelper::removeDatabase();
    return outcome;
}
