// SPDX-License-Identifier: MIT
#include "build/job.h"
#include "quenzoprocess.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/resource.h>

namespace {

QStringList everythingIn(const QString& folder)
{
    QStringList paths;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths.append(QDir(folder).relativeFilePath(entries.next()));
    paths.sort();
    return paths;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// The command that writes a job to begin with.
class tst_JobInit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void writesAJobThatIsSound_data();
    void writesAJobThatIsSound();
    void commentsAreInTheLanguageOfThePerson();
    void sampleArrivesByteForByte();
    void sampleHasARecordForEachStore();
    void ownFilesAreNamedWhereTheyAre();
    void marksThatMakeNoChannelAreLeftOut();
    void filledFolderIsRefused_data();
    void filledFolderIsRefused();
    void wrongFilesAreNamedTogether();
    void failureLeavesNothing_data();
    void failureLeavesNothing();
    void nextInitTakesAwayWhatAKilledOneHasLeft_data();
    void nextInitTakesAwayWhatAKilledOneHasLeft();

private:
    QString path(const QString& relative) const { return m_folder->filePath(relative); }
    Ended run(const QStringList& arguments) const
    {
        return QuenzoProcess(QStringList{QStringLiteral("init")} + arguments, m_folder->path()).end();
    }
    Job jobOf(const QString& relative) const;
    void putMark(const QString& name) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_JobInit::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

// A sound job, or a failed test.
Job tst_JobInit::jobOf(const QString& relative) const
{
    QVector<JobFault> faults;
    Job job = JobFile::read(path(relative), faults);
    for (const JobFault& fault : qAsConst(faults))
        QTest::qFail(qPrintable(fault.place + QStringLiteral(": ") + fault.text), __FILE__, __LINE__);
    return job;
}

void tst_JobInit::putMark(const QString& name) const
{
    const QString icons = path(QStringLiteral("marks/%1/icon").arg(name));
    QVERIFY(QDir().mkpath(icons));
    for (const char* corner : {"left-top", "left-bottom", "right-top", "right-bottom"})
        QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/icons/marks/harbor/icon/left-top.png"),
                            QStringLiteral("%1/%2.png").arg(icons, QLatin1String(corner))));
}

void tst_JobInit::writesAJobThatIsSound_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("made");
    QTest::newRow("missing") << QStringLiteral("new") << QStringLiteral("new");
    QTest::newRow("deep") << QStringLiteral("a/b/c") << QStringLiteral("a/b/c");
    QTest::newRow("empty") << QStringLiteral("empty") << QStringLiteral("empty");
    QTest::newRow("the current one") << QStringLiteral(".") << QStringLiteral(".");
    QTest::newRow("with a colon") << QStringLiteral(":x") << QStringLiteral("./:x");
    QTest::newRow("named like code") << QStringLiteral("\"%1'") << QStringLiteral("\"%1'");
}

void tst_JobInit::writesAJobThatIsSound()
{
    QFETCH(QString, folder);
    QFETCH(QString, made);
    if (folder == QLatin1String("empty"))
        QVERIFY(QDir().mkdir(path(folder)));
    const Ended ended = run({folder});
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    const Job job = jobOf(made + QStringLiteral("/job.json"));
    QCOMPARE(job.game, QStringLiteral("Sky Harbour"));
    QCOMPARE(job.channels.size(), 6);
    QCOMPARE(job.platforms, (QVector<int>{0, 1}));
    for (const JobChannel& channel : job.channels)
        QCOMPARE(channel.sdks, QStringList(QStringLiteral("harbourpay")));
    QVERIFY(everythingIn(m_folder->path()).filter(QStringLiteral("quenzo-init")).isEmpty());
}

void tst_JobInit::commentsAreInTheLanguageOfThePerson()
{
    QuenzoProcess program({QStringLiteral("init"), QStringLiteral("new")}, m_folder->path());
    program.setVariable("LC_ALL", QStringLiteral("zh_CN.UTF-8"));
    QCOMPARE(program.end().code, 0);
    QVERIFY(contentOf(path(QStringLiteral("new/job.json"))).contains("任务"));
    QCOMPARE(jobOf(QStringLiteral("new/job.json")).channels.size(), 6);
}

void tst_JobInit::sampleArrivesByteForByte()
{
    QCOMPARE(run({QStringLiteral("new")}).code, 0);
    QCOMPARE(everythingIn(path(QStringLiteral("new/marks"))),
             everythingIn(QStringLiteral(SAMPLE "/icons/marks")));
    for (const QString& name : everythingIn(QStringLiteral(SAMPLE "/icons/marks")))
        QCOMPARE(contentOf(path(QStringLiteral("new/marks/") + name)),
                 contentOf(QStringLiteral(SAMPLE "/icons/marks/") + name));
    for (const char* name : {"skyharbour.apk", "packages/harbourpay.zip"})
        QCOMPARE(contentOf(path(QStringLiteral("new/") + QLatin1String(name))),
                 contentOf(QStringLiteral(SAMPLE "/") + QLatin1String(name)));
    QCOMPARE(contentOf(path(QStringLiteral("new/icon.png"))),
             contentOf(QStringLiteral(SAMPLE "/icons/icon.png")));
}

// Under its name, and the job's channels are those of the sample's icons.
void tst_JobInit::sampleHasARecordForEachStore()
{
    QMap<int, QString> records;
    for (const QJsonValue& record : QJsonDocument::fromJson(contentOf(QStringLiteral(RECORDS)))
                                        .object()
                                        .value(QStringLiteral("channels"))
                                        .toArray())
        records.insert(record.toObject().value(QStringLiteral("id")).toInt(),
                       record.toObject().value(QStringLiteral("name")).toString());
    const QJsonArray icons =
        QJsonDocument::fromJson(contentOf(QStringLiteral(SAMPLE "/icons/channels.json"))).array();
    QJsonArray channels = QJsonDocument::fromJson(contentOf(QStringLiteral(SAMPLE "/channels.json"))).array();
    for (int i = 0; i < channels.size(); ++i) {
        QJsonObject channel = channels.at(i).toObject();
        const QJsonValue number = channel.take(QStringLiteral("number"));
        if (channel.contains(QStringLiteral("mark")))
            QCOMPARE(records.take(number.toInt()), channel.value(QStringLiteral("name")).toString());
        else
            QVERIFY(number.isUndefined());
        channels.replace(i, channel);
    }
    QCOMPARE(channels, icons);
    QVERIFY(records.isEmpty());
}

void tst_JobInit::ownFilesAreNamedWhereTheyAre()
{
    putMark(QStringLiteral("shop"));
    putMark(QStringLiteral("云帆"));
    const QString game = QStringLiteral("my \"game\".apk");
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/skyharbour.apk"), path(game)));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/icons/icon.png"), path(QStringLiteral("own.png"))));
    const Ended ended = run({QStringLiteral("new"), QStringLiteral("--base"), game, QStringLiteral("--icon"),
                             QStringLiteral("own.png"), QStringLiteral("--marks"), QStringLiteral("marks")});
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(everythingIn(path(QStringLiteral("new"))), QStringList(QStringLiteral("job.json")));
    const Job job = jobOf(QStringLiteral("new/job.json"));
    QCOMPARE(job.game, QStringLiteral("my \"game\""));
    QCOMPARE(QDir::cleanPath(job.base), path(game));
    QCOMPARE(QDir::cleanPath(job.icon), path(QStringLiteral("own.png")));
    QVERIFY(job.sdks.isEmpty());
    QStringList channels;
    for (const JobChannel& channel : job.channels)
        channels.append(channel.folder + QLatin1Char(':') + channel.mark);
    QCOMPARE(
        channels,
        (QStringList{QStringLiteral("official:"), QStringLiteral("shop:shop"), QStringLiteral("云帆:云帆")}));
}

void tst_JobInit::marksThatMakeNoChannelAreLeftOut()
{
    for (const char* name : {"good", "Official", "slices", "TWIN", "twin", "half"})
        putMark(QLatin1String(name));
    QVERIFY(QFile::remove(path(QStringLiteral("marks/half/icon/right-top.png"))));
    QCOMPARE(run({QStringLiteral("new"), QStringLiteral("--marks"), QStringLiteral("marks")}).code, 0);
    QStringList channels;
    for (const JobChannel& channel : jobOf(QStringLiteral("new/job.json")).channels)
        channels.append(channel.folder.toLower());
    QCOMPARE(channels,
             (QStringList{QStringLiteral("official"), QStringLiteral("twin"), QStringLiteral("good")}));
}

void tst_JobInit::filledFolderIsRefused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("filled") << QStringLiteral("filled") << QByteArray("/filled is not empty");
    QTest::newRow("hidden file") << QStringLiteral("hidden") << QByteArray("/hidden is not empty");
    QTest::newRow("file") << QStringLiteral("filled/file") << QByteArray("/filled/file is not a folder");
    QTest::newRow("by a link") << QStringLiteral("link") << QByteArray("/filled is not empty");
}

void tst_JobInit::filledFolderIsRefused()
{
    QFETCH(QString, folder);
    QFETCH(QByteArray, error);
    for (const char* name : {"filled/file", "hidden/.file"}) {
        QVERIFY(QDir().mkpath(QFileInfo(path(QLatin1String(name))).path()));
        QFile file(path(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QFile::link(path(QStringLiteral("filled")), path(QStringLiteral("link"))));
    const QStringList before = everythingIn(m_folder->path());
    const Ended ended = run({folder, QStringLiteral("--json")});
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("refused"));
    QVERIFY2(ended.failure().value(QStringLiteral("message")).toString().toUtf8().endsWith(error),
             ended.output.constData());
    QCOMPARE(everythingIn(m_folder->path()), before);
}

void tst_JobInit::wrongFilesAreNamedTogether()
{
    const Ended ended =
        run({QStringLiteral("new"), QStringLiteral("--base"), QStringLiteral(SAMPLE "/icons/icon.png"),
             QStringLiteral("--icon"), QStringLiteral(SAMPLE "/skyharbour.apk"), QStringLiteral("--marks"),
             QStringLiteral("absent")});
    QCOMPARE(ended.code, 1);
    for (const char* part :
         {"--base names " SAMPLE "/icons/icon.png, which is no APK",
          "--icon names " SAMPLE "/skyharbour.apk, which is no picture", "/absent, which does not exist"})
        QVERIFY2(ended.error.contains(part), ended.error.constData());
    QCOMPARE(everythingIn(m_folder->path()), QStringList());
}

void tst_JobInit::failureLeavesNothing_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing folder") << QStringLiteral("new");
    QTest::newRow("deep folder") << QStringLiteral("empty/a/b/new");
    QTest::newRow("empty folder") << QStringLiteral("empty");
}

void tst_JobInit::failureLeavesNothing()
{
    QFETCH(QString, folder);
    QVERIFY(QDir().mkdir(path(QStringLiteral("empty"))));
    const QStringList before = everythingIn(m_folder->path());
    QuenzoProcess program({QStringLiteral("init"), folder}, m_folder->path());
    program.before = [] {
        const rlimit small{100000, 100000}; // the icon is larger
        setrlimit(RLIMIT_FSIZE, &small);
    };
    const Ended ended = program.end();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("icon.png cannot be written: "), ended.error.constData());
    QCOMPARE(everythingIn(m_folder->path()), before);
}

void tst_JobInit::nextInitTakesAwayWhatAKilledOneHasLeft_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing folder") << QStringLiteral("new");
    QTest::newRow("empty folder") << QStringLiteral("empty");
}

void tst_JobInit::nextInitTakesAwayWhatAKilledOneHasLeft()
{
    QFETCH(const QString, folder);
    QVERIFY(QDir().mkdir(path(QStringLiteral("empty"))));
    QuenzoProcess program({QStringLiteral("init"), folder}, m_folder->path());
    const QTemporaryDir moment;
    program.setVariable("LD_PRELOAD", QStringLiteral(MOMENT));
    // The address sanitizer would refuse to come second.
    program.setVariable("ASAN_OPTIONS",
                        qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
    program.setVariable("QUENZO_MOMENT", QStringLiteral("\"game\": \"Sky Harbour\""));
    program.setVariable("QUENZO_MOMENT_FOLDER", moment.path());
    program.start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(moment.filePath(QStringLiteral("reached"))), 30000);
    program.kill();
    QVERIFY(program.waitForFinished());
    const auto left = [this] {
        return everythingIn(m_folder->path()).filter(QStringLiteral(".quenzo-init-"));
    };
    QVERIFY(!left().isEmpty());
    const Ended ended = run({folder});
    QVERIFY2(ended.code == 0, ended.error.constData());
    QCOMPARE(left(), QStringList());
    jobOf(folder + QStringLiteral("/job.json"));
}

QTEST_GUILESS_MAIN(tst_JobInit)
#include "tst_jobinit.moc"
