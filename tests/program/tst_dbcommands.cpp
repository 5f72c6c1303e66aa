// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"
#include "terminal.h"

#include <QFile>
#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// The built program's commands db, encode and decode, on a real file.
class tst_DBCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void pairsAreInsertedAsText();
    void jsonLinesAreInsertedWithTheirTypes();
    void selectedJsonLinesComeBackInNumericColumns();
    void brokenInputWritesNothing_data();
    void brokenInputWritesNothing();
    void updateNeedsOneCondition();
    void updateOfTheConditionsColumnNeedsAnotherSpelling();
    void updateReadsRowsFromTheInput();
    void deleteNeedsAConditionOrAll();
    void selectPrintsJsonLinesIntoAPipe();
    void selectPrintsCsv();
    void selectPrintsOneJsonObject();
    void encodedRecordsAreReadWithDecode();
    void namedColumnsAreEncodedAlone_data();
    void namedColumnsAreEncodedAlone();
    void conditionsOnEncodedColumnsAreComparedScrambled();
    void whatWouldNotComeBackIsRefused_data();
    void whatWouldNotComeBackIsRefused();
    void tablesAreToldAndMade();
    void tablesThatCannotBeAreRefused_data();
    void tablesThatCannotBeAreRefused();
    void unknownColumnToDecodeIsWarnedOf();
    void terminalShowsATable();
    void directCallsDoTheSame();
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
    void textsAreEncodedAndDecoded();

private:
    QString path() const { return m_folder->filePath(QStringLiteral("records.db")); }
    QStringList ask(const QString& sql) const;
    QStringList dbWords(const QStringList& arguments) const;
    Ended db(const QStringList& arguments, const QByteArray& input = {}) const;
    static QStringList words(const QByteArray& line) { return QuenzoProcess::words(line.constData()); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_DBCommands::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    ask(QStringLiteral("CREATE TABLE channel(id UNIQUE, name, state)"));
}

QStringList tst_DBCommands::ask(const QString& sql) const
{
    QStringList answers;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(path());
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next())
            answers.append(query.value(0).toString());
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return answers;
}

QStringList tst_DBCommands::dbWords(const QStringList& arguments) const
{
    return QStringList{QStringLiteral("db"), QStringLiteral("--file"), path()} + arguments;
}

Ended tst_DBCommands::db(const QStringList& arguments, const QByteArray& input) const
{
    return QuenzoProcess(dbWords(arguments)).end(input);
}

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

void tst_DBCommands::brokenInputWritesNothing_data()
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

void tst_DBCommands::brokenInputWritesNothing()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, cause);
    const Ended ended = db(words("insert channel"), "{\"id\": 1}\n" + line + '\n');
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("line 2 of the input: "), ended.error.constData());
    QVERIFY2(ended.error.contains(cause), ended.error.constData());
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
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
    QCOMPARE(ended.output, QByteArray("updated channel, statements: 2\n"));
    QCOMPARE(ask(QStringLiteral("SELECT typeof(name) || name || state FROM channel")),
             QStringList{QStringLiteral("integer5x")});
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

void tst_DBCommands::encodedRecordsAreReadWithDecode()
{
    QCOMPARE(db({QStringLiteral("insert"), QStringLiteral("channel"), QStringLiteral("name=hello world"),
                 QStringLiteral("--encode")})
                 .code,
             0);
    QCOMPARE(ask(QStringLiteral("SELECT name FROM channel")),
             QStringList{QStringLiteral("GasVGbg82d9ybGQ=")});
    QVERIFY(db(words("select channel --decode name")).output.contains("\"name\":\"hello world\""));
    QVERIFY(db(words("select channel")).output.contains("\"name\":\"GasVGbg82d9ybGQ=\""));
    QCOMPARE(db({QStringLiteral("delete"), QStringLiteral("channel"), QStringLiteral("--where"),
                 QStringLiteral("name=hello world"), QStringLiteral("--encode")})
                 .code,
             0);
    QCOMPARE(ask(QStringLiteral("SELECT name FROM channel")), QStringList());
}

void tst_DBCommands::namedColumnsAreEncodedAlone_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("row");
    const QString one = QStringLiteral("7 WYJjZA== some state");
    for (const char* line : {"insert channel --encode name @", "insert channel @ --encode name",
                             "--encode=name insert channel @", "insert channel --encode NAME @ --direct"})
        QTest::newRow(line) << QString::fromLatin1(line) << one;
    QTest::newRow("two") << QStringLiteral("insert channel --encode name --encode state @")
                         << QStringLiteral("7 WYJjZA== 2ct9SZzBGdF0ZQ==");
}

void tst_DBCommands::namedColumnsAreEncodedAlone()
{
    QFETCH(const QString, line);
    QStringList arguments = line.split(QLatin1Char(' '));
    const int at = arguments.indexOf(QStringLiteral("@"));
    arguments.removeAt(at);
    for (const char* pair : {"state=some state", "name=abcd", "id=7"})
        arguments.insert(at, QLatin1String(pair));
    const Ended ended = db(arguments);
    QVERIFY2(ended.code == 0, ended.error.constData());
    QTEST(ask(QStringLiteral("SELECT id || ' ' || name || ' ' || state FROM channel")).value(0), "row");
}

void tst_DBCommands::conditionsOnEncodedColumnsAreComparedScrambled()
{
    ask(QStringLiteral("INSERT INTO channel VALUES(1, 'WYJjZA==', 'old'), (2, 'abcd', 'old')"));
    QCOMPARE(db(words("update channel state=new --encode name --where name=abcd")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT state FROM channel ORDER BY id")), words("new old"));
    QCOMPARE(db(words("select channel --encode name --where name=abcd")).output.count("\"id\":1"), 1);
    QCOMPARE(db(words("delete channel --encode name --where name=abcd")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), words("2"));
}

void tst_DBCommands::whatWouldNotComeBackIsRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const char* name, const char* line, const QByteArray& input, const char* told) {
        QTest::newRow(name) << QString::fromLatin1(line) << input << QByteArray(told);
    };
    const QByteArray good = "{\"id\": 1234, \"name\": \"abcd\"}\n";
    row("short", "insert channel --encode", good + "{\"name\": \"abc\"}", "row 2, column 'name': 'abc'");
    row("number", "insert channel --encode", good + "{\"id\": 7}", "row 2, column 'id': '7'");
    row("null", "insert channel --encode", good + "{\"id\": null}", "row 2, column 'id': ''");
    row("zero", "insert channel --encode name", good + "{\"name\": \"ab\\u0000cd\"}",
        "row 2, column 'name': 'ab\\x00cd'");
    row("update", "update channel --encode name --where id=1 name=ab", {}, "row 1, column 'name': 'ab'");
    row("condition", "delete channel --encode --where name=ab", {}, "the condition, column 'name': 'ab'");
}

void tst_DBCommands::whatWouldNotComeBackIsRefused()
{
    QFETCH(const QString, line);
    QFETCH(const QByteArray, input);
    QFETCH(const QByteArray, told);
    ask(QStringLiteral("INSERT INTO channel VALUES(1, '', 'x')"));
    const Ended ended = db(line.split(QLatin1Char(' ')), input);
    QVERIFY2(ended.error.startsWith("quenzo: " + told + " could not be brought back"),
             ended.error.constData());
    QCOMPARE(ended.code, 1);
    const QString all = QStringLiteral("SELECT name || state FROM channel");
    QCOMPARE(ask(all), words("x"));
    const Ended lossy = db(line.split(QLatin1Char(' ')) + words("--lossy"), input);
    QVERIFY2(lossy.code == 0, lossy.error.constData());
}

void tst_DBCommands::tablesAreToldAndMade()
{
    QCOMPARE(db(words("tables")).output, QByteArray("channel\n"));
    const Ended made = db(words("create game id:integer name:TEXT icon:blob"));
    QVERIFY2(made.code == 0, made.error.constData());
    QCOMPARE(made.output, QByteArray("made the table game\n"));
    QCOMPARE(db(words("tables")).output, QByteArray("channel\ngame\n"));
    QCOMPARE(db(words("schema game")).output,
             QByteArray("CREATE TABLE \"game\" (\"id\" INTEGER, \"name\" TEXT, \"icon\" BLOB);\n"));
    QCOMPARE(db(words("schema")).output.count('\n'), 2);
    QCOMPARE(db(words("insert game id=7 name=one")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT typeof(id) FROM game")), words("integer"));

    const QString fresh = m_folder->filePath(QStringLiteral("fresh.db"));
    const QStringList create = words("create game name:text --file") + QStringList(fresh);
    const Ended refused = QuenzoProcess(QStringList(QStringLiteral("db")) + create).end();
    QCOMPARE(refused.code, 1);
    QVERIFY2(refused.error.contains("create --init makes one"), refused.error.constData());
    QVERIFY(!QFile::exists(fresh));
    QCOMPARE(QuenzoProcess(QStringList(QStringLiteral("db")) + create + words("--init")).end().code, 0);
    QVERIFY(QFile::exists(fresh));
}

void tst_DBCommands::tablesThatCannotBeAreRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("code");
    QTest::newRow("there is one") << QStringLiteral("create channel name:text") << 1;
    QTest::newRow("no columns") << QStringLiteral("create game") << 2;
    QTest::newRow("no type") << QStringLiteral("create game name") << 2;
    QTest::newRow("unknown type") << QStringLiteral("create game name:word") << 2;
    QTest::newRow("no name") << QStringLiteral("create game \"x\":text") << 2;
    QTest::newRow("no table's name") << QStringLiteral("create a-b name:text") << 2;
    QTest::newRow("no such table") << QStringLiteral("schema absent") << 1;
    QTest::newRow("too many words") << QStringLiteral("tables channel") << 2;
    QTest::newRow("init of a row") << QStringLiteral("insert channel id=1 --init") << 2;
    QTest::newRow("no table") << QStringLiteral("select") << 2;
}

void tst_DBCommands::tablesThatCannotBeAreRefused()
{
    QFETCH(const QString, line);
    const Ended ended = db(line.split(QLatin1Char(' ')));
    QTEST(ended.code, "code");
    QVERIFY(ended.error.startsWith("quenzo: "));
    QCOMPARE(db(words("tables")).output, QByteArray("channel\n"));
}

void tst_DBCommands::unknownColumnToDecodeIsWarnedOf()
{
    QCOMPARE(db(words("select channel --decode nme")).error, QByteArray());
    ask(QStringLiteral("INSERT INTO channel(id, name) VALUES(1, 'WYJjZA==')"));
    const Ended ended = db(words("select channel --decode nme --decode name"));
    QCOMPARE(ended.error, QByteArray("quenzo: there is no column 'nme' to unscramble\n"));
    QCOMPARE(ended.output, QByteArray("{\"id\":1,\"name\":\"abcd\",\"state\":null}\n"));
    QCOMPARE(ended.code, 0);
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

void tst_DBCommands::directCallsDoTheSame()
{
    QCOMPARE(db(words("insert channel --direct id=1 name=a")).code, 0);
    QCOMPARE(db(words("update channel --direct --where id=1 name=b")).code, 0);
    QCOMPARE(db(words("select channel --direct --where id=1")).output,
             QByteArray("{\"id\":\"1\",\"name\":\"b\",\"state\":null}\n"));
    QCOMPARE(db(words("delete channel --direct --where id=1")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

void tst_DBCommands::failureExitsWithOneAndTheDatabasesWords_data()
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

void tst_DBCommands::failureExitsWithOneAndTheDatabasesWords()
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

void tst_DBCommands::failedQueuedInsertLeavesNoRow()
{
    const Ended ended = db(words("insert channel"), "{\"id\": 1}\n{\"id\": 2}\n{\"id\": 2}\n{\"id\": 3}\n");
    QCOMPARE(ended.code, 1);
    QCOMPARE(
        ended.error,
        QByteArray("quenzo: cannot insert into channel: UNIQUE constraint failed: channel.id (INSERT INTO "
                   "channel(id) VALUES(:id);); its transaction is rolled back. No row is written.\n"));
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), QStringList());
}

void tst_DBCommands::failedQueuedUpdateSaysWhatStays()
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

void tst_DBCommands::failedQueuedUpdateSaysThatAllIsUndone()
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

void tst_DBCommands::failuresAreToldWhateverTheLoggingRules_data()
{
    failureExitsWithOneAndTheDatabasesWords_data();
}

void tst_DBCommands::failuresAreToldWhateverTheLoggingRules()
{
    const QByteArray before = qgetenv("QT_LOGGING_RULES");
    for (const char* rules : {"*.debug=false", "*=false", "quenzo.*=false"}) {
        qputenv("QT_LOGGING_RULES", rules);
        ask(QStringLiteral("DELETE FROM channel"));
        failureExitsWithOneAndTheDatabasesWords();
    }
    before.isNull() ? qunsetenv("QT_LOGGING_RULES") : qputenv("QT_LOGGING_RULES", before);
}

void tst_DBCommands::brokenSelectFails_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("queued") << words("select channel");
    QTest::newRow("direct") << words("select channel --direct");
}

void tst_DBCommands::brokenSelectFails()
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

void tst_DBCommands::failedDirectWritingNamesTheRow_data()
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

void tst_DBCommands::failedDirectWritingNamesTheRow()
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

void tst_DBCommands::fileThatIsNoDatabaseIsNamed()
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

void tst_DBCommands::failedCommitIsReported()
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

void tst_DBCommands::badUsageExitsWithTwo_data()
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

void tst_DBCommands::badUsageExitsWithTwo()
{
    QFETCH(const QStringList, arguments);
    const Ended ended = db(arguments);
    QCOMPARE(ended.code, 2);
    QVERIFY(!ended.error.isEmpty());
    QCOMPARE(ended.output, QByteArray());
}

void tst_DBCommands::textsAreEncodedAndDecoded()
{
    QCOMPARE(QuenzoProcess({QStringLiteral("encode"), QStringLiteral("hello world")}).end().output,
             QByteArray("GasVGbg82d9ybGQ=\n"));
    QCOMPARE(QuenzoProcess({QStringLiteral("decode"), QStringLiteral("GasVGbg82d9ybGQ=")}).end().output,
             QByteArray("hello world\n"));
    const Ended tooShort = QuenzoProcess({QStringLiteral("encode"), QStringLiteral("ab")}).end();
    QCOMPARE(tooShort.code, 0);
    QCOMPARE(tooShort.output, QByteArray("\n"));
    QVERIFY(tooShort.error.contains("less than four bytes"));
}

QTEST_GUILESS_MAIN(tst_DBCommands)
#include "tst_dbcommands.moc"
