// SPDX-License-Identifier: MIT
#include "console/diagnostics.h"
#include "recordsscene.h"
#include "reportscene.h"

#include <QtTest>

// The records of a job's runs: what is said is what comes back.
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
    void foreignTablesStay();
    void theFolderIsMadeAndTheFileOpenedAgain();

private:
    std::unique_ptr<RecordsScene> m_scene;
};

// Behind the handler that tests have, which is there by now.
void tst_BuildRecords::initTestCase()
{
    Diagnostics::install();
}

void tst_BuildRecords::init()
{
    m_scene = std::make_unique<RecordsScene>();
    QVERIFY(m_scene->isValid());
}

void tst_BuildRecords::rowsEqualWhatWasSaid()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    records.begin(RecordsScene::jobOf(2), RecordsScene::buildOf());
    QCOMPARE(records.build(), qint64(1));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT number, started FROM build WHERE ended IS NULL")),
             (QVector<QStringList>{{QStringLiteral("1"), QStringLiteral("2023-11-14T22:13:20.000Z")}}));
    records.add(RecordsScene::folder(0), RecordsScene::step(QStringLiteral("package"), 1));
    records.add(RecordsScene::folder(0),
                RecordsScene::step(QStringLiteral("sign"), 9, BuildStep::Failed,
                                   QStringLiteral("it's \"no\" key; \u4f60\u597d")));
    records.add(RecordsScene::folder(0), RecordsScene::step(QStringLiteral("check"), 17, BuildStep::Skipped));
    ChannelOutcome failed = RecordsScene::channelOutcome(0, ChannelOutcome::Failed);
    failed.message = QStringLiteral("no key");
    records.finish(failed);
    const ChannelOutcome unreached = RecordsScene::channelOutcome(1, ChannelOutcome::NotReached);
    records.finish(unreached);
    records.end(RecordsScene::buildOf({failed, unreached}));
    QVERIFY2(records.flush(), qPrintable(records.error()));

    using Rows = QVector<QStringList>;
    const auto row = [](const char* line) { return QString::fromUtf8(line).split(QLatin1Char('|')); };
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT name, job, base FROM game")),
             (Rows{row("Sky Harbour|/jobs/job.json|/jobs/base.apk")}));
    QCOMPARE(
        m_scene->rows(QStringLiteral("SELECT game, folder, name, number FROM channel ORDER BY rowid")),
        (Rows{row("Sky Harbour|channel00000|Channel 0|100"), row("Sky Harbour|channel00001|Channel 1|101")}));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT game, name, package, id FROM sdk")),
             (Rows{row("Sky Harbour|pay|/jobs/pay.zip|7")}));
    QCOMPARE(m_scene->rows(QStringLiteral(
                 "SELECT build, channel, name, started, ended, outcome, message FROM step ORDER BY rowid")),
             (Rows{row("1|channel00000|package|2023-11-14T22:13:20.001Z|2023-11-14T22:13:20.008Z|done|"),
                   row("1|channel00000|sign|2023-11-14T22:13:20.009Z|2023-11-14T22:13:20.016Z|failed|it's "
                       "\"no\" key; 你好"),
                   row("1|channel00000|check|2023-11-14T22:13:20.017Z|2023-11-14T22:13:20.024Z|skipped|")}));
    QCOMPARE(
        m_scene->rows(
            QStringLiteral("SELECT build, channel, name, outcome, message FROM result ORDER BY rowid")),
        (Rows{row("1|channel00000|Channel 0|failed|no key"), row("1|channel00001|Channel 1|not reached|")}));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT game, job, slice, slices, ended, outcome, "
                                          "built, unchanged, failed FROM build")),
             (Rows{row("Sky Harbour|/jobs/job.json|0|1|2023-11-14T22:13:25.000Z|failed|0|0|1")}));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT * FROM package")), Rows());
}

void tst_BuildRecords::runsAreListedTheLatestFirst()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(records.builds().isEmpty());
    QVERIFY(RecordsScene::runAll(records,
                                 {RecordsScene::channelOutcome(0, ChannelOutcome::Built),
                                  RecordsScene::channelOutcome(1, ChannelOutcome::Unchanged)}));
    records.begin(RecordsScene::jobOf(1), RecordsScene::buildOf());
    BuildOutcome interrupted =
        RecordsScene::buildOf({RecordsScene::channelOutcome(0, ChannelOutcome::NotReached)});
    interrupted.interrupted = true;
    records.end(interrupted);
    records.begin(RecordsScene::jobOf(3), RecordsScene::buildOf());
    records.finish(RecordsScene::channelOutcome(0, ChannelOutcome::Built));
    records.finish(RecordsScene::channelOutcome(1, ChannelOutcome::Failed));

    const QVector<ListedBuild> builds = records.builds();
    QCOMPARE(builds.size(), 3);
    QCOMPARE(builds.at(0).number, qint64(3));
    QCOMPARE(builds.at(0).outcome, QStringLiteral("running or killed"));
    QVERIFY(!builds.at(0).end.isValid());
    QCOMPARE(builds.at(0).built, 1);
    QCOMPARE(builds.at(0).failed, 1);
    QCOMPARE(builds.at(1).outcome, QStringLiteral("interrupted"));
    QCOMPARE(builds.at(2).number, qint64(1));
    QCOMPARE(builds.at(2).game, RecordsScene::game);
    QCOMPARE(builds.at(2).start, RecordsScene::timeAt(0));
    QCOMPARE(builds.at(2).end, RecordsScene::timeAt(5000));
    QCOMPARE(builds.at(2).outcome, QStringLiteral("done"));
    QCOMPARE(builds.at(2).built, 1);
    QCOMPARE(builds.at(2).unchanged, 1);
    QCOMPARE(builds.at(2).failed, 0);
}

void tst_BuildRecords::earlierIsTheLastCompleteBuildOfEachChannel()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(records.earlier(RecordsScene::game).isEmpty());
    QVERIFY(RecordsScene::runAll(records,
                                 {RecordsScene::channelOutcome(0, ChannelOutcome::Built),
                                  RecordsScene::channelOutcome(1, ChannelOutcome::Built)}));
    ChannelOutcome again = RecordsScene::channelOutcome(0, ChannelOutcome::Unchanged);
    again.digest = QStringLiteral("later");
    ChannelOutcome failed = RecordsScene::channelOutcome(1, ChannelOutcome::Failed);
    failed.digest = QStringLiteral("never");
    QVERIFY(RecordsScene::runAll(
        records, {again, failed, RecordsScene::channelOutcome(2, ChannelOutcome::NotReached)}));

    const QHash<QString, EarlierBuild> earlier = records.earlier(RecordsScene::game);
    QCOMPARE(earlier.size(), 2);
    QCOMPARE(earlier.value(RecordsScene::folder(0)).digest, QStringLiteral("later"));
    QCOMPARE(earlier.value(RecordsScene::folder(0)).outcome.outcome, ChannelOutcome::Unchanged);
    QCOMPARE(earlier.value(RecordsScene::folder(1)).digest, QStringLiteral("digest 1"));
    QCOMPARE(earlier.value(RecordsScene::folder(1)).inputs, QStringLiteral("inputs 1"));
    QVERIFY(records.earlier(QStringLiteral("another game")).isEmpty());
    QVERIFY(records.error().isEmpty());
}

void tst_BuildRecords::earlierComesBackAsItWasFinished()
{
    ChannelOutcome channel = RecordsScene::channelOutcome(0, ChannelOutcome::Built);
    channel.message = QStringLiteral("message");
    channel.steps = {
        RecordsScene::step(QStringLiteral("package"), 1),
        RecordsScene::step(QStringLiteral("sign"), 2, BuildStep::Skipped, QStringLiteral("no key"))};
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
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(RecordsScene::runAll(records, {channel}));
    const ChannelOutcome found = records.earlier(RecordsScene::game).value(RecordsScene::folder(0)).outcome;
    QCOMPARE(ReportScene::differenceOf(found, channel), QString());
}

void tst_BuildRecords::aDetailThatIsNoChannelCountsForNothing()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(RecordsScene::runAll(records,
                                 {RecordsScene::channelOutcome(0, ChannelOutcome::Built),
                                  RecordsScene::channelOutcome(1, ChannelOutcome::Built)}));
    m_scene->rows(QStringLiteral("UPDATE package SET detail = '{\"steps\": 1}' WHERE channel = '%1'")
                      .arg(RecordsScene::folder(0)));
    const QHash<QString, EarlierBuild> earlier = records.earlier(RecordsScene::game);
    QVERIFY(records.error().isEmpty());
    QCOMPARE(earlier.value(RecordsScene::folder(0)).digest, QString());
    QCOMPARE(earlier.value(RecordsScene::folder(1)).digest, QStringLiteral("digest 1"));
}

void tst_BuildRecords::earlierFindsWhatOtherSlicesMade()
{
    const QString first = m_scene->path(QStringLiteral("slices/1-of-2/records.db"));
    const QString second = m_scene->path(QStringLiteral("slices/2-of-2/records.db"));
    const auto run = [](const QString& file, ChannelOutcome channel, const char* digest) {
        channel.digest = QLatin1String(digest);
        BuildRecords records;
        QVERIFY2(records.open(file), qPrintable(records.error()));
        QVERIFY(RecordsScene::runAll(records, {channel}));
    };
    run(m_scene->path(), RecordsScene::channelOutcome(0, ChannelOutcome::Built), "whole");
    run(first, RecordsScene::channelOutcome(0, ChannelOutcome::Built), "first");
    run(second, RecordsScene::channelOutcome(1, ChannelOutcome::Built), "second");
    QFile damaged(m_scene->path(QStringLiteral("slices/3-of-3/records.db")));
    QVERIFY(QDir().mkpath(QFileInfo(damaged).path()) && damaged.open(QIODevice::WriteOnly));
    damaged.write("no database at all");
    damaged.close();

    for (const QString& file :
         {m_scene->path(), first, second, m_scene->path(QStringLiteral("slices/5-of-9/records.db"))}) {
        BuildRecords records;
        QVERIFY2(records.open(file), qPrintable(records.error()));
        const QHash<QString, EarlierBuild> earlier = records.earlier(RecordsScene::game);
        QVERIFY2(earlier.size() == 2, qPrintable(file));
        QCOMPARE(earlier.value(RecordsScene::folder(0)).digest, QStringLiteral("first"));
        QCOMPARE(earlier.value(RecordsScene::folder(1)).digest, QStringLiteral("second"));
    }
}

void tst_BuildRecords::manyChannelsKeepTheirOrderAndLeaveTheEventLoopFree()
{
    constexpr int channels = 1000;
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVector<ChannelOutcome> outcomes;
    records.begin(RecordsScene::jobOf(channels), RecordsScene::buildOf());
    for (int i = 0; i < channels; ++i) {
        for (int j = 0; j < 8; ++j)
            records.add(
                RecordsScene::folder(i),
                RecordsScene::step(QStringLiteral("step"), i, BuildStep::Done, QString::number(8 * i + j)));
        outcomes.append(RecordsScene::channelOutcome(i, ChannelOutcome::Built));
        records.finish(outcomes.last());
    }
    records.end(RecordsScene::buildOf(outcomes));
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { ++ticks; });
    timer.start(0);
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QVERIFY2(ticks > 0, "the event loop stood still");
    const QVector<QStringList> messages =
        m_scene->rows(QStringLiteral("SELECT message FROM step ORDER BY rowid"));
    QCOMPARE(messages.size(), 8 * channels);
    for (int i = 0; i < messages.size(); ++i)
        QCOMPARE(messages.at(i).first(), QString::number(i));
    QCOMPARE(records.earlier(RecordsScene::game).size(), channels);
    QCOMPARE(records.builds().first().built, channels);
}

void tst_BuildRecords::foreignTablesStay()
{
    m_scene->rows(QStringLiteral("CREATE TABLE other(id)"));
    m_scene->rows(QStringLiteral("INSERT INTO other VALUES('kept')"));
    QCOMPARE(RecordsScene::writeOnce(m_scene->path()), 0);
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT id FROM other")),
             (QVector<QStringList>{{QStringLiteral("kept")}}));
    QCOMPARE(RecordsScene::writeOnce(m_scene->path()), 0);
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT count(*) FROM build")),
             (QVector<QStringList>{{QStringLiteral("2")}}));
}

void tst_BuildRecords::theFolderIsMadeAndTheFileOpenedAgain()
{
    const QString file = m_scene->path(QStringLiteral("out/deeper/records.db"));
    BuildRecords records;
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QVERIFY(RecordsScene::runAll(records, {RecordsScene::channelOutcome(0, ChannelOutcome::Built)}));
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QCOMPARE(records.earlier(RecordsScene::game).size(), 1);
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(records.builds().isEmpty());
}

QTEST_GUILESS_MAIN(tst_BuildRecords)
#include "tst_buildrecords.moc"
