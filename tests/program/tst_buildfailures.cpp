// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <csignal>
#include <sys/file.h>

// What goes wrong in a run, and what is left then.
class tst_BuildFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void failedChannelStopsNoOther_data();
    void failedChannelStopsNoOther();
    void failedChannelLeavesNothingUnderItsName();
    void clashingSdksAreNamed();
    void ownFileInTheBuildsPlaceIsNamed();
    void secondRunAtOnceIsRefused();
    void lockFileWithoutARunKeepsNobodyOut();
    void damagedRecordsAreRefused();
    void damagedBaseIsRefused();
    void termEndsBehindTheStepAndTheNextRunGoesOn_data();
    void termEndsBehindTheStepAndTheNextRunGoesOn();
    void killedRunsAreTakenUp();
    void damagedContentOfARunWithoutAnEndIsBuiltAgain();
    void stepsAreRecordedAsTheyEnd_data();
    void stepsAreRecordedAsTheyEnd();
    void channelsOfADeadProcessFailByName();
    void quietRunTellsFailedChannelsByName();

private:
    QStringList recordedSteps(const QString& channel) const;
    void takeEndOfRuns() const;

    std::unique_ptr<BuildScene> m_scene;
};

void tst_BuildFailures::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

void tst_BuildFailures::failedChannelStopsNoOther_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("one process") << QByteArray();
    QTest::newRow("two processes") << QByteArray("--jobs 2");
}

void tst_BuildFailures::failedChannelStopsNoOther()
{
    QFETCH(const QByteArray, words);
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = m_scene->run("--json " + words);
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::outcomes(ended),
             (QMap<QString, QString>{{QStringLiteral("plain"), QStringLiteral("built")},
                                     {QStringLiteral("harbor"), QStringLiteral("built")},
                                     {QStringLiteral("meadow"), QStringLiteral("failed")}}));
    QVERIFY(!BuildScene::reportOf(ended, QStringLiteral("meadow"))
                 .value(QStringLiteral("message"))
                 .toString()
                 .isEmpty());
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/meadow"))));
    QVERIFY(QFile::remove(m_scene->path(QStringLiteral("own/assets/channel.json"))));
    const Ended again = m_scene->run("--json");
    QCOMPARE(BuildScene::outcomes(again),
             (QMap<QString, QString>{{QStringLiteral("plain"), QStringLiteral("unchanged")},
                                     {QStringLiteral("harbor"), QStringLiteral("unchanged")},
                                     {QStringLiteral("meadow"), QStringLiteral("built")}}));
}

void tst_BuildFailures::failedChannelLeavesNothingUnderItsName()
{
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("output/meadow/meadow.apk"))));
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    QCOMPARE(m_scene->run().code, 1);
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/meadow"))));
}

void tst_BuildFailures::clashingSdksAreNamed()
{
    QCOMPARE(QuenzoProcess({QStringLiteral("import"), QStringLiteral("pay.zip"), QStringLiteral("other")},
                           m_scene->path({}))
                 .end()
                 .code,
             0);
    QVERIFY(m_scene->write(QStringLiteral("other/assets/harbourpay.json"), "{\"other\": 1}"));
    QCOMPARE(QuenzoProcess({QStringLiteral("pack"), QStringLiteral("other"), QStringLiteral("other.zip")},
                           m_scene->path({}))
                 .end()
                 .code,
             0);
    QJsonObject sdks = m_scene->job.value(QStringLiteral("sdks")).toObject();
    sdks.insert(QStringLiteral("other"),
                QJsonObject{{QStringLiteral("package"), QStringLiteral("other.zip")}});
    m_scene->job.insert(QStringLiteral("sdks"), sdks);
    QJsonObject channel = m_scene->channel(1);
    channel.insert(QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay"), QStringLiteral("other")});
    m_scene->setChannel(1, channel);
    const Ended ended = m_scene->run("--json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("harbor")).value(QStringLiteral("message")).toString(),
        QStringLiteral("the SDKs 'pay' and 'other' bring different files 'assets/harbourpay.json'"));
}

void tst_BuildFailures::ownFileInTheBuildsPlaceIsNamed()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = m_scene->run("--json");
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("meadow")).value(QStringLiteral("message")).toString(),
        QStringLiteral("'assets/channel.json' is written by the build, and no other part may bring it"));
}

void tst_BuildFailures::secondRunAtOnceIsRefused()
{
    QVERIFY(QDir().mkpath(m_scene->path(QStringLiteral("work"))));
    QFile other(m_scene->path(QStringLiteral("work/.lock")));
    QVERIFY(other.open(QIODevice::ReadWrite));
    QCOMPARE(flock(other.handle(), LOCK_EX | LOCK_NB), 0);
    const Ended ended = m_scene->run();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("another run of this job is at work"), ended.error.constData());
}

// As a machine that went down leaves it, and whatever file lies there.
void tst_BuildFailures::lockFileWithoutARunKeepsNobodyOut()
{
    QVERIFY(m_scene->write(QStringLiteral("work/.lock"), "1\nquenzo\nanother-machine\n\n\n"));
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
}

void tst_BuildFailures::damagedRecordsAreRefused()
{
    const QByteArray damaged(5000, 'x');
    QVERIFY(m_scene->write(QStringLiteral("output/records.db"), damaged));
    const Ended ended = m_scene->run();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("records.db"), ended.error.constData());
    QCOMPARE(m_scene->read(QStringLiteral("output/records.db")), damaged);
}

void tst_BuildFailures::damagedBaseIsRefused()
{
    QByteArray base = m_scene->read(QStringLiteral("base.apk"));
    base[base.indexOf("horn.wav") + 100] = static_cast<char>(~base.at(base.indexOf("horn.wav") + 100));
    QVERIFY(m_scene->write(QStringLiteral("base.apk"), base));
    const Ended ended = m_scene->run();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("horn.wav"), ended.error.constData());
    QVERIFY(m_scene->finished().isEmpty());
}

void tst_BuildFailures::termEndsBehindTheStepAndTheNextRunGoesOn_data()
{
    failedChannelStopsNoOther_data();
}

void tst_BuildFailures::termEndsBehindTheStepAndTheNextRunGoesOn()
{
    QFETCH(const QByteArray, words);
    QJsonArray channels = m_scene->job.value(QStringLiteral("channels")).toArray();
    for (int i = 0; i < 20; ++i) // enough to be in the middle of them when the signal comes
        channels.append(QJsonObject{{QStringLiteral("folder"), QStringLiteral("more%1").arg(i)}});
    m_scene->job.insert(QStringLiteral("channels"), channels);
    QCOMPARE(m_scene->run().code, 0);
    const auto undisturbed = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());

    const auto process = m_scene->process("--json -v " + words);
    process->setReadChannel(QProcess::StandardError);
    process->start();
    QByteArray said;
    while (!said.contains(": package") && process->waitForReadyRead(30000))
        said += process->readAllStandardError();
    QVERIFY2(said.contains(": package"), said.constData());
    process->terminate();
    QVERIFY(process->waitForFinished(60000));
    QCOMPARE(process->exitStatus(), QProcess::CrashExit);
    const QJsonObject report =
        QJsonDocument::fromJson(m_scene->read(QStringLiteral("output/report.json"))).object();
    said += process->readAllStandardError();
    QVERIFY2(report.value(QStringLiteral("interrupted")).toBool(), said.right(2000).constData());

    const Ended again = m_scene->run("--json");
    QVERIFY2(again.code == 0, again.error.constData());
    QVERIFY(m_scene->finished() == undisturbed);
}

void tst_BuildFailures::killedRunsAreTakenUp()
{
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(m_scene->run().code, 0);
    const int whole = static_cast<int>(clock.elapsed());
    const auto undisturbed = m_scene->finished();
    const int rounds = qMax(6, qEnvironmentVariableIntValue("QUENZO_BUILD_KILLS"));
    for (int round = 0; round < rounds; ++round) {
        QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
        const auto process = m_scene->process(round % 2 == 0 ? "" : "--jobs 2");
        process->start();
        QVERIFY(process->waitForStarted());
        // Wherever it is by then: that differs from round to round, and must not matter.
        process->waitForFinished(whole * (round + 1) / (rounds + 1));
        process->kill();
        process->waitForFinished();
        const auto left = m_scene->finished();
        for (auto file = left.cbegin(); file != left.cend(); ++file)
            QVERIFY2(undisturbed.value(file.key()) == file.value(), qPrintable(file.key()));
        const Ended again = m_scene->run();
        QVERIFY2(again.code == 0, again.error.constData());
        QVERIFY2(m_scene->finished() == undisturbed, qPrintable(QString::number(round)));
    }
}

// As it is when the machine goes down during a run.
void tst_BuildFailures::takeEndOfRuns() const
{
    {
        QSqlDatabase records = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        records.setDatabaseName(m_scene->path(QStringLiteral("output/records.db")));
        QVERIFY(records.open());
        QSqlQuery query(records);
        QVERIFY2(query.exec(QStringLiteral("UPDATE build SET ended = NULL, outcome = NULL")),
                 qPrintable(query.lastError().text()));
        QVERIFY(query.numRowsAffected() > 0);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
}

void tst_BuildFailures::damagedContentOfARunWithoutAnEndIsBuiltAgain()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto undisturbed = m_scene->finished();
    takeEndOfRuns();
    QByteArray package = m_scene->read(QStringLiteral("output/harbor/harbor.apk"));
    const int place = package.indexOf("horn.wav") + 1000; // in a stored entry; the directory stays as it is
    package[place] = static_cast<char>(~package.at(place));
    QVERIFY(m_scene->write(QStringLiteral("output/harbor/harbor.apk"), package));
    const QMap<QString, QString> expected{{QStringLiteral("plain"), QStringLiteral("unchanged")},
                                          {QStringLiteral("harbor"), QStringLiteral("built")},
                                          {QStringLiteral("meadow"), QStringLiteral("unchanged")}};
    QCOMPARE(BuildScene::outcomes(m_scene->run("--json")), expected);
    QVERIFY(m_scene->finished() == undisturbed);
}

// Of the first run; empty as well while the records cannot be read.
QStringList tst_BuildFailures::recordedSteps(const QString& channel) const
{
    const Ended ended =
        QuenzoProcess(QuenzoProcess::words("builds job.json --build 1 --json"), m_scene->path({})).end();
    QStringList steps;
    for (const QJsonValue& one : ended.result()
                                     .value(QStringLiteral("build"))
                                     .toObject()
                                     .value(QStringLiteral("channels"))
                                     .toArray()) {
        if (one.toObject().value(QStringLiteral("folder")).toString() != channel)
            continue;
        for (const QJsonValue& step : one.toObject().value(QStringLiteral("steps")).toArray())
            steps.append(step.toObject().value(QStringLiteral("name")).toString());
    }
    return steps;
}

void tst_BuildFailures::stepsAreRecordedAsTheyEnd_data()
{
    failedChannelStopsNoOther_data();
}

void tst_BuildFailures::stepsAreRecordedAsTheyEnd()
{
    QFETCH(const QByteArray, words);
    QVERIFY(m_scene->signAtGate());
    const auto process = m_scene->process(words);
    process->start();
    const QStringList ended{QStringLiteral("clear"), QStringLiteral("icons"), QStringLiteral("package")};
    QTRY_COMPARE_WITH_TIMEOUT(recordedSteps(QStringLiteral("plain")), ended, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(m_scene->processAtGate(QStringLiteral("plain")) > 0, 30000);
    process->kill();
    QVERIFY(process->waitForFinished());
    QVERIFY(m_scene->openGate());
    QCOMPARE(recordedSteps(QStringLiteral("plain")), ended);
    const Ended again = m_scene->run();
    QVERIFY2(again.code == 0, again.error.constData());
}

void tst_BuildFailures::channelsOfADeadProcessFailByName()
{
    QVERIFY(m_scene->signAtGate() && m_scene->openGate());
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(m_scene->closeGate());
    QVERIFY(QDir(m_scene->path(QStringLiteral("bin"))).remove(QStringLiteral("apksigner.plain.apk")));
    const auto process =
        m_scene->process("--force --json --jobs 2"); // "plain" and "meadow" are of one process
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(m_scene->processAtGate(QStringLiteral("plain")) > 0, 30000);
    QCOMPARE(::kill(pid_t(m_scene->processAtGate(QStringLiteral("plain"))), SIGKILL), 0);
    QVERIFY(m_scene->openGate());
    const Ended ended = process->end();
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::outcomes(ended),
             (QMap<QString, QString>{{QStringLiteral("plain"), QStringLiteral("failed")},
                                     {QStringLiteral("harbor"), QStringLiteral("built")},
                                     {QStringLiteral("meadow"), QStringLiteral("failed")}}));
    for (const QString& channel : {QStringLiteral("plain"), QStringLiteral("meadow")}) {
        QCOMPARE(BuildScene::reportOf(ended, channel).value(QStringLiteral("message")).toString(),
                 QStringLiteral("a process of the build was killed"));
        QVERIFY2(ended.error.contains("channel '" + channel.toUtf8() + "' failed: "),
                 ended.error.constData());
        QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/") + channel)));
    }
    QCOMPARE(BuildScene::outcomes(m_scene->run("--json")).value(QStringLiteral("harbor")),
             QStringLiteral("unchanged"));
}

void tst_BuildFailures::quietRunTellsFailedChannelsByName()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = m_scene->run("--quiet");
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.error,
             QByteArray("quenzo: failed: 1 of 3 channels\nchannel 'meadow' failed: 'assets/channel.json' is "
                        "written by the build, and no other part may bring it\n"));
}

QTEST_GUILESS_MAIN(tst_BuildFailures)
#include "tst_buildfailures.moc"
