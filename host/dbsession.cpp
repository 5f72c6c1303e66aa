// SPDX-License-Identifier: MIT
#include "dbsession.h"

#include "console.h"
#include "dbrequest.h"
#include "diagnostics.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSqlDatabase>
#include <QSqlError>
#include <QTimer>

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

QString conditionColumn(const DBRequest& request)
{
    return request.conditions.isEmpty() ? QString() : request.conditions.firstKey();
}

void queueRequest(DBHelper& database, DBRequest& request)
{
    if (request.writes()) {
        const QString column = conditionColumn(request);
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

QVariantList runDirectly(DBHelper& database, DBRequest& request)
{
    const QString column = conditionColumn(request);
    switch (request.command) {
    case DB_INSERT:
        database.insertToDatabase(request.table, request.rows, request.encode);
        break;
    case DB_UPDATE:
        database.updateToDatabase(request.table, column, request.conditions.value(column), request.rows,
                                  request.encode);
        break;
    case DB_DELETE:
        database.deleteFromDatabase(request.table, request.conditions, request.encode);
        break;
    case DB_SELECT:
        return database.selectFromDatabase(request.table, request.conditions, request.encode);
    }
    return {};
}

} // namespace

DBOutcome runRequest(DBRequest request, Console& console)
{
    DBOutcome outcome;
    DBHelper& database = *DBHelper::getInstance();
    if (!database.initDatabase(request.file)) {
        outcome.error = QStringLiteral("%1 (%2)").arg(Diagnostics::take(), connectionError());
        return outcome;
    }
    if (request.direct) {
        outcome.rows = runDirectly(database, request);
    } else {
        queueRequest(database, request);
        outcome.rows = waitUntilDrained(database, console);
    }
    // Statements tell of their failure by messages; a failed commit goes to the tool's log, beside the
    // connection.
    outcome.error = Diagnostics::take();
    if (outcome.error.isEmpty())
        outcome.error = connectionError();
    database.closeDB();
    DBHelper::removeDatabase();
    return outcome;
}
