// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include <quenzotool.h>

#include <QDate>
#include <QJsonObject>
#include <QUuid>
#include <QtTest>

#include <atomic>
#include <limits>
#include <thread>

// Rows of a list that have the columns of the row before take a shorter way into the file than the first one.
class tst_DBLists : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void laterRowsAreStoredAsTheFirst_data();
    void laterRowsAreStoredAsTheFirst();
    void kindsMayChangeFromRowToRow();
    void valuesOfLaterRowsAreEncodedToo();
    void failureInALaterRowReadsAsThatOfASingleRow_data();
    void failureInALaterRowReadsAsThatOfASingleRow();
    void nobodySeesAFailedRowBeforeItsRollback();
    void directCallGetsItsTurnBetweenTwoRows();
    void selectsOfTwoThreadsKeepApart();
    void updatesOfLaterRowsTakeTheirOwnValues();
    void rowsAreTakenAfterALaterRowFailed();
    void textsThatAreTooLongFailInALaterRowToo();

private:
    void createStrictTable();
};

void tst_DBLists::laterRowsAreStoredAsTheFirst_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("null text") << QVariant(QString());
    QTest::newRow("empty text") << QVariant(QStringLiteral(""));
    QTest::newRow("text") << QVariant(QStringLiteral("a\u00e4\U0001F600"));
    QTest::newRow("null character") << QVariant(QStringLiteral("a") + QChar(QChar::Null)
                                                + QStringLiteral("b"));
    QTest::newRow("half a surrogate pair") << QVariant(QString(QChar(0xd83d)) + QLatin1Char('x'));
    QTest::newRow("truth") << QVariant(true);
    QTest::newRow("integer") << QVariant(-7);
    QTest::newRow("null integer") << QVariant(QVariant::Int);
    QTest::newRow("unsigned") << QVariant(std::numeric_limits<uint>::max());
    QTest::newRow("long") << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("unsigned long") << QVariant(std::numeric_limits<quint64>::max());
    QTest::newRow("real") << QVariant(0.1);
    QTest::newRow("not a number") << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("short real") << QVariant::fromValue(1.5F);
    QTest::newRow("letter") << QVariant(QChar(0x4e2d));
    QTest::newRow("bytes") << QVariant(QByteArray("\0'\xff", 3));
    QTest::newRow("empty bytes") << QVariant(QByteArray(""));
    QTest::newRow("null bytes") << QVariant(QByteArray());
    QTest::newRow("date") << QVariant(QDate(2026, 2, 28));
    QTest::newRow("time") << QVariant(QTime(1, 2, 3, 4));
    QTest::newRow("date and time") << QVariant(QDateTime(QDate(2026, 2, 28), QTime(1, 2, 3, 4)));
    QTest::newRow("list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
    QTest::newRow("object") << QVariant(QJsonObject{{QStringLiteral("a"), 1}});
    QTest::newRow("identifier") << QVariant(QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
}

void tst_DBLists::laterRowsAreStoredAsTheFirst()
{
    QFETCH(const QVariant, value);
    QList<QVariant> rows{row(1, value), row(2, value), row(3, value)};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 3}));
    const QVariantList stored = m_database->outside(
        QStringLiteral("SELECT typeof(name) || ' ' || hex(name) FROM channel ORDER BY id"));
    QCOMPARE(stored.at(1), stored.at(0));
    QCOMPARE(stored.at(2), stored.at(0));
}

void tst_DBLists::kindsMayChangeFromRowToRow()
{
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(2, QDate(2026, 2, 28)), row(3, 3),
                         row(4, QVariant()), row(5, QByteArray("b"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_database->outside(QStringLiteral(
                 "SELECT typeof(name) || ' ' || coalesce(name, '-') FROM channel ORDER BY id")),
             (QVariantList{QStringLiteral("text a"), QStringLiteral("text 2026-02-28"),
                           QStringLiteral("integer 3"), QStringLiteral("null -"), QStringLiteral("blob b")}));
}

void tst_DBLists::valuesOfLaterRowsAreEncodedToo()
{
    QList<QVariant> values{QStringLiteral("hello world"),
                           1234567,
                           -1234567,
                           std::numeric_limits<qlonglong>::min(),
                           1234567890U,
                           648.0,
                           -12.99,
                           0.1 + 0.2,
                           1e-7,
                           1e300,
                           true,
                           QVariant(),
                           QVariant(QVariant::Int),
                           QString(),
                           QByteArray("bytes"),
                           QDate(2026, 2, 28)};
    for (int length = 0; length < 200; ++length) {
        values.append(QString(length, QLatin1Char('x')));
        values.append(QString(values.last().toString() + QStringLiteral("\u4e2d")));
    }
    values.append(QString(100000, QLatin1Char('x')));
    values.append(QStringLiteral("behind a long one"));
    QList<QVariant> rows;
    QVariantList expected;
    for (const QVariant& value : qAsConst(values)) {
        rows.append(QVariantMap{{QStringLiteral("name"), value}});
        expected.append(QuenzoTool::ckEncode(value.toString()));
    }
    QVERIFY(m_database->insertToDatabase(table, rows, true));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM channel ORDER BY rowid")), expected);
}

void tst_DBLists::createStrictTable()
{
    m_database->outside(QStringLiteral("CREATE TABLE strict(id INTEGER UNIQUE NOT NULL, "
                                       "name INTEGER CHECK(name > 0) REFERENCES channel(id))"));
    m_database->outside(QStringLiteral("CREATE TRIGGER guard BEFORE INSERT ON strict WHEN new.id = 13 "
                                       "BEGIN SELECT RAISE(ABORT, 'no thirteen, na\u00efve one'); END"));
    m_database->outside(QStringLiteral("CREATE TRIGGER half AFTER INSERT ON strict WHEN new.id = 14 "
                                       "BEGIN SELECT RAISE(FAIL, 'no fourteen'); END"));
}

void tst_DBLists::failureInALaterRowReadsAsThatOfASingleRow_data()
{
    QTest::addColumn<QVariant>("id");
    QTest::addColumn<QVariant>("name");
    QTest::newRow("not unique") << QVariant(1) << QVariant(1);
    QTest::newRow("null") << QVariant() << QVariant(1);
    QTest::newRow("check") << QVariant(2) << QVariant(0);
    QTest::newRow("trigger") << QVariant(13) << QVariant(1);
    QTest::newRow("trigger that keeps the row") << QVariant(14) << QVariant(1);
}

void tst_DBLists::failureInALaterRowReadsAsThatOfASingleRow()
{
    QFETCH(const QVariant, id);
    QFETCH(const QVariant, name);
    createStrictTable();
    const QString strict = QStringLiteral("strict");
    QVariantMap bad{{QStringLiteral("id"), id}, {QStringLiteral("name"), name}};
    QList<QVariant> rows{row(1, 1), bad, row(3, 1)};
    QVERIFY(!m_database->insertToDatabase(strict, rows, false));
    const QStringList ofList = m_log->takeDebugTexts();
    const QVariantList kept = m_database->outside(QStringLiteral("SELECT id FROM strict"));
    QVERIFY(m_database->deleteFromDatabase(strict));

    QVariantMap good = row(1, 1);
    QVERIFY(m_database->insertToDatabase(strict, good, false));
    QVERIFY(!m_database->insertToDatabase(strict, bad, false));
    QCOMPARE(ofList, m_log->takeDebugTexts());
    QCOMPARE(kept, m_database->outside(QStringLiteral("SELECT id FROM strict")));
}

void tst_DBLists::nobodySeesAFailedRowBeforeItsRollback()
{
    constexpr int rounds = 300;
    createStrictTable(); // whose trigger fails at 14, yet leaves that row to the rollback
    m_database->outside(QStringLiteral("CREATE TABLE onlooker(id, looks)"));
    m_database->outside(QStringLiteral("INSERT INTO onlooker VALUES('1', 0)"));
    m_database->outside(QStringLiteral("CREATE TRIGGER seen BEFORE UPDATE ON onlooker WHEN 14 IN "
                                       "(SELECT id FROM strict) BEGIN SELECT RAISE(FAIL, 'seen'); END"));
    std::atomic<bool> ended{false};
    std::atomic<int> looks{0};
    std::atomic<int> seen{0};
    // Waits for the connection most of the time, and is thus the next one at each row of the other thread.
    std::thread onlooker([&] {
        QList<QVariant> rows;
        for (int i = 0; i < 100; ++i)
            rows.append(QVariantMap{{QStringLiteral("looks"), i}});
        while (!ended) {
            seen +=
                m_database->updateToDatabase(QStringLiteral("onlooker"), QStringLiteral("id"), 1, rows, false)
                ? 0
                : 1;
            ++looks;
        }
    });
    for (int round = 0; round < rounds; ++round) {
        QList<QVariant> rows{row(1, 1), row(14, 1)};
        m_database->threadToDatabase(DB_INSERT, QStringLiteral("strict"), rows, QString(), QVariant(), false,
                                     QString());
        m_database->runBurst();
    }
    ended = true;
    onlooker.join();
    QVERIFY(looks > 0);
    QCOMPARE(seen.load(), 0);
    QCOMPARE(m_log->takeDebugTexts().size(), 3 * rounds);
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id FROM strict")), QVariantList());
}

void tst_DBLists::directCallGetsItsTurnBetweenTwoRows()
{
    constexpr int count = 500;
    m_database->outside(QStringLiteral(
        "CREATE TRIGGER slow AFTER INSERT ON channel WHEN new.name = 'slow' BEGIN SELECT count(*) FROM (WITH "
        "RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) SELECT i FROM n); END"));
    QList<QVariant> rows;
    for (int i = 0; i < count; ++i)
        rows.append(row(i, QStringLiteral("slow")));
    bool done = false;
    std::thread list([&] { done = m_database->insertToDatabase(table, rows, false); });
    int before = 0;
    while (before == 0)
        before = m_database->selectFromDatabase(table, false).size();
    const bool direct =
        m_database->insertToDatabase(table, QStringLiteral("id"), QStringLiteral("direct"), false);
    list.join();
    QVERIFY(done && direct);
    const QVariantList places =
        m_database->outside(QStringLiteral("SELECT rowid FROM channel WHERE id = 'direct'"));
    QCOMPARE(places.size(), 1);
    QVERIFY2(places.first().toInt() <= count, "the whole list came before");
}

void tst_DBLists::selectsOfTwoThreadsKeepApart()
{
    QList<QVariant> rows;
    for (int i = 0; i < 100; ++i)
        rows.append(row(i, QString::number(i)));
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    std::atomic<int> wrong{0};
    // Both use the same statement, whose conditions are the caller's own.
    const auto select = [&](int first) {
        for (int i = 0; i < 5000; ++i) {
            const QVariant name = QString::number(first + i % 50);
            QVariantMap condition{{QStringLiteral("name"), name}};
            const QList<QVariant> found = m_database->selectFromDatabase(table, condition, false);
            wrong += found.size() == 1 && found.first().toMap().value(QStringLiteral("name")) == name ? 0 : 1;
        }
    };
    std::thread other(select, 50);
    select(0);
    other.join();
    QCOMPARE(wrong.load(), 0);
}

void tst_DBLists::updatesOfLaterRowsTakeTheirOwnValues()
{
    QList<QVariant> rows{row(1, QStringLiteral("a")), row(2, QStringLiteral("b"))};
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QList<QVariant> changes;
    for (const char* state : {"x", "y", "z"})
        changes.append(QVariantMap{{QStringLiteral("state"), QLatin1String(state)}});
    QVERIFY(m_database->updateToDatabase(table, QStringLiteral("name"), QStringLiteral("b"), changes, false));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT coalesce(state, '-') FROM channel ORDER BY id")),
             (QVariantList{QStringLiteral("-"), QStringLiteral("z")}));
}

void tst_DBLists::rowsAreTakenAfterALaterRowFailed()
{
    QList<QVariant> rows{row(1, 1), row(2, 1), row(2, 1)};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QList<QVariant> others{row(3, 1), row(4, 1)};
    QVERIFY(m_database->insertToDatabase(table, others, false));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 3, 4}));
}

void tst_DBLists::textsThatAreTooLongFailInALaterRowToo()
{
    // One byte beyond SQLite's limit for a value.
    const QByteArray tooLong(1000000001, 'x');
    QList<QVariant> rows{row(1, QByteArray()), row(2, tooLong)};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    const QStringList ofList = m_log->takeDebugTexts();
    QVariantMap single = row(2, tooLong);
    QVERIFY(!m_database->insertToDatabase(table, single, false));
    QCOMPARE(ofList, m_log->takeDebugTexts());
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

QTEST_GUILESS_MAIN(tst_DBLists)
#include "tst_dblists.moc"
