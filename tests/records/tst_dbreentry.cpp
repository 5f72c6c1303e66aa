// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QtTest>

#include <functional>
#include <sqlite3.h>

Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)

// What a host does and sees that knows SQLite itself: its own SQL function that writes, called while a row is
// being written; the statements that are kept.
class tst_DBReentry : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void functionWritesIntoTheTableOfTheRow_data();
    void functionWritesIntoTheTableOfTheRow();
    void functionWritesIntoManyTables();
    void functionFailsToWrite();
    void failedStatementsAreGivenBack();

private:
    static sqlite3* connection();
    static int statements();
    void execute(const QString& sql);
    bool write(int id, bool list = false);

    std::function<void(int)> m_work; // what the function does with an id below 100
};

namespace {

constexpr int others = 40; // more tables than there are kept statements

void callBack(sqlite3_context* context, int, sqlite3_value** values)
{
    const int id = sqlite3_value_int(values[0]);
    if (id < 100)
        (*static_cast<std::function<void(int)>*>(sqlite3_user_data(context)))(id);
    sqlite3_result_null(context);
}

} // namespace

sqlite3* tst_DBReentry::connection()
{
    return QSqlDatabase::database(QStringLiteral("Quenzo")).driver()->handle().value<sqlite3*>();
}

// Those that the connection holds.
int tst_DBReentry::statements()
{
    int count = 0;
    for (auto* one = sqlite3_next_stmt(connection(), nullptr); one != nullptr;
         one = sqlite3_next_stmt(connection(), one))
        ++count;
    return count;
}

void tst_DBReentry::init()
{
    RecordsFixture::init();
    QVERIFY(connection() != nullptr);
    QCOMPARE(
        sqlite3_create_function(connection(), "again", 1, SQLITE_UTF8, &m_work, callBack, nullptr, nullptr),
        SQLITE_OK);
    execute(QStringLiteral("CREATE TRIGGER calls AFTER INSERT ON channel BEGIN SELECT again(new.id); END"));
}

void tst_DBReentry::execute(const QString& sql)
{
    QSqlQuery query(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QVERIFY2(query.exec(sql), qUtf8Printable(sql));
}

bool tst_DBReentry::write(int id, bool list)
{
    Row one = row(id, QStringLiteral("a"));
    QList<QVariant> rows{one};
    return list ? m_database->insertToDatabase(table, rows, false)
                : m_database->insertToDatabase(table, one, false);
}

void tst_DBReentry::functionWritesIntoTheTableOfTheRow_data()
{
    QTest::addColumn<bool>("list");
    QTest::newRow("row") << false;
    QTest::newRow("list") << true;
}

void tst_DBReentry::functionWritesIntoTheTableOfTheRow()
{
    QFETCH(const bool, list);
    QList<bool> done;
    m_work = [&](int id) { done.append(write(id + 100, list) && write(id + 200, list)); };
    QVariantList ids;
    for (int id = 0; id < 10; ++id) {
        QVERIFY(write(id, list));
        ids += QVariantList{id, id + 100, id + 200};
    }
    QCOMPARE(done.count(true), 10);
    QCOMPARE(m_database->committedIds(), ids);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBReentry::functionWritesIntoManyTables()
{
    for (int i = 0; i < others; ++i)
        execute(QStringLiteral("CREATE TABLE t%1(id)").arg(i));
    m_work = [&](int id) {
        for (int i = 0; i < others; ++i)
            QVERIFY(
                m_database->insertToDatabase(QStringLiteral("t%1").arg(i), QStringLiteral("id"), id, false));
    };
    QList<QVariant> rows;
    for (int id = 0; id < 20; ++id)
        rows.append(row(id, QStringLiteral("a")));
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 99, false));
    QCOMPARE(m_database->committedIds().size(), 21);
    for (int i = 0; i < others; ++i)
        QCOMPARE(m_database->outside(QStringLiteral("SELECT count(*) FROM t%1").arg(i)), QVariantList{21});
}

void tst_DBReentry::functionFailsToWrite()
{
    int failures = 0;
    m_work = [&](int) { failures += write(100) ? 0 : 1; };
    for (int id = 0; id < 5; ++id)
        QVERIFY(write(id));
    QCOMPARE(failures, 4);
    QCOMPARE(m_database->committedIds(), (QVariantList{0, 100, 1, 2, 3, 4}));
    QCOMPARE(m_log->takeDebugTexts().size(), 3 * failures);
}

void tst_DBReentry::failedStatementsAreGivenBack()
{
    m_work = [](int) {};
    const int before = statements();
    for (int id = 0; id < others; ++id) {
        QVERIFY(write(id));
        QCOMPARE(statements(), before + 1);
        QVERIFY2(!write(id), "the id is unique");
        QCOMPARE(statements(), before);
    }
    QCOMPARE(m_log->takeDebugTexts().size(), 3 * others);
}

QTEST_GUILESS_MAIN(tst_DBReentry)
#include "tst_dbreentry.moc"
