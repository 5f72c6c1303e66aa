// SPDX-License-Identifier: MIT
#include "build/buildrecords.h"
#include "build/job.h"
#include "console/diagnostics.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/mount.h>
#include <sys/resource.h>

namespace {

const QString game = QStringLiteral("Sky Harbour");

QDateTime timeAt(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(Q_INT64_C(1700000000000) + ms, Qt::UTC);
}

QString folder(int channel)
{
    return QStringLiteral("channel%1").arg(channel, 5, 10, QLatin1Char('0'));
}

BuildStep step(const QString& name, qint64 ms, BuildStep::Outcome outcome = BuildStep::Done,
               const QString& message = {})
{
    return {name, timeAt(ms), timeAt(ms + 7), outcome, message};
}

ChannelOutcome channelOutcome(int number, ChannelOutcome::Outcome outcome)
{
    ChannelOutcome channel;
    channel.folder = folder(number);
    channel.name = QStringLiteral("Channel %1").arg(number);
    channel.outcome = outcome;
    channel.inputs = QStringLiteral("inputs %1").arg(number);
    channel.digest = QStringLiteral("digest %1").arg(number);
    return channel;
}

Job jobOf(int channels)
{
    Job job;
    job.path = QStringLiteral("/jobs/job.json");
    job.game = game;
    job.base = QStringLiteral("/jobs/base.apk");
    for (int i = 0; i < channels; ++i) {
        JobChannel channel;
        channel.folder = folder(i);
        channel.name = QStringLiteral("Channel %1").arg(i);
        channel.number = QString::number(100 + i);
        job.channels.append(channel);
    }
    job.sdks.insert(QStringLiteral("pay"), {QStringLiteral("pay"), QStringLiteral("/jobs/pay.zip"), 7});
    return job;
}

BuildOutcome buildOf(const QVector<ChannelOutcome>& channels = {})
{
    BuildOutcome build;
    build.job = QStringLiteral("/jobs/job.json");
    build.game = game;
    build.start = timeAt(0);
    build.end = timeAt(5000);
    build.channels = channels;
    return build;
}

// One run of such outcomes, as a whole.
bool runAll(BuildRecords& records, const QVector<ChannelOutcome>& channels)
{
    records.begin(jobOf(channels.size()), buildOf());
    for (const ChannelOutcome& channel : channels)
        records.finish(channel);
    records.end(buildOf(channels));
    return records.flush();
}

// The child that gets killed: channels without end, each flush with a line for the parent.
void writeForEver(const QString& file)
{
    BuildRecords records;
    if (!records.open(file))
        qFatal("%s", qUtf8Printable(records.error()));
    records.begin(jobOf(3), buildOf());
    for (int i = 0;; ++i) {
        for (int j = 0; j < 8; ++j)
            records.add(folder(i),
                        step(QStringLiteral("step"), i, BuildStep::Done, QString::number(8 * i + j)));
        records.finish(channelOutcome(i, ChannelOutcome::Built));
        if (i % 500 == 499 && records.flush()) {
            std::puts("flushed");
            std::fflush(stdout);
        }
    }
}

int writeOnce(const QString& file)
{
    BuildRecords records;
    return records.open(file) && runAll(records, {channelOutcome(0, ChannelOutcome::Built)}) ? 0 : 1;
}

} // namespace

// The records of a job's runs.
class tst_BuildRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void rowsEqualWhatWasSaid();
    void runsAreListedTheLatestFirst();
    void earlierIsTheLastCompleteBuildOfEachChannel();
    void earlierComesBackAsItWasFinished();
    void aDetailThatIsNoChannelCountsForNothing();
    void earlierFindsWhatOtherSlicesMade();
    void manyChannelsKeepTheirOrderAndLeaveTheEventLoopFree();
    void aKilledRunLeavesWholeRowsAndIsToldSo();
    void theProcessEndsWithoutAWord();
    void aFileThatIsOfNoUseIsRefusedAndStaysAsItIs_data();
    void aFileThatIsOfNoUseIsRefusedAndStaysAsItIs();
    void aLockedFileIsRefused();
    void aRunThatCannotBeginIsToldAtTheFlush();
    void aReaderInTheWayIsWaitedFor();
    void rowsThatCouldNotBeWrittenAreTold();
    void aFullDiskIsTold();
    void foreignTablesStay();
    void theFolderIsMadeAndTheFileOpenedAgain();

private:
    QString path(const QString& name = QStringLiteral("records.db")) const
    {
        return m_folder->filePath(name);
    }
    QVector<QStringList> rows(const QString& sql) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

// Behind the handler that tests have, which is there by now.
void tst_BuildRecords::initTestCase()
{
    Diagnostics::install();
}

void tst_BuildRecords::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QVector<QStringList> tst_BuildRecords::rows(const QString& sql) const
{
    QVector<QStringList> found;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(path());
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next()) {
            QStringList row;
            for (int i = 0; !query.isNull(i) || query.value(i).isValid(); ++i)
                row.append(query.value(i).toString());
            found.append(row);
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return found;
}

void tst_BuildRecords::rowsEqualWhatWasSaid()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    records.begin(jobOf(2), buildOf());
    QCOMPARE(records.build(), qint64(1));
    QCOMPARE(rows(QStringLiteral("SELECT number, started FROM build WHERE ended IS NULL")),
             (QVector<QStringList>{{QStringLiteral("1"), QStringLiteral("2023-11-14T22:13:20.000Z")}}));
    records.add(folder(0), step(QStringLiteral("package"), 1));
    records.add(
        folder(0),
        step(QStringLiteral("sign"), 9, BuildStep::Failed, QStringLiteral("it's \"no\" key; \u4f60\u597d")));
    records.add(folder(0), step(QStringLiteral("check"), 17, BuildStep::Skipped));
    ChannelOutcome failed = channelOutcome(0, ChannelOutcome::Failed);
    failed.message = QStringLiteral("no key");
    records.finish(failed);
    const ChannelOutcome unreached = channelOutcome(1, ChannelOutcome::NotReached);
    records.finish(unreached);
    records.end(buildOf({failed, unreached}));
    QVERIFY2(records.flush(), qPrintable(records.error()));

    using Rows = QVector<QStringList>;
    const auto row = [](const char* line) { return QString::fromUtf8(line).split(QLatin1Char('|')); };
    QCOMPARE(rows(QStringLiteral("SELECT name, job, base FROM game")),
             (Rows{row("Sky Harbour|/jobs/job.json|/jobs/base.apk")}));
    QCOMPARE(
        rows(QStringLiteral("SELECT game, folder, name, number FROM channel ORDER BY rowid")),
        (Rows{row("Sky Harbour|channel00000|Channel 0|100"), row("Sky Harbour|channel00001|Channel 1|101")}));
    QCOMPARE(rows(QStringLiteral("SELECT game, name, package, id FROM sdk")),
             (Rows{row("Sky Harbour|pay|/jobs/pay.zip|7")}));
    QCOMPARE(rows(QStringLiteral(
                 "SELECT build, channel, name, started, ended, outcome, message FROM step ORDER BY rowid")),
             (Rows{row("1|channel00000|package|2023-11-14T22:13:20.001Z|2023-11-14T22:13:20.008Z|done|"),
                   row("1|channel00000|sign|2023-11-14T22:13:20.009Z|2023-11-14T22:13:20.016Z|failed|it's "
                       "\"no\" key; 你好"),
                   row("1|channel00000|check|2023-11-14T22:13:20.017Z|2023-11-14T22:13:20.024Z|skipped|")}));
    QCOMPARE(
        rows(QStringLiteral("SELECT build, channel, name, outcome, message FROM result ORDER BY rowid")),
        (Rows{row("1|channel00000|Channel 0|failed|no key"), row("1|channel00001|Channel 1|not reached|")}));
    QCOMPARE(rows(QStringLiteral(
                 "SELECT game, job, slice, slices, ended, outcome, built, unchanged, failed FROM build")),
             (Rows{row("Sky Harbour|/jobs/job.json|0|1|2023-11-14T22:13:25.000Z|failed|0|0|1")}));
    QCOMPARE(rows(QStringLiteral("SELECT * FROM package")), Rows());
}

void tst_BuildRecords::runsAreListedTheLatestFirst()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVERIFY(records.builds().isEmpty());
    QVERIFY(runAll(records,
                   {channelOutcome(0, ChannelOutcome::Built), channelOutcome(1, ChannelOutcome::Unchanged)}));
    records.begin(jobOf(1), buildOf());
    BuildOutcome interrupted = buildOf({channelOutcome(0, ChannelOutcome::NotReached)});
    interrupted.interrupted = true;
    records.end(interrupted);
    records.begin(jobOf(3), buildOf());
    records.finish(channelOutcome(0, ChannelOutcome::Built));
    records.finish(channelOutcome(1, ChannelOutcome::Failed));

    const QVector<ListedBuild> builds = records.builds();
    QCOMPARE(builds.size(), 3);
    QCOMPARE(builds.at(0).number, qint64(3));
    QCOMPARE(builds.at(0).outcome, QStringLiteral("running or killed"));
    QVERIFY(!builds.at(0).end.isValid());
    QCOMPARE(builds.at(0).built, 1);
    QCOMPARE(builds.at(0).failed, 1);
    QCOMPARE(builds.at(1).outcome, QStringLiteral("interrupted"));
    QCOMPARE(builds.at(2).number, qint64(1));
    QCOMPARE(builds.at(2).game, game);
    QCOMPARE(builds.at(2).start, timeAt(0));
    QCOMPARE(builds.at(2).end, timeAt(5000));
    QCOMPARE(builds.at(2).outcome, QStringLiteral("done"));
    QCOMPARE(builds.at(2).built, 1);
    QCOMPARE(builds.at(2).unchanged, 1);
    QCOMPARE(builds.at(2).failed, 0);
}

void tst_BuildRecords::earlierIsTheLastCompleteBuildOfEachChannel()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVERIFY(records.earlier(game).isEmpty());
    QVERIFY(runAll(records,
                   {channelOutcome(0, ChannelOutcome::Built), channelOutcome(1, ChannelOutcome::Built)}));
    ChannelOutcome again = channelOutcome(0, ChannelOutcome::Unchanged);
    again.digest = QStringLiteral("later");
    ChannelOutcome failed = channelOutcome(1, ChannelOutcome::Failed);
    failed.digest = QStringLiteral("never");
    QVERIFY(runAll(records, {again, failed, channelOutcome(2, ChannelOutcome::NotReached)}));

    const QHash<QString, EarlierBuild> earlier = records.earlier(game);
    QCOMPARE(earlier.size(), 2);
    QCOMPARE(earlier.value(folder(0)).digest, QStringLiteral("later"));
    QCOMPARE(earlier.value(folder(0)).outcome.outcome, ChannelOutcome::Unchanged);
    QCOMPARE(earlier.value(folder(1)).digest, QStringLiteral("digest 1"));
    QCOMPARE(earlier.value(folder(1)).inputs, QStringLiteral("inputs 1"));
    QVERIFY(records.earlier(QStringLiteral("another game")).isEmpty());
    QVERIFY(records.error().isEmpty());
}

void tst_BuildRecords::earlierComesBackAsItWasFinished()
{
    ChannelOutcome channel = channelOutcome(0, ChannelOutcome::Built);
    channel.message = QStringLiteral("message");
    channel.steps = {step(QStringLiteral("package"), 1),
                     step(QStringLiteral("sign"), 2, BuildStep::Skipped, QStringLiteral("no key"))};
    channel.notes = QStringList{QStringLiteral("icons left alone")};
    channel.icons = QStringList{QStringLiteral("/out/a.png"), QStringLiteral("/out/b.png")};
    channel.package = QStringLiteral("/out/\u4f60.apk");
    channel.packageName = QStringLiteral("com.quenzo.skyharbour");
    channel.versionName = QStringLiteral("1.2");
    channel.signer = QStringLiteral("00ff");
    channel.size = Q_INT64_C(5000000000);
    channel.replaced = 3;
    channel.added = 4;
    channel.takenOver = Q_INT64_C(4999999999);
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVERIFY(runAll(records, {channel}));
    const ChannelOutcome found = records.earlier(game).value(folder(0)).outcome;
    QCOMPARE(found.folder, channel.folder);
    QCOMPARE(found.name, channel.name);
    QCOMPARE(found.outcome, channel.outcome);
    QCOMPARE(found.message, channel.message);
    QCOMPARE(found.steps.size(), 2);
    QCOMPARE(found.steps.at(1).name, QStringLiteral("sign"));
    QCOMPARE(found.steps.at(1).start, timeAt(2));
    QCOMPARE(found.steps.at(1).end, timeAt(9));
    QCOMPARE(found.steps.at(1).outcome, BuildStep::Skipped);
    QCOMPARE(found.steps.at(1).message, QStringLiteral("no key"));
    QCOMPARE(found.notes, channel.notes);
    QCOMPARE(found.icons, channel.icons);
    QCOMPARE(found.package, channel.package);
    QCOMPARE(found.packageName, channel.packageName);
    QCOMPARE(found.versionName, channel.versionName);
    QCOMPARE(found.signer, channel.signer);
    QCOMPARE(found.size, channel.size);
    QCOMPARE(found.replaced, channel.replaced);
    QCOMPARE(found.added, channel.added);
    QCOMPARE(found.takenOver, channel.takenOver);
    QCOMPARE(found.inputs, channel.inputs);
    QCOMPARE(found.digest, channel.digest);
}

void tst_BuildRecords::aDetailThatIsNoChannelCountsForNothing()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVERIFY(runAll(records,
                   {channelOutcome(0, ChannelOutcome::Built), channelOutcome(1, ChannelOutcome::Built)}));
    rows(QStringLiteral("UPDATE package SET detail = '{\"steps\": 1}' WHERE channel = '%1'").arg(folder(0)));
    const QHash<QString, EarlierBuild> earlier = records.earlier(game);
    QVERIFY(records.error().isEmpty());
    QCOMPARE(earlier.value(folder(0)).digest, QString());
    QCOMPARE(earlier.value(folder(1)).digest, QStringLiteral("digest 1"));
}

void tst_BuildRecords::earlierFindsWhatOtherSlicesMade()
{
    const QString first = path(QStringLiteral("slices/1-of-2/records.db"));
    const QString second = path(QStringLiteral("slices/2-of-2/records.db"));
    const auto run = [](const QString& file, ChannelOutcome channel, const char* digest) {
        channel.digest = QLatin1String(digest);
        BuildRecords records;
        QVERIFY2(records.open(file), qPrintable(records.error()));
        QVERIFY(runAll(records, {channel}));
    };
    run(path(), channelOutcome(0, ChannelOutcome::Built), "whole");
    run(first, channelOutcome(0, ChannelOutcome::Built), "first");
    run(second, channelOutcome(1, ChannelOutcome::Built), "second");
    QFile damaged(path(QStringLiteral("slices/3-of-3/records.db")));
    QVERIFY(QDir().mkpath(QFileInfo(damaged).path()) && damaged.open(QIODevice::WriteOnly));
    damaged.write("no database at all");
    damaged.close();

    for (const QString& file : {path(), first, second, path(QStringLiteral("slices/5-of-9/records.db"))}) {
        BuildRecords records;
        QVERIFY2(records.open(file), qPrintable(records.error()));
        const QHash<QString, EarlierBuild> earlier = records.earlier(game);
        QVERIFY2(earlier.size() == 2, qPrintable(file));
        QCOMPARE(earlier.value(folder(0)).digest, QStringLiteral("first"));
        QCOMPARE(earlier.value(folder(1)).digest, QStringLiteral("second"));
    }
}

void tst_BuildRecords::manyChannelsKeepTheirOrderAndLeaveTheEventLoopFree()
{
    constexpr int channels = 1000;
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVector<ChannelOutcome> outcomes;
    records.begin(jobOf(channels), buildOf());
    for (int i = 0; i < channels; ++i) {
        for (int j = 0; j < 8; ++j)
            records.add(folder(i),
                        step(QStringLiteral("step"), i, BuildStep::Done, QString::number(8 * i + j)));
        outcomes.append(channelOutcome(i, ChannelOutcome::Built));
        records.finish(outcomes.last());
    }
    records.end(buildOf(outcomes));
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { ++ticks; });
    timer.start(0);
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QVERIFY2(ticks > 0, "the event loop stood still");
    const QVector<QStringList> messages = rows(QStringLiteral("SELECT message FROM step ORDER BY rowid"));
    QCOMPARE(messages.size(), 8 * channels);
    for (int i = 0; i < messages.size(); ++i)
        QCOMPARE(messages.at(i).first(), QString::number(i));
    QCOMPARE(records.earlier(game).size(), channels);
    QCOMPARE(records.builds().first().built, channels);
}

void tst_BuildRecords::aKilledRunLeavesWholeRowsAndIsToldSo()
{
    for (int run = 1; run <= 3; ++run) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--write-for-ever"), path()});
        QByteArray said;
        while (said.count('\n') < run && child.waitForReadyRead(60000))
            said += child.readAll();
        QVERIFY2(said.count('\n') >= run, child.readAllStandardError().constData());
        child.kill();
        QVERIFY(child.waitForFinished());

        BuildRecords records;
        QVERIFY2(records.open(path()), qPrintable(records.error()));
        QCOMPARE(rows(QStringLiteral("PRAGMA integrity_check")),
                 (QVector<QStringList>{{QStringLiteral("ok")}}));
        const QVector<ListedBuild> builds = records.builds();
        QCOMPARE(builds.size(), run);
        QCOMPARE(builds.first().outcome, QStringLiteral("running or killed"));
        QVERIFY2(builds.first().built >= 500 * run, qPrintable(QString::number(builds.first().built)));
        const QVector<QStringList> messages =
            rows(QStringLiteral("SELECT message FROM step WHERE build = %1 ORDER BY rowid").arg(run));
        QVERIFY(messages.size() >= 8 * builds.first().built);
        for (int i = 0; i < messages.size(); ++i)
            QCOMPARE(messages.at(i).first(), QString::number(i));
        const QHash<QString, EarlierBuild> earlier = records.earlier(game);
        QVERIFY(earlier.size() >= builds.first().built);
        QCOMPARE(earlier.value(folder(0)).digest, QStringLiteral("digest 0"));
    }
}

void tst_BuildRecords::theProcessEndsWithoutAWord()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--write-once"), path()});
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(child.readAllStandardError(), QByteArray());
    QCOMPARE(rows(QStringLiteral("SELECT outcome FROM build")),
             (QVector<QStringList>{{QStringLiteral("done")}}));
}

void tst_BuildRecords::aFileThatIsOfNoUseIsRefusedAndStaysAsItIs_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("message");
    QTest::newRow("text") << QByteArray("this is no database, but a text that is long enough") << QString()
                          << QStringLiteral("is no file of build records, or a damaged one");
    QTest::newRow("damaged") << QByteArray("SQLite format 3\0", 16) + QByteArray(5000, 'x') << QString()
                             << QStringLiteral("is no file of build records, or a damaged one");
    QTest::newRow("newer") << QByteArray() << QStringLiteral("PRAGMA user_version = 2")
                           << QStringLiteral("are of a newer version");
    QTest::newRow("another program's version")
        << QByteArray() << QStringLiteral("PRAGMA user_version = 1") << QStringLiteral("no such table: game");
    QTest::newRow("a table of ours in another shape")
        << QByteArray() << QStringLiteral("CREATE TABLE channel(id)")
        << QStringLiteral("table channel already exists");
}

void tst_BuildRecords::aFileThatIsOfNoUseIsRefusedAndStaysAsItIs()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, sql);
    QFETCH(const QString, message);
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(content);
    file.close();
    if (!sql.isEmpty())
        rows(sql);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();

    BuildRecords records;
    QVERIFY(!records.open(path()));
    QVERIFY2(records.error().contains(message) && records.error().contains(path()),
             qPrintable(records.error()));
    QVERIFY(!records.error().contains(QLatin1Char('\n')));
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList(QStringLiteral("records.db")));

    QVERIFY(!records.open(m_folder->path()));
    QVERIFY2(records.error().endsWith(QLatin1String("are no file")), qPrintable(records.error()));
    QVERIFY(!records.open(path() + QStringLiteral("/below/records.db")));
    QVERIFY2(records.error().contains(QLatin1String("cannot be made")), qPrintable(records.error()));
}

namespace {

// Another program that holds the file, until it is destroyed.
class Holder {
public:
    Holder(const QString& file, const QString& sql)
    {
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("holder"));
        m_database.setDatabaseName(file);
        m_query = std::make_unique<QSqlQuery>(m_database.open() ? m_database : QSqlDatabase());
        for (const QString& statement : sql.split(QLatin1Char(';')))
            m_holds = m_query->exec(statement);
        m_query->next();
    }
    ~Holder()
    {
        m_query.reset();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("holder"));
    }
    bool holds() const { return m_holds; }

private:
    QSqlDatabase m_database;
    std::unique_ptr<QSqlQuery> m_query;
    bool m_holds = false;
};

} // namespace

void tst_BuildRecords::aLockedFileIsRefused()
{
    QCOMPARE(writeOnce(path()), 0);
    const Holder holder(path(), QStringLiteral("BEGIN EXCLUSIVE"));
    QVERIFY(holder.holds());
    BuildRecords records;
    QVERIFY(!records.open(path()));
    QVERIFY2(records.error().contains(QLatin1String("locked by another program")),
             qPrintable(records.error()));
}

void tst_BuildRecords::aRunThatCannotBeginIsToldAtTheFlush()
{
    BuildRecords records;
    records.begin(jobOf(1), buildOf());
    QVERIFY(!records.flush());
    QVERIFY2(records.error().contains(QLatin1String("no build records are open")),
             qPrintable(records.error()));

    QVERIFY2(records.open(path()), qPrintable(records.error()));
    const Holder holder(path(), QStringLiteral("BEGIN EXCLUSIVE"));
    QVERIFY(holder.holds());
    QVERIFY(!runAll(records, {channelOutcome(0, ChannelOutcome::Built)}));
    QVERIFY2(records.error().contains(QLatin1String("locked by another program")),
             qPrintable(records.error()));
}

void tst_BuildRecords::aReaderInTheWayIsWaitedFor()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    records.begin(jobOf(300), buildOf());
    auto holder = std::make_unique<Holder>(path(), QStringLiteral("BEGIN;SELECT number FROM build"));
    QVERIFY(holder->holds());
    // Longer than SQLite waits by itself.
    QTimer::singleShot(5500, this, [&] { holder.reset(); });
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QVERIFY(holder == nullptr);
    QCOMPARE(rows(QStringLiteral("SELECT count(*) FROM channel")),
             (QVector<QStringList>{{QStringLiteral("300")}}));
}

void tst_BuildRecords::rowsThatCouldNotBeWrittenAreTold()
{
    BuildRecords records;
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    records.begin(jobOf(1), buildOf());
    QVERIFY(records.flush());
    rows(QStringLiteral("DROP TABLE step"));
    records.add(folder(0), step(QStringLiteral("sign"), 1));
    records.add(folder(0), step(QStringLiteral("check"), 1));
    QVERIFY(!records.flush());
    QVERIFY2(records.error().contains(
                 QLatin1String("are not complete: cannot insert into step: no such table: step"))
                 && records.error().endsWith(QLatin1String("and 1 more")),
             qPrintable(records.error()));
    QVERIFY(Diagnostics::take().isEmpty());
    records.finish(channelOutcome(0, ChannelOutcome::Built));
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QCOMPARE(rows(QStringLiteral("SELECT channel FROM result")), (QVector<QStringList>{{folder(0)}}));
}

void tst_BuildRecords::aFullDiskIsTold()
{
    const QString small = path(QStringLiteral("small"));
    QVERIFY(QDir().mkpath(small));
    // Who may not mount has a limit on the size of files in its place.
    const bool isMounted = mount("none", small.toLocal8Bit().constData(), "tmpfs", 0, "size=256k") == 0;
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto leave = qScopeGuard([&] {
        setrlimit(RLIMIT_FSIZE, &before);
        if (isMounted)
            umount(small.toLocal8Bit().constData());
    });
    if (!isMounted) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit low{256 * 1024, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &low), 0);
    }
    BuildRecords records;
    const QString file = small + QStringLiteral("/records.db");
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QVERIFY(runAll(records, {channelOutcome(0, ChannelOutcome::Built)}));
    ChannelOutcome large = channelOutcome(1, ChannelOutcome::Built);
    large.message = QString(1024 * 1024, QLatin1Char('x'));
    QVERIFY(!runAll(records, {large}));
    QVERIFY2(records.error().contains(QLatin1String("are not complete")), qPrintable(records.error()));
    const QHash<QString, EarlierBuild> earlier = records.earlier(game);
    QVERIFY2(earlier.size() == 1 && earlier.contains(folder(0)), qPrintable(records.error()));
}

void tst_BuildRecords::foreignTablesStay()
{
    rows(QStringLiteral("CREATE TABLE other(id)"));
    rows(QStringLiteral("INSERT INTO other VALUES('kept')"));
    QCOMPARE(writeOnce(path()), 0);
    QCOMPARE(rows(QStringLiteral("SELECT id FROM other")), (QVector<QStringList>{{QStringLiteral("kept")}}));
    QCOMPARE(writeOnce(path()), 0);
    QCOMPARE(rows(QStringLiteral("SELECT count(*) FROM build")),
             (QVector<QStringList>{{QStringLiteral("2")}}));
}

void tst_BuildRecords::theFolderIsMadeAndTheFileOpenedAgain()
{
    const QString file = path(QStringLiteral("out/deeper/records.db"));
    BuildRecords records;
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QVERIFY(runAll(records, {channelOutcome(0, ChannelOutcome::Built)}));
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QCOMPARE(records.earlier(game).size(), 1);
    QVERIFY2(records.open(path()), qPrintable(records.error()));
    QVERIFY(records.builds().isEmpty());
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() == 3)
        Diagnostics::install();
    if (words.value(1) == QLatin1String("--write-once"))
        return writeOnce(words.value(2));
    if (words.value(1) == QLatin1String("--write-for-ever"))
        writeForEver(words.value(2));
    tst_BuildRecords test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_buildrecords.moc"
