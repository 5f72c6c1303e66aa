// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QJsonDocument>
#include <QtTest>

// What a run tells while it is at work.
class tst_BuildProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void machinesAreToldEachStepAndEnd_data();
    void machinesAreToldEachStepAndEnd();
    void machinesAreToldOfUnchangedChannels();
    void diagnosticsAreNoObjects();

private:
    static QVector<QJsonObject> linesOf(const QByteArray& error);
    static QVector<QJsonObject> channelLines(const QByteArray& error, const QString& folder);
    static void expectLinesOf(const QJsonObject& channel, const QByteArray& error);
    std::unique_ptr<BuildScene> m_scene;
};

namespace {

const QStringList folders{QStringLiteral("plain"), QStringLiteral("harbor"), QStringLiteral("meadow")};

} // namespace

void tst_BuildProgress::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

QVector<QJsonObject> tst_BuildProgress::linesOf(const QByteArray& error)
{
    QVector<QJsonObject> lines;
    for (const QByteArray& line : error.trimmed().split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!object.isEmpty())
            lines.append(object);
    }
    return lines;
}

QVector<QJsonObject> tst_BuildProgress::channelLines(const QByteArray& error, const QString& folder)
{
    QVector<QJsonObject> lines;
    for (const QJsonObject& line : linesOf(error)) {
        const QJsonObject channel = line.value(QStringLiteral("channel")).toObject();
        if (channel.value(QStringLiteral("folder")).toString() == folder)
            lines.append(channel);
    }
    return lines;
}

// A line for each step of a channel of the report, in order, and one for its end.
void tst_BuildProgress::expectLinesOf(const QJsonObject& channel, const QByteArray& error)
{
    const QString folder = channel.value(QStringLiteral("folder")).toString();
    QVector<QJsonObject> expected;
    for (const QJsonValue& step : channel.value(QStringLiteral("steps")).toArray())
        expected.append({{QStringLiteral("folder"), folder},
                         {QStringLiteral("step"), step.toObject().value(QStringLiteral("name"))}});
    expected.append({{QStringLiteral("folder"), folder},
                     {QStringLiteral("outcome"), channel.value(QStringLiteral("outcome"))},
                     {QStringLiteral("message"), channel.value(QStringLiteral("message"))}});
    const QVector<QJsonObject> told = channelLines(error, folder);
    QVERIFY2(told == expected, error.constData());
}

void tst_BuildProgress::machinesAreToldEachStepAndEnd_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("one process") << QByteArray();
    QTest::newRow("two processes") << QByteArray(" --jobs 2");
    QTest::newRow("quiet") << QByteArray(" --quiet");
}

void tst_BuildProgress::machinesAreToldEachStepAndEnd()
{
    QFETCH(const QByteArray, words);
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}")); // fails "meadow"
    const Ended ended = m_scene->run("--json --progress=json" + words);
    QCOMPARE(ended.code, 1);
    for (const QString& folder : folders)
        expectLinesOf(BuildScene::reportOf(ended, folder), ended.error);
    QCOMPARE(channelLines(ended.error, folders.at(0)).first().value(QStringLiteral("step")).toString(),
             QStringLiteral("clear"));
    QCOMPARE(channelLines(ended.error, folders.at(2)).last().value(QStringLiteral("outcome")).toString(),
             QStringLiteral("failed"));
    QJsonObject last;
    for (const QJsonObject& line : linesOf(ended.error)) {
        QCOMPARE(line.keys().size(), 1);
        if (line.contains(QStringLiteral("progress")))
            last = line.value(QStringLiteral("progress")).toObject();
        else
            QCOMPARE(line.keys(), QStringList(QStringLiteral("channel")));
    }
    QCOMPARE(last,
             (QJsonObject{{QStringLiteral("doing"), QStringLiteral("writing the report")},
                          {QStringLiteral("unit"), QStringLiteral("channels")},
                          {QStringLiteral("done"), 3},
                          {QStringLiteral("total"), 3}}));
}

void tst_BuildProgress::machinesAreToldOfUnchangedChannels()
{
    QCOMPARE(m_scene->run().code, 0);
    const Ended ended = m_scene->run("--progress=json");
    QCOMPARE(ended.code, 0);
    for (const QString& folder : folders) {
        const QVector<QJsonObject> expected{{{QStringLiteral("folder"), folder},
                                             {QStringLiteral("outcome"), QStringLiteral("unchanged")},
                                             {QStringLiteral("message"), QString()}}};
        QVERIFY2(channelLines(ended.error, folder) == expected, ended.error.constData());
    }
}

void tst_BuildProgress::diagnosticsAreNoObjects()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = m_scene->run("--progress=json");
    int diagnostics = 0;
    for (const QByteArray& line : ended.error.trimmed().split('\n')) {
        if (QJsonDocument::fromJson(line).isObject())
            continue;
        QVERIFY2(line.startsWith("quenzo: "), line.constData());
        ++diagnostics;
    }
    QVERIFY(diagnostics > 0);
}

QTEST_GUILESS_MAIN(tst_BuildProgress)
#include "tst_buildprogress.moc"
