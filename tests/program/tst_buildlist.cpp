// SPDX-License-Identifier: MIT
#include "buildscene.h"
#include "jsonschema.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

namespace {

const QString recordsName = QStringLiteral("output/records.db");

QStringList textsOf(const QJsonArray& objects, const char* key)
{
    QStringList texts;
    for (const QJsonValue& object : objects)
        texts.append(object.toObject().value(QLatin1String(key)).toVariant().toString());
    return texts;
}

} // namespace

// What "quenzo builds" tells of a job's past runs.
class tst_BuildList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void runsAreListedTheLatestFirst();
    void runsOfSlicesAreListedWithTheirSlice();
    void numberOfSeveralFilesWantsTheFile();
    void killedRunIsTold();
    void failedRunIsToldWithItsCause();
    void oneRunIsListedWithItsSteps();
    void wrongNumbersAreTold_data();
    void wrongNumbersAreTold();
    void jobWithoutARunHasNone();
    void mistakesOfAJobAreTold();
    void uselessFilesAreTold_data();
    void uselessFilesAreTold();
    void damagedSliceHidesNoOther();
    void namesInRecordsSteerNoTable();

private:
    Ended builds(const QByteArray& words) const;
    QJsonArray listed(const QByteArray& words);
    bool change(const char* statement) const;

    std::unique_ptr<BuildScene> m_scene;
    JsonSchema m_schema{QStringLiteral("output.schema.json")};
};

void tst_BuildList::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
    QVERIFY(m_scene->writeJob());
}

Ended tst_BuildList::builds(const QByteArray& words) const
{
    return QuenzoProcess(QuenzoProcess::words(QByteArray("builds " + words).constData()), m_scene->path({}))
        .end();
}

// Empty when the object is not of the schema.
QJsonArray tst_BuildList::listed(const QByteArray& words)
{
    const Ended ended = builds(words + " --json");
    const QByteArray verdict = m_schema.verdictOn(ended.output);
    if (ended.code == 0 && verdict == "valid")
        return ended.result().value(QStringLiteral("builds")).toArray();
    qWarning() << ended.code << verdict << ended.output;
    return {};
}

bool tst_BuildList::change(const char* statement) const
{
    const QString name = QStringLiteral("change");
    bool done = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(m_scene->path(recordsName));
        done = database.open() && QSqlQuery(database).exec(QLatin1String(statement));
    }
    QSqlDatabase::removeDatabase(name);
    return done;
}

void tst_BuildList::runsAreListedTheLatestFirst()
{
    QCOMPARE(m_scene->run().code, 0);
    QCOMPARE(m_scene->run().code, 0);
    const QJsonArray runs = listed("job.json");
    QCOMPARE(textsOf(runs, "number"), QStringList({QStringLiteral("2"), QStringLiteral("1")}));
    QCOMPARE(textsOf(runs, "built"), QStringList({QStringLiteral("0"), QStringLiteral("3")}));
    QCOMPARE(textsOf(runs, "unchanged"), QStringList({QStringLiteral("3"), QStringLiteral("0")}));
    QCOMPARE(textsOf(runs, "outcome"), QStringList({QStringLiteral("done"), QStringLiteral("done")}));
    const QJsonObject first = runs.at(1).toObject();
    const auto time = [&first](const char* key) {
        return QDateTime::fromString(first.value(QLatin1String(key)).toString(), Qt::ISODateWithMs);
    };
    QVERIFY(time("start").isValid());
    QVERIFY(time("start") < time("end"));
    QCOMPARE(listed("output/records.db"), runs);

    const Ended told = builds("job.json");
    QCOMPARE(told.code, 0);
    const QList<QByteArray> lines = told.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(0).simplified(), QByteArray("run start time outcome built unchanged failed"));
    QVERIFY2(lines.at(1).startsWith("2 ") && lines.at(1).simplified().endsWith(" done 0 3 0"), lines.at(1));
    QVERIFY2(lines.at(2).startsWith("1 ") && lines.at(2).simplified().endsWith(" done 3 0 0"), lines.at(2));
}

void tst_BuildList::runsOfSlicesAreListedWithTheirSlice()
{
    QCOMPARE(m_scene->run("--slice 1/2").code, 0);
    QCOMPARE(m_scene->run("--slice 2/2").code, 0);
    const QJsonArray runs = listed("job.json");
    QCOMPARE(textsOf(runs, "slice"), QStringList({QStringLiteral("1"), QStringLiteral("0")}));
    QCOMPARE(textsOf(runs, "slices"), QStringList({QStringLiteral("2"), QStringLiteral("2")}));
    QCOMPARE(textsOf(runs, "built"), QStringList({QStringLiteral("1"), QStringLiteral("2")}));
    const QList<QByteArray> lines = builds("job.json").output.trimmed().split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).endsWith("slice"), lines.at(0));
    QVERIFY2(lines.at(1).endsWith(" 2/2"), lines.at(1));
    QVERIFY2(lines.at(2).endsWith(" 1/2"), lines.at(2));
}

void tst_BuildList::numberOfSeveralFilesWantsTheFile()
{
    QCOMPARE(m_scene->run("--slice 1/2").code, 0);
    QCOMPARE(builds("job.json --build 1").code, 0);
    QCOMPARE(m_scene->run("--slice 2/2").code, 0);
    const Ended several = builds("job.json --build 1 --json");
    QCOMPARE(several.code, 1);
    const QString causes = several.failure().value(QStringLiteral("cause")).toString();
    QVERIFY2(causes.contains(QLatin1String("1-of-2")) && causes.contains(QLatin1String("2-of-2")),
             several.output.constData());
    const Ended one = builds("output/slices/2-of-2/records.db --build 1");
    QCOMPARE(one.code, 0);
    QVERIFY2(one.output.contains("\nharbor "), one.output.constData());
}

void tst_BuildList::killedRunIsTold()
{
    QJsonArray channels = m_scene->job.value(QStringLiteral("channels")).toArray();
    for (int i = 0; i < 20; ++i) // enough to be in the middle of them when it is killed
        channels.append(QJsonObject{{QStringLiteral("folder"), QStringLiteral("more%1").arg(i)}});
    m_scene->job.insert(QStringLiteral("channels"), channels);
    const auto process = m_scene->process("-v");
    process->setReadChannel(QProcess::StandardError);
    process->start();
    QByteArray said;
    while (!said.contains(": package") && process->waitForReadyRead(30000))
        said += process->readAllStandardError();
    process->kill();
    QVERIFY2(process->waitForFinished() && said.contains(": package"), said.constData());

    const QJsonArray killed = listed("job.json");
    QCOMPARE(textsOf(killed, "outcome"), QStringList(QStringLiteral("running or killed")));
    QVERIFY(killed.first().toObject().value(QStringLiteral("end")).isNull());
    const Ended told = builds("job.json");
    QVERIFY2(told.output.contains("running or killed"), told.output.constData());
    QCOMPARE(m_scene->run().code, 0);
    QCOMPARE(textsOf(listed("job.json"), "outcome"),
             QStringList({QStringLiteral("done"), QStringLiteral("running or killed")}));
}

void tst_BuildList::failedRunIsToldWithItsCause()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    QCOMPARE(m_scene->run().code, 1);
    const QJsonArray runs = listed("job.json");
    QCOMPARE(textsOf(runs, "outcome"), QStringList(QStringLiteral("failed")));
    QCOMPARE(textsOf(runs, "failed"), QStringList(QStringLiteral("1")));
    const Ended one = builds("job.json --build 1");
    QCOMPARE(one.code, 0);
    QVERIFY2(one.output.contains("'assets/channel.json' is written by the build"), one.output.constData());
}

void tst_BuildList::oneRunIsListedWithItsSteps()
{
    QCOMPARE(m_scene->run().code, 0);
    const Ended ended = builds("job.json --build 1 --json");
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    const QJsonObject run = ended.result().value(QStringLiteral("build")).toObject();
    QCOMPARE(run.value(QStringLiteral("number")).toInt(), 1);
    const QJsonArray channels = run.value(QStringLiteral("channels")).toArray();
    QCOMPARE(textsOf(channels, "folder"),
             QStringList({QStringLiteral("plain"), QStringLiteral("harbor"), QStringLiteral("meadow")}));
    QCOMPARE(textsOf(channels, "name").first(), QStringLiteral("Plain"));
    for (const QJsonValue& channel : channels) {
        const QStringList steps =
            textsOf(channel.toObject().value(QStringLiteral("steps")).toArray(), "name");
        QVERIFY2(steps.contains(QStringLiteral("package")) && steps.last() == QLatin1String("output"),
                 qPrintable(steps.join(QLatin1Char(' '))));
    }
    const QByteArray told = builds("job.json --build 1").output;
    QVERIFY2(told.startsWith("Sky Harbour, run 1, "), told.constData());
    QCOMPARE(told.count("\n  package "), 3);
}

void tst_BuildList::wrongNumbersAreTold_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("of no run") << QByteArray("2") << 1 << QByteArray("there is no run 2");
    QTest::newRow("below any") << QByteArray("0") << 1 << QByteArray("there is no run 0");
    QTest::newRow("none") << QByteArray("last") << 2 << QByteArray("--build takes a run's number");
}

void tst_BuildList::wrongNumbersAreTold()
{
    QFETCH(const QByteArray, number);
    QFETCH(const int, code);
    QFETCH(const QByteArray, text);
    QCOMPARE(m_scene->run().code, 0);
    const Ended ended = builds("job.json --build " + number);
    QCOMPARE(ended.code, code);
    QVERIFY2(ended.error.contains(text), ended.error.constData());
    QVERIFY(ended.output.isEmpty());
}

void tst_BuildList::jobWithoutARunHasNone()
{
    const Ended ended = builds("job.json --json");
    QCOMPARE(ended.code, 0);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QVERIFY(ended.result().value(QStringLiteral("builds")).toArray().isEmpty());
    QCOMPARE(builds("job.json").output, QByteArray("there was no run yet\n"));
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output"))));
}

void tst_BuildList::mistakesOfAJobAreTold()
{
    m_scene->job.insert(QStringLiteral("basis"), QStringLiteral("base.apk"));
    QVERIFY(m_scene->writeJob());
    const Ended ended = builds("job.json --json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QCOMPARE(textsOf(ended.result().value(QStringLiteral("faults")).toArray(), "place"),
             QStringList(QStringLiteral("/basis")));
}

void tst_BuildList::uselessFilesAreTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("damaged") << QByteArray(5000, 'x')
                             << QByteArray("is no file of build records, or a damaged");
    QTest::newRow("empty") << QByteArray("") << QByteArray("holds no build records");
    QTest::newRow("absent") << QByteArray() << QByteArray("there is no file 'output/records.db'");
}

void tst_BuildList::uselessFilesAreTold()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, text);
    if (!content.isNull())
        QVERIFY(m_scene->write(recordsName, content));
    const Ended ended = builds("output/records.db");
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(text), ended.error.constData());
    QVERIFY(ended.output.isEmpty());
    QCOMPARE(QFileInfo::exists(m_scene->path(recordsName)), !content.isNull());
    if (content.isNull())
        return;
    QCOMPARE(m_scene->read(recordsName), content);
    const Ended ofJob = builds("job.json");
    QCOMPARE(ofJob.code, 1);
    QVERIFY2(ofJob.error.contains(text), ofJob.error.constData());
}

void tst_BuildList::damagedSliceHidesNoOther()
{
    QCOMPARE(m_scene->run("--slice 1/2").code, 0);
    QVERIFY(m_scene->write(QStringLiteral("output/slices/2-of-2/records.db"), QByteArray(5000, 'x')));
    const Ended ended = builds("job.json --json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QVERIFY2(ended.failure()
                 .value(QStringLiteral("message"))
                 .toString()
                 .contains(QLatin1String("2-of-2/records.db")),
             ended.output.constData());
    QCOMPARE(ended.result().value(QStringLiteral("builds")).toArray().size(), 1);
}

void tst_BuildList::namesInRecordsSteerNoTable()
{
    QVERIFY(QDir().mkpath(m_scene->path(QStringLiteral("output"))));
    QVERIFY(change("CREATE TABLE other(name TEXT)")); // a database, and none of ours
    const Ended foreign = builds("output/records.db");
    QCOMPARE(foreign.code, 1);
    QVERIFY2(foreign.error.contains("holds no build records"), foreign.error.constData());

    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(change("UPDATE result SET channel = 'a' || char(10) || 'b' WHERE channel = 'plain'"));
    const Ended told = builds("job.json --build 1");
    QVERIFY2(told.output.contains("\na\\nb "), told.output.constData());
}

QTEST_GUILESS_MAIN(tst_BuildList)
#include "tst_buildlist.moc"
