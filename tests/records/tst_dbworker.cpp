// SPDX-License-Identifier: MIT
#include "messagelog.h"
#include "runroot.h"
#include "treefiles.h"

#include <dbhelper.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <thread>
#include <vector>

namespace {

const QString table = QStringLiteral("records");

constexpr int commandsOfACaller = 50000;
constexpr int recordsOfAWriter = 2000;
constexpr int meetings = 100;

QVariantMap record(int caller, int number)
{
    return {{QStringLiteral("caller"), caller}, {QStringLiteral("number"), number}};
}

} // namespace

// The one instance with its real worker, which never ends: what each test leaves behind is an empty queue.
class tst_DBWorker : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void commandsQueuedBeforeTheStartWaitInOrder();
    void stoppingFailsAndTheWorkerKeepsRunning();
    void selectsAreReportedOnTheWorker();
    void receiversOfOtherThreadsGetTheirRowsQueued();
    void failedCommitIsTriedAgainWhenIdle();
    void load_data();
    void load();
    void schemaChangesBesideTheWorkerAreMet();
    void directWritersAndTheWorkerLoseNothing_data();
    void directWritersAndTheWorkerLoseNothing();

private:
    void open(const QString& journal = QStringLiteral("delete"));
    void waitUntilDrained();
    int count(const QString& condition);
    bool writeDirectly(int writer, const std::atomic<int>& queued);

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<QTemporaryDir> m_folder;
    DBHelper* m_database = nullptr;
};

void tst_DBWorker::init()
{
    m_log = std::make_unique<MessageLog>();
    m_database = DBHelper::getInstance();
    open();
}

void tst_DBWorker::cleanup()
{
    waitUntilDrained();
    QVERIFY(m_database->closeDB());
    DBHelper::removeDatabase();
    QCOMPARE(m_log->takeWarnings(), QStringList());
    m_log.reset();
}

void tst_DBWorker::open(const QString& journal)
{
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    QVERIFY(m_database->initDatabase(m_folder->filePath(QStringLiteral("records.db"))));
    QSqlQuery query(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QVERIFY(query.exec(QStringLiteral("PRAGMA journal_mode = ") + journal));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), journal);
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE records(caller INTEGER, number INTEGER)")));
}

// The rows of a last select say that everything before it has run; the flag then says that it is committed.
void tst_DBWorker::waitUntilDrained()
{
    QVERIFY(m_database->StartThread());
    std::atomic<bool> selected{false};
    const QString tag = QStringLiteral("drained");
    const auto connection = connect(
        m_database, &DBHelper::onSelectFinish, this,
        [&selected, &tag](const QString&, const QVariantList&, const QString& usrExt) {
            if (usrExt == tag)
                selected = true;
        },
        Qt::DirectConnection);
    QVERIFY(m_database->threadToDatabase(DB_SELECT, QStringLiteral("(SELECT 1)"), false, tag));
    QTRY_VERIFY_WITH_TIMEOUT(selected, 300000);
    QTRY_VERIFY_WITH_TIMEOUT(!m_database->isRunning(), 60000);
    disconnect(connection);
}

int tst_DBWorker::count(const QString& condition)
{
    return m_database->selectFromDatabase(QStringLiteral("records WHERE ") + condition, false).size();
}

void tst_DBWorker::commandsQueuedBeforeTheStartWaitInOrder()
{
    QVERIFY2(!m_database->QThread::isRunning(), "this test comes first");
    for (int number = 0; number < 100; ++number) {
        QVariantMap row = record(1, number);
        QVERIFY(m_database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString()));
    }
    QCOMPARE(m_database->selectFromDatabase(table, false), QList<QVariant>());
    QVERIFY(m_database->isRunning());
    waitUntilDrained();
    const QList<QVariant> rows = m_database->selectFromDatabase(table, false);
    QCOMPARE(rows.size(), 100);
    for (int number = 0; number < 100; ++number)
        QCOMPARE(rows.at(number).toMap().value(QStringLiteral("number")).toInt(), number);
}

void tst_DBWorker::stoppingFailsAndTheWorkerKeepsRunning()
{
    QVERIFY(m_database->StartThread());
    QVERIFY(m_database->StartThread());
    QVERIFY(!m_database->StopThread());
    QVERIFY(m_database->QThread::isRunning());
    QVariantMap row = record(1, 1);
    QVERIFY(m_database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString()));
    waitUntilDrained();
    QCOMPARE(count(QStringLiteral("1")), 1);
    QVERIFY(m_database->QThread::isRunning());
}

void tst_DBWorker::selectsAreReportedOnTheWorker()
{
    std::atomic<QThread*> emitter{nullptr};
    const auto connection = connect(
        m_database, &DBHelper::onSelectFinish, this, [&emitter] { emitter = QThread::currentThread(); },
        Qt::DirectConnection);
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QString()));
    waitUntilDrained();
    disconnect(connection);
    QCOMPARE(emitter.load(), static_cast<QThread*>(m_database));
}

void tst_DBWorker::receiversOfOtherThreadsGetTheirRowsQueued()
{
    QVariantMap row = record(1, 1);
    QVERIFY(m_database->insertToDatabase(table, row, false));
    QThread* receiver = nullptr;
    int rows = 0;
    const auto connection = connect(m_database, &DBHelper::onSelectFinish, this,
                                    [&](const QString&, const QVariantList& found, const QString& usrExt) {
                                        if (usrExt != QLatin1String("mine"))
                                            return;
                                        receiver = QThread::currentThread();
                                        rows = found.size();
                                    });
    QVERIFY(m_database->threadToDatabase(DB_SELECT, table, false, QStringLiteral("mine")));
    QTRY_COMPARE_WITH_TIMEOUT(receiver, QThread::currentThread(), 30000);
    QCOMPARE(rows, 1);
    disconnect(connection);
}

void tst_DBWorker::failedCommitIsTriedAgainWhenIdle()
{
    RunRoot::clear();
    QVERIFY(QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
                .exec(QStringLiteral("PRAGMA busy_timeout = 50")));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("number"), 1, false));
    QVERIFY(m_database->StartThread());
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(m_folder->filePath(QStringLiteral("records.db")));
        QVERIFY(other.open());
        QSqlQuery query(other);
        QVERIFY(query.exec(QStringLiteral("SELECT * FROM records")));
        QVERIFY(query.next());
        QVariantMap row = record(1, 2);
        QVERIFY(m_database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString()));
        QTRY_VERIFY_WITH_TIMEOUT(!m_database->isRunning(), 60000);
        // Time for further attempts while somebody still reads.
        QTest::qWait(2500);
        QVERIFY(!m_database->isRunning());
        query.finish();
        const auto write = [&query] { return query.exec(QStringLiteral("UPDATE records SET caller = 5")); };
        QTRY_VERIFY_WITH_TIMEOUT(write(), 60000);
        QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM records")) && query.next());
        QCOMPARE(query.value(0).toInt(), 2);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
    QVERIFY2(RunRoot::log().count("database is locked") == 1, RunRoot::log().constData());
    QCOMPARE(m_log->take().size(), 0);
}

void tst_DBWorker::load_data()
{
    QTest::addColumn<QString>("journal");
    QTest::newRow("default journal") << QStringLiteral("delete");
    QTest::newRow("write-ahead log") << QStringLiteral("wal");
}

void tst_DBWorker::load()
{
    QFETCH(const QString, journal);
    constexpr int callers = 4;
    m_database->closeDB();
    DBHelper::removeDatabase();
    open(journal);
    QVERIFY(m_database->StartThread());

    std::atomic<int> refused{0};
    std::atomic<int> selects{0};
    std::atomic<int> atWork{callers};
    std::vector<std::thread> threads;
    for (int caller = 0; caller < callers; ++caller) {
        threads.emplace_back([&, caller] {
            for (int number = 0; number < commandsOfACaller; ++number) {
                // However few cores there are, selects come in between.
                while (selects < number / (commandsOfACaller / meetings))
                    QThread::yieldCurrentThread();
                QVariantMap row = record(caller, number);
                const bool queued = m_database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(),
                                                                 false, QString());
                refused += queued ? 0 : 1;
            }
            --atWork;
        });
    }
    // Whenever one looks, the last rows of each caller are there without a gap.
    const QString lastRows =
        QStringLiteral("(SELECT caller, count(*) AS n, max(number) - min(number) + 1 AS span FROM "
                       "(SELECT * FROM records ORDER BY rowid DESC LIMIT 1000) GROUP BY caller)");
    // Not for as long as the worker works: the lock is fair, and each of its rows would wait for a select.
    constexpr int mostSelects = 2000;
    bool inOrder = true;
    while (selects < mostSelects && (atWork > 0 || m_database->isRunning())) {
        const QList<QVariant> rows = m_database->selectFromDatabase(lastRows, false);
        for (const QVariant& row : rows) {
            const QVariantMap values = row.toMap();
            inOrder = inOrder && values.value(QStringLiteral("n")) == values.value(QStringLiteral("span"));
        }
        ++selects;
    }
    for (std::thread& thread : threads)
        thread.join();
    waitUntilDrained();

    QCOMPARE(refused.load(), 0);
    QVERIFY(inOrder);
    const QList<QVariant> rows = m_database->selectFromDatabase(table, false);
    QCOMPARE(rows.size(), callers * commandsOfACaller);
    std::vector<int> next(callers, 0);
    for (const QVariant& row : rows) {
        const QVariantMap values = row.toMap();
        const auto caller = static_cast<std::size_t>(values.value(QStringLiteral("caller")).toInt());
        QCOMPARE(values.value(QStringLiteral("number")).toInt(), next.at(caller)++);
    }
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_DBWorker::schemaChangesBesideTheWorkerAreMet()
{
    constexpr int changes = 20;
    // On a busy machine five seconds may pass between two steps of the other.
    QVERIFY(QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
                .exec(QStringLiteral("PRAGMA busy_timeout = 60000")));
    QVERIFY(m_database->StartThread());
    std::atomic<bool> ended{false};
    std::atomic<int> failed{0};
    std::atomic<int> written{0};
    std::thread changer([&] {
        {
            QSqlDatabase other =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
            other.setDatabaseName(m_folder->filePath(QStringLiteral("records.db")));
            other.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=60000"));
            QSqlQuery query(other.open() ? other : QSqlDatabase());
            for (int i = 0; i < changes; ++i)
                failed += query.exec(QStringLiteral("ALTER TABLE records ADD COLUMN more%1").arg(i)) ? 0 : 1;
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        ended = true;
    });
    std::thread writer([&] {
        do {
            QVariantMap row = record(1, written);
            written += m_database->insertToDatabase(table, row, false) ? 1 : 0;
        } while (!ended);
    });
    int queued = 0;
    while (!ended) {
        QVariantMap row = record(0, queued++);
        QVERIFY(m_database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString()));
        QThread::msleep(1);
    }
    changer.join();
    writer.join();
    waitUntilDrained();
    QCOMPARE(failed.load(), 0);
    QVERIFY(written > 0);
    QCOMPARE(count(QStringLiteral("caller = 0")), queued);
    QCOMPARE(count(QStringLiteral("caller = 1")), written.load());
    QCOMPARE(m_database->selectFromDatabase(table, false).first().toMap().size(), 2 + changes);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

// Each record is written, marked, and its twin deleted again, while the queue is fed.
bool tst_DBWorker::writeDirectly(int writer, const std::atomic<int>& queued)
{
    const QString written = QStringLiteral("written");
    const QString id = QStringLiteral("id");
    bool done = true;
    for (int number = 0; number < recordsOfAWriter && done; ++number) {
        while (queued < number / (recordsOfAWriter / meetings))
            QThread::yieldCurrentThread();
        const QString name = QStringLiteral("%1-%2").arg(writer).arg(number);
        const QString twin = name + QStringLiteral("-twin");
        QList<QVariant> rows{QVariantMap{{id, name}}, QVariantMap{{id, twin}}};
        QVariantMap mark{{QStringLiteral("mark"), number}};
        done = m_database->insertToDatabase(written, rows, false)
            && m_database->updateToDatabase(written, id, name, mark, false)
            && m_database->selectFromDatabase(written, id, twin, false).size() == 1
            && m_database->deleteFromDatabase(written, id, twin, false);
    }
    return done;
}

void tst_DBWorker::directWritersAndTheWorkerLoseNothing_data()
{
    load_data();
}

void tst_DBWorker::directWritersAndTheWorkerLoseNothing()
{
    QFETCH(const QString, journal);
    constexpr int writers = 3;
    m_database->closeDB();
    DBHelper::removeDatabase();
    open(journal);
    {
        QSqlQuery query(QSqlDatabase::database(QStringLiteral("Quenzo")));
        QVERIFY(query.exec(QStringLiteral("PRAGMA synchronous = OFF")));
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE written(id TEXT UNIQUE, mark INTEGER)")));
    }
    QVERIFY(m_database->StartThread());

    std::atomic<int> queued{0};
    std::atomic<int> atWork{writers};
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&, writer] {
            failed += writeDirectly(writer, queued) ? 0 : 1;
            --atWork;
        });
    }
    // The worker has work, and an open transaction, for as long as they write.
    while (atWork > 0) {
        QList<QVariant> rows{record(0, queued), record(0, queued + 1)};
        QVERIFY(
            m_database->threadToDatabase(DB_INSERT, table, rows, QString(), QVariant(), false, QString()));
        queued += 2;
        if (queued % 100 == 0)
            QThread::msleep(1);
    }
    for (std::thread& thread : threads)
        thread.join();
    waitUntilDrained();

    QCOMPARE(failed.load(), 0);
    QCOMPARE(m_database->selectFromDatabase(table, false).size(), queued.load());
    QCOMPARE(m_database->selectFromDatabase(QStringLiteral("written"), false).size(),
             writers * recordsOfAWriter);
    QCOMPARE(
        m_database->selectFromDatabase(QStringLiteral("written WHERE id GLOB ('?-' || mark)"), false).size(),
        writers * recordsOfAWriter);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

QTEST_GUILESS_MAIN(tst_DBWorker)
#include "tst_dbworker.moc"
