// SPDX-License-Identifier: MIT
#include "build/jobplan.h"
#include "console/console.h"
#include "jobscene.h"
#include "jsonschema.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace {

ConsoleStyle forMachines()
{
    ConsoleStyle style;
    style.json = true; // nothing is written before the end
    return style;
}

QStringList everythingIn(const QString& folder)
{
    QStringList paths;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths.append(entries.next());
    paths.sort();
    return paths;
}

} // namespace

// What --check tells of a job.
class tst_JobPlan : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void planTellsEachChannel();
    void leastPlanTellsWhatIsLeftOut();
    void machinesGetTheSame();
    void planIsOfTheSchema_data();
    void planIsOfTheSchema();
    void checkingChangesNothing();
    void signingNeedsTheSigner();

private:
    Job fullJob();

    JobScene m_scene;
    JsonSchema m_schema{QStringLiteral("output.schema.json"), QStringLiteral("jobPlan")};
};

Job tst_JobPlan::fullJob()
{
    return m_scene.read(R"({
        "game": "Sky Harbour", "base": "game.apk",
        "icons": {"master": "icon.png", "marks": "marks", "platforms": ["ios", "android"]},
        "sdks": {"pay": {"package": "pay.zip"}, "ads": {"package": "pay.zip"}},
        "channels": [{"folder": "official", "name": "Official"},
                     {"folder": "yun", "name": "云帆商店", "mark": "red", "corner": "left-top", "x": 6,
                      "sdks": ["pay", "ads"], "encrypt": true, "package": "com.g.yun", "number": 7},
                     {"folder": "c", "mark": "red"}],
        "signing": {"keystore": "store", "password": {"file": "pw.txt"}}})");
}

void tst_JobPlan::planTellsEachChannel()
{
    const Job job = fullJob();
    QCOMPARE(m_scene.faults(), QStringList());
    const QStringList expected{
        QStringLiteral("Sky Harbour, channels: 3"),
        QStringLiteral("base     @/game.apk"),
        QStringLiteral("icons    @/icon.png: android, ios"),
        QStringLiteral("signing  with @/store"),
        QStringLiteral("work     @/work"),
        QStringLiteral("output   @/output"),
        QString(),
        QStringLiteral("channel   name      mark                       SDKs      package"),
        QStringLiteral(
            "official  Official  no mark                    none      official/official.apk, signed"),
        QStringLiteral("yun       云帆商店  red, left-top at 6, flush  pay, ads  yun/yun.apk, com.g.yun, "
                       "encrypted, signed"),
        QStringLiteral("c         c         red, right-bottom          none      c/c.apk, signed"),
    };
    QCOMPARE(JobPlan::toText(job).replaceInStrings(m_scene.root(), QStringLiteral("@")), expected);
}

void tst_JobPlan::leastPlanTellsWhatIsLeftOut()
{
    const Job job = m_scene.read(R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}]})");
    const QStringList text = JobPlan::toText(job);
    QCOMPARE(text.at(2), QStringLiteral("icons    as they are"));
    QCOMPARE(text.at(3), QStringLiteral("signing  no key is named"));
    QVERIFY2(text.last().endsWith(QLatin1String("a/a.apk, unsigned")), qPrintable(text.last()));
}

void tst_JobPlan::machinesGetTheSame()
{
    const QJsonObject plan = JobPlan::toJson(fullJob());
    QCOMPARE(plan.value(QStringLiteral("game")).toString(), QStringLiteral("Sky Harbour"));
    QCOMPARE(plan.value(QStringLiteral("signed")), QJsonValue(true));
    QCOMPARE(plan.value(QStringLiteral("platforms")),
             QJsonValue(QJsonArray{QStringLiteral("android"), QStringLiteral("ios")}));
    const QJsonArray channels = plan.value(QStringLiteral("channels")).toArray();
    QCOMPARE(channels.size(), 3);
    const QJsonObject expected{
        {QStringLiteral("folder"), QStringLiteral("yun")},
        {QStringLiteral("name"), QStringLiteral("云帆商店")},
        {QStringLiteral("number"), QStringLiteral("7")},
        {QStringLiteral("mark"), QStringLiteral("red")},
        {QStringLiteral("corner"), QStringLiteral("left-top")},
        {QStringLiteral("x"), 6},
        {QStringLiteral("y"), QJsonValue()},
        {QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay"), QStringLiteral("ads")}},
        {QStringLiteral("files"), QString()},
        {QStringLiteral("settings"), QJsonObject()},
        {QStringLiteral("encrypt"), true},
        {QStringLiteral("packageName"), QStringLiteral("com.g.yun")},
        {QStringLiteral("package"), m_scene.path(QStringLiteral("output/yun/yun.apk"))}};
    QCOMPARE(channels.at(1).toObject(), expected);
}

void tst_JobPlan::planIsOfTheSchema_data()
{
    QTest::addColumn<QJsonObject>("plan");
    QTest::addColumn<bool>("isSound");
    const QJsonObject full = JobPlan::toJson(fullJob());
    QTest::newRow("full") << full << true;
    const QByteArray least = R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}]})";
    QTest::newRow("least") << JobPlan::toJson(m_scene.read(least)) << true;
    for (const QString& key : full.keys()) {
        QJsonObject without = full;
        without.remove(key);
        QTest::newRow(qPrintable(key)) << without << false;
    }
}

void tst_JobPlan::planIsOfTheSchema()
{
    QFETCH(QJsonObject, plan);
    QFETCH(bool, isSound);
    const QByteArray verdict = m_schema.verdictOn(QJsonDocument(plan).toJson(QJsonDocument::Compact));
    QVERIFY2(isSound ? verdict == "valid" : verdict.startsWith('$'), verdict.constData());
}

void tst_JobPlan::checkingChangesNothing()
{
    const Job job = m_scene.read(JobScene::with(R"("work": "deep/work", "output": "deep/output")"));
    const QStringList before = everythingIn(m_scene.root());
    Console console(forMachines());
    QCOMPARE(checkJob(job, console), ExitDone);
    QCOMPARE(everythingIn(m_scene.root()), before);
}

void tst_JobPlan::signingNeedsTheSigner()
{
    Job job = fullJob();
    job.channels.remove(1); // a package name of its own needs apktool, too
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_scene.root()));
    Console without(forMachines());
    QCOMPARE(checkJob(job, without), ExitFailed);
    m_scene.write(QStringLiteral("apksigner"), "#!/bin/sh\n");
    QFile::setPermissions(m_scene.path(QStringLiteral("apksigner")),
                          QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    Console with(forMachines());
    const ExitCode code = checkJob(job, with);
    qputenv("PATH", path);
    QCOMPARE(code, ExitDone);
}

QTEST_GUILESS_MAIN(tst_JobPlan)
#include "tst_jobplan.moc"
