// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include <QSignalSpy>
#include <QtTest>

#include <future>

// The queue, and what the forms of queuing take; the test is the worker.
class tst_DBHelper : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void numbersOfCommandsAndEventAreFixed();

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

    void encodingIsTakenAlong();
    void updateWithoutConditionIsBuiltFromEmptyTexts_data();
    void updateWithoutConditionIsBuiltFromEmptyTexts();
    void unknownCommandsAreIgnored();

    void messagesAreWrittenWithoutTheConnectionsLock();
    void signalsAreEmittedWithoutTheConnectionsLock();
};

void tst_DBHelper::numbersOfCommandsAndEventAreFixed()
{
    QCOMPARE(int(DB_SELECT), 0);
    QCOMPARE(int(DB_INSERT), 1);
    QCOMPARE(int(DB_UPDATE), 2);
    QCOMPARE(int(DB_DELETE), 3);
    QCOMPARE(int(DB_EVENT_TYPE), 2028);
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
    // The causes are told there, too.
    const CategoryOn records("quenzo.records");
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
    QCOMPARE(handledStatements, 26);
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
