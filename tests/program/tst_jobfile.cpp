// SPDX-License-Identifier: MIT
#include "jobscene.h"

#include <QJsonArray>
#include <QtTest>

// What a run gets to know of a sound job.
class tst_JobFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingIsRead();
    void leftOutIsTheUsual();
    void channelStandsOverTheDefaults();
    void settingsAreLaidOverKeyByKey();
    void positionBelongsToItsCorner_data();
    void positionBelongsToItsCorner();
    void nullTakesADefaultAway();
    void relativePathsBeginAtTheJob();

private:
    JobScene m_scene;
};

void tst_JobFile::everythingIsRead()
{
    const Job job = m_scene.read(R"({
        "$schema": "s", "//": "c", "game": "Sky Harbour", "base": "game.apk",
        "icons": {"master": "icon.png", "marks": "marks", "platforms": ["ios", "android"]},
        "sdks": {"//": "c", "pay": {"package": "pay.zip", "id": 7}, "any": {"package": "pay.zip"}},
        "channels": [{"folder": "harbor", "name": "Harbor", "number": 101, "package": "com.g.h", "mark": "red", "corner": 0, "x": 3,
                      "y": -4, "sdks": ["pay", "any"], "files": "files", "settings": {"//": "c", "k": 1},
                      "encrypt": true}],
        "encryption": {"key": "key", "exclude": ["*.json"]},
        "signing": {"keystore": "store", "alias": "release", "password": {"file": "pw.txt"}},
        "work": "w", "output": "o", "leave": ["parts"]})");
    QCOMPARE(m_scene.faults(), QStringList());
    QCOMPARE(job.path, m_scene.path(QStringLiteral("job.json")));
    QCOMPARE(job.game, QStringLiteral("Sky Harbour"));
    QCOMPARE(job.base, m_scene.path(QStringLiteral("game.apk")));
    QCOMPARE(job.icon, m_scene.path(QStringLiteral("icon.png")));
    QCOMPARE(job.marks, m_scene.path(QStringLiteral("marks")));
    QCOMPARE(job.platforms, (QVector<int>{0, 1}));
    QCOMPARE(job.sdks.keys(), (QStringList{QStringLiteral("any"), QStringLiteral("pay")}));
    const JobSdk pay = job.sdks.value(QStringLiteral("pay"));
    QCOMPARE(pay.name, QStringLiteral("pay"));
    QCOMPARE(pay.package, m_scene.path(QStringLiteral("pay.zip")));
    QCOMPARE(pay.id, 7);
    QCOMPARE(job.sdks.value(QStringLiteral("any")).id, -1);
    QCOMPARE(job.key, m_scene.path(QStringLiteral("key")));
    QCOMPARE(job.exclude, QStringList(QStringLiteral("*.json")));
    QVERIFY(job.signing.has_value());
    QCOMPARE(job.signing->keystore, m_scene.path(QStringLiteral("store")));
    QCOMPARE(job.signing->alias, QStringLiteral("release"));
    QCOMPARE(job.signing->password, QStringLiteral("file:") + m_scene.path(QStringLiteral("pw.txt")));
    QCOMPARE(job.work, m_scene.path(QStringLiteral("w")));
    QCOMPARE(job.output, m_scene.path(QStringLiteral("o")));
    QCOMPARE(job.leave, QStringList(QStringLiteral("parts")));

    QCOMPARE(job.channels.size(), 1);
    const JobChannel& channel = job.channels.first();
    QCOMPARE(channel.folder, QStringLiteral("harbor"));
    QCOMPARE(channel.name, QStringLiteral("Harbor"));
    QCOMPARE(channel.number, QStringLiteral("101"));
    QCOMPARE(channel.package, QStringLiteral("com.g.h"));
    QCOMPARE(channel.mark, QStringLiteral("red"));
    QCOMPARE(channel.corner, 0);
    QCOMPARE(channel.x, std::optional<int>(3));
    QCOMPARE(channel.y, std::optional<int>(-4));
    QCOMPARE(channel.sdks, (QStringList{QStringLiteral("pay"), QStringLiteral("any")}));
    QCOMPARE(channel.files, m_scene.path(QStringLiteral("files")));
    QCOMPARE(channel.settings, (QJsonObject{{QStringLiteral("k"), 1}}));
    QVERIFY(channel.encrypt);
}

void tst_JobFile::leftOutIsTheUsual()
{
    const Job job = m_scene.read(R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}]})");
    QCOMPARE(m_scene.faults(), QStringList());
    QVERIFY(job.icon.isEmpty() && job.marks.isEmpty() && job.platforms.isEmpty() && job.sdks.isEmpty());
    QVERIFY(!job.signing && job.key.isEmpty() && job.exclude.isEmpty() && job.leave.isEmpty());
    QCOMPARE(job.work, m_scene.path(QStringLiteral("work")));
    QCOMPARE(job.output, m_scene.path(QStringLiteral("output")));
    const JobChannel& channel = job.channels.first();
    QCOMPARE(channel.name, QStringLiteral("a"));
    QCOMPARE(channel.corner, 3);
    QVERIFY(!channel.x && !channel.y && !channel.encrypt);
    QVERIFY(channel.mark.isEmpty() && channel.number.isEmpty() && channel.files.isEmpty());
    const Job withIcons = m_scene.read(JobScene::with(R"("icons": {"master": "icon.png"})"));
    QCOMPARE(withIcons.platforms, QVector<int>{0});
}

void tst_JobFile::channelStandsOverTheDefaults()
{
    const Job job = m_scene.read(R"({
        "game": "G", "base": "game.apk", "icons": {"master": "icon.png", "marks": "marks"},
        "sdks": {"pay": {"package": "pay.zip"}, "other": {"package": "pay.zip"}},
        "defaults": {"mark": "red", "sdks": ["pay"], "files": "files", "encrypt": true},
        "channels": [{"folder": "a"},
                     {"folder": "b", "mark": "None", "sdks": ["other"], "files": "marks", "encrypt": false}]})");
    QCOMPARE(m_scene.faults(), QStringList());
    const JobChannel& general = job.channels.first();
    QCOMPARE(general.mark, QStringLiteral("red"));
    QCOMPARE(general.sdks, QStringList(QStringLiteral("pay")));
    QCOMPARE(general.files, m_scene.path(QStringLiteral("files")));
    QVERIFY(general.encrypt);
    const JobChannel& own = job.channels.last();
    QCOMPARE(own.mark, QString());
    QCOMPARE(own.sdks, QStringList(QStringLiteral("other")));
    QCOMPARE(own.files, m_scene.path(QStringLiteral("marks")));
    QVERIFY(!own.encrypt);
}

void tst_JobFile::settingsAreLaidOverKeyByKey()
{
    const Job job = m_scene.read(R"({
        "game": "G", "base": "game.apk", "defaults": {"settings": {"//": "c", "a": 1, "b": {"deep": 1}}},
        "channels": [{"folder": "a", "settings": {"b": {"other": 2}, "c": null}}]})");
    QCOMPARE(m_scene.faults(), QStringList());
    const QJsonObject expected{{QStringLiteral("a"), 1},
                               {QStringLiteral("b"), QJsonObject{{QStringLiteral("other"), 2}}},
                               {QStringLiteral("c"), QJsonValue()}};
    QCOMPARE(job.channels.first().settings, expected);
}

void tst_JobFile::positionBelongsToItsCorner_data()
{
    QTest::addColumn<QByteArray>("members");
    QTest::addColumn<int>("corner");
    QTest::addColumn<QString>("position");
    const auto row = [](const char* members, int corner, const char* position) {
        QTest::newRow(members) << QByteArray(members) << corner << QString::fromLatin1(position);
    };
    row(R"("name": "A")", 2, "10 -20");
    row(R"("corner": "default")", 2, "10 -20");
    row(R"("x": 5)", 2, "5 -20");
    row(R"("x": null)", 2, "flush -20");
    row(R"("corner": "left-top")", 0, "flush flush");
    row(R"("corner": "left-top", "y": -1)", 0, "flush -1");
    row(R"("corner": "right-top")", 2, "flush flush");
}

void tst_JobFile::positionBelongsToItsCorner()
{
    QFETCH(QByteArray, members);
    QFETCH(int, corner);
    QFETCH(QString, position);
    const Job job = m_scene.read(
        R"({"game": "G", "base": "game.apk", "defaults": {"corner": "right-top", "x": 10, "y": -20},
                         "channels": [{"folder": "a", )"
        + members + "}]}");
    QCOMPARE(m_scene.faults(), QStringList());
    const JobChannel& channel = job.channels.first();
    const auto shown = [](const std::optional<int>& pixels) {
        return pixels ? QString::number(*pixels) : QStringLiteral("flush");
    };
    QCOMPARE(channel.corner, corner);
    QCOMPARE(shown(channel.x) + QLatin1Char(' ') + shown(channel.y), position);
}

void tst_JobFile::nullTakesADefaultAway()
{
    const Job job = m_scene.read(R"({
        "game": "G", "base": "game.apk", "icons": {"master": "icon.png", "marks": "marks"},
        "defaults": {"mark": "red", "files": "files"},
        "channels": [{"folder": "a", "name": null, "mark": null, "files": null}]})");
    QCOMPARE(m_scene.faults(), QStringList());
    QVERIFY(job.channels.first().mark.isEmpty() && job.channels.first().files.isEmpty());
    QCOMPARE(job.channels.first().name, QStringLiteral("a"));
}

void tst_JobFile::relativePathsBeginAtTheJob()
{
    m_scene.write(QStringLiteral("sub/job.json"),
                  R"({"game": "G", "base": "../game.apk", "channels": [{"folder": "a"}], "output": "../o"})");
    QVERIFY(QDir::setCurrent(m_scene.path(QStringLiteral("sub"))));
    QVector<JobFault> faults;
    const Job job = JobFile::read(QStringLiteral("job.json"), faults);
    QCOMPARE(faults.size(), 0);
    QCOMPARE(job.path, m_scene.path(QStringLiteral("sub/job.json")));
    QCOMPARE(job.base, m_scene.path(QStringLiteral("sub/../game.apk")));
    QCOMPARE(job.work, m_scene.path(QStringLiteral("sub/work")));
    QCOMPARE(job.output, m_scene.path(QStringLiteral("o")));
}

QTEST_GUILESS_MAIN(tst_JobFile)
#include "tst_jobfile.moc"
