// SPDX-License-Identifier: MIT
#include "messagelog.h"
#include "runroot.h"
#include "steppeddatabase.h"

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <future>
#include <memory>

using Row = QMap<QString, QVariant>;

namespace {

const QString table = QStringLiteral("channel");

Row row(const QVariant& id, const QVariant& name)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("name"), name}};
}

} // namespace

// The connection, the queue, the steps of the worker and its transactions; the test is the worker.
class tst_DBHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void numbersOfCommandsAndEventAreFixed();
    void secondOpeningFailsAndSaysSo();
    void fileThatCannotBeOpenedFailsAndSaysSo();
    void closedConnectionOpensAgain();
    void removedConnectionOpensAgain();
    void removingWithoutConnectionDoesNothing();
    void connectionIsNamedQuenzo();

    void coreFormMakesRunningTrue();
    void listFormLeavesRunningAsItIs();
    void closingEndsRunning();
    void commandEventIsSentOnTheObjectsOwnThread();
    void commandsOfOtherThreadsAreQueued();
    void otherEventsAreDropped();
    void commandEventCarriesItsCommand();
    void commandEventsOfHostsStayAsTheyAre();

    void oneConditionFormRejectsUpdate();
    void noConditionFormRejectsWriting_data();
    void noConditionFormRejectsWriting();
    void oneConditionFormTurnsValuesIntoText();
    void oneConditionFormInsertsOneColumn();
    void noConditionDeleteEmptiesTheTable();
    void noConditionSelectYieldsEveryRowWithTheTag();
    void failedSelectStillReportsNoRows();
    void selectWithConditionsYieldsTheRowsThatMeetThem();

    void mapInsertIsWrittenAsOneRow();
    void mapIsWrittenBehindTheRowsOfItsCommand();
    void updateTakesItsConditionAlong();
    void encodingIsTakenAlong();
    void updateWithoutConditionIsBuiltFromEmptyTexts_data();
    void updateWithoutConditionIsBuiltFromEmptyTexts();
    void unknownCommandsAreIgnored();
    void commandsRunInOrder();

    void burstIsOneTransaction();
    void failedInsertRollsBackTheWholeBurst();
    void failedLaterRowOfAListRollsBackTheWholeBurst();
    void failedUpdatesDeletesAndSelectsLeaveTheBurst();
    void failedCommitGoesToTheLog();
    void closingLeavesTheTransactionFlag();
    void commandsForAClosedDatabaseFail();
    void emptyStepCommitsNothing();

    void messagesAreWrittenWithoutTheConnectionsLock();
    void signalsAreEmittedWithoutTheConnectionsLock();

private:
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<SteppedDatabase> m_database;
};

void tst_DBHelper::init()
{
    RunRoot::clear();
    m_log = std::make_unique<MessageLog>();
    m_database = std::make_unique<SteppedDatabase>();
    m_database->openNew();
}

void tst_DBHelper::cleanup()
{
    m_database.reset();
    QCOMPARE(m_log->takeWarnings(), QStringList());
    m_log.reset();
}

void tst_DBHelper::numbersOfCommandsAndEventAreFixed()
{
    QCOMPARE(int(DB_SELECT), 0);
    QCOMPARE(int(DB_INSERT), 1);
    QCOMPARE(int(DB_UPDATE), 2);
    QCOMPARE(int(DB_DELETE), 3);
    QCOMPARE(int(DB_EVENT_TYPE), 2028);
}

void tst_DBHelper::secondOpeningFailsAndSaysSo()
{
    QVERIFY(!m_database->reopen());
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(messages.first().text, QStringLiteral("Database was opened!"));
    QCOMPARE(messages.first().file, QStringLiteral("QuenzoTool/source/dbhelper"));
    QCOMPARE(messages.first().line, 89);
    QCOMPARE(messages.first().function, QStringLiteral("bool __cdecl DBHelper::initDatabase(class QString)"));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 1, false));
}

void tst_DBHelper::fileThatCannotBeOpenedFailsAndSaysSo()
{
    m_database->closeDB();
    QVERIFY(!m_database->initDatabase(RunRoot::path() + QStringLiteral("/no/such/folder/records.db")));
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().text, QStringLiteral("fail to open database!"));
    QCOMPARE(messages.first().line, 97);
    QCOMPARE(messages.first().function, QStringLiteral("bool __cdecl DBHelper::initDatabase(class QString)"));

    QVERIFY(!m_database->deleteFromDatabase(table));
    const QString cause = m_log->takeDebugTexts().value(2);
    QVERIFY2(cause.contains(QLatin1String("unable to open database file")), qUtf8Printable(cause));
    QVERIFY(m_database->reopen());
}

void tst_DBHelper::closedConnectionOpensAgain()
{
    for (int id = 0; id < 3; ++id) {
        QVERIFY(m_database->closeDB());
        QVERIFY(m_database->reopen());
        QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), id, false));
    }
    QCOMPARE(m_database->committedIds().size(), 3);
}

void tst_DBHelper::removedConnectionOpensAgain()
{
    DBHelper* const instance = DBHelper::getInstance();
    QCOMPARE(DBHelper::getInstance(), instance);
    m_database->closeDB();
    const QString path = m_database->path();
    m_database.reset();
    for (int id = 0; id < 3; ++id) {
        QVERIFY(instance->initDatabase(QStringLiteral(":memory:")));
        QVERIFY(QSqlDatabase::contains(QStringLiteral("Quenzo")));
        QVERIFY(instance->closeDB());
        DBHelper::removeDatabase();
        QVERIFY(!QSqlDatabase::contains(QStringLiteral("Quenzo")));
        QVERIFY(!instance->insertToDatabase(table, QStringLiteral("id"), 1, false));
    }
}

void tst_DBHelper::removingWithoutConnectionDoesNothing()
{
    m_database.reset();
    DBHelper::removeDatabase();
    DBHelper::removeDatabase();
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("Quenzo")));
}

void tst_DBHelper::connectionIsNamedQuenzo()
{
    const QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"), false);
    QVERIFY(connection.isOpen());
    QCOMPARE(connection.driverName(), QStringLiteral("QSQLITE"));
    QCOMPARE(connection.databaseName(), m_database->path());
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList{QStringLiteral("Quenzo")});
}

void tst_DBHelper::coreFormMakesRunningTrue()
{
    QVERIFY(!m_database->isRunning());
    Row values = row(1, 2);
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, values, QString(), QVariant(), false, QString()));
    QVERIFY(m_database->isRunning());
    m_database->runBurst();
    QVERIFY(!m_database->isRunning());
}

void tst_DBHelper::listFormLeavesRunningAsItIs()
{
    QVERIFY(m_database->queueRow(1, QString()));
    QVERIFY(!m_database->isRunning());
    m_database->queueRow(2, QString());
    m_database->commandExec();
    QVERIFY2(m_database->isRunning(), "the worker has taken a command and another one is queued");
    m_database->commandExec();
    QVERIFY(!m_database->isRunning());
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2}));
}

void tst_DBHelper::closingEndsRunning()
{
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QString()));
    QVERIFY(m_database->isRunning());
    QVERIFY(m_database->closeDB());
    QVERIFY(!m_database->isRunning());
}

namespace {

class EventWatch : public QObject {
public:
    int seen = 0;

    bool eventFilter(QObject*, QEvent* event) override
    {
        seen += event->type() == DB_EVENT_TYPE ? 1 : 0;
        return false;
    }
};

} // namespace

void tst_DBHelper::commandEventIsSentOnTheObjectsOwnThread()
{
    EventWatch watch;
    m_database->installEventFilter(&watch);
    QVERIFY(m_database->queueRow(1, QString()));
    QCOMPARE(watch.seen, 1);
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBHelper::commandsOfOtherThreadsAreQueued()
{
    QVERIFY(std::async(std::launch::async, [this] { return m_database->queueRow(1, QString()); }).get());
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBHelper::otherEventsAreDropped()
{
    QEvent other(QEvent::User);
    QEvent alien(DB_EVENT_TYPE);
    m_database->customEvent(&other);
    m_database->customEvent(&alien);
    m_database->customEvent(nullptr);
    QVERIFY(!m_database->isRunning());
    m_database->commandExec();
    QCOMPARE(m_database->committedIds(), QVariantList());
}

void tst_DBHelper::commandEventCarriesItsCommand()
{
    ST_DB_COMMAND command;
    command.command = DB_INSERT;
    command.tableName = table;
    command.mapValue = row(1, QStringLiteral("by event"));
    DBCommandEvent event;
    event.m_command = command;
    QCOMPARE(event.type(), DB_EVENT_TYPE);
    m_database->customEvent(&event);
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBHelper::commandEventsOfHostsStayAsTheyAre()
{
    struct HostsEvent : DBCommandEvent {
    } event;
    event.m_command.command = DB_INSERT;
    event.m_command.tableName = table;
    for (const int id : {1, 2}) {
        event.m_command.mapValue = row(id, 0);
        m_database->customEvent(&event);
        QCOMPARE(event.m_command.tableName, table);
        QCOMPARE(event.m_command.mapValue, row(id, 0));
    }
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2}));
}

void tst_DBHelper::oneConditionFormRejectsUpdate()
{
    QVERIFY(!m_database->threadToDatabase(DB_UPDATE, table, QStringLiteral("id"), 1, false, QString()));
    QVERIFY(!m_database->isRunning());
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(messages.first().text, QStringLiteral("Error paramater"));
    QCOMPARE(messages.first().file, QStringLiteral("QuenzoTool/source/dbhelper"));
    QCOMPARE(messages.first().line, 195);
    QCOMPARE(
        messages.first().function,
        QStringLiteral("bool __cdecl DBHelper::threadToDatabase(enum DB_COMMAND,class QString,class QString,"
                       "class QVariant,bool,class QString)"));
}

void tst_DBHelper::noConditionFormRejectsWriting_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("insert") << int(DB_INSERT);
    QTest::newRow("update") << int(DB_UPDATE);
}

void tst_DBHelper::noConditionFormRejectsWriting()
{
    QFETCH(const int, command);
    QVERIFY(!m_database->threadToDatabase(static_cast<DB_COMMAND>(command), table, false, QString()));
    QVERIFY(!m_database->isRunning());
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().text, QStringLiteral("Error paramater"));
    QCOMPARE(messages.first().line, 184);
    QCOMPARE(
        messages.first().function,
        QStringLiteral(
            "bool __cdecl DBHelper::threadToDatabase(enum DB_COMMAND,class QString,bool,class QString)"));
}

void tst_DBHelper::oneConditionFormTurnsValuesIntoText()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    QList<QVariant> rows{row(5, QStringLiteral("number")), row(QStringLiteral("5"), QStringLiteral("text"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, QStringLiteral("id"), 5, false, QString()));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    const QVariantList found = selected.first().at(1).toList();
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().toMap().value(QStringLiteral("name")).toString(), QStringLiteral("text"));
}

void tst_DBHelper::oneConditionFormInsertsOneColumn()
{
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, QStringLiteral("id"), 5, false, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(QStringLiteral("SELECT typeof(id) || id FROM channel")),
             QVariantList{QStringLiteral("text5")});
}

void tst_DBHelper::noConditionDeleteEmptiesTheTable()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 5, false));
    QVERIFY(m_database->threadToDatabase(DB_DELETE, table, false, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), QVariantList());
}

void tst_DBHelper::noConditionSelectYieldsEveryRowWithTheTag()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    QList<QVariant> rows{row(1, 2), row(2, 3)};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QStringLiteral("my tag")));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.first().at(0).toString(), table);
    QCOMPARE(selected.first().at(1).toList().size(), 2);
    QCOMPARE(selected.first().at(2).toString(), QStringLiteral("my tag"));
}

void tst_DBHelper::failedSelectStillReportsNoRows()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    QVERIFY(m_database->threadToDatabase(DB_SELECT, QStringLiteral("missing"), false, QStringLiteral("tag")));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.first().at(1).toList(), QVariantList());
    QCOMPARE(selected.first().at(2).toString(), QStringLiteral("tag"));
}

void tst_DBHelper::selectWithConditionsYieldsTheRowsThatMeetThem()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    QList<QVariant> rows{row(1, 7), row(2, 7), row(3, 8)};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    Row condition = row(2, 7);
    QVERIFY(
        m_database->threadToDatabase(DB_SELECT, table, condition, QString(), QVariant(), false, QString()));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    const QVariantList found = selected.first().at(1).toList();
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().toMap().value(QStringLiteral("id")).toInt(), 2);
}

void tst_DBHelper::mapInsertIsWrittenAsOneRow()
{
    Row values = row(1, QStringLiteral("one"));
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, values, QString(), QVariant(), false, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id || name FROM channel")),
             QVariantList{QStringLiteral("1one")});
}

void tst_DBHelper::mapIsWrittenBehindTheRowsOfItsCommand()
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

void tst_DBHelper::updateTakesItsConditionAlong()
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

void tst_DBHelper::encodingIsTakenAlong()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    const QString name = QStringLiteral("name");
    const QVariant plain = QStringLiteral("hello world");
    const QVariant scrambled = QStringLiteral("GasVGbg82d9ybGQ=");
    const QString names = QStringLiteral("SELECT name FROM channel ORDER BY rowid");

    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, name, plain, true, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(names), QVariantList{scrambled});

    Row values{{name, plain}};
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 7, false));
    QVERIFY(m_database->threadToDatabase(DB_UPDATE, table, values, QStringLiteral("id"), 7, true, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(names), (QVariantList{scrambled, scrambled}));

    QVERIFY(m_database->insertToDatabase(table, values, false));
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, name, scrambled, true, QString()));
    m_database->runBurst();
    QCOMPARE(selected.size(), 1);
    const QVariantList found = selected.first().at(1).toList();
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().toMap().value(name), plain);

    QVERIFY(m_database->threadToDatabase(DB_DELETE, table, name, plain, true, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->outside(names), QVariantList{plain});
}

void tst_DBHelper::updateWithoutConditionIsBuiltFromEmptyTexts_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("empty key") << QString() << QVariant(7);
    QTest::newRow("empty value") << QStringLiteral("id") << QVariant(QStringLiteral(""));
    QTest::newRow("invalid value") << QStringLiteral("id") << QVariant();
}

void tst_DBHelper::updateWithoutConditionIsBuiltFromEmptyTexts()
{
    QFETCH(const QString, key);
    QFETCH(const QVariant, value);
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 7, false));
    Row values{{QStringLiteral("name"), QStringLiteral("new")}};
    QVERIFY(m_database->threadToDatabase(DB_UPDATE, table, values, key, value, false, QString()));
    m_database->runBurst();
    const QStringList texts = m_log->takeDebugTexts();
    QCOMPARE(texts.size(), 3);
    QCOMPARE(texts.at(0), QStringLiteral("UPDATE channel SET name = :name WHERE  = :;"));
    QCOMPARE(texts.at(1), QStringLiteral("Error at update channel"));
}

void tst_DBHelper::unknownCommandsAreIgnored()
{
    QSignalSpy selected(m_database.get(), &DBHelper::onSelectFinish);
    for (const int command : {-1, 4, 2028}) {
        Row values = row(1, 2);
        QVERIFY(m_database->threadToDatabase(static_cast<DB_COMMAND>(command), table, values, QString(),
                                             QVariant(), false, QString()));
    }
    QVERIFY(m_database->queueRow(1, QString()));
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), QVariantList{1});
    QCOMPARE(selected.size(), 0);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBHelper::commandsRunInOrder()
{
    QVariantList ids;
    for (int id = 0; id < 1000; ++id) {
        QVERIFY(m_database->queueRow(id, QString()));
        ids.append(id);
    }
    m_database->runBurst();
    QCOMPARE(m_database->committedIds(), ids);
}

void tst_DBHelper::burstIsOneTransaction()
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

void tst_DBHelper::failedInsertRollsBackTheWholeBurst()
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

void tst_DBHelper::failedLaterRowOfAListRollsBackTheWholeBurst()
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

void tst_DBHelper::failedUpdatesDeletesAndSelectsLeaveTheBurst()
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

void tst_DBHelper::failedCommitGoesToTheLog()
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

void tst_DBHelper::closingLeavesTheTransactionFlag()
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

void tst_DBHelper::commandsForAClosedDatabaseFail()
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

void tst_DBHelper::emptyStepCommitsNothing()
{
    m_database->commandExec();
    QVERIFY(!m_database->isRunning());
    QCOMPARE(RunRoot::log(), QByteArray());
}

namespace {

SteppedDatabase* handlersDatabase = nullptr;
int handledStatements = 0;

// A host's log window that keeps its lines in the database, on a thread of its own.
void writeToDatabase(QtMsgType, const QMessageLogContext&, const QString& text)
{
    const auto write = [&text] {
        return handlersDatabase->insertToDatabase(table, QStringLiteral("name"), text, false);
    };
    handledStatements += std::async(std::launch::async, write).get() ? 1 : 0;
}

} // namespace

void tst_DBHelper::messagesAreWrittenWithoutTheConnectionsLock()
{
    handlersDatabase = m_database.get();
    handledStatements = 0;
    const QtMessageHandler before = qInstallMessageHandler(writeToDatabase);
    Row values = row(1, 2);
    QList<QVariant> rows{values};
    const QString missing = QStringLiteral("missing");
    m_database->insertToDatabase(missing, values, false);
    m_database->insertToDatabase(missing, rows, false);
    m_database->updateToDatabase(missing, QStringLiteral("id"), 1, values, false);
    m_database->updateToDatabase(missing, QStringLiteral("id"), 1, rows, false);
    m_database->deleteFromDatabase(missing);
    m_database->selectFromDatabase(missing, false);
    m_database->reopen();
    qInstallMessageHandler(before);
    QCOMPARE(handledStatements, 19);
}

void tst_DBHelper::signalsAreEmittedWithoutTheConnectionsLock()
{
    bool inserted = false;
    connect(m_database.get(), &DBHelper::onSelectFinish, this, [this, &inserted] {
        const auto insert = [this] {
            return m_database->insertToDatabase(table, QStringLiteral("id"), 1, false);
        };
        inserted = std::async(std::launch::async, insert).get();
    });
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QString()));
    m_database->runBurst();
    QVERIFY(inserted);
}

QTEST_GUILESS_MAIN(tst_DBHelper)
#include "tst_dbhelper.moc"
