// SPDX-License-Identifier: MIT
#include "dbscene.h"

#include <QJsonArray>
#include <QtTest>

// Scrambled records through the command db, and the commands encode and decode.
class tst_DBEncoding : public DBScene {
    Q_OBJECT

private Q_SLOTS:
    void encodedRecordsAreReadWithDecode();
    void namedColumnsAreEncodedAlone_data();
    void namedColumnsAreEncodedAlone();
    void encodedColumnThatIsNotWrittenIsRefused_data();
    void encodedColumnThatIsNotWrittenIsRefused();
    void conditionsOnEncodedColumnsAreComparedScrambled();
    void whatWouldNotComeBackIsRefused_data();
    void whatWouldNotComeBackIsRefused();
    void unknownColumnToDecodeIsWarnedOf();
    void textsAreEncodedAndDecoded();
    void textThatEncodeDoesNotMakeIsWarnedOf();
};

void tst_DBEncoding::encodedRecordsAreReadWithDecode()
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

void tst_DBEncoding::namedColumnsAreEncodedAlone_data()
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

void tst_DBEncoding::namedColumnsAreEncodedAlone()
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

void tst_DBEncoding::encodedColumnThatIsNotWrittenIsRefused_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<int>("code");
    QTest::newRow("insert") << QByteArray("insert channel --encode=nmae name=TopSecret") << QByteArray()
                            << QByteArray("quenzo: the column") << 2;
    QTest::newRow("update") << QByteArray("update channel --encode=nmae name=TopSecret --where id=1")
                            << QByteArray() << QByteArray("quenzo: the column") << 2;
    QTest::newRow("rows") << QByteArray("insert channel --encode=nmae")
                          << QByteArray("{\"nmae\": \"long enough\"}\n{\"name\": \"TopSecret\"}\n")
                          << QByteArray("line 2 of the input: the column") << 1;
}

void tst_DBEncoding::encodedColumnThatIsNotWrittenIsRefused()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, input);
    QFETCH(const QByteArray, place);
    ask(QStringLiteral("INSERT INTO channel VALUES(1, 'before', 'x')"));
    const Ended ended = db(words(line), input);
    QVERIFY2(ended.error.contains(place + " 'nmae' of --encode is not among those to be written"),
             ended.error.constData());
    QTEST(ended.code, "code");
    QCOMPARE(ask(QStringLiteral("SELECT name FROM channel")), QStringList{QStringLiteral("before")});
}

void tst_DBEncoding::conditionsOnEncodedColumnsAreComparedScrambled()
{
    ask(QStringLiteral("INSERT INTO channel VALUES(1, 'WYJjZA==', 'old'), (2, 'abcd', 'old')"));
    QCOMPARE(db(words("update channel state=new --encode name --where name=abcd")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT state FROM channel ORDER BY id")), words("new old"));
    QCOMPARE(db(words("select channel --encode name --where name=abcd")).output.count("\"id\":1"), 1);
    QCOMPARE(db(words("delete channel --encode name --where name=abcd")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT id FROM channel")), words("2"));
}

void tst_DBEncoding::whatWouldNotComeBackIsRefused_data()
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

void tst_DBEncoding::whatWouldNotComeBackIsRefused()
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

void tst_DBEncoding::unknownColumnToDecodeIsWarnedOf()
{
    QCOMPARE(db(words("select channel --decode nme")).error, QByteArray());
    ask(QStringLiteral("INSERT INTO channel(id, name) VALUES(1, 'WYJjZA==')"));
    const Ended ended = db(words("select channel --decode nme --decode name"));
    QCOMPARE(ended.error, QByteArray("quenzo: there is no column 'nme' to unscramble\n"));
    QCOMPARE(ended.output, QByteArray("{\"id\":1,\"name\":\"abcd\",\"state\":null}\n"));
    QCOMPARE(ended.code, 0);
}

void tst_DBEncoding::textsAreEncodedAndDecoded()
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

void tst_DBEncoding::textThatEncodeDoesNotMakeIsWarnedOf()
{
    const QStringList command{QStringLiteral("decode"), QStringLiteral("--json")};
    const Ended foreign = QuenzoProcess(command + QStringList(QStringLiteral("not base64 at all"))).end();
    QCOMPARE(foreign.code, 0);
    const QJsonArray warnings = foreign.json().value(QStringLiteral("warnings")).toArray();
    QCOMPARE(warnings, QJsonArray{QStringLiteral("the text is not what encode makes of this result")});
    const Ended own = QuenzoProcess(command + QStringList(QStringLiteral("GasVGbg82d9ybGQ="))).end();
    QCOMPARE(own.error, QByteArray());
}

QTEST_GUILESS_MAIN(tst_DBEncoding)
#include "tst_dbencoding.moc"
