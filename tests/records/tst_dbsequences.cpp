// SPDX-License-Identifier: MIT
#include "driverpeer.h"
#include "messagelog.h"
#include "steppeddatabase.h"

#include <QDate>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <limits>
#include <memory>

using namespace DriverPeer;

namespace {

// One piece of work, done by a direct call or through the queue.
struct Work {
    DB_COMMAND command = DB_SELECT;
    QString table;
    Row values;
    QList<QVariant> rows; // an insert's or update's; in the place of the values unless it is empty
    QString key; // an update's
    bool encode = false;
};

} // namespace

// Random work through the library and through Qt's driver alone, side by side: equal reports, equal
// databases.
class tst_DBSequences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void equalWorkLeavesEqualDatabases_data();
    void equalWorkLeavesEqualDatabases();
    void equalWorkOfTheWorkerLeavesEqualDatabases();

private:
    QVariant value();
    QString table();
    Row row();
    Work work();
    void openBoth(DBHelper& library);
    void step();
    void executeOnBoth(const QString& sql);
    void compare(const Report& report, const Report& expected, const QString& what);
    Report call(Work work);
    Report sendThroughTheQueue(const Work& work);
    Report expected(const Work& work);
    Report expectedInABurst(const Work& work);
    void queue(DBHelper& helper, Work work);
    void compareDumps(quint32 seed);

    QRandomGenerator m_random;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<SteppedDatabase> m_library;
    QSqlDatabase m_peer;
    QString m_history;
    bool m_queued = false; // whether the work goes through the queue
    bool m_inBurst = false; // a command that is ignored waits in the queue, so that nothing is committed yet
    bool m_staysInBurst = false;
};

void tst_DBSequences::init()
{
    m_log = std::make_unique<MessageLog>();
}

void tst_DBSequences::cleanup()
{
    m_library.reset();
    m_peer = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("peer"));
    m_log.reset();
}

namespace {

const QStringList schema{
    QStringLiteral("CREATE TABLE a(id UNIQUE, name, state INTEGER, more REAL)"),
    QStringLiteral("CREATE TABLE b(id INTEGER UNIQUE ON CONFLICT ROLLBACK, name TEXT CHECK(name != 'bad'))"),
    QStringLiteral("CREATE TABLE c(id TEXT NOT NULL, name BLOB, UNIQUE(id, name) ON CONFLICT REPLACE)"),
    QStringLiteral("CREATE TABLE d(id, name REFERENCES a(id))"),
    QStringLiteral(
        "CREATE TRIGGER no13 BEFORE INSERT ON a WHEN new.state = 13 BEGIN SELECT RAISE(ABORT, 'no 13'); END"),
    QStringLiteral(
        "CREATE TRIGGER no7 AFTER UPDATE ON a WHEN new.state = 7 BEGIN SELECT RAISE(ROLLBACK, 'no 7'); END"),
    QStringLiteral(
        "CREATE TRIGGER no5 AFTER INSERT ON d WHEN new.id = 5 BEGIN SELECT RAISE(FAIL, 'no 5'); END"),
    QStringLiteral("CREATE VIEW v AS SELECT id, name FROM a"),
};

const QStringList hostsWork{
    QStringLiteral("BEGIN"),
    QStringLiteral("COMMIT"),
    QStringLiteral("ROLLBACK"),
    QStringLiteral("ALTER TABLE d ADD COLUMN extra DEFAULT 'x'"),
    QStringLiteral("ALTER TABLE d DROP COLUMN extra"),
    QStringLiteral("DROP TABLE d"),
    QStringLiteral("CREATE TABLE d(name, id INTEGER UNIQUE)"),
    QStringLiteral("CREATE TEMPORARY TABLE a(id, name, state, more)"),
    QStringLiteral("DROP TABLE temp.a"),
    QStringLiteral("CREATE INDEX i ON a(name)"),
    QStringLiteral("DROP INDEX i"),
    QStringLiteral("VACUUM"),
    QStringLiteral("PRAGMA foreign_keys = on"),
    QStringLiteral("PRAGMA foreign_keys = off"),
    QStringLiteral("ALTER TABLE c RENAME COLUMN name TO other"),
    QStringLiteral("ALTER TABLE c RENAME COLUMN other TO name"),
    QStringLiteral("ANALYZE"),
};

quint32 seedOfThisRun()
{
    const quint32 seed =
        qEnvironmentVariableIsSet("SEED") ? qgetenv("SEED").toUInt() : QRandomGenerator::global()->generate();
    qInfo("seed: %u (SEED chooses it)", seed);
    return seed;
}

} // namespace

QVariant tst_DBSequences::value()
{
    switch (m_random.bounded(14)) {
    case 0:
        return {};
    case 1:
        return QString(QLatin1String(""));
    case 2:
        return QStringLiteral("bad");
    case 3:
        return QStringLiteral("text \u4e2d %1").arg(m_random.bounded(9));
    case 4:
        return m_random.bounded(100) / 8.0;
    case 5:
        return QByteArray(m_random.bounded(4), '\xff');
    case 6:
        return m_random.bounded(2) == 0;
    case 7:
        return QDate(2026, 1, 1).addDays(m_random.bounded(5));
    case 8:
        return std::numeric_limits<qint64>::max() - m_random.bounded(3);
    case 9:
        return QString(m_random.bounded(40), QLatin1Char('z'));
    default:
        return m_random.bounded(20);
    }
}

QString tst_DBSequences::table()
{
    static const char* const names[] = {"a", "a", "a", "b", "c", "d", "v", "main.a", "missing"};
    return QLatin1String(names[m_random.bounded(9)]);
}

Row tst_DBSequences::row()
{
    Row row;
    row.insert(QStringLiteral("id"), value());
    if (m_random.bounded(5) > 0)
        row.insert(QStringLiteral("name"), value());
    if (m_random.bounded(6) == 0)
        row.insert(QLatin1String(m_random.bounded(3) == 0 ? "wrong" : "state"), value());
    return row;
}

void tst_DBSequences::executeOnBoth(const QString& sql)
{
    QSqlQuery ours(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QSqlQuery theirs(m_peer);
    const bool done = ours.exec(sql);
    m_history += sql + (done ? QStringLiteral("\n") : QStringLiteral(" fails\n"));
    QVERIFY2(theirs.exec(sql) == done, qUtf8Printable(m_history.right(2000)));
    QCOMPARE(ours.lastError().text(), theirs.lastError().text());
}

void tst_DBSequences::compare(const Report& report, const Report& expected, const QString& what)
{
    m_history += what + (expected.done ? QStringLiteral("\n") : QStringLiteral(" fails\n"));
    const QString texts = m_history.right(2000) + QStringLiteral("\nours: ") + report.error
        + QStringLiteral("\ntheirs: ") + expected.error;
    QVERIFY2(report.done == expected.done, qUtf8Printable(texts));
    QVERIFY2(report.error == expected.error, qUtf8Printable(texts));
    QCOMPARE(described(report.rows), described(expected.rows));
}

Report tst_DBSequences::call(Work work)
{
    const QString id = QStringLiteral("id");
    Report report;
    switch (work.command) {
    case DB_SELECT:
        report.rows = m_library->selectFromDatabase(work.table, work.values, false);
        break;
    case DB_INSERT:
        report.done = work.rows.isEmpty() ? m_library->insertToDatabase(work.table, work.values, work.encode)
                                          : m_library->insertToDatabase(work.table, work.rows, work.encode);
        break;
    case DB_UPDATE:
        report.done = work.rows.isEmpty()
            ? m_library->updateToDatabase(work.table, id, work.key, work.values, work.encode)
            : m_library->updateToDatabase(work.table, id, work.key, work.rows, work.encode);
        break;
    case DB_DELETE:
        report.done = m_library->deleteFromDatabase(work.table, work.values, work.encode);
        break;
    }
    report.error = m_log->takeDebugTexts().value(2);
    report.done = work.command == DB_SELECT ? report.error.isEmpty() : report.done;
    return report;
}

void tst_DBSequences::queue(DBHelper& helper, Work work)
{
    const QString id = QStringLiteral("id");
    QVERIFY(work.rows.isEmpty() ? helper.threadToDatabase(work.command, work.table, work.values, id, work.key,
                                                          work.encode, QString())
                                : helper.threadToDatabase(work.command, work.table, work.rows, id, work.key,
                                                          work.encode, QString()));
}

Report tst_DBSequences::sendThroughTheQueue(const Work& work)
{
    constexpr auto nothing = static_cast<DB_COMMAND>(99); // is ignored
    Report report;
    const auto receiver =
        connect(m_library.get(), &DBHelper::onSelectFinish,
                [&report](const QString&, const QVariantList& rows) { report.rows = rows; });
    queue(*m_library, work);
    if (m_staysInBurst)
        queue(*m_library, {nothing, {}, {}, {}, {}, false});
    if (m_inBurst)
        m_library->commandExec();
    m_library->commandExec();
    disconnect(receiver);
    report.error = m_log->takeDebugTexts().value(2);
    report.done = report.error.isEmpty();
    return report;
}

Report tst_DBSequences::expected(const Work& work)
{
    const QString id = QStringLiteral("id");
    const Row conditions = encoded(work.values, work.encode);
    if (work.command == DB_SELECT)
        return run(m_peer, selection(work.table, conditions), conditions);
    if (work.command == DB_DELETE)
        return run(m_peer, deletion(work.table, conditions), conditions);
    Report report{true, {}, {}};
    const QList<QVariant> rows = work.rows.isEmpty() ? QList<QVariant>{work.values} : work.rows;
    for (auto row = rows.cbegin(); report.done && row != rows.cend(); ++row) {
        const Row bound = encoded(row->toMap(), work.encode);
        report = work.command == DB_INSERT ? run(m_peer, insertion(work.table, bound), bound)
                                           : run(m_peer, change(work.table, bound, id), bound, id, work.key);
    }
    const bool rollsBack = work.command == DB_INSERT && (m_queued || !work.rows.isEmpty());
    if (!report.done && rollsBack)
        m_peer.rollback();
    return report;
}

Report tst_DBSequences::expectedInABurst(const Work& work)
{
    if (!m_inBurst)
        m_peer.transaction();
    const Report report = expected(work);
    if (!m_staysInBurst)
        m_peer.commit();
    return report;
}

Work tst_DBSequences::work()
{
    static constexpr DB_COMMAND commands[] = {DB_SELECT, DB_INSERT, DB_INSERT,
                                              DB_INSERT, DB_UPDATE, DB_DELETE};
    const QString id = QStringLiteral("id");
    Work work;
    work.command = commands[m_random.bounded(6)];
    work.table = table();
    work.encode = work.command != DB_SELECT && m_random.bounded(6) == 0;
    if (work.command != DB_SELECT || m_random.bounded(2) == 0)
        work.values = row();
    if ((work.command == DB_INSERT || work.command == DB_UPDATE) && m_random.bounded(3) == 0)
        work.rows = QList<QVariant>{row(), row(), row()};
    if (work.command != DB_UPDATE)
        return work;
    // A condition without text, and a row without columns, mean something else in the queue.
    work.key = value().toString();
    if (work.key.isEmpty())
        work.key = QStringLiteral("5");
    work.values.remove(id);
    work.values.insert(QStringLiteral("name"), value());
    for (QVariant& one : work.rows) {
        Row changed = one.toMap();
        changed.remove(id);
        changed.insert(QStringLiteral("name"), value());
        one = changed;
    }
    return work;
}

void tst_DBSequences::step()
{
    if (m_random.bounded(8) == 0) {
        executeOnBoth(hostsWork.at(m_random.bounded(hostsWork.size())));
        return;
    }
    const Work todo = work();
    m_staysInBurst = m_queued && m_random.bounded(3) > 0;
    const Report theirs = m_queued ? expectedInABurst(todo) : expected(todo);
    const Report ours = m_queued ? sendThroughTheQueue(todo) : call(todo);
    m_inBurst = m_staysInBurst;
    compare(ours, theirs, QStringLiteral("command %1 on %2").arg(todo.command).arg(todo.table));
}

void tst_DBSequences::compareDumps(quint32 seed)
{
    for (const char* name : {"main.a", "temp.a", "b", "c", "d", "sqlite_master"}) {
        const QStringList ours = dump(QSqlDatabase::database(QStringLiteral("Quenzo")), QLatin1String(name));
        const QStringList theirs = dump(m_peer, QLatin1String(name));
        if (ours != theirs)
            qInfo("seed %u, table %s:\n%s", seed, name, qUtf8Printable(m_history.right(3000)));
        QCOMPARE(ours, theirs);
    }
}

void tst_DBSequences::openBoth(DBHelper& library)
{
    m_history.clear();
    QVERIFY(library.initDatabase(QStringLiteral(":memory:")));
    m_peer = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("peer"));
    m_peer = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("peer"));
    m_peer.setDatabaseName(QStringLiteral(":memory:"));
    QVERIFY(m_peer.open());
    for (const QString& sql : schema)
        executeOnBoth(sql);
}

void tst_DBSequences::equalWorkLeavesEqualDatabases_data()
{
    QTest::addColumn<bool>("queued");
    QTest::newRow("direct calls") << false;
    QTest::newRow("through the queue") << true;
}

void tst_DBSequences::equalWorkLeavesEqualDatabases()
{
    constexpr int sequences = 250;
    constexpr int steps = 60;
    QFETCH(const bool, queued);
    m_queued = queued;
    const quint32 firstSeed = seedOfThisRun();
    for (int sequence = 0; sequence < sequences; ++sequence) {
        const quint32 seed = firstSeed + static_cast<quint32>(sequence);
        m_random.seed(seed);
        m_inBurst = false;
        m_library = std::make_unique<SteppedDatabase>();
        openBoth(*m_library);
        for (int i = 0; i < steps && !QTest::currentTestFailed(); ++i)
            step();
        compareDumps(seed);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("with SEED=%1").arg(seed)));
    }
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

// Queued before the worker starts, all is one burst.
void tst_DBSequences::equalWorkOfTheWorkerLeavesEqualDatabases()
{
    const quint32 seed = seedOfThisRun();
    m_random.seed(seed);
    m_queued = true;
    DBHelper& worker = *DBHelper::getInstance();
    openBoth(worker);
    QStringList rows;
    const auto receiver = connect(
        &worker, &DBHelper::onSelectFinish, &worker,
        [&rows](const QString&, const QVariantList& found) { rows += described(found); },
        Qt::DirectConnection);
    QStringList expectedRows;
    QStringList expectedErrors;
    m_peer.transaction();
    for (int i = 0; i < 1000; ++i) {
        const Work todo = work();
        queue(worker, todo);
        const Report report = expected(todo);
        expectedRows += described(report.rows);
        if (!report.done)
            expectedErrors.append(report.error);
    }
    m_peer.commit();
    queue(worker, Work()); // its failure is the last one
    expectedErrors.append(expected(Work()).error);
    worker.StartThread();
    QTRY_VERIFY_WITH_TIMEOUT(!worker.isRunning(), 30000);
    disconnect(receiver);
    QStringList errors;
    const QStringList texts = m_log->takeDebugTexts();
    for (int i = 2; i < texts.size(); i += 3)
        errors.append(texts.at(i));
    QCOMPARE(errors, expectedErrors);
    QCOMPARE(rows, expectedRows);
    compareDumps(seed);
    worker.closeDB();
    DBHelper::removeDatabase();
}

QTEST_GUILESS_MAIN(tst_DBSequences)
#include "tst_dbsequences.moc"
