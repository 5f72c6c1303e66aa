// SPDX-License-Identifier: MIT
#include "recordsfixture.h"
#include "runroot.h"

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

// What the worker makes of queued commands, and their transactions; the test is the worker.
class tst_DBBursts : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void mapInsertIsWrittenAsOneRow();
    void mapIsWrittenBehindTheRowsOfItsCommand();
    void updateTakesItsConditionAlong();
    void commandsRunInOrder();
    void burstIsOneTransaction();
    void failedInsertRollsBackTheWholeBurst();
    void failedLaterRowOfAListRollsBackTheWholeBurst();
    void failedUpdatesDeletesAndSelectsLeaveTheBurst();
    void failedCommitGoesToTheLog();
    void closingLeavesTheTransactionFlag();
    void commandsForAClosedDatabaseFail();
    void emptyStepCommitsNothing();
};

void tst_DBBursts::mapInsertIsWrittenAsOneRow()
{
    Row values = row(1, QStringLiteral("one"));
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, values, QString(), QVariant(), false, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id || name FROM channel")),
             QVariantList{QStringLiteral("1one")});
}

void tst_DBBursts::mapIsWrittenBehindTheRowsOfItsCommand()
{
    ST_DB_COMMAND command;
    command.command = DB_INSERT;
    command.tableName = table;
    command.mapValue = row(3, 0);
    command.lsRecord = {row(1, 0), row(2, 0)};
    DBCommandEvent event;
    event.m_command = command;
    m_database->customEvent(&event);
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 3}));
}

void tst_DBBursts::updateTakesItsConditionAlong()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 7, false));
    Row values{{QStringLiteral("name"), QStringLiteral("new")}};
    QVERIFY(
        m_database->threadToDatabase(DB_UPDATE, table, values, QStringLiteral("id"), 7, false, QString()));
    QList<QVariant> rows{Row{{QStringLiteral("state"), 1}}, Row{{QStringLiteral("state"), 2}}};
    QVERIFY(m_database->threadToDatabase(DB_UPDATE, table, rows, QStringLiteral("id"), 7, false, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name || state FROM channel")),
             QVariantList{QStringLiteral("new2")});
}

void tst_DBBursts::commandsRunInOrder()
{
    QVariantList ids;
    for (int id = 0; id < 1000; ++id) {
        QVERIFY(m_database->queueRow(id, QString()));
        ids.append(id);
    }
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), ids);
}

void tst_DBBursts::burstIsOneTransaction()
{
    for (int id = 1; id <= 3; ++id)
        QVERIFY(m_database->queueRow(id, QString()));
    m_database->commandExec();
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), QVariantList());
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 3}));
    QCOMPARE(RunRoot::log(), QByteArray());
}

void tst_DBBursts::failedInsertRollsBackTheWholeBurst()
{
    for (const int id : {1, 2, 2, 3})
        QVERIFY(m_database->queueRow(id, QString()));
    m_database->commandExec();
    m_database->commandExec();
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), QVariantList());
    QVERIFY(m_database->queueRow(4, QString()));
    m_database->commandExec();
    // Without a transaction the rest commits by itself, statement by statement.
    QCOMPARE(m_database->committedIds(), QVariantList{3});
    QCOMPARE(RunRoot::log(), QByteArray());
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{3, 4}));
    QVERIFY2(RunRoot::log().contains("cannot commit - no transaction is active"), RunRoot::log().constData());
    QCOMPARE(RunRoot::log().count('\n'), 1);
    QVERIFY(!m_database->isRunning());

    QVERIFY(m_database->queueRow(5, QString()));
    QVERIFY(m_database->queueRow(6, QString()));
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), (QVariantList{3, 4}));
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), (QVariantList{3, 4, 5, 6}));
}

void tst_DBBursts::failedLaterRowOfAListRollsBackTheWholeBurst()
{
    QVERIFY(m_database->queueRow(1, QString()));
    QList<QVariant> rows{row(2, 0), row(3, 0), row(3, 0), row(4, 0)};
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, rows, QString(), QVariant(), false, QString()));
    QVERIFY(m_database->queueRow(5, QString()));
    QVERIFY(m_database->queueRow(6, QString()));
    m_database->commandExec();
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), QVariantList());
    QCOMPARE(m_log->takeDebugTexts(),
             (QStringList{QStringLiteral("INSERT INTO channel(id, name) VALUES(:id, :name);"),
                          QStringLiteral("Error at insert channel"),
                          QStringLiteral("UNIQUE constraint failed: channel.id Unable to fetch row")}));
    m_database->commandExec();
    QVERIFY2(m_database->committedIds() == QVariantList{5}, "without a transaction each row is committed");
    QCOMPARE(RunRoot::log(), QByteArray());
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), (QVariantList{5, 6}));
    QVERIFY2(RunRoot::log().contains("cannot commit - no transaction is active"), RunRoot::log().constData());
    QCOMPARE(RunRoot::log().count('\n'), 1);
}

void tst_DBBursts::failedUpdatesDeletesAndSelectsLeaveTheBurst()
{
    QVERIFY(m_database->queueRow(1, QString()));
    Row values{{QStringLiteral("missing"), 1}};
    QVERIFY(
        m_database->threadToDatabase(DB_UPDATE, table, values, QStringLiteral("id"), 1, false, QString()));
    QVERIFY(m_database->threadToDatabase(DB_DELETE, table, QStringLiteral("missing"), 1, false, QString()));
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, QStringLiteral("missing"), 1, false, QString()));
    QVERIFY(m_database->queueRow(2, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2}));
    QCOMPARE(m_log->takeDebugTexts().size(), 9);
    QCOMPARE(RunRoot::log(), QByteArray());
}

void tst_DBBursts::failedCommitGoesToTheLog()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 0, false));
    {
        QSqlDatabase reader = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        reader.setDatabaseName(m_database->path());
        QVERIFY(reader.open());
        QSqlQuery query(reader);
        QVERIFY(query.exec(QStringLiteral("SELECT * FROM channel")));
        QVERIFY(query.next());
        // Under the default journal a transaction cannot be written while somebody reads.
        QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"), false);
        QVERIFY(QSqlQuery(connection).exec(QStringLiteral("PRAGMA busy_timeout = 50")));
        QVERIFY(m_database->queueRow(1, QString()));
        m_database->runBurst();
        QVERIFY(!m_database->isRunning());
        QVERIFY2(RunRoot::log().contains("database is locked"), RunRoot::log().constData());
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    // What the burst wrote is as the database left it: still in its transaction, which the next burst
    // commits.
    QVERIFY(m_database->queueRow(2, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{QStringLiteral("0"), 1, 2}));
}

void tst_DBBursts::closingLeavesTheTransactionFlag()
{
    for (const int id : {1, 2, 3})
        QVERIFY(m_database->queueRow(id, QString()));
    m_database->commandExec();
    m_database->closeDB();
    QVERIFY(m_database->reopen());
    // The worker believes in its transaction, so that none is begun.
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), QVariantList{2});
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{2, 3}));
    QVERIFY(RunRoot::log().contains("no transaction is active"));
}

void tst_DBBursts::commandsForAClosedDatabaseFail()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    m_database->closeDB();
    QVERIFY(m_database->queueRow(1, QString()));
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QString()));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(m_log->takeDebugTexts().size(), 6);
    QCOMPARE(RunRoot::log().count('\n'), 1);
}

void tst_DBBursts::emptyStepCommitsNothing()
{
    m_database->commandExec();
    QVERIFY(!m_database->isRunning());
    QCOMPARE(RunRoot::log(), QByteArray());
}

QTEST_GUILESS_MAIN(tst_DBBursts)
#include "tst_dbbursts.moc"
