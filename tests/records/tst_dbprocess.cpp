// SPDX-License-Identifier: MIT
#include "databasefile.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// What is left when a host's process ends, and how it ends. The processes are the helper's, with a real file.
class tst_DBProcess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void killedProcessLeavesWholeBurstsOnly_data();
    void killedProcessLeavesWholeBurstsOnly();
    void processWithAWorkerEndsCleanlyWhenMainReturns();
    void processMayEndOnTheWorkerItself();
    void transactionLeftOpenIsCommittedAtTheEnd_data();
    void transactionLeftOpenIsCommittedAtTheEnd();
    void workerOutlivesApplicationObjects();
    void nothingIsQueuedWithoutApplication();

private:
    QString path() const { return m_folder->filePath(QStringLiteral("records.db")); }
    QVariant ask(const QString& sql) const { return askDatabase(path(), sql).value(0); }
    void run(const QStringList& arguments, int timeLimitMs) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_DBProcess::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    ask(QStringLiteral("CREATE TABLE bursts(burst, part, filling)"));
}

void tst_DBProcess::run(const QStringList& arguments, int timeLimitMs) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(DBPROCESS), arguments);
    const bool ended = process.waitForFinished(timeLimitMs);
    const QByteArray output = process.readAll();
    QVERIFY2(ended, "the process does not end");
    QVERIFY2(process.exitStatus() == QProcess::NormalExit, output.right(4000).constData());
    QVERIFY2(process.exitCode() == 0, output.right(4000).constData());
}

void tst_DBProcess::killedProcessLeavesWholeBurstsOnly_data()
{
    QTest::addColumn<QString>("journal");
    QTest::newRow("default journal") << QStringLiteral("delete");
    QTest::newRow("write-ahead log") << QStringLiteral("wal");
}

void tst_DBProcess::killedProcessLeavesWholeBurstsOnly()
{
    QFETCH(const QString, journal);
    constexpr int rounds = 50;
    constexpr int burstSize = 50;
    QCOMPARE(ask(QStringLiteral("PRAGMA journal_mode = ") + journal).toString(), journal);

    int written = 0;
    for (int round = 0; round < rounds; ++round) {
        QProcess process;
        process.start(QStringLiteral(DBPROCESS), {QStringLiteral("bursts"), path()});
        QVERIFY(process.waitForReadyRead());
        QTest::qSleep(QRandomGenerator::global()->bounded(1, 40));
        process.kill();
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);

        QCOMPARE(ask(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        QCOMPARE(ask(QStringLiteral("SELECT count(*) FROM (SELECT burst FROM bursts GROUP BY burst "
                                    "HAVING count(*) != %1 OR count(DISTINCT part) != %1)")
                         .arg(burstSize))
                     .toInt(),
                 0);
        const int count = ask(QStringLiteral("SELECT count(*) FROM bursts")).toInt();
        QVERIFY2(count >= written, "a committed burst is gone");
        written = count;
    }
    QVERIFY2(written > 0, "no burst was ever committed, so the kills proved nothing");
}

void tst_DBProcess::processWithAWorkerEndsCleanlyWhenMainReturns()
{
    for (int round = 0; round < 60; ++round) {
        run({QStringLiteral("leave"), path(), QString::number(round % 20)}, 30000);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(ask(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        ask(QStringLiteral("DELETE FROM bursts"));
    }
}

void tst_DBProcess::processMayEndOnTheWorkerItself()
{
    run({QStringLiteral("exit-on-worker"), path()}, 60000);
}

void tst_DBProcess::transactionLeftOpenIsCommittedAtTheEnd_data()
{
    QTest::addColumn<QString>("scripts");
    QTest::newRow("without scripts") << QString();
    QTest::newRow("scripts before") << QStringLiteral("before");
    QTest::newRow("scripts after") << QStringLiteral("after");
}

void tst_DBProcess::transactionLeftOpenIsCommittedAtTheEnd()
{
    QFETCH(const QString, scripts);
    run({QStringLiteral("left-open"), path(), scripts}, 60000);
    QCOMPARE(ask(QStringLiteral("SELECT group_concat(burst) FROM bursts")).toString(), QStringLiteral("1,2"));
}

void tst_DBProcess::workerOutlivesApplicationObjects()
{
    run({QStringLiteral("applications"), path()}, 120000);
}

void tst_DBProcess::nothingIsQueuedWithoutApplication()
{
    run({QStringLiteral("no-application")}, 30000);
}

QTEST_GUILESS_MAIN(tst_DBProcess)
#include "tst_dbprocess.moc"
