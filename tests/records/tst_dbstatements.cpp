// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include <quenzotool.h>

#include <QSqlDatabase>
#include <QtTest>

#include <limits>

namespace {

QString scrambled(const char* text)
{
    return QuenzoTool::ckEncode(QString::fromUtf8(text));
}

} // namespace

// The direct calls; each test has a file of its own.
class tst_DBStatements : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void columnsAreTakenInAscendingOrderOfTheirNames();
    void insertWritesOneRow();
    void oneColumnInsertBindsText();
    void encodedInsertStoresScrambledText();
    void shortTextsAreStoredAsEmptyTextNotNull();
    void listInsertWritesRowsInOrder();
    void listInsertTakesRowsOfDifferentColumns();
    void emptyListsSucceedWithoutTouchingTheDatabase();
    void failedRowEndsAListInsert();
    void failedListInsertRollsBackTheOpenTransaction();
    void failedListInsertWithoutTransactionKeepsRowsBefore();
    void failedMapInsertRollsNothingBack();

    void updateConditionIsNeverEncoded();
    void updateConditionIsBoundAsText();
    void updateOfTheConditionColumnBindsTheConditionToBoth();
    void failedListUpdateKeepsRowsBefore();
    void updateThatMeetsNoRowSucceeds();

    void deleteWithTableOnlyEmptiesIt();
    void deleteWithSeveralConditionsNeedsAll();
    void deleteWithOneConditionBindsText();
    void encodedDeleteComparesWithScrambledValues();

    void conditionsAreTakenInAscendingOrderOfTheirNames();
    void integerSelectBindsText();
    void selectDecodesItsConditionsAndReturnsValuesAsStored();
    void fieldsOfTheSameNameYieldTheLastOne();
    void selectedValuesKeepTheirTypes();

    void argumentsStayAsTheyAre();

    void hostileValuesAreBound_data();
    void hostileValuesAreBound();
    void invalidVariantsAreStoredAsNull();
    void hostileValuesDoNotReachTheStatement();
};

void tst_DBStatements::columnsAreTakenInAscendingOrderOfTheirNames()
{
    // By UTF-16 code unit: capitals first, the underscore between capitals and small letters.
    QMap<QString, QVariant> values;
    for (const char* name : {"b", "a", "_c", "B", "a1"})
        values.insert(QLatin1String(name), 1);
    QVERIFY(!m_database->insertToDatabase(QStringLiteral("missing"), values, false));
    QCOMPARE(m_log->takeDebugTexts().value(0),
             QStringLiteral("INSERT INTO missing(B, _c, a, a1, b) VALUES(:B, :_c, :a, :a1, :b);"));
}

void tst_DBStatements::insertWritesOneRow()
{
    Row values = row(7, QStringLiteral("a"));
    QVERIFY(m_database->insertToDatabase(table, values, false));
    QCOMPARE(
        m_database->outside(QStringLiteral("SELECT typeof(id) || id || typeof(name) || name FROM channel")),
        QVariantList{QStringLiteral("integer7texta")});
}

void tst_DBStatements::oneColumnInsertBindsText()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 3, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT typeof(id) || id FROM channel")),
             QVariantList{QStringLiteral("text3")});
}

void tst_DBStatements::encodedInsertStoresScrambledText()
{
    Row values = row(123456, QStringLiteral("hello world"));
    QVERIFY(m_database->insertToDatabase(table, values, true));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel")),
             QVariantList{QStringLiteral("GasVGbg82d9ybGQ=")});
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id FROM channel")),
             QVariantList{scrambled("123456")});
}

void tst_DBStatements::shortTextsAreStoredAsEmptyTextNotNull()
{
    Row values = row(1, QVariant());
    QVERIFY(m_database->insertToDatabase(table, values, true));
    QCOMPARE(
        m_database->outside(QStringLiteral("SELECT typeof(id) || id || typeof(name) || name FROM channel")),
        QVariantList{QStringLiteral("texttext")});
}

void tst_DBStatements::listInsertWritesRowsInOrder()
{
    QList<QVariant> rows;
    for (int id = 9; id > 0; --id)
        rows.append(row(id, QString::number(id)));
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->committedIds(), (QVariantList{9, 8, 7, 6, 5, 4, 3, 2, 1}));
}

void tst_DBStatements::listInsertTakesRowsOfDifferentColumns()
{
    const QString id = QStringLiteral("id");
    const QString state = QStringLiteral("state");
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(2, QStringLiteral("b")), Row{{id, 3}},
                         Row{{id, 4}, {state, QStringLiteral("s")}}, row(5, QStringLiteral("e"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->outside(QStringLiteral(
                 "SELECT id || ifnull(name, '-') || ifnull(state, '-') FROM channel ORDER BY id")),
             (QVariantList{QStringLiteral("1a-"), QStringLiteral("2b-"), QStringLiteral("3--"),
                           QStringLiteral("4-s"), QStringLiteral("5e-")}));
}

void tst_DBStatements::emptyListsSucceedWithoutTouchingTheDatabase()
{
    m_database->closeDB();
    QList<QVariant> none;
    QVERIFY(m_database->insertToDatabase(table, none, false));
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("id"), 1, none, false));
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBStatements::failedRowEndsAListInsert()
{
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(1, QStringLiteral("twice")),
                         row(2, QStringLiteral("never"))};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->committedIds(), QVariantList{1});
    QCOMPARE(m_log->takeDebugTexts(),
             (QStringList{QStringLiteral("INSERT INTO channel(id, name) VALUES(:id, :name);"),
                          QStringLiteral("Error at insert channel"),
                          QStringLiteral("UNIQUE constraint failed: channel.id Unable to fetch row")}));
}

void tst_DBStatements::failedListInsertRollsBackTheOpenTransaction()
{
    QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"), false);
    QVERIFY(connection.transaction());
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 1, false));
    QList<QVariant> rows{row(2, QVariant()), row(2, QVariant())};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QVERIFY2(!connection.commit(), "the transaction is still open");
    QCOMPARE(m_database->committedIds(), QVariantList());
}

void tst_DBStatements::failedListInsertWithoutTransactionKeepsRowsBefore()
{
    QList<QVariant> rows{row(1, QVariant()), row(2, QVariant()), row(2, QVariant()), row(3, QVariant())};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2}));
}

void tst_DBStatements::failedMapInsertRollsNothingBack()
{
    QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"), false);
    QVERIFY(connection.transaction());
    Row values = row(1, QVariant());
    QVERIFY(m_database->insertToDatabase(table, values, false));
    QVERIFY(!m_database->insertToDatabase(table, values, false));
    QVERIFY(connection.commit());
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBStatements::updateConditionIsNeverEncoded()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), QStringLiteral("five5"), false));
    Row values{{QStringLiteral("name"), QStringLiteral("hello world")}};
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("id"), QStringLiteral("five5"), values, true));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel WHERE id = 'five5'")),
             QVariantList{QStringLiteral("GasVGbg82d9ybGQ=")});
}

void tst_DBStatements::updateConditionIsBoundAsText()
{
    // A column without a type compares a number with a text as different.
    Row number = row(5, QStringLiteral("number"));
    Row text = row(QStringLiteral("5"), QStringLiteral("text"));
    QVERIFY(m_database->insertToDatabase(table, number, false));
    QVERIFY(m_database->insertToDatabase(table, text, false));
    Row values{{QStringLiteral("name"), QStringLiteral("new")}};
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("id"), 5, values, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel ORDER BY rowid")),
             (QVariantList{QStringLiteral("number"), QStringLiteral("new")}));
}

void tst_DBStatements::updateOfTheConditionColumnBindsTheConditionToBoth()
{
    Row before = row(QStringLiteral("old"), QStringLiteral("a"));
    QVERIFY(m_database->insertToDatabase(table, before, false));
    QList<QVariant> values{row(QStringLiteral("ignored"), QStringLiteral("b")),
                           row(QStringLiteral("ignored too"), QStringLiteral("c"))};
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("id"), QStringLiteral("old"), values, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id || name FROM channel")),
             QVariantList{QStringLiteral("oldc")});
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBStatements::failedListUpdateKeepsRowsBefore()
{
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 1, false));
    QList<QVariant> values{Row{{QStringLiteral("name"), QStringLiteral("done")}},
                           Row{{QStringLiteral("missing"), 1}},
                           Row{{QStringLiteral("name"), QStringLiteral("never")}}};
    QVERIFY(!m_database->updateToDatabase(table, QStringLiteral("id"), 1, values, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel")),
             QVariantList{QStringLiteral("done")});
    QCOMPARE(m_log->takeDebugTexts(),
             (QStringList{QStringLiteral("UPDATE channel SET missing = :missing WHERE id = :id;"),
                          QStringLiteral("Error at update channel"),
                          QStringLiteral("no such column: missing Unable to execute statement")}));
}

void tst_DBStatements::updateThatMeetsNoRowSucceeds()
{
    Row values{{QStringLiteral("name"), 1}};
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("id"), 1, values, false));
}

void tst_DBStatements::deleteWithTableOnlyEmptiesIt()
{
    QList<QVariant> rows{row(1, QVariant()), row(2, QVariant())};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QVERIFY(m_database->deleteFromDatabase(table));
    QCOMPARE(m_database->committedIds(), QVariantList());
}

void tst_DBStatements::deleteWithSeveralConditionsNeedsAll()
{
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(2, QStringLiteral("a")),
                         row(3, QStringLiteral("b"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    Row condition = row(2, QStringLiteral("a"));
    QVERIFY(m_database->deleteFromDatabase(table, condition, false));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 3}));
    QVERIFY(m_database->deleteFromDatabase(table, QStringLiteral("name"), QStringLiteral("b"), false));
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBStatements::deleteWithOneConditionBindsText()
{
    QList<QVariant> rows{row(5, QStringLiteral("number")), row(QStringLiteral("5"), QStringLiteral("text"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QVERIFY(m_database->deleteFromDatabase(table, QStringLiteral("id"), 5, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel")),
             QVariantList{QStringLiteral("number")});
}

void tst_DBStatements::encodedDeleteComparesWithScrambledValues()
{
    Row values = row(1, QStringLiteral("hello world"));
    QVERIFY(m_database->insertToDatabase(table, values, false));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("name"), QStringLiteral("hello world"), true));
    QVERIFY(
        m_database->deleteFromDatabase(table, QStringLiteral("name"), QStringLiteral("hello world"), true));
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

void tst_DBStatements::conditionsAreTakenInAscendingOrderOfTheirNames()
{
    QMap<QString, QVariant> conditions;
    for (const char* name : {"b", "a", "_c", "B"})
        conditions.insert(QLatin1String(name), 1);
    const QString clause = QStringLiteral(" FROM missing WHERE B = :B and _c = :_c and a = :a and b = :b;");
    QVERIFY(!m_database->deleteFromDatabase(QStringLiteral("missing"), conditions, false));
    QCOMPARE(m_log->takeDebugTexts().value(0), QStringLiteral("DELETE") + clause);
    QVERIFY(m_database->selectFromDatabase(QStringLiteral("missing"), conditions, false).isEmpty());
    QCOMPARE(m_log->takeDebugTexts().value(0), QStringLiteral("SELECT *") + clause);
}

void tst_DBStatements::integerSelectBindsText()
{
    QList<QVariant> rows{row(12, QStringLiteral("number")),
                         row(QStringLiteral("12"), QStringLiteral("text"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    const QList<QVariant> found = m_database->selectFromDatabase(table, QStringLiteral("id"), 12, false);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().toMap().value(QStringLiteral("name")).toString(), QStringLiteral("text"));
}

void tst_DBStatements::selectDecodesItsConditionsAndReturnsValuesAsStored()
{
    QVERIFY(
        m_database->insertToDatabase(table, QStringLiteral("name"), QStringLiteral("hello world"), false));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("name"), QStringLiteral("hello world"), true));
    const QList<QVariant> found = m_database->selectFromDatabase(table, QStringLiteral("name"),
                                                                 QStringLiteral("GasVGbg82d9ybGQ="), true);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().toMap().value(QStringLiteral("name")).toString(), QStringLiteral("hello world"));
    const QList<QVariant> all = m_database->selectFromDatabase(table, true);
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.last().toMap().value(QStringLiteral("name")).toString(), QStringLiteral("GasVGbg82d9ybGQ="));
}

void tst_DBStatements::fieldsOfTheSameNameYieldTheLastOne()
{
    // Names are pasted, so the table may be a selection.
    const QList<QVariant> found =
        m_database->selectFromDatabase(QStringLiteral("(SELECT 1 AS b, 2 AS a), (SELECT 3 AS b)"), false);
    QCOMPARE(found, (QList<QVariant>{Row{{QStringLiteral("a"), 2}, {QStringLiteral("b"), 3}}}));
}

void tst_DBStatements::selectedValuesKeepTheirTypes()
{
    m_database->outside(
        QStringLiteral("INSERT INTO channel VALUES(1, 2.5, x'0001'), (NULL, 'text', 9223372036854775807)"));
    const QList<QVariant> found = m_database->selectFromDatabase(table, false);
    QCOMPARE(found.size(), 2);
    const Row first = found.at(0).toMap();
    QCOMPARE(first.value(QStringLiteral("id")), QVariant(1LL));
    QCOMPARE(first.value(QStringLiteral("name")), QVariant(2.5));
    QCOMPARE(first.value(QStringLiteral("state")), QVariant(QByteArray("\0\1", 2)));
    const Row second = found.at(1).toMap();
    QVERIFY(second.contains(QStringLiteral("id")));
    QVERIFY(second.value(QStringLiteral("id")).isNull());
    QCOMPARE(second.value(QStringLiteral("state")).toLongLong(), std::numeric_limits<qint64>::max());
}

void tst_DBStatements::argumentsStayAsTheyAre()
{
    Row values = row(1234, QStringLiteral("hello world"));
    const Row before = values;
    QList<QVariant> rows{values, row(5678, QVariant())};
    const QList<QVariant> rowsBefore = rows;
    QVERIFY(m_database->insertToDatabase(table, rows, true));
    QVERIFY(!m_database->insertToDatabase(table, values, true));
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("name"), 1, rows, true));
    QVERIFY(m_database->deleteFromDatabase(table, values, true));
    m_database->selectFromDatabase(table, values, true);
    QCOMPARE(values, before);
    QCOMPARE(rows, rowsBefore);
}

void tst_DBStatements::hostileValuesAreBound_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("quotes") << QVariant(QStringLiteral("'\"`; DROP TABLE channel; --"));
    QTest::newRow("placeholder") << QVariant(QStringLiteral(":id ?1 @name $state %1"));
    QTest::newRow("null character") << QVariant(QStringLiteral("a") + QChar(QChar::Null)
                                                + QStringLiteral("b"));
    QTest::newRow("emoji") << QVariant(QStringLiteral("\U0001F600\u4e2d\ufeff"));
    QTest::newRow("16 MiB") << QVariant(QStringLiteral("x\u00e4").repeated(6 * 1024 * 1024));
    QTest::newRow("empty text") << QVariant(QStringLiteral(""));
    QTest::newRow("least") << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("greatest") << QVariant(std::numeric_limits<qint64>::max());
    QTest::newRow("least real") << QVariant(std::numeric_limits<double>::lowest());
    QTest::newRow("smallest real") << QVariant(std::numeric_limits<double>::denorm_min());
    QTest::newRow("infinite") << QVariant(std::numeric_limits<double>::infinity());
    QTest::newRow("bytes") << QVariant(QByteArray("\0'\xff", 3));
}

void tst_DBStatements::hostileValuesAreBound()
{
    QFETCH(const QVariant, value);
    Row values = row(1, value);
    QVERIFY(m_database->insertToDatabase(table, values, false));
    const QList<QVariant> rows = m_database->selectFromDatabase(table, false);
    QCOMPARE(rows.size(), 1);
    const QVariant stored = rows.first().toMap().value(QStringLiteral("name"));
    QVERIFY2(stored == value, qUtf8Printable(stored.toString().left(100)));
    QVERIFY(m_database->deleteFromDatabase(table, values, false));
    QCOMPARE(m_database->committedIds(), QVariantList());
}

void tst_DBStatements::invalidVariantsAreStoredAsNull()
{
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(2, QVariant()), row(3, QVariant(QVariant::Int)),
                         row(4, QStringLiteral("b"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT typeof(name) FROM channel ORDER BY id")),
             (QVariantList{QStringLiteral("text"), QStringLiteral("null"), QStringLiteral("null"),
                           QStringLiteral("text")}));
}

void tst_DBStatements::hostileValuesDoNotReachTheStatement()
{
    Row values = row(1, QStringLiteral("'); DROP TABLE channel; --"));
    QVERIFY(!m_database->insertToDatabase(QStringLiteral("missing"), values, false));
    QVERIFY(!m_log->takeDebugTexts().value(0).contains(QLatin1String("DROP")));
}

QTEST_GUILESS_MAIN(tst_DBStatements)
#include "tst_dbstatements.moc"
