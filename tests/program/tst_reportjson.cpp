// SPDX-License-Identifier: MIT
#include "build/buildreport.h"
#include "jsonschema.h"
#include "reportscene.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray lineOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QStringList foldersOf(const BuildOutcome& build)
{
    QStringList folders;
    for (const ChannelOutcome& channel : build.channels)
        folders.append(channel.folder);
    return folders;
}

} // namespace

// report.json: there and back, its schema, and one report of many slices'.
class tst_ReportJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void comesBackAsItWas_data() { runs(); }
    void comesBackAsItWas();
    void isOfTheSchema_data() { runs(); }
    void isOfTheSchema();
    void everyFieldComesBack();
    void pathsOfTheOutputAreRelative();
    void otherShapesAreRefused_data();
    void otherShapesAreRefused();
    void laterKeysArePassedOver();
    void slicesBecomeOneRun();
    void outputIsWhereTheReportsLie();
    void missingSlicesAreNamed_data();
    void missingSlicesAreNamed();
    void latestOfARepeatedSliceCounts();
    void olderDivisionsArePassedOver();
    void slicesOfDifferentJobsAreRefused();
    void unusableReportsAreNamed();

private:
    static void runs();
    QString write(const BuildOutcome& slice) const;
    QString write(const QString& name, const QByteArray& content) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    JsonSchema m_schema{QStringLiteral("report.schema.json")};
};

void tst_ReportJson::runs()
{
    QTest::addColumn<BuildOutcome>("build");
    QTest::newRow("of every outcome") << ReportScene::run();
    QTest::newRow("one of four slices") << ReportScene::slice(3, 4, 10);
    QTest::newRow("slice without channels") << ReportScene::slice(3, 4, 2);
    QTest::newRow("nothing") << BuildOutcome();
    BuildOutcome interrupted = ReportScene::run();
    interrupted.interrupted = true;
    interrupted.channels.last().steps = {
        {QStringLiteral("icons"), ReportScene::at(3), {}, BuildStep::Failed, {}}};
    QTest::newRow("interrupted within a step") << interrupted;
    BuildOutcome hostile = ReportScene::run();
    hostile.game = ReportScene::hostileText();
    hostile.channels[0] = ReportScene::failed(0, ReportScene::hostileText(), ReportScene::hostileText());
    hostile.channels[1].size = qint64(5) << 40;
    QTest::newRow("hostile texts, large numbers") << hostile;
}

QString tst_ReportJson::write(const BuildOutcome& slice) const
{
    return write(QStringLiteral("slices/%1-of-%2/report.json").arg(slice.slice + 1).arg(slice.slices),
                 lineOf(BuildReport::toJson(slice)));
}

QString tst_ReportJson::write(const QString& name, const QByteArray& content) const
{
    const QString path = m_folder->filePath(name);
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
        || file.write(content) != content.size())
        qFatal("cannot write %s", qUtf8Printable(path));
    return path;
}

void tst_ReportJson::comesBackAsItWas()
{
    QFETCH(const BuildOutcome, build);
    const QJsonObject object = BuildReport::toJson(build);
    BuildOutcome back;
    QVERIFY(BuildReport::fromJson(QJsonDocument::fromJson(lineOf(object)).object(), back));
    QCOMPARE(lineOf(BuildReport::toJson(back)), lineOf(object));
}

void tst_ReportJson::isOfTheSchema()
{
    QFETCH(const BuildOutcome, build);
    QCOMPARE(m_schema.verdictOn(lineOf(BuildReport::toJson(build))), QByteArray("valid"));
}

void tst_ReportJson::everyFieldComesBack()
{
    BuildOutcome build = ReportScene::slice(1, 2, 4);
    build.interrupted = true;
    ChannelOutcome& channel = build.channels[1];
    channel.name = QStringLiteral("name");
    channel.message = QStringLiteral("message");
    channel.notes = QStringList{QStringLiteral("one"), QStringLiteral("two")};
    channel.outcome = ChannelOutcome::Failed;
    channel.steps[4] = {QStringLiteral("sign"), ReportScene::at(1), ReportScene::at(2), BuildStep::Failed,
                        QStringLiteral("why")};
    BuildOutcome back;
    QVERIFY(BuildReport::fromJson(BuildReport::toJson(build), back));
    QCOMPARE(back.job, build.job);
    QCOMPARE(back.game, build.game);
    QCOMPARE(back.output, build.output);
    QCOMPARE(back.slice, 1);
    QCOMPARE(back.slices, 2);
    QCOMPARE(back.start, build.start);
    QCOMPARE(back.end, build.end);
    QCOMPARE(back.interrupted, true);
    QCOMPARE(back.sheets, build.sheets);
    QCOMPARE(foldersOf(back), foldersOf(build));
    QCOMPARE(ReportScene::differenceOf(back.channels.at(1), channel), QString());
}

void tst_ReportJson::pathsOfTheOutputAreRelative()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons.append(QStringLiteral("/builds/harbour/output2/icon.png"));
    const QJsonObject object = BuildReport::toJson(build);
    QCOMPARE(object.value(QStringLiteral("output")).toString(), build.output);
    QCOMPARE(object.value(QStringLiteral("sheets")).toArray(),
             QJsonArray{QStringLiteral("sheet-android.png")});
    const QJsonObject channel = object.value(QStringLiteral("channels")).toArray().at(0).toObject();
    QCOMPARE(channel.value(QStringLiteral("package")).toString(), QStringLiteral("harbor/harbor.apk"));
    const QJsonArray icons{QStringLiteral("harbor/icons/android-icon.png"),
                           QStringLiteral("/builds/harbour/output2/icon.png")};
    QCOMPARE(channel.value(QStringLiteral("icons")).toArray(), icons);
}

void tst_ReportJson::otherShapesAreRefused_data()
{
    QTest::addColumn<QJsonObject>("object");
    const QJsonObject sound = BuildReport::toJson(ReportScene::run());
    const auto row = [&sound](const char* name, const char* key, const QJsonValue& value) {
        QJsonObject object = sound;
        object.insert(QLatin1String(key), value);
        QTest::newRow(name) << object;
    };
    const auto channelRow = [&](const char* name, const char* key, const QJsonValue& value) {
        QJsonArray channels = sound.value(QStringLiteral("channels")).toArray();
        QJsonObject channel = channels.at(1).toObject();
        channel.insert(QLatin1String(key), value);
        channels[1] = channel;
        row(name, "channels", channels);
    };
    QTest::newRow("nothing") << QJsonObject();
    row("no version", "report", QJsonValue::Undefined);
    row("other version", "report", 2);
    row("game that is no text", "game", 5);
    row("no slices", "slices", 0);
    row("fraction of a slice", "slice", 0.5);
    row("start that is no time", "start", QStringLiteral("yesterday"));
    row("interrupted neither way", "interrupted", QJsonValue());
    row("sheets that are none", "sheets", QJsonArray{1});
    row("no channels", "channels", QJsonValue::Undefined);
    row("channels that are none", "channels", QJsonArray{QStringLiteral("harbor")});
    channelRow("unknown outcome", "outcome", QStringLiteral("good"));
    channelRow("negative size", "size", -1);
    channelRow("no folder", "folder", QJsonValue::Undefined);
    channelRow("notes in one text", "notes", QStringLiteral("note"));
    channelRow("steps that are none", "steps", QJsonArray{QJsonObject()});
}

// By the schema and by the reader.
void tst_ReportJson::otherShapesAreRefused()
{
    QFETCH(const QJsonObject, object);
    BuildOutcome build;
    QVERIFY(!BuildReport::fromJson(object, build));
    QVERIFY(build.channels.isEmpty());
    QVERIFY(m_schema.verdictOn(lineOf(object)) != "valid");
}

void tst_ReportJson::laterKeysArePassedOver()
{
    QJsonObject object = BuildReport::toJson(ReportScene::run());
    object.insert(QStringLiteral("later"), true);
    BuildOutcome build;
    QVERIFY(BuildReport::fromJson(object, build));
    QCOMPARE(build.channels.size(), 5);
    QVERIFY(m_schema.verdictOn(lineOf(object)) != "valid");
}

void tst_ReportJson::slicesBecomeOneRun()
{
    QStringList files;
    QStringList folders;
    for (int i = 0; i < 10; ++i)
        folders.append(QStringLiteral("channel%1").arg(i));
    for (const int index : {2, 0, 3, 1})
        files.append(write(ReportScene::slice(index, 4, 10)));
    BuildOutcome build;
    QString fault = QStringLiteral("from before");
    QVERIFY2(BuildReport::collect(files, build, fault), qUtf8Printable(fault));
    QCOMPARE(fault, QString());
    QCOMPARE(foldersOf(build), folders);
    QCOMPARE(build.game, QStringLiteral("Sky Harbour"));
    QCOMPARE(build.slice, 0);
    QCOMPARE(build.slices, 1);
    QCOMPARE(build.start, ReportScene::at(100));
    QCOMPARE(build.end, ReportScene::at(2003));
    QCOMPARE(build.sheets.size(), 4);
    QVERIFY(build.succeeded());
}

void tst_ReportJson::outputIsWhereTheReportsLie()
{
    BuildOutcome build;
    QString fault;
    QVERIFY2(BuildReport::collect({write(ReportScene::slice(0, 1, 2))}, build, fault), qUtf8Printable(fault));
    QCOMPARE(build.output, m_folder->path());
    QCOMPARE(build.channels.at(0).package, m_folder->filePath(QStringLiteral("channel0/channel0.apk")));
    const QString elsewhere =
        write(QStringLiteral("kept.json"), lineOf(BuildReport::toJson(ReportScene::slice(0, 1, 2))));
    QVERIFY2(BuildReport::collect({elsewhere}, build, fault), qUtf8Printable(fault));
    QCOMPARE(build.output, QStringLiteral("/builds/harbour/output"));
}

void tst_ReportJson::missingSlicesAreNamed_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QVector<int>>("there");
    QTest::addColumn<QString>("fault");
    QTest::newRow("one") << 3 << QVector<int>{0, 2} << QStringLiteral("missing slices: 2/3");
    QTest::newRow("several") << 5 << QVector<int>{3} << QStringLiteral("missing slices: 1/5, 2/5, 3/5, 5/5");
    QTest::newRow("very many") << 2000000000 << QVector<int>{0}
                               << QStringLiteral("missing slices: 2/2000000000, 3/2000000000");
    QTest::newRow("none at all") << 1 << QVector<int>{} << QStringLiteral("there is no report of a slice");
}

void tst_ReportJson::missingSlicesAreNamed()
{
    QFETCH(const int, count);
    QFETCH(const QVector<int>, there);
    QFETCH(const QString, fault);
    QStringList files;
    for (const int index : there)
        files.append(write(ReportScene::slice(index, count, 7)));
    BuildOutcome build;
    QString said;
    QVERIFY(!BuildReport::collect(files, build, said));
    if (count < 100)
        QCOMPARE(said, fault);
    else
        QVERIFY2(said.startsWith(fault) && said.endsWith(QLatin1String(" and 1999999979 more")),
                 qUtf8Printable(said));
    QCOMPARE(build.channels.isEmpty(), there.isEmpty()); // what there is can be looked at
}

void tst_ReportJson::latestOfARepeatedSliceCounts()
{
    BuildOutcome first = ReportScene::slice(1, 2, 4);
    first.channels[0] = ReportScene::failed(1, QStringLiteral("channel1"), QStringLiteral("full"));
    BuildOutcome second = ReportScene::slice(1, 2, 4);
    second.end = second.end.addMSecs(1);
    const QString one = write(QStringLiteral("kept/first.json"), lineOf(BuildReport::toJson(first)));
    const QString two = write(QStringLiteral("kept/second.json"), lineOf(BuildReport::toJson(second)));
    const QString other =
        write(QStringLiteral("kept/other.json"), lineOf(BuildReport::toJson(ReportScene::slice(0, 2, 4))));
    for (const QStringList& files : {QStringList{one, two, other}, QStringList{other, two, one}}) {
        BuildOutcome build;
        QString fault;
        QVERIFY2(BuildReport::collect(files, build, fault), qUtf8Printable(fault));
        QCOMPARE(build.channels.size(), 4);
        QVERIFY(build.succeeded());
    }
}

void tst_ReportJson::olderDivisionsArePassedOver()
{
    QStringList files;
    for (int index = 0; index < 3; ++index) {
        BuildOutcome old = ReportScene::slice(index, 3, 9);
        old.end = ReportScene::at(1000);
        files.append(write(old));
    }
    files += {write(ReportScene::slice(0, 2, 8)), write(ReportScene::slice(1, 2, 8))};
    BuildOutcome build;
    QString fault;
    QVERIFY2(BuildReport::collect(files, build, fault), qUtf8Printable(fault));
    QCOMPARE(build.channels.size(), 8);
}

void tst_ReportJson::slicesOfDifferentJobsAreRefused()
{
    BuildOutcome build;
    QString fault;
    BuildOutcome other = ReportScene::slice(1, 2, 4);
    other.game = QStringLiteral("Another");
    QVERIFY(!BuildReport::collect({write(ReportScene::slice(0, 2, 4)), write(other)}, build, fault));
    QCOMPARE(fault, QStringLiteral("the slices are of different games: Sky Harbour and Another"));

    other = ReportScene::slice(1, 2, 4);
    other.channels[1].folder = QStringLiteral("channel0");
    QVERIFY(!BuildReport::collect({write(ReportScene::slice(0, 2, 4)), write(other)}, build, fault));
    QVERIFY2(fault.startsWith(QLatin1String(
                 "the job was changed between the slices: channel 'channel0' of slice 2/2 is in another")),
             qUtf8Printable(fault));

    other = ReportScene::slice(1, 2, 4);
    other.channels[1].index = 4;
    QVERIFY(!BuildReport::collect({write(ReportScene::slice(0, 2, 4)), write(other)}, build, fault));
    QVERIFY2(fault.contains(QLatin1String("channel 'channel3' of slice 2/2")), qUtf8Printable(fault));
}

void tst_ReportJson::unusableReportsAreNamed()
{
    const QByteArray sound = lineOf(BuildReport::toJson(ReportScene::slice(0, 1, 2)));
    const QString whole = write(QStringLiteral("whole.json"), sound);
    const QString cut = write(QStringLiteral("cut.json"), sound.left(sound.size() / 2));
    const QString absent = m_folder->filePath(QStringLiteral("absent.json"));
    BuildOutcome build;
    QString fault;
    QVERIFY(!BuildReport::collect({whole, cut, absent}, build, fault));
    QVERIFY2(fault.startsWith(cut + QStringLiteral(" is no report of this version; the report ") + absent
                              + QStringLiteral(" cannot be read: ")),
             qUtf8Printable(fault));
    QCOMPARE(build.channels.size(), 2);
}

QTEST_GUILESS_MAIN(tst_ReportJson)
#include "tst_reportjson.moc"
