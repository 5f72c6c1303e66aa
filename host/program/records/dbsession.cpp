// SPDX-License-Identifier: MIT
#include "records/dbsession.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "console/interruptreport.h"
#include "console/progress.h"
#include "console/spinner.h"
#include "records/dbrequest.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace {

struct DBSession {
    Q_DECLARE_TR_FUNCTIONS(DBSession)
};

const QLatin1String rowsTag("rows");
const QLatin1String endTag("end");

// In a table's place: how many rows the connection's last statement that writes has met.
const QString lastChanges = QStringLiteral("(SELECT changes() AS changed)");

int changedRows(const QVariantList& found)
{
    return found.value(0).toMap().value(QStringLiteral("changed")).toInt();
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
    database.threadToDatabase(DB_SELECT, lastChanges, false, endTag);
}

// Gives what has come of it. False when the system has no thread for the worker: nothing is done then.
bool waitUntilDrained(DBHelper& database, Console& console, DBOutcome& outcome)
{
    constexpr int intervalMs = 20;
    bool ended = false;
    const QObject receiver;
    QObject::connect(&database, &DBHelper::onSelectFinish, &receiver,
                     [&](const QString&, const QVariantList& found, const QString& tag) {
                         if (tag == rowsTag)
                             outcome.rows = found;
                         if (tag != endTag)
                             return;
                         outcome.changed = changedRows(found);
                         ended = true;
                     });
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // The flag stays true from the last command to the commit of its burst.
        if (ended && !database.isRunning())
            loop.quit();
    });
    timer.start(intervalMs);
    const InterruptReport report(console);
    const Spinner spinner(console, [] { return Progress{DBSession::tr("waiting for the database")}; });
    database.StartThread();
    // The class's own isRunning() tells of its commands.
    if (!database.QThread::isRunning())
        return false;
    loop.exec();
    return true;
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
int writeRows(DBHelper& database, const DBRequest& request, Console& console)
{
    constexpr int rowsAStep = 16;
    PacedProgress progress(console);
    int written = 0;
    for (const QVariant& row : request.rows) {
        if (!writeRow(database, request, row.toMap()))
            break;
        if (++written % rowsAStep == 0)
            progress.show({DBSession::tr("writing rows"), Progress::Rows, written, request.rows.size()});
    }
    return written;
}

void runDirectly(DBHelper& database, DBRequest& request, Console& console, DBOutcome& outcome)
{
    if (request.command == DB_SELECT) {
        outcome.rows = database.selectFromDatabase(request.table, request.conditions, request.encode);
    } else if (request.command == DB_DELETE) {
        database.deleteFromDatabase(request.table, request.conditions, request.encode);
    } else {
        outcome.written = writeRows(database, request, console);
    }
    QVariantMap none;
    outcome.changed = changedRows(database.selectFromDatabase(lastChanges, none, false));
}

// How the library's lines begin that say what became of a burst as a whole.
const QLatin1String commitFailed("cannot commit: ");
const QLatin1String commitCameLate("committed at last");

bool isOfCommit(const QString& line)
{
    return line.startsWith(commitFailed) || line.startsWith(commitCameLate);
}

// What a failed statement has left in the file.
QString remainsText(const DBRequest& request, int written, bool committed)
{
    if (request.rows.size() < 2)
        return {};
    if (request.direct) {
        return DBSession::tr("This is row %1 of %2; those before it stay written.")
            .arg(QString::number(written + 1), QString::number(request.rows.size()));
    }
    if (request.command == DB_INSERT)
        return DBSession::tr("No row is written.");
    return committed ? DBSession::tr("What the rows before this one changed stays written.")
                     : DBSession::tr("What the rows before this one changed is undone, too.");
}

// From the lines of the library alone: whoever fails tells so there.
QString errorOf(const DBRequest& request, const DBOutcome& outcome, const QStringList& lines)
{
    const auto failure = std::find_if_not(lines.cbegin(), lines.cend(), isOfCommit);
    const QString commit = lines.isEmpty() || !isOfCommit(lines.last()) ? QString() : lines.last();
    const bool committed = !commit.startsWith(commitFailed);
    if (failure != lines.cend()) {
        const QString remains = remainsText(request, outcome.written, committed);
        return remains.isEmpty() ? *failure : *failure + QStringLiteral(". ") + remains;
    }
    if (committed)
        return {};
    return DBSession::tr("the transaction on %1 cannot be committed: %2. Nothing is written.")
        .arg(request.table, commit.mid(commitFailed.size()));
}

} // namespace

DBOutcome runRequest(DBRequest request, Console& console)
{
    DBOutcome outcome;
    DBHelper& database = *DBHelper::getInstance();
    if (!database.initDatabase(request.file)) {
        outcome.error = Diagnostics::take();
        return outcome;
    }
    bool started = true;
    if (request.direct) {
        runDirectly(database, request, console, outcome);
    } else {
        queueRequest(database, request);
        started = waitUntilDrained(database, console, outcome);
    }
    // Closed first: until then a commit that failed is tried again.
    database.closeDB();
    DBHelper::removeDatabase();
    outcome.error = started ? errorOf(request, outcome, Diagnostics::takeAll())
                            : DBSession::tr("no thread could be started for the work; nothing was done");
    return outcome;
}
