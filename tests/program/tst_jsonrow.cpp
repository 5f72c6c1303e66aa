// SPDX-License-Identifier: MIT
#include "records/jsonrow.h"

#include <QtTest>

class tst_JsonRow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void valuesKeepTheirTypes_data();
    void valuesKeepTheirTypes();
    void tokensMayStandAnyhow_data();
    void tokensMayStandAnyhow();
    void whatWouldChangeIsRefused_data();
    void whatWouldChangeIsRefused();
    void largeTextsAreRead();
};

void tst_JsonRow::valuesKeepTheirTypes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("integer") << QByteArray("7") << QVariant(7LL);
    QTest::newRow("least") << QByteArray("-9223372036854775808")
                           << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("greatest") << QByteArray("9223372036854775807")
                              << QVariant(std::numeric_limits<qint64>::max());
    QTest::newRow("whole real") << QByteArray("1.0") << QVariant(1.0);
    QTest::newRow("exponent") << QByteArray("1E2") << QVariant(100.0);
    QTest::newRow("large real") << QByteArray("1.5e300") << QVariant(1.5e300);
    QTest::newRow("text") << QByteArray(R"("1.0")") << QVariant(QStringLiteral("1.0"));
    QTest::newRow("pair") << QByteArray(R"("\ud83d\ude00")") << QVariant(QStringLiteral("\U0001F600"));
    QTest::newRow("true") << QByteArray("true") << QVariant(true);
    QTest::newRow("null") << QByteArray("null") << QVariant::fromValue(nullptr);
}

void tst_JsonRow::valuesKeepTheirTypes()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QVariant, value);
    QString error;
    const QVariantMap row = JsonRow::parse("{\"v\": " + text + ", \"w\": 1}", error);
    QCOMPARE(error, QString());
    QCOMPARE(row.size(), 2);
    QCOMPARE(row.value(QStringLiteral("v")).userType(), value.userType());
    QCOMPARE(row.value(QStringLiteral("v")), value);
}

void tst_JsonRow::tokensMayStandAnyhow_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("close") << QByteArray(R"({"a":1.0,"b":"x"})");
    QTest::newRow("wide") << QByteArray("\t{ \"a\" :\r\n 1.0 , \"b\" : \"x\" }\n");
    QTest::newRow("escaped name") << QByteArray(R"({"\u0061":1.0,"b":"x"})");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf{\"a\":1.0,\"b\":\"x\"}");
}

void tst_JsonRow::tokensMayStandAnyhow()
{
    QFETCH(const QByteArray, text);
    QString error;
    const QVariantMap row = JsonRow::parse(text, error);
    QCOMPARE(error, QString());
    QCOMPARE(row, (QVariantMap{{QStringLiteral("a"), 1.0}, {QStringLiteral("b"), QStringLiteral("x")}}));
    QCOMPARE(row.value(QStringLiteral("a")).type(), QVariant::Double);
}

void tst_JsonRow::whatWouldChangeIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("cause");
    const QString twice = QStringLiteral("'a' is given twice");
    QTest::newRow("twice") << QByteArray(R"({"a":1,"a":1})") << twice;
    QTest::newRow("twice by escape") << QByteArray(R"({"a":1,"\u0061":2})") << twice;
    QTest::newRow("twice in capitals") << QByteArray(R"({"A":1,"a":2})") << twice;
    QTest::newRow("quoted quotation mark") << QByteArray(R"({"b":"\",\"","a":1,"a":2})") << twice;
    const QString beyond = QStringLiteral("the integer of 'a' is beyond 64 bits");
    QTest::newRow("large integer") << QByteArray(R"({"a":12345678901234567890})") << beyond;
    QTest::newRow("next to greatest") << QByteArray(R"({"a":9223372036854775808})") << beyond;
    const QString half = QStringLiteral("'a' holds half a surrogate pair");
    QTest::newRow("first half") << QByteArray(R"({"a":"x\ud83d"})") << half;
    QTest::newRow("first half twice") << QByteArray(R"({"a":"\ud83d\ud83d\ude00"})") << half;
    QTest::newRow("second half") << QByteArray(R"({"a":"\ude00"})") << half;
    const QString null = QStringLiteral("a name holds a null character behind 'a'");
    QTest::newRow("null in a name") << QByteArray(R"({"a\u0000b":1})") << null;
    QTest::newRow("null as such in a name") << QByteArray("{\"a\0b\":1}", 9) << null;
    QTest::newRow("names alike up to a null") << QByteArray(R"({"a\u0000b":1,"a\u0000c":2})") << null;
    QTest::newRow("null at the end of a name") << QByteArray(R"({"a\u0000":1,"b":2})") << null;
    QTest::newRow("list") << QByteArray(R"({"a":[1]})") << QStringLiteral("'a' holds neither");
    QTest::newRow("object") << QByteArray(R"({"a":{}})") << QStringLiteral("'a' holds neither");
    QTest::newRow("no object") << QByteArray("[1]") << QStringLiteral("one JSON object");
    QTest::newRow("no JSON") << QByteArray("a=1") << QStringLiteral("illegal value");
    QTest::newRow("infinite") << QByteArray(R"({"a":1e999})") << QStringLiteral("illegal number");
}

void tst_JsonRow::whatWouldChangeIsRefused()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, cause);
    QString error;
    QCOMPARE(JsonRow::parse(text, error), QVariantMap());
    QVERIFY2(error.contains(cause), qUtf8Printable(error));
}

void tst_JsonRow::largeTextsAreRead()
{
    const QByteArray text = QByteArray(R"(\"x,:{}[]\\)").repeated(1024 * 1024);
    QString error;
    const QVariantMap row = JsonRow::parse("{\"a\":\"" + text + "\",\"b\":1}", error);
    QCOMPARE(error, QString());
    QCOMPARE(row.value(QStringLiteral("a")).toString().size(), 9 * 1024 * 1024);
}

QTEST_APPLESS_MAIN(tst_JsonRow)
#include "tst_jsonrow.moc"
