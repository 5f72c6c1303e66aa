// SPDX-License-Identifier: MIT
#include "window/channels/orderedjson.h"

#include <QtTest>

class tst_OrderedJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unchangedTextIsWrittenByteForByte_data();
    void unchangedTextIsWrittenByteForByte();
    void faultTellsThePlace();
    void editKeepsAllElse_data();
    void editKeepsAllElse();
    void newItemIsLaidOutLikeItsNeighbours_data();
    void newItemIsLaidOutLikeItsNeighbours();
    void movedItemsComeBackByteForByte();
    void textsAreReadByTheirMeaning();
    void newTextIsEscaped();
};

namespace {

OrderedJson parsed(const QByteArray& content)
{
    QString fault;
    const OrderedJson value = OrderedJson::parse(content, fault);
    if (!fault.isEmpty())
        qWarning("%s", qUtf8Printable(fault));
    return value;
}

const QString folder = QStringLiteral("folder");

} // namespace

void tst_OrderedJson::unchangedTextIsWrittenByteForByte_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("empty array with blanks") << QByteArray(" [ \n ]\n");
    QTest::newRow("order of keys") << QByteArray(R"({"b":1,"a":2,"//":"text"})");
    QTest::newRow("digits of numbers") << QByteArray("[1.50, 1e3, -0, 12345678901234567890, 0.10]");
    QTest::newRow("escapes of texts") << QByteArray(R"({"\u0066older": "\/a\u00e9\"", "b": "é"})");
    QTest::newRow("words") << QByteArray("[true,false , null]");
    QTest::newRow("nested, two blanks") << QByteArray("{\n  \"a\": [\n    {\"b\": []},\n    {}\n  ]\n}\n");
    QTest::newRow("tabs and carriage returns") << QByteArray("{\r\n\t\"a\" :\t1 ,\r\n\r\n\t\"b\":2\r\n}\r\n");
    QTest::newRow("mark of the byte order") << QByteArray("\xEF\xBB\xBF{\"a\": 1}");
    QTest::newRow("the same key twice") << QByteArray(R"({"a": 1, "a": 2})");
}

void tst_OrderedJson::unchangedTextIsWrittenByteForByte()
{
    QFETCH(QByteArray, content);
    QString fault;
    const OrderedJson value = OrderedJson::parse(content, fault);
    QCOMPARE(fault, QString());
    QCOMPARE(value.toUtf8(), content);
}

void tst_OrderedJson::faultTellsThePlace()
{
    QString fault;
    const OrderedJson value = OrderedJson::parse("{\n  \"a\": ,\n}", fault);
    QCOMPARE(value.kind(), OrderedJson::Nothing);
    QVERIFY2(fault.contains(QLatin1String("line 2")), qPrintable(fault));
    OrderedJson::parse({}, fault);
    QVERIFY2(!fault.isEmpty(), "an empty text is said to be JSON");
}

void tst_OrderedJson::editKeepsAllElse_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("edited");
    QTest::newRow("one line") << QByteArray(R"({"z": 1.0, "folder": "a", "y": [1,2]})")
                              << QByteArray(R"({"z": 1.0, "folder": "new", "y": [1,2]})");
    QTest::newRow("odd blanks") << QByteArray("{ \"folder\"  :\"a\" ,\n\"y\":2}")
                                << QByteArray("{ \"folder\"  :\"new\" ,\n\"y\":2}");
    QTest::newRow("escaped key") << QByteArray(R"({"\u0066older": "a"})")
                                 << QByteArray(R"({"\u0066older": "new"})");
}

void tst_OrderedJson::editKeepsAllElse()
{
    QFETCH(QByteArray, content);
    OrderedJson value = parsed(content);
    value.set(folder, OrderedJson::text(QStringLiteral("new")));
    QTEST(value.toUtf8(), "edited");
}

void tst_OrderedJson::newItemIsLaidOutLikeItsNeighbours_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("edited");
    QTest::newRow("none there") << QByteArray("{}") << QByteArray(R"({"name": "N"})");
    QTest::newRow("one on a line") << QByteArray(R"({"folder": "a"})")
                                   << QByteArray(R"({"folder": "a", "name": "N"})");
    QTest::newRow("one on its own line") << QByteArray("{\n  \"folder\": \"a\"\n}")
                                         << QByteArray("{\n  \"folder\": \"a\",\n  \"name\": \"N\"\n}");
    QTest::newRow("no blanks") << QByteArray(R"({"folder":"a","mark":"m"})")
                               << QByteArray(R"({"folder":"a","name":"N","mark":"m"})");
    QTest::newRow("behind its neighbour, not at the end")
        << QByteArray("{\n  \"folder\": \"a\",\n  \"mark\": \"m\"\n}")
        << QByteArray("{\n  \"folder\": \"a\",\n  \"name\": \"N\",\n  \"mark\": \"m\"\n}");
}

void tst_OrderedJson::newItemIsLaidOutLikeItsNeighbours()
{
    QFETCH(QByteArray, content);
    OrderedJson value = parsed(content);
    value.set(QStringLiteral("name"), OrderedJson::text(QStringLiteral("N")), {folder});
    QTEST(value.toUtf8(), "edited");
}

void tst_OrderedJson::movedItemsComeBackByteForByte()
{
    const QByteArray content("[ {\"a\": 1},\n  {\"b\": 2} ,{\"c\": 3}\n]\n");
    OrderedJson value = parsed(content);
    value.items().move(0, 2);
    value.items().move(0, 1);
    QCOMPARE(value.toUtf8(), QByteArray("[ {\"c\": 3},\n  {\"b\": 2} ,{\"a\": 1}\n]\n"));
    value.items().move(0, 1);
    value.items().move(2, 0);
    QCOMPARE(value.toUtf8(), content);
}

void tst_OrderedJson::textsAreReadByTheirMeaning()
{
    const OrderedJson value = parsed(R"({"a": "\u4e2d\n", "b": 1.0, "c": ["x", "\ty"], "d": null})");
    QCOMPARE(value.member(QStringLiteral("a")).toText(), QStringLiteral("中\n"));
    QCOMPARE(value.member(QStringLiteral("b")).toText(), QString());
    QCOMPARE(value.member(QStringLiteral("b")).written(), QByteArray("1.0"));
    QCOMPARE(value.member(QStringLiteral("c")).toTexts(),
             (QStringList{QStringLiteral("x"), QStringLiteral("\ty")}));
    QVERIFY2(value.member(QStringLiteral("d")).isNull(), "null is not told");
    QCOMPARE(value.member(QStringLiteral("e")).kind(), OrderedJson::Nothing);
}

void tst_OrderedJson::newTextIsEscaped()
{
    const QString text = QStringLiteral("\"é\\\n中");
    OrderedJson value = parsed("{}");
    value.set(text, OrderedJson::text(text));
    const OrderedJson again = parsed(value.toUtf8());
    QCOMPARE(again.member(text).toText(), text);
}

QTEST_APPLESS_MAIN(tst_OrderedJson)
#include "tst_orderedjson.moc"
