// SPDX-License-Identifier: MIT
// Each of the calls by which a database reaches its file fails, and those after it, as on a disk that is full
// or broken: that is told, the file stays sound, and the work goes on when the disk is well again.
#include "faultycalls.h"
#include "recordsfixture.h"
#include "runroot.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <cerrno>
#include <functional>

using Statement = std::function<bool(DBHelper& database)>;

struct Fault {
    const char* name;
    FaultyCalls::Call call;
    int error;
    const char* reason; ///< as SQLite words it
};

Q_DECLARE_METATYPE(Fault)
Q_DECLARE_METATYPE(Statement)

class tst_DBFaults : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void failedStatementIsToldAndUndone_data();
    void failedStatementIsToldAndUndone();
    void burstThatIsLostIsTold_data();
    void burstThatIsLostIsTold();

private:
    void openFilled();
    QVariantList rows() const
    {
        return m_database->outside(QStringLiteral("SELECT id || name FROM channel ORDER BY id"));
    }
    bool isSound() const
    {
        return m_database->outside(QStringLiteral("PRAGMA integrity_check"))
            == QVariantList{QStringLiteral("ok")};
    }
};

namespace {

constexpr Fault faults[] = {{"full disk", FaultyCalls::Storing, ENOSPC, "database or disk is full"},
                            {"broken disk", FaultyCalls::Storing, EIO, "disk I/O error"},
                            {"failing flush", FaultyCalls::Syncing, EIO, "disk I/O error"},
                            {"refused lock", FaultyCalls::Locking, EAGAIN, "database is locked"}};

bool insert(DBHelper& database)
{
    Row values = row(QStringLiteral("3"), QStringLiteral("c"));
    return database.insertToDatabase(table, values, false);
}

bool change(DBHelper& database)
{
    Row values{{QStringLiteral("name"), QStringLiteral("z")}};
    return database.updateToDatabase(table, QStringLiteral("id"), QStringLiteral("2"), values, false);
}

bool clear(DBHelper& database)
{
    return database.deleteFromDatabase(table);
}

} // namespace

void tst_DBFaults::cleanup()
{
    FaultyCalls::heal();
    RecordsFixture::cleanup();
}

void tst_DBFaults::openFilled()
{
    RunRoot::clear();
    m_database.reset();
    m_database = std::make_unique<SteppedDatabase>();
    m_database->openNew();
    m_database->outside(QStringLiteral("INSERT INTO channel(id, name) VALUES('1', 'a'), ('2', 'b')"));
    QSqlQuery query(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QVERIFY(query.exec(QStringLiteral("PRAGMA synchronous = FULL")));
    QVERIFY(query.exec(QStringLiteral("PRAGMA busy_timeout = 0")));
    QCOMPARE(m_database->selectFromDatabase(table, false).size(), 2); // it knows the table from now on
}

void tst_DBFaults::failedStatementIsToldAndUndone_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<Statement>("statement");
    QTest::addColumn<QVariantList>("after");
    const QString first = QStringLiteral("1a");
    const QString second = QStringLiteral("2b");
    for (const Fault& fault : faults) {
        QTest::addRow("%s, insert", fault.name)
            << fault << Statement(insert) << QVariantList{first, second, QStringLiteral("3c")};
        QTest::addRow("%s, update", fault.name)
            << fault << Statement(change) << QVariantList{first, QStringLiteral("2z")};
        QTest::addRow("%s, delete", fault.name) << fault << Statement(clear) << QVariantList();
    }
}

void tst_DBFaults::failedStatementIsToldAndUndone()
{
    QFETCH(const Fault, fault);
    QFETCH(const Statement, statement);
    QFETCH(const QVariantList, after);
    int failures = 0;
    int n = 0;
    do {
        openFilled();
        const QVariantList before = rows();
        FaultyCalls::failFromNth(fault.call, ++n, fault.error);
        const bool done = statement(*m_database);
        FaultyCalls::heal();
        const QStringList told = m_log->takeDebugTexts();
        QCOMPARE(told.size(), done ? 0 : 3);
        QVERIFY2(done || told.value(2).contains(QLatin1String(fault.reason)), qUtf8Printable(told.value(2)));
        QCOMPARE(rows(), done ? after : before);
        QVERIFY2(isSound(), qPrintable(QString::number(n)));
        QVERIFY2(done || statement(*m_database), "the disk is well again");
        QCOMPARE(rows(), after);
        failures += done ? 0 : 1;
    } while (FaultyCalls::wasHit());
    QVERIFY(failures > 0);
}

void tst_DBFaults::burstThatIsLostIsTold_data()
{
    QTest::addColumn<Fault>("fault");
    for (const Fault& fault : faults)
        QTest::newRow(fault.name) << fault;
}

void tst_DBFaults::burstThatIsLostIsTold()
{
    QFETCH(const Fault, fault);
    const QString name = QStringLiteral("c");
    int failures = 0;
    int n = 0;
    do {
        openFilled();
        for (const int id : {3, 4, 5})
            m_database->queueRow(id, name);
        FaultyCalls::failFromNth(fault.call, ++n, fault.error);
        m_database->runBurst();
        FaultyCalls::heal();
        const QString told =
            m_log->takeDebugTexts().join(QLatin1Char('\n')) + QString::fromUtf8(RunRoot::log());
        const bool done = told.isEmpty();
        QVERIFY2(done || told.contains(QLatin1String(fault.reason)), qUtf8Printable(told));

        m_database->queueRow(6, name);
        m_database->runBurst();
        const QVariantList ids = m_database->committedIds();
        QCOMPARE(ids.last(), QVariant(6));
        QVERIFY2(!done || ids.size() == 6, qPrintable(QString::number(n)));
        QVERIFY2(isSound(), qPrintable(QString::number(n)));
        failures += done ? 0 : 1;
    } while (FaultyCalls::wasHit());
    QVERIFY(failures > 0);
}

QTEST_GUILESS_MAIN(tst_DBFaults)
#include "tst_dbfaults.moc"
