// SPDX-License-Identifier: MIT
#include "dbscene.h"
#include "terminal.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

// Rows through the built program's command db, on a real file.
class tst_DBCommands : public DBScene {
    Q_OBJECT

private Q_SLOTS:
    void pairsAreInsertedAsText();
    void jsonLinesAreInsertedWithTheirTypes();
    void selectedJsonLinesComeBackInNumericColumns();
    void updateNeedsOneCondition();
    void updateOfTheConditionsColumnNeedsAnotherSpelling();
    void updateReadsRowsFromTheInput();
    void rowsThatAreMetAreCounted_data();
    void rowsThatAreMetAreCounted();
    void deleteNeedsAConditionOrAll();
    void selectPrintsJsonLinesIntoAPipe();
    void selectPrintsCsv();
    void selectPrintsOneJsonObject();
    void terminalShowsATable();
    void rowsAreCountedWhileTheyAreRead();
    void directCallsDoTheSame();
};

void tst_DBCommands::pairsAreInsertedAsText()
{
    const Ended ended = db(words("insert channel id=7 name=a=b state="));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, QByteArray("inserted into channel, rows: 1\n"));
    QCOMPARE(ended.code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT typeof(id) || id || name || '<' || state || '>' FROM channel")),
             QStringList{QStringLiteral("text7a=b<>")});
}

void tst_DBCommands::jsonLinesAreInsertedWithTheirTypes()
{
    const Ended ended = db(words("insert channel"),
                           "{\"id\": 1, \"name\": \"\xe4\xb8\xad'\", \"state\": null}\n"
                           "\n"
                           "{\"id\": 9007199254740993}\r\n"
                           "{\"id\": 2.5, \"name\": true}");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT typeof(id) || id || typeof(name) || ifnull(name, '') FROM channel")),
             (QStringList{QStringLiteral("integer1text\u4e2d'"),
                          QStringLiteral("integer9007199254740993null"), QStringLiteral("real2.5integer1")}));
}

void tst_DBCommands::selectedJsonLinesComeBackInNumericColumns()
{
    ask(QStringLiteral("CREATE TABLE numbers(i INTEGER, r REAL)"));
    ask(QStringLiteral("INSERT INTO numbers VALUES(9223372036854775807, 9e999), (-1, -9e999), (NULL, 0.1)"));
    const QString all = QStringLiteral("SELECT typeof(i) || ifnull(i, '') || typeof(r) || r FROM numbers");
    const QStringList before = ask(all);
    const QByteArray lines = db(words("select numbers")).output;
    QCOMPARE(lines.count('\n'), 3);
    QCOMPARE(db(words("delete numbers --all")).code, 0);
    QCOMPARE(db(words("insert numbers"), lines).code, 0);
    QCOMPARE(ask(all), before);
}

void tst_DBCommands::updateNeedsOneCondition()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('1'), ('2')"));
    QCOMPARE(db(words("update channel --where id=2 name=new")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id || ifnull(name, '-') FROM channel")),
             (QStringList{QStringLiteral("1-"), QStringLiteral("2new")}));
    QCOMPARE(db(words("update channel name=new")).code, 2);
    QCOMPARE(db(words("update channel --where id= name=new")).code, 2);
    QCOMPARE(db(words("update channel --where id=1 --where name=a name=new")).code, 2);
}

void tst_DBCommands::updateOfTheConditionsColumnNeedsAnotherSpelling()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('1')"));
    const QByteArray refusal(
        "the condition's column 'id' cannot be written under the same name; 'ID' would do");
    const Ended ended = db(words("update channel --where id=1 id=2"));
    QCOMPARE(ended.code, 2);
    QVERIFY2(ended.error.contains(refusal), ended.error.constData());
    const Ended fromInput = db(words("update channel --where id=1"), "{\"name\": 1}\n{\"id\": \"2\"}\n");
    QCOMPARE(fromInput.code, 1);
    QVERIFY2(fromInput.error.contains("line 2 of the input: " + refusal), fromInput.error.constData());
    QCOMPARE(ask(QStringLiteral("SELECT id || ifnull(name, '-') FROM channel")),
             QStringList{QStringLiteral("1-")});

    QCOMPARE(db(words("update channel --where id=1 ID=2")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList{QStringLiteral("2")});
}

void tst_DBCommands::updateReadsRowsFromTheInput()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES('1')"));
    const Ended ended = db(words("update channel --where id=1"), "{\"name\": 5}\n{\"state\": \"x\"}\n");
    QCOMPARE(ended.output, QByteArray("updated channel, statements: 2, rows: 1\n"));
    QCOMPARE(ask(QStringLiteral("SELECT typeof(name) || name || state FROM channel")),
             QStringList{QStringLiteral("integer5x")});
}

void tst_DBCommands::rowsThatAreMetAreCounted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("count");
    for (const char* way : {"", " --direct"}) {
        const auto row = [way](const char* words, const char* text, const char* key, int count) {
            const QString line = QLatin1String(words) + QLatin1String(way);
            QTest::newRow(qPrintable(line)) << line << QByteArray(text) << QString::fromLatin1(key) << count;
        };
        row("update channel name=new --where id=9", "updated channel, statements: 1, rows: 0\n", "updated",
            0);
        row("update channel name=new --where state=x", "updated channel, statements: 1, rows: 2\n", "updated",
            2);
        row("delete channel --where id=9", "deleted from channel, rows: 0\n", "deleted", 0);
        row("delete channel --where state=x", "deleted from channel, rows: 2\n", "deleted", 2);
        row("delete channel --all", "deleted from channel, rows: 3\n", "deleted", 3);
    }
}

void tst_DBCommands::rowsThatAreMetAreCounted()
{
    QFETCH(const QString, line);
    QFETCH(const QString, key);
    const QString rows =
        QStringLiteral("INSERT INTO channel(id, state) VALUES('1', 'x'), ('2', 'x'), ('3', 'y')");
    ask(QStringLiteral("CREATE TABLE log(id)"));
    ask(QStringLiteral("CREATE TRIGGER kept AFTER DELETE ON channel BEGIN INSERT INTO log VALUES(old.id); "
                       "INSERT INTO log VALUES(old.id); END"));
    ask(rows);
    const Ended ended = db(line.split(QLatin1Char(' ')));
    QTEST(ended.output, "text");
    QCOMPARE(ended.code, 0);
    ask(QStringLiteral("DELETE FROM channel"));
    ask(rows);
    QTEST(db(line.split(QLatin1Char(' ')) + words("--json")).result().value(key).toInt(-1), "count");
}

void tst_DBCommands::deleteNeedsAConditionOrAll()
{
    ask(QStringLiteral("INSERT INTO channel(id, name) VALUES('1', 'a'), ('2', 'a'), ('3', 'b')"));
    QCOMPARE(db(words("delete channel")).code, 2);
    QCOMPARE(db(words("delete channel --all --where id=1")).code, 2);
    QCOMPARE(db(words("delete channel --where id=1 --where name=a")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")),
             (QStringList{QStringLiteral("2"), QStringLiteral("3")}));
    QCOMPARE(db(words("delete channel --all")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

void tst_DBCommands::selectPrintsJsonLinesIntoAPipe()
{
    ask(QStringLiteral("INSERT INTO channel VALUES(1, 'a', NULL), ('2', 'a', 2.5), ('3', 'b', x'00ff')"));
    QCOMPARE(
        db(words("select channel")).output,
        QByteArray("{\"id\":1,\"name\":\"a\",\"state\":null}\n{\"id\":\"2\",\"name\":\"a\",\"state\":2.5}\n"
                   "{\"id\":\"3\",\"name\":\"b\",\"state\":\"AP8=\"}\n"));
    QCOMPARE(db(words("select channel --where name=a --where id=2")).output,
             QByteArray("{\"id\":\"2\",\"name\":\"a\",\"state\":2.5}\n"));
    QCOMPARE(db(words("select channel --where name=c")).output, QByteArray());
}

void tst_DBCommands::selectPrintsCsv()
{
    ask(QStringLiteral("INSERT INTO channel VALUES(1, 'a,b', NULL), (2, '', 'x')"));
    QCOMPARE(db(words("select channel --csv")).output, QByteArray("id,name,state\n1,\"a,b\",\n2,\"\",x\n"));
}

void tst_DBCommands::selectPrintsOneJsonObject()
{
    ask(QStringLiteral("INSERT INTO channel(id) VALUES(1), (2)"));
    const QJsonObject object = db(words("select channel --json")).json();
    QCOMPARE(object.value(QLatin1String("ok")).toBool(), true);
    QCOMPARE(object.value(QLatin1String("result")).toObject().value(QLatin1String("rows")).toArray().size(),
             2);
    const Ended failed = db(words("select missing --json"));
    QCOMPARE(failed.code, 1);
    const QJsonObject report = failed.json();
    QCOMPARE(report.value(QLatin1String("ok")).toBool(true), false);
    QVERIFY(failed.failure()
                .value(QLatin1String("message"))
                .toString()
                .contains(QLatin1String("no such table: missing")));
}

void tst_DBCommands::terminalShowsATable()
{
    ask(QStringLiteral("CREATE TABLE shown(\"a\x1b[2Jb\", \"c\")"));
    ask(QStringLiteral("INSERT INTO shown VALUES('x\x1by', NULL), ('', 12)"));
    const auto shownOn = [this](const char* line) {
        Terminal terminal;
        QuenzoProcess process(dbWords(words(line)));
        process.setStandardOutputFile(terminal.path());
        return process.end().code == 0 ? terminal.shown() : QByteArray("failed");
    };
    const QByteArray table = shownOn("select shown");
    const QList<QByteArray> lines = table.split('\n');
    QCOMPARE(lines.size(), 6);
    QVERIFY2(!table.contains('\x1b'), table.constData());
    QCOMPARE(lines.at(0), QByteArray("a\\x1b[2Jb  c\r"));
    QCOMPARE(lines.at(1), QByteArray("---------  ------\r"));
    QCOMPARE(lines.at(2), QByteArray("x\\x1by     <null>\r"));
    QCOMPARE(lines.at(3), QByteArray("           12\r"));
    QCOMPARE(lines.at(4), QByteArray("rows: 2\r"));

    QCOMPARE(shownOn("select channel"), QByteArray("rows: 0\r\n"));
    QVERIFY(!shownOn("select shown --csv").contains("rows: "));
    const QByteArray intoAPipe = db(words("select shown")).output;
    QCOMPARE(intoAPipe.count('\n'), 2);
    QVERIFY(!intoAPipe.contains("rows: "));
}

void tst_DBCommands::rowsAreCountedWhileTheyAreRead()
{
    constexpr int many = 5000;
    QByteArray lines;
    for (int i = 0; i < many; ++i)
        lines += "{\"id\": " + QByteArray::number(i) + "}\n";
    const Ended read = db(words("insert channel --progress=json"), lines);
    QCOMPARE(read.code, 0);
    const QByteArray size = QByteArray::number(lines.size());
    QVERIFY2(read.error.contains("{\"progress\":{\"doing\":\"reading rows\",\"done\":"),
             read.error.constData());
    QVERIFY2(read.error.contains(",\"total\":" + size + ",\"unit\":\"bytes\"}}\n"), read.error.constData());

    const Ended written = db(words("update channel --direct --where id=1 --progress=json"),
                             QByteArray("{\"name\": 1}\n").repeated(20));
    QCOMPARE(written.code, 0);
    QVERIFY2(written.error.contains(
                 "{\"progress\":{\"doing\":\"writing rows\",\"done\":16,\"total\":20,\"unit\":\"rows\"}}\n"),
             written.error.constData());
}

void tst_DBCommands::directCallsDoTheSame()
{
    QCOMPARE(db(words("insert channel --direct id=1 name=a")).code, 0);
    QCOMPARE(db(words("update channel --direct --where id=1 name=b")).code, 0);
    QCOMPARE(db(words("select channel --direct --where id=1")).output,
             QByteArray("{\"id\":\"1\",\"name\":\"b\",\"state\":null}\n"));
    QCOMPARE(db(words("delete channel --direct --where id=1")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

QTEST_GUILESS_MAIN(tst_DBCommands)
#include "tst_dbcommands.moc"
