// SPDX-License-Identifier: MIT
#include "dbscene.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

// What the command db says when its work fails, and what stays written.
class tst_DBCommandFailures : public DBScene {
    Q_OBJECT

private Q_SLOTS:
    void brokenInputWritesNothing_data();
    void brokenInputWritesNothing();
    void failureExitsWithOneAndTheDatabasesWords_data();
    void failureExitsWithOneAndTheDatabasesWords();
    void failedQueuedInsertLeavesNoRow();
    void failedQueuedUpdateSaysWhatStays();
    void failedQueuedUpdateSaysThatAllIsUndone();
    void failuresAreToldWhateverTheLoggingRules_data();
    void failuresAreToldWhateverTheLoggingRules();
    void brokenSelectFails_data();
    void brokenSelectFails();
    void failedDirectWritingNamesTheRow_data();
    void failedDirectWritingNamesTheRow();
    void fileThatIsNoDatabaseIsNamed();
    void failedCommitIsReported();
    void badUsageExitsWithTwo_data();
    void badUsageExitsWithTwo();
};

void tst_DBCommandFailures::brokenInputWritesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("cause");
    QTest::newRow("no JSON") << QByteArray("id=1") << QByteArray("illegal value");
    QTest::newRow("array") << QByteArray("[1]") << QByteArray("one JSON object");
    QTest::newRow("nested") << QByteArray("{\"id\": [1]}") << QByteArray("'id' holds neither");
    QTest::newRow("empty") << QByteArray("{}") << QByteArray("needs a column");
    QTest::newRow("too large") << QByteArray("{\"id\": 12345678901234567890}")
                               << QByteArray("beyond 64 bits");
    QTest::newRow("twice") << QByteArray("{\"id\": 5, \"id\": 6}") << QByteArray("'id' is given twice");
    QTest::newRow("no character") << QByteArray("{\"id\": \"\\ud83d\"}")
                                  << QByteArray("half a surrogate pair");
    QTest::newRow("bad name") << QByteArray("{\"id) --\": 1}") << QByteArray("is no name");
}

void tst_DBCommandFailures::brokenInputWritesNothing()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, cause);
    const Ended ended = db(words("insert channel"), "{\"id\": 1}\n" + line + '\n');
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("line 2 of the input: "), ended.error.constData());
    QVERIFY2(ended.error.contains(cause), ended.error.constData());
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

void tst_DBCommandFailures::failureExitsWithOneAndTheDatabasesWords_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("cause");
    for (const char* mode : {"", " --direct"}) {
        const QByteArray suffix(mode);
        QTest::addRow("insert%s", mode)
            << words("insert channel id=1" + suffix) << QByteArray("UNIQUE constraint failed: channel.id");
        QTest::addRow("update%s", mode) << words("update channel missing=1 --where id=1" + suffix)
                                        << QByteArray("no such column: missing");
        QTest::addRow("delete%s", mode)
            << words("delete channel --where missing=1" + suffix) << QByteArray("no such column: missing");
        QTest::addRow("select%s", mode)
            << words("select missing" + suffix) << QByteArray("no such table: missing");
    }
}

void tst_DBCommandFailures::failureExitsWithOneAndTheDatabasesWords()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, cause);
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('1')"));
    const Ended ended = db(arguments);
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(": " + cause + " ("), ended.error.constData());
    QCOMPARE(ended.error.count('\n'), 1);
    QCOMPARE(ended.output, QByteArray());
}

void tst_DBCommandFailures::failedQueuedInsertLeavesNoRow()
{
    const Ended ended = db(words("insert channel"), "{\"id\": 1}\n{\"id\": 2}\n{\"id\": 2}\n{\"id\": 3}\n");
    QCOMPARE(ended.code, 1);
    QCOMPARE(
        ended.error,
        QByteArray("quenzo: cannot insert into channel: UNIQUE constraint failed: channel.id (INSERT INTO "
                   "channel(id) VALUES(:id);); its transaction is rolled back. No row is written.\n"));
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

void tst_DBCommandFailures::failedQueuedUpdateSaysWhatStays()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('1')"));
    const Ended ended = db(words("update channel --where id=1"),
                           "{\"name\": \"one\"}\n{\"nme\": \"typo\"}\n{\"state\": 1}\n");
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.error,
             QByteArray("quenzo: cannot update channel: no such column: nme (UPDATE channel SET nme = :nme "
                        "WHERE id = :id;). What the rows before this one changed stays written.\n"));
    QCOMPARE(ask(QStringLiteral("SELECT name || ifnull(state, '-') FROM channel")),
             QStringList{QStringLiteral("one-")});
    const QByteArray help = db({QStringLiteral("--help")}).output.simplified();
    QVERIFY2(help.contains("integers beyond 2^53 and infinite numbers (9e999) as text"), help.constData());
    QVERIFY2(help.contains("of an update, what the rows before a failed one changed stays, too, unless the "
                           "table says ON CONFLICT ROLLBACK"),
             help.constData());
}

void tst_DBCommandFailures::failedQueuedUpdateSaysThatAllIsUndone()
{
    ask(QStringLiteral("CREATE TABLE picky(id UNIQUE ON CONFLICT ROLLBACK, name)"));
    ask(QStringLiteral("INSERT INTO picky VALUES('1', 'old'), ('2', 'old')"));
    const Ended ended = db(words("update picky --where id=1"), "{\"name\": \"new\"}\n{\"ID\": \"2\"}\n");
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("What the rows before this one changed is undone, too."),
             ended.error.constData());
    QCOMPARE(ask(QStringLiteral("SELECT name FROM picky")),
             (QStringList{QStringLiteral("old"), QStringLiteral("old")}));
}

void tst_DBCommandFailures::failuresAreToldWhateverTheLoggingRules_data()
{
    failureExitsWithOneAndTheDatabasesWords_data();
}

void tst_DBCommandFailures::failuresAreToldWhateverTheLoggingRules()
{
    const QByteArray before = qgetenv("QT_LOGGING_RULES");
    for (const char* rules : {"*.debug=false", "*=false", "quenzo.*=false"}) {
        qputenv("QT_LOGGING_RULES", rules);
        ask(QStringLiteral("DELETE FROM channel"));
        failureExitsWithOneAndTheDatabasesWords();
    }
    before.isNull() ? qunsetenv("QT_LOGGING_RULES") : qputenv("QT_LOGGING_RULES", before);
}

void tst_DBCommandFailures::brokenSelectFails_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("queued") << words("select channel");
    QTest::newRow("direct") << words("select channel --direct");
}

void tst_DBCommandFailures::brokenSelectFails()
{
    QFETCH(const QStringList, arguments);
    ask(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
                       "INSERT INTO channel SELECT i, printf('%0200d', i), 0 FROM n"));
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(file.size() / 2));
    file.write(QByteArray(32 * 1024, '\xff'));
    file.close();
    const Ended ended = db(arguments);
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.error,
             QByteArray("quenzo: cannot read all rows of channel: database disk image is malformed "
                        "(SELECT * FROM channel;)\n"));
}

void tst_DBCommandFailures::failedDirectWritingNamesTheRow_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("insert") << words("insert channel --direct")
                            << QByteArray("{\"id\": 1}\n{\"id\": 2}\n{\"id\": 2}\n{\"id\": 3}\n")
                            << QByteArray("This is row 3 of 4; those before it stay written.");
    QTest::newRow("update") << words("update channel --direct --where id=0")
                            << QByteArray("{\"name\": 1}\n{\"nme\": 2}\n")
                            << QByteArray("This is row 2 of 2; those before it stay written.");
}

void tst_DBCommandFailures::failedDirectWritingNamesTheRow()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, input);
    QFETCH(const QByteArray, message);
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('0')"));
    const Ended ended = db(arguments, input);
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(message), ended.error.constData());
    const QStringList left = arguments.contains(QLatin1String("insert"))
        ? QStringList{QStringLiteral("0-"), QStringLiteral("1-"), QStringLiteral("2-")}
        : QStringList{QStringLiteral("01")};
    QCOMPARE(ask(QStringLiteral("SELECT id || ifnull(name, '-') FROM channel")), left);
}

void tst_DBCommandFailures::fileThatIsNoDatabaseIsNamed()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    const Ended ended = db(words("select channel"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("file is not a database"), ended.error.constData());
    QVERIFY2(!ended.error.contains(";;"), ended.error.constData());
}

void tst_DBCommandFailures::failedCommitIsReported()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES(1)"));
    Ended ended;
    {
        QSqlDatabase reader = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        reader.setDatabaseName(path());
        QVERIFY(reader.open());
        QSqlQuery query(reader);
        QVERIFY(query.exec(QStringLiteral("SELECT * FROM channel")));
        QVERIFY(query.next());
        ended = db(words("insert channel id=2"));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    QCOMPARE(ended.code, 1);
    QCOMPARE(
        ended.error,
        QByteArray("quenzo: the transaction on channel cannot be committed: database is locked. Nothing is "
                   "written.\n"));
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList{QStringLiteral("1")});
}

void tst_DBCommandFailures::badUsageExitsWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("operation") << words("replace channel id=1");
    QTest::newRow("no table") << words("select");
    QTest::newRow("table's name") << words("select channel;");
    QTest::newRow("column's name") << words("insert channel 1d=1");
    QTest::newRow("no pair") << words("insert channel id");
    QTest::newRow("column twice") << words("insert channel id=1 id=2");
    QTest::newRow("column twice in capitals") << words("insert channel id=1 ID=2");
    QTest::newRow("condition of an insert") << words("insert channel id=1 --where id=1");
    QTest::newRow("values of a select") << words("select channel id=1");
    QTest::newRow("all of a select") << words("select channel --all");
    QTest::newRow("unknown option") << words("select channel --frob");
}

void tst_DBCommandFailures::badUsageExitsWithTwo()
{
    QFETCH(const QStringList, arguments);
    const Ended ended = db(arguments);
    QCOMPARE(ended.code, 2);
    QVERIFY(!ended.error.isEmpty());
    QCOMPARE(ended.output, QByteArray());
}

QTEST_GUILESS_MAIN(tst_DBCommandFailures)
#include "tst_dbcommandfailures.moc"
