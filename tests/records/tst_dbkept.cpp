// SPDX-License-Identifier: MIT
#include "driverpeer.h"
#include "recordsfixture.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

namespace {

const QString id = QStringLiteral("id");
const QString name = QStringLiteral("name");

} // namespace

// Statements stay ready between calls. Nobody can tell: neither by what is written nor by what a host may do
// with the connection in between.
class tst_DBKept : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void hostsOwnWorkMeetsNoStatement_data();
    void hostsOwnWorkMeetsNoStatement();
    void tableMadeAnewTakesTheNextRow();
    void failureAfterASchemaChangeReadsAsThatOfANewStatement_data();
    void failureAfterASchemaChangeReadsAsThatOfANewStatement();
    void temporaryTableHidesTheOtherAtOnce();
    void tableInAnAttachedFileGivesWayToOneInTheMain();
    void tableInTheMainFileThatIsMadeAnewTakesItsRowsBack();
    void failedStatementIsRunOnce();
    void hostMayCloseAndOpenTheConnection();
    void closingGivesTheFileBack();
    void manyStatementsTakeTurns();
    void valuesAreNotKept();
    void selectReadsTheTableAsItIsNow_data();
    void selectReadsTheTableAsItIsNow();
    void failedSelectReadsAsANewOne();
    void selectOfAnOpenConnectionAlone();
    void selectHoldsNoLock();
    void realsAreReadInTheFormThatTheHostAsksFor();

private:
    QSqlDatabase hosts() const { return QSqlDatabase::database(QStringLiteral("Quenzo"), false); }
    bool write(const QVariant& value);
    bool execute(const QString& sql);
    QVariantList everyRow() { return m_database->selectFromDatabase(table, false); }
    QVariantList everyRowByTheDriver() const
    {
        return DriverPeer::run(hosts(), QStringLiteral("SELECT * FROM channel")).rows;
    }
};

// The row of the same columns, again and again.
bool tst_DBKept::write(const QVariant& value)
{
    Row row{{id, value}, {name, QStringLiteral("a")}};
    Row change{{name, QStringLiteral("b")}};
    return m_database->insertToDatabase(table, row, false)
        && m_database->updateToDatabase(table, id, value, change, false)
        && m_database->deleteFromDatabase(table, id, QStringLiteral("nobody"), false);
}

bool tst_DBKept::execute(const QString& sql)
{
    QSqlQuery query(hosts());
    const bool done = query.exec(sql);
    if (!done)
        qWarning("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
    return done;
}

void tst_DBKept::hostsOwnWorkMeetsNoStatement_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::newRow("vacuum") << QStringList{QStringLiteral("VACUUM")};
    QTest::newRow("journal mode") << QStringList{QStringLiteral("PRAGMA journal_mode = wal"),
                                                 QStringLiteral("PRAGMA journal_mode = delete")};
    QTest::newRow("new column") << QStringList{QStringLiteral("ALTER TABLE channel ADD COLUMN more")};
    QTest::newRow("new name") << QStringList{QStringLiteral("ALTER TABLE channel RENAME TO c"),
                                             QStringLiteral("ALTER TABLE c RENAME TO channel")};
    QTest::newRow("index") << QStringList{QStringLiteral("CREATE INDEX i ON channel(name)"),
                                          QStringLiteral("ANALYZE"), QStringLiteral("DROP INDEX i")};
    QTest::newRow("attach") << QStringList{QStringLiteral("ATTACH ':memory:' AS other"),
                                           QStringLiteral("CREATE TABLE other.channel(id)"),
                                           QStringLiteral("DETACH other")};
    QTest::newRow("exclusive") << QStringList{QStringLiteral("BEGIN EXCLUSIVE"), QStringLiteral("COMMIT")};
    QTest::newRow("checkpoint") << QStringList{QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")};
    QTest::newRow("page size") << QStringList{QStringLiteral("PRAGMA page_size = 8192"),
                                              QStringLiteral("VACUUM")};
    QTest::newRow("savepoint") << QStringList{QStringLiteral("SAVEPOINT s"), QStringLiteral("ROLLBACK TO s"),
                                              QStringLiteral("RELEASE s")};
}

void tst_DBKept::hostsOwnWorkMeetsNoStatement()
{
    QFETCH(const QStringList, statements);
    for (int round = 0; round < 3; ++round) {
        QVERIFY(write(QString::number(2 * round)));
        QVERIFY(write(QString::number(2 * round + 1)));
        for (const int key : {2 * round, 2 * round + 1})
            QCOMPARE(m_database->selectFromDatabase(table, id, key, false).size(), 1);
        QCOMPARE(everyRow().size(), 2 * round + 2);
        if (round < 2 && (round == 0 || !statements.first().contains(QLatin1String("ADD COLUMN")))) {
            for (const QString& statement : statements)
                QVERIFY2(execute(statement), qUtf8Printable(statement));
        }
    }
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id || name FROM channel ORDER BY id")),
             (QVariantList{QStringLiteral("0b"), QStringLiteral("1b"), QStringLiteral("2b"),
                           QStringLiteral("3b"), QStringLiteral("4b"), QStringLiteral("5b")}));
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBKept::tableMadeAnewTakesTheNextRow()
{
    QVERIFY(write(1));
    QVERIFY(write(2));
    m_database->outside(QStringLiteral("DROP TABLE channel"));
    m_database->outside(QStringLiteral("CREATE TABLE channel(name, id INTEGER)"));
    QVERIFY(write(QStringLiteral("3")));
    QCOMPARE(m_database->outside(QStringLiteral("SELECT typeof(id) || id || name FROM channel")),
             QVariantList{QStringLiteral("integer3b")});
}

void tst_DBKept::failureAfterASchemaChangeReadsAsThatOfANewStatement_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("table is gone") << QStringLiteral("DROP TABLE channel");
    QTest::newRow("column is gone") << QStringLiteral("ALTER TABLE channel RENAME COLUMN name TO title");
    QTest::newRow("is a view now") << QStringLiteral("ALTER TABLE channel RENAME TO c");
    QTest::newRow("fails as it runs") << QStringLiteral("CREATE TRIGGER t BEFORE INSERT ON channel BEGIN "
                                                        "SELECT abs(-9223372036854775807 - 1); END");
}

void tst_DBKept::failureAfterASchemaChangeReadsAsThatOfANewStatement()
{
    if (!SQLITE_IS_ASKED)
        QSKIP("a new statement of Qt's driver reads otherwise where it is the first to meet the change");
    QFETCH(const QString, change);
    QVERIFY(write(1));
    QVERIFY(write(2));
    m_database->outside(change);
    if (change.endsWith(QLatin1String(" c")))
        m_database->outside(QStringLiteral("CREATE VIEW channel AS SELECT * FROM c"));
    Row row{{id, 3}, {name, QStringLiteral("a")}};
    QVERIFY(!m_database->insertToDatabase(table, row, false));
    const QStringList kept = m_log->takeDebugTexts();
    QVERIFY(!m_database->insertToDatabase(table, row, false));
    QCOMPARE(kept, m_log->takeDebugTexts());
    m_database->closeDB();
    QVERIFY(m_database->reopen());
    QVERIFY(!m_database->insertToDatabase(table, row, false));
    QCOMPARE(kept, m_log->takeDebugTexts());
}

void tst_DBKept::temporaryTableHidesTheOtherAtOnce()
{
    QVERIFY(write(1));
    QVERIFY(write(2));
    QVERIFY(execute(QStringLiteral("CREATE TEMPORARY TABLE channel(id, name)")));
    QVERIFY(write(3));
    QVERIFY(write(4));
    QVERIFY(execute(QStringLiteral("DROP TABLE temp.channel")));
    QVERIFY(write(5));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 5}));
}

void tst_DBKept::tableInAnAttachedFileGivesWayToOneInTheMain()
{
    QVERIFY(write(1));
    QVERIFY(write(2));
    QVERIFY(execute(QStringLiteral("ATTACH ':memory:' AS other")));
    QVERIFY(execute(QStringLiteral("CREATE TABLE other.channel(id, name)")));
    QVERIFY(execute(QStringLiteral("DROP TABLE main.channel")));
    QVERIFY(write(3));
    QVERIFY(write(4));
    QVERIFY(write(5));
    QVERIFY(execute(QStringLiteral("CREATE TABLE main.channel(id, name)")));
    QVERIFY(write(6));
    QVERIFY(write(7));
    QCOMPARE(m_database->committedIds(), (QVariantList{6, 7}));
}

// Meanwhile the statement has come to mean the other file's table.
void tst_DBKept::tableInTheMainFileThatIsMadeAnewTakesItsRowsBack()
{
    QVERIFY(write(1));
    QVERIFY(execute(QStringLiteral("ATTACH ':memory:' AS other")));
    QVERIFY(execute(QStringLiteral("CREATE TABLE other.channel(id, name)")));
    QVERIFY(execute(QStringLiteral("DROP TABLE main.channel")));
    QVERIFY(write(2));
    QCOMPARE(everyRow().size(), 1);
    QVERIFY(execute(QStringLiteral("CREATE TABLE main.channel(id, name)")));
    QVERIFY(write(3));
    QCOMPARE(everyRow().size(), 1);
    QCOMPARE(m_database->committedIds(), QVariantList{3});
}

void tst_DBKept::failedStatementIsRunOnce()
{
    // After the rollback a second run would succeed.
    m_database->outside(QStringLiteral("CREATE TABLE once(id UNIQUE ON CONFLICT ROLLBACK)"));
    const QString once = QStringLiteral("once");
    QVERIFY(m_database->insertToDatabase(once, id, 1, false));
    QVERIFY(m_database->insertToDatabase(once, id, 2, false));
    QVERIFY(hosts().transaction());
    QVERIFY(m_database->insertToDatabase(once, id, 3, false));
    QVERIFY(!m_database->insertToDatabase(once, id, 3, false));
    QVERIFY(!hosts().commit());
    QCOMPARE(m_database->outside(QStringLiteral("SELECT id FROM once")),
             (QVariantList{QStringLiteral("1"), QStringLiteral("2")}));
    QCOMPARE(m_log->takeDebugTexts().size(), 3);
}

void tst_DBKept::hostMayCloseAndOpenTheConnection()
{
    QVERIFY(write(1));
    QVERIFY(write(2));
    QSqlDatabase connection = hosts();
    connection.close();
    QVERIFY(!write(3));
    QVERIFY(connection.open());
    QVERIFY(write(4));
    QVERIFY(write(5));
    connection.close();
    QVERIFY2(!QFile::exists(m_database->path() + QStringLiteral("-journal")), "the file is still in use");
    QVERIFY(connection.open());
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 4, 5}));
}

void tst_DBKept::closingGivesTheFileBack()
{
    QVERIFY(execute(QStringLiteral("PRAGMA journal_mode = wal")));
    QVERIFY(write(1));
    QVERIFY(write(2));
    QVERIFY(QFile::exists(m_database->path() + QStringLiteral("-wal")));
    QVERIFY(m_database->closeDB());
    // The last connection takes the log along, if nothing holds it open.
    QVERIFY(!QFile::exists(m_database->path() + QStringLiteral("-wal")));
    QVERIFY(m_database->reopen());
    QVERIFY(write(3));
    QCOMPARE(m_database->committedIds(), (QVariantList{1, 2, 3}));
}

void tst_DBKept::manyStatementsTakeTurns()
{
    constexpr int tables = 80;
    for (int i = 0; i < tables; ++i)
        QVERIFY(execute(QStringLiteral("CREATE TABLE t%1(id)").arg(i)));
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < tables; ++i)
            QVERIFY(m_database->insertToDatabase(QStringLiteral("t%1").arg(i), id, round, false));
    }
    for (int i = 0; i < tables; ++i) {
        QCOMPARE(m_database->outside(QStringLiteral("SELECT id FROM t%1").arg(i)),
                 (QVariantList{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")}));
    }
}

void tst_DBKept::valuesAreNotKept()
{
    QByteArray bytes("held by the caller alone");
    const QVariant value = bytes;
    bytes.clear();
    for (int i = 0; i < 3; ++i) {
        Row row{{id, i}, {name, value}};
        QVERIFY(m_database->insertToDatabase(table, row, false));
    }
    auto* const data = static_cast<QByteArray*>(const_cast<void*>(value.constData()));
    QVERIFY2(data->isDetached(), "a statement still holds the value");
}

void tst_DBKept::selectReadsTheTableAsItIsNow_data()
{
    QTest::addColumn<QStringList>("changes");
    QTest::newRow("new column") << QStringList{QStringLiteral("ALTER TABLE channel ADD COLUMN more")};
    QTest::newRow("column of another name")
        << QStringList{QStringLiteral("ALTER TABLE channel RENAME COLUMN name TO title")};
    QTest::newRow("column less") << QStringList{QStringLiteral("ALTER TABLE channel DROP COLUMN name")};
    QTest::newRow("made anew") << QStringList{QStringLiteral("DROP TABLE channel"),
                                              QStringLiteral("CREATE TABLE channel(name, id, kind)"),
                                              QStringLiteral("INSERT INTO channel VALUES('a', 'b', 'c')")};
    QTest::newRow("hidden") << QStringList{QStringLiteral("CREATE TEMPORARY TABLE channel(other)"),
                                           QStringLiteral("INSERT INTO temp.channel VALUES(1)")};
    QTest::newRow("attached instead") << QStringList{
        QStringLiteral("ATTACH ':memory:' AS o"), QStringLiteral("CREATE TABLE o.channel(x)"),
        QStringLiteral("INSERT INTO o.channel VALUES(1)"), QStringLiteral("DROP TABLE main.channel"),
        QStringLiteral("CREATE TABLE main.channel(back)")};
    QTest::newRow("view") << QStringList{
        QStringLiteral("ALTER TABLE channel RENAME TO c"),
        QStringLiteral("CREATE VIEW channel AS SELECT id AS a, id AS \"b\"\"\" FROM c")};
    QTest::newRow("names in full") << QStringList{QStringLiteral("PRAGMA short_column_names = 0"),
                                                  QStringLiteral("PRAGMA full_column_names = 1")};
    QTest::newRow("other way round") << QStringList{QStringLiteral("PRAGMA reverse_unordered_selects = 1")};
}

void tst_DBKept::selectReadsTheTableAsItIsNow()
{
    QFETCH(const QStringList, changes);
    QVERIFY(write(1));
    QVERIFY(write(2));
    QCOMPARE(everyRow(), everyRowByTheDriver());
    QCOMPARE(everyRow(), everyRowByTheDriver());
    for (const QString& change : changes) {
        QVERIFY2(execute(change), qUtf8Printable(change));
        if (change == QLatin1String("DROP TABLE channel") || change.contains(QLatin1String("RENAME TO")))
            continue;
        QCOMPARE(everyRow(), everyRowByTheDriver());
        QCOMPARE(everyRow(), everyRowByTheDriver());
    }
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBKept::failedSelectReadsAsANewOne()
{
    if (!SQLITE_IS_ASKED)
        QSKIP("a new statement of Qt's driver reads otherwise where it is the first to meet the change");
    QVERIFY(write(1));
    QCOMPARE(everyRow().size(), 1);
    QCOMPARE(everyRow().size(), 1);
    m_database->outside(QStringLiteral("DROP TABLE channel"));
    QCOMPARE(everyRow(), QVariantList());
    const QStringList kept = m_log->takeDebugTexts();
    QCOMPARE(kept.size(), 3);
    QCOMPARE(everyRow(), QVariantList());
    QCOMPARE(kept, m_log->takeDebugTexts());
}

void tst_DBKept::selectOfAnOpenConnectionAlone()
{
    QVERIFY(write(1));
    QCOMPARE(everyRow().size(), 1);
    QSqlDatabase connection = hosts();
    connection.close();
    QCOMPARE(everyRow(), QVariantList());
    QCOMPARE(m_log->takeDebugTexts().size(), 3);
    QVERIFY(connection.open());
    QCOMPARE(everyRow().size(), 1);
    QCOMPARE(everyRow().size(), 1);
}

void tst_DBKept::selectHoldsNoLock()
{
    QVERIFY(write(QStringLiteral("1")));
    QVERIFY(write(QStringLiteral("2")));
    // From the second time on one that is kept: all rows, the first of none, one that fails.
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(everyRow().size(), 2 + i);
        QCOMPARE(m_database->selectFromDatabase(table, id, 1, false).size(), 1);
        QCOMPARE(m_database->selectFromDatabase(table, id, QStringLiteral("nobody"), false).size(), 0);
        m_database->outside(QStringLiteral("INSERT INTO channel(id) VALUES('new %1')").arg(i));
    }
}

void tst_DBKept::realsAreReadInTheFormThatTheHostAsksFor()
{
    m_database->outside(QStringLiteral("INSERT INTO channel VALUES(1, 2.75, 3)"));
    for (const auto policy : {QSql::LowPrecisionDouble, QSql::LowPrecisionInt32, QSql::HighPrecision}) {
        hosts().driver()->setNumericalPrecisionPolicy(policy);
        for (int i = 0; i < 2; ++i) {
            const QVariant found = everyRow().value(0).toMap().value(name);
            const QVariant expected = everyRowByTheDriver().value(0).toMap().value(name);
            QCOMPARE(found, expected);
            QCOMPARE(found.userType(), expected.userType());
        }
    }
}

QTEST_GUILESS_MAIN(tst_DBKept)
#include "tst_dbkept.moc"
