// SPDX-License-Identifier: MIT
#include "faultycalls.h"
#include "iconpictures.h"
#include "iconrun.h"
#include "messagelog.h"
#include "treefiles.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QThreadPool>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <functional>
#include <memory>
#include <sys/resource.h>

using namespace IconPictures;
using namespace IconRun;

Q_DECLARE_METATYPE(std::function<void(Job&)>)

// The world broken on purpose: what stays whole, and what is told of the causes.
class tst_IconFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup();

    void killedRunLeavesWholeFiles_data();
    void killedRunLeavesWholeFiles();
    void filesAreMadeWhereNoneIsUnnamed();
    void runEndsUntouchedWhereThreadsAreRefused_data();
    void runEndsUntouchedWhereThreadsAreRefused();
    void causesAreToldToWhoAsks_data();
    void causesAreToldToWhoAsks();
    void causesAreKeptFromWhoDoesNotAsk();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_IconFaults::cleanup()
{
    FaultyCalls::heal();
    QLoggingCategory::setFilterRules({});
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

// Run in a process of its own, which the system kills as soon as it writes beyond the limit.
static int dieInTheLargestFile(const char* folder)
{
    const rlimit small{70000, 70000};
    std::signal(SIGXFSZ, SIG_DFL);
    const rlimit noCore{0, 0};
    if (setrlimit(RLIMIT_FSIZE, &small) != 0 || setrlimit(RLIMIT_CORE, &noCore) != 0)
        return 1;
    const QString root = QFile::decodeName(folder);
    ThreadGenerateIcon thread;
    thread.setGameInfo(root + QStringLiteral("/game.png"), 3, 0, 0, android);
    thread.setInfo(root, {channel("None", "a")});
    thread.setOutputDir(root + QStringLiteral("/out/"));
    thread.setClearDirFirst(false);
    thread.start();
    thread.wait();
    return 0;
}

void tst_IconFaults::killedRunLeavesWholeFiles_data()
{
    QTest::addColumn<bool>("replacing");
    QTest::newRow("new file") << false;
    QTest::newRow("file that was there") << true;
}

void tst_IconFaults::killedRunLeavesWholeFiles()
{
    QFETCH(const bool, replacing);
    Job job;
    const QString icon = job.out(QStringLiteral("a/icon512x512.png"));
    if (replacing)
        job.write(icon, "old");
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--die"), job.path({})});
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QCOMPARE(child.exitCode(), SIGXFSZ);
    QCOMPARE(QFileInfo::exists(icon), replacing);
    if (replacing)
        QCOMPARE(TreeFiles::read(QFile::encodeName(icon)), QByteArray("old"));
}

void tst_IconFaults::filesAreMadeWhereNoneIsUnnamed()
{
    Job job;
    FaultyCalls::failFromNth(FaultyCalls::OpeningUnnamed, 1, EOPNOTSUPP);
    job.run({channel("None", "a")});
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

void tst_IconFaults::runEndsUntouchedWhereThreadsAreRefused_data()
{
    QTest::addColumn<int>("given");
    for (int given = 0; given < QThreadPool::globalInstance()->maxThreadCount(); ++given)
        QTest::addRow("%d besides its own", given) << given;
}

void tst_IconFaults::runEndsUntouchedWhereThreadsAreRefused()
{
    QFETCH(const int, given);
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.icons.warning=true"));
    Job job;
    job.writePicture(job.icon, photograph(800, 800));
    job.write(job.out(QStringLiteral("kept")), "kept");
    FaultyCalls::failFromNth(FaultyCalls::StartingThread, given + 2, EAGAIN);
    job.run({channel("None", "a")});
    FaultyCalls::heal();
    QCOMPARE(m_log->takeWarnings(),
             QStringList(QStringLiteral("no icon is made: the system gives no threads for it")));
    QCOMPARE(job.filesIn({}), QStringList(QStringLiteral("kept")));
    job.run({channel("None", "a")});
    QCOMPARE(job.filesIn(QStringLiteral("a")), namesOf(android));
}

void tst_IconFaults::causesAreToldToWhoAsks_data()
{
    using Prepare = std::function<void(Job&)>;
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<bool>("clears");
    QTest::addColumn<QString>("told");
    const auto row = [](const char* title, const Prepare& prepare, const char* told, bool clears = false) {
        QTest::newRow(title) << prepare << clears << QString::fromUtf8(told);
    };
    const auto leftTop = [](const Job& job) {
        return job.markPath(QStringLiteral("red"), QStringLiteral("left-top"));
    };
    row(
        "icon that is no picture", [](Job& job) { job.write(job.icon, "no picture"); },
        "the icon %1/game.png cannot be loaded: Unsupported image format");
    row(
        "icon that is no file",
        [](Job& job) {
            QFile::remove(job.icon);
            makePipe(job.icon);
        },
        "the icon %1/game.png cannot be loaded: it is no regular file");
    row(
        "missing mark", [=](Job& job) { QFile::remove(leftTop(job)); },
        "the mark %1/marks/red/icon/left-top.png cannot be loaded: File not found");
    row(
        "mark that is no picture", [=](Job& job) { job.write(leftTop(job), "no picture"); },
        "the mark %1/marks/red/icon/left-top.png cannot be loaded: Unsupported image format");
    row(
        "folder in the way of a file",
        [](Job& job) { QDir().mkpath(job.out(QStringLiteral("a/icon72x72.png"))); },
        "%1/out/a/icon72x72.png was not written: What is there is no regular file");
    row(
        "file in the way of a folder", [](Job& job) { job.write(job.out(QStringLiteral("a")), "file"); },
        "the folder %1/out/a/ could not be made: File exists");
    row(
        "file that the system does not give",
        [](Job&) { FaultyCalls::failFromNth(FaultyCalls::OpeningUnnamed, 1, ENOSPC); },
        "%1/out/a/icon512x512.png was not written: No space left on device");
    row(
        "folder that cannot be cleared",
        [](Job& job) {
            job.write(job.out(QStringLiteral("old")), "old");
            FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EACCES);
        },
        "the folder %1/out/ could not be cleared", true);
}

void tst_IconFaults::causesAreToldToWhoAsks()
{
    QFETCH(const std::function<void(Job&)>, prepare);
    QFETCH(const bool, clears);
    QFETCH(const QString, told);
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.icons.warning=true"));
    Job job;
    job.thread.setClearDirFirst(clears);
    prepare(job);
    job.run({channel("red", "a")});
    const QStringList warnings = m_log->takeWarnings();
    QVERIFY2(warnings.contains(told.arg(QFileInfo(job.icon).path())),
             qPrintable(warnings.join(QLatin1Char('\n'))));
}

void tst_IconFaults::causesAreKeptFromWhoDoesNotAsk()
{
    Job job;
    job.write(job.out(QStringLiteral("b")), "file");
    job.thread.setClearDirFirst(false);
    job.run({channel("absent", "a"), channel("None", "b")});
    QCOMPARE(m_log->take().size(), 0);
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--die") == 0)
        return dieInTheLargestFile(argv[2]);
    tst_IconFaults test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_iconfaults.moc"
