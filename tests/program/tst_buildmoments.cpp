// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>
#include <sys/mount.h>

// A world that breaks at a certain moment of a run.
class tst_BuildMoments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void diskThatFillsUpInAStepFailsItsChannel_data();
    void diskThatFillsUpInAStepFailsItsChannel();
    void recordsLockedForAMomentAreWhole();
    void recordsLockedToTheEndAreTold();
    void baseExchangedWhileItIsDecodedMakesNoPackage();
    void interruptedPreparationEndsBeforeTheChannels_data();
    void interruptedPreparationEndsBeforeTheChannels();
    void outputThatIsNotOnTheDiskHasNoEnd();
    void iconsThatAreNotOnTheDiskMakeNoPackage();
    void diskIsWaitedForTwiceWhateverTheChannels();

private:
    static QString step(const char* name);
    static QString stage(const char* name);
    bool hasApktool() const { return !QStandardPaths::findExecutable(QStringLiteral("apktool")).isEmpty(); }
    void change(int number, const char* key, const QJsonValue& value) const;
    void rename() const { change(1, "package", QStringLiteral("com.quenzo.renamed")); }
    std::unique_ptr<QuenzoProcess> prepared(const QString& moment) const;
    bool isReached() const { return QFileInfo::exists(m_scene->path(QStringLiteral("reached"))); }
    bool goOn() const { return m_scene->write(QStringLiteral("passed"), {}); }
    QMap<QString, QByteArray> undisturbed() const;
    QString recordedOutcome() const;
    std::unique_ptr<BuildScene> m_scene;
};

namespace {

constexpr int timeLimitMs = 60000;

// Leaves no byte of a file system.
bool fill(const QString& folder)
{
    QFile file(folder + QStringLiteral("/filling"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray block(65536, 'x');
    int size = block.size();
    while (size > 0) {
        if (file.write(block.constData(), size) < size)
            size /= 2;
    }
    return true;
}

// Another program that has the records file for itself, until it is destroyed.
class RecordsHolder {
public:
    explicit RecordsHolder(const QString& file)
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        other.setDatabaseName(file);
        QSqlQuery query(other.open() ? other : QSqlDatabase());
        if (!query.exec(QStringLiteral("BEGIN EXCLUSIVE")))
            m_fault = query.lastError().text();
    }
    ~RecordsHolder()
    {
        QSqlDatabase::database(m_name).rollback();
        QSqlDatabase::removeDatabase(m_name);
    }
    RecordsHolder(const RecordsHolder&) = delete;
    RecordsHolder& operator=(const RecordsHolder&) = delete;

    const QString& fault() const { return m_fault; }

private:
    const QString m_name = QStringLiteral("other");
    QString m_fault;
};

} // namespace

void tst_BuildMoments::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

// What a run tells as the second channel begins a step.
QString tst_BuildMoments::step(const char* name)
{
    return QStringLiteral(R"({"channel":{"folder":"harbor","step":"%1"}})").arg(QLatin1String(name));
}

QString tst_BuildMoments::stage(const char* name)
{
    return QStringLiteral(R"("doing":"%1")").arg(QLatin1String(name));
}

void tst_BuildMoments::change(int number, const char* key, const QJsonValue& value) const
{
    QJsonObject channel = m_scene->channel(number);
    channel.insert(QLatin1String(key), value);
    m_scene->setChannel(number, channel);
}

// A process that waits at a moment.
std::unique_ptr<QuenzoProcess> tst_BuildMoments::prepared(const QString& moment) const
{
    auto process = m_scene->process("--json --progress=json");
    process->setVariable("LD_PRELOAD", QStringLiteral(MOMENT));
    // The address sanitizer would refuse to come second.
    process->setVariable("ASAN_OPTIONS",
                         qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
    process->setVariable("QUENZO_MOMENT", moment);
    process->setVariable("QUENZO_MOMENT_FOLDER", m_scene->path({}));
    return process;
}

// What a run makes of the same job in a sound world; its output and what was in the making are gone.
QMap<QString, QByteArray> tst_BuildMoments::undisturbed() const
{
    const Ended ended = m_scene->run();
    if (ended.code != 0)
        QTest::qFail(ended.error.constData(), __FILE__, __LINE__);
    const auto finished = m_scene->finished();
    for (const QString& folder : {QStringLiteral("output"), QStringLiteral("work")})
        QDir(m_scene->path(folder)).removeRecursively();
    return finished;
}

// Of the last run.
QString tst_BuildMoments::recordedOutcome() const
{
    const Ended builds =
        QuenzoProcess(QuenzoProcess::words("builds job.json --json"), m_scene->path({})).end();
    const QJsonArray runs = builds.result().value(QStringLiteral("builds")).toArray();
    return runs.first().toObject().value(QStringLiteral("outcome")).toString();
}

void tst_BuildMoments::diskThatFillsUpInAStepFailsItsChannel_data()
{
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("small");
    for (const char* const name : {"manifest", "encrypt", "sign", "export"})
        QTest::newRow(name) << step(name) << QStringLiteral("work");
    QTest::newRow("output") << step("output") << QStringLiteral("output");
    QTest::newRow("report") << stage("writing the report") << QStringLiteral("output");
}

void tst_BuildMoments::diskThatFillsUpInAStepFailsItsChannel()
{
    QFETCH(const QString, moment);
    QFETCH(const QString, small);
    const bool isReport = moment == stage("writing the report");
    if (moment == step("manifest") && !hasApktool())
        QSKIP("apktool is not installed (group android)");
    if (moment == step("manifest"))
        rename();
    if (moment == step("encrypt"))
        change(1, "encrypt", true);
    if (moment == step("export"))
        change(1, "number", 101);
    if (moment == step("sign"))
        QVERIFY(m_scene->signAtGate() && m_scene->openGate());
    const auto before = undisturbed();
    const QString folder = m_scene->path(small);
    QVERIFY(QDir().mkdir(folder));
    const QByteArray disk = QFile::encodeName(folder);
    if (mount("none", disk.constData(), "tmpfs", 0, "size=64m") != 0)
        QSKIP("only root can mount a small file system");
    const auto leave = qScopeGuard([&disk] { umount2(disk.constData(), MNT_DETACH); });
    const auto process = prepared(moment);
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(isReached(), timeLimitMs);
    QVERIFY(fill(folder));
    QVERIFY(goOn());
    const Ended ended = process->end();
    const QByteArray said = ended.error + ended.output;
    QVERIFY2(ended.code == 1, said.constData());
    QVERIFY2(said.contains("No space left on device") || said.contains("disk is full"), said.constData());
    QCOMPARE(BuildScene::outcomes(ended).value(QStringLiteral("plain")), QStringLiteral("built"));
    QCOMPARE(BuildScene::outcomes(ended).value(QStringLiteral("harbor")),
             isReport ? QStringLiteral("built") : QStringLiteral("failed"));
    QCOMPARE(QFileInfo::exists(m_scene->path(QStringLiteral("output/harbor"))), isReport);
    const auto left = m_scene->finished();
    for (auto file = left.cbegin(); file != left.cend(); ++file)
        QVERIFY2(before.value(file.key()) == file.value() || file.key() == QLatin1String("filling"),
                 qPrintable(file.key()));
    QVERIFY(QFile::remove(folder + QStringLiteral("/filling")));
    const Ended again = m_scene->run();
    QVERIFY2(again.code == 0, again.error.constData());
    QVERIFY(m_scene->finished() == before);
}

void tst_BuildMoments::recordsLockedForAMomentAreWhole()
{
    const auto process = prepared(step("package"));
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(isReached(), timeLimitMs);
    {
        const RecordsHolder holder(m_scene->path(QStringLiteral("output/records.db")));
        QVERIFY2(holder.fault().isEmpty(), qPrintable(holder.fault()));
        QVERIFY(goOn());
        QTRY_VERIFY_WITH_TIMEOUT(m_scene->finished().contains(QStringLiteral("meadow/meadow.apk")),
                                 timeLimitMs);
    }
    const Ended ended = process->end();
    QVERIFY2(ended.code == 0, ended.error.constData());
    const Ended builds =
        QuenzoProcess(QuenzoProcess::words("builds job.json --build 1 --json"), m_scene->path({})).end();
    const QJsonArray channels =
        builds.result().value(QStringLiteral("build")).toObject().value(QStringLiteral("channels")).toArray();
    QCOMPARE(channels.size(), 3);
    for (const QJsonValue& channel : channels) {
        QCOMPARE(channel.toObject().value(QStringLiteral("outcome")).toString(), QStringLiteral("built"));
        QCOMPARE(channel.toObject().value(QStringLiteral("steps")).toArray().size(), 5);
    }
}

// The packages are true, and what is known of them is in the report; the next run is not deceived.
void tst_BuildMoments::recordsLockedToTheEndAreTold()
{
    const auto before = undisturbed();
    const auto process = prepared(step("package"));
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(isReached(), timeLimitMs);
    {
        const RecordsHolder holder(m_scene->path(QStringLiteral("output/records.db")));
        QVERIFY2(holder.fault().isEmpty(), qPrintable(holder.fault()));
        QVERIFY(goOn());
        const Ended ended = process->end();
        QVERIFY2(ended.code == 1, QByteArray(ended.error + ended.output).constData());
        const QString message = ended.failure().value(QStringLiteral("message")).toString();
        QVERIFY2(message.contains(QStringLiteral("output/records.db' are not complete: "))
                     && message.contains(QStringLiteral("database is locked")),
                 qPrintable(message));
        QCOMPARE(BuildScene::outcomes(ended).keys(QStringLiteral("built")).size(), 3);
        QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("output/report.json"))));
    }
    QVERIFY(m_scene->finished() == before);
    QCOMPARE(recordedOutcome(), QStringLiteral("running or killed"));
    const Ended again = m_scene->run("--json");
    QVERIFY2(again.code == 0, again.error.constData());
    QVERIFY(m_scene->finished() == before);
}

void tst_BuildMoments::baseExchangedWhileItIsDecodedMakesNoPackage()
{
    if (!hasApktool())
        QSKIP("apktool is not installed (group android)");
    rename();
    const auto process = prepared(stage("decoding the base"));
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(isReached(), timeLimitMs);
    const QString base = m_scene->path(QStringLiteral("base.apk"));
    QVERIFY(QFile::rename(base, m_scene->path(QStringLiteral("first.apk"))));
    QVERIFY(QFile::copy(m_scene->path(QStringLiteral("first.apk")), base));
    QVERIFY(goOn());
    const Ended ended = process->end();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("base.apk changed "), ended.error.constData());
    QCOMPARE(m_scene->finished(), (QMap<QString, QByteArray>()));
}

void tst_BuildMoments::interruptedPreparationEndsBeforeTheChannels_data()
{
    QTest::addColumn<QString>("moment");
    for (const char* const name : {"importing SDKs", "decoding the base", "drawing icons"})
        QTest::newRow(name) << stage(name);
}

void tst_BuildMoments::interruptedPreparationEndsBeforeTheChannels()
{
    QFETCH(const QString, moment);
    const auto process = prepared(moment);
    process->start();
    QTRY_VERIFY_WITH_TIMEOUT(isReached(), timeLimitMs);
    QCOMPARE(::kill(pid_t(process->processId()), SIGINT), 0);
    QVERIFY(goOn());
    const Ended ended = process->end();
    QCOMPARE(ended.code, -SIGINT);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    QVERIFY2(!ended.error.contains("\"step\""), ended.error.constData());
    QCOMPARE(m_scene->finished(), (QMap<QString, QByteArray>()));
    QCOMPARE(recordedOutcome(), QStringLiteral("interrupted"));
    QCOMPARE(m_scene->run().code, 0);
}

// What may not be on the disk counts only behind a look at all of it.
void tst_BuildMoments::outputThatIsNotOnTheDiskHasNoEnd()
{
    QVERIFY(goOn()); // not to be waited for
    const auto process = prepared(stage("writing the report"));
    process->setVariable("QUENZO_FLUSH_FAILS", QStringLiteral("1"));
    const Ended ended = process->end();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("cannot be brought to the disk: Input/output error"),
             ended.error.constData());
    QCOMPARE(recordedOutcome(), QStringLiteral("running or killed"));
    const Ended again = m_scene->run("--json");
    QVERIFY2(again.code == 0, again.error.constData());
    QCOMPARE(BuildScene::outcomes(again).value(QStringLiteral("harbor")), QStringLiteral("unchanged"));
}

void tst_BuildMoments::iconsThatAreNotOnTheDiskMakeNoPackage()
{
    QVERIFY(goOn()); // not to be waited for
    const auto process = prepared(stage("drawing icons"));
    process->setVariable("QUENZO_FLUSH_FAILS", QStringLiteral("1"));
    const Ended ended = process->end();
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::reportOf(ended, QStringLiteral("plain")).value(QStringLiteral("message")).toString(),
             QStringLiteral("the icons cannot be brought to the disk: Input/output error"));
    QCOMPARE(m_scene->finished(), (QMap<QString, QByteArray>()));
    QCOMPARE(m_scene->run().code, 0);
}

// For the icons of all channels, and for everything: the packages are large, and a disk has other work.
void tst_BuildMoments::diskIsWaitedForTwiceWhateverTheChannels()
{
    change(1, "number", 101);
    const auto process = prepared(stage("nothing of the kind"));
    process->setVariable("QUENZO_FLUSHES", m_scene->path(QStringLiteral("flushes")));
    const Ended ended = process->end();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QCOMPARE(m_scene->read(QStringLiteral("flushes")), QByteArray("ff"));
    QVERIFY(m_scene->finished().contains(QStringLiteral("harbor/develop/channel_101.json")));
}

QTEST_GUILESS_MAIN(tst_BuildMoments)
#include "tst_buildmoments.moc"
