// SPDX-License-Identifier: MIT
#include "faultycalls.h"
#include "iconpictures.h"
#include "iconrun.h"
#include "messagelog.h"
#include "treefiles.h"

#include <QProcess>
#include <QThreadPool>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <memory>

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
    void fileThatIsBeingWrittenStandsBeforeAFolderOfItsName();
    void failedCallsLeaveWholeFiles_data();
    void failedCallsLeaveWholeFiles();
    void runEndsUntouchedWhereThreadsAreRefused_data();
    void runEndsUntouchedWhereThreadsAreRefused();
    void smallIconNeedsNoFurtherThreads();
    void threadsOfARunTakeNoSignals();
    void fileWhoseRightsCannotBeGivenIsOverwritten_data();
    void fileWhoseRightsCannotBeGivenIsOverwritten();
    void causesAreToldToWhoAsks_data();
    void causesAreToldToWhoAsks();
    void causesAreKeptFromWhoDoesNotAsk();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_IconFaults::cleanup()
{
    FaultyCalls::heal();
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

// Run in a process of its own, which dies when half of a file's content is written.
static int dieInTheMidstOfAFile(const char* folder, bool unnamedFiles)
{
    FaultyCalls::allowUnnamedFiles(unnamedFiles);
    FaultyCalls::actBeforeNth(FaultyCalls::Writing, 2, [] { std::raise(SIGKILL); });
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
    QTest::addColumn<bool>("unnamedFiles");
    QTest::newRow("new file") << false << true;
    QTest::newRow("file that was there") << true << true;
    QTest::newRow("new file, named while it is written") << false << false;
    QTest::newRow("file that was there, named while it is written") << true << false;
}

void tst_IconFaults::killedRunLeavesWholeFiles()
{
    QFETCH(const bool, replacing);
    QFETCH(const bool, unnamedFiles);
    Job job;
    for (const QString& name : replacing ? namesOf(android) : QStringList())
        job.write(job.out(QStringLiteral("a/") + name), "old");
    QProcess child;
    const QString way = unnamedFiles ? QStringLiteral("--die") : QStringLiteral("--die-named");
    child.start(QCoreApplication::applicationFilePath(), {way, job.path({})});
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QCOMPARE(child.exitCode(), SIGKILL);
    QStringList left;
    qint64 written = 0;
    for (const QString& name : job.filesIn(QStringLiteral("a"))) {
        const QByteArray content = TreeFiles::read(QFile::encodeName(job.out(QStringLiteral("a/") + name)));
        if (name.contains(QLatin1String(".part"))) {
            written += content.size();
            continue;
        }
        QCOMPARE(content, QByteArray("old"));
        left.append(name);
    }
    QCOMPARE(left, replacing ? namesOf(android) : QStringList());
    QVERIFY2(unnamedFiles == (written == 0), "it did not die in the midst of a file");
}

void tst_IconFaults::filesAreMadeWhereNoneIsUnnamed()
{
    Job job;
    FaultyCalls::failFromNth(FaultyCalls::OpeningUnnamed, 1, EOPNOTSUPP);
    job.run({channel("None", "a")});
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

// Whichever file is the last one to be opened is held up until its folder has had its time.
void tst_IconFaults::fileThatIsBeingWrittenStandsBeforeAFolderOfItsName()
{
    Job job;
    QList<ST_CHANNEL_ICON> channels{channel("None", "")};
    for (const QString& name : namesOf(android))
        channels.append(channel("None", qPrintable(name)));
    bool folderCameFirst = false;
    FaultyCalls::actBeforeNth(FaultyCalls::OpeningUnnamed, namesOf(android).size(), [&] {
        const QDir out(job.out());
        for (int i = 0; i < 30 && !folderCameFirst; ++i) {
            QThread::msleep(10);
            folderCameFirst = !out.isEmpty(QDir::Dirs | QDir::NoDotAndDotDot);
        }
    });
    job.run(channels);
    QVERIFY(FaultyCalls::wasHit());
    QVERIFY(!folderCameFirst);
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(), android), QString());
}

void tst_IconFaults::failedCallsLeaveWholeFiles_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("replacing");
    using namespace FaultyCalls;
    const auto rows = [](const char* what, Call call, std::initializer_list<int> errors) {
        for (const int error : errors) {
            QTest::addRow("%s, %s, new files", what, std::strerror(error)) << int(call) << error << false;
            QTest::addRow("%s, %s, files that are there", what, std::strerror(error))
                << int(call) << error << true;
        }
    };
    rows("opening", Opening, {EACCES, EMFILE});
    rows("opening an unnamed file", OpeningUnnamed, {EOPNOTSUPP, EISDIR, EINVAL, ENOSPC});
    rows("writing", Writing, {EIO, ENOSPC});
    rows("naming", Linking, {EPERM, ENOENT, EEXIST, EIO});
    rows("giving rights", ChangingMode, {EIO});
    rows("renaming", Renaming, {EACCES, EPERM, EIO});
}

// One call fails, or every one.
void tst_IconFaults::failedCallsLeaveWholeFiles()
{
    QFETCH(const int, call);
    QFETCH(const int, error);
    QFETCH(const bool, replacing);
    const auto contents = [](const Job& job) {
        QMap<QString, QByteArray> files;
        for (const QString& name : job.filesIn(QStringLiteral("a")))
            files.insert(name, TreeFiles::read(QFile::encodeName(job.out(QStringLiteral("a/") + name))));
        return files;
    };
    const QImage picture = photograph(40, 40);
    Job undisturbed;
    undisturbed.writePicture(undisturbed.icon, picture);
    undisturbed.run({channel("None", "a")});
    const QMap<QString, QByteArray> whole = contents(undisturbed);
    for (const bool lasting : {false, true}) {
        Job job;
        job.writePicture(job.icon, picture);
        for (const QString& name : replacing ? namesOf(android) : QStringList())
            job.write(job.out(QStringLiteral("a/") + name), "old");
        job.thread.setClearDirFirst(false);
        if (lasting && error != EEXIST)
            FaultyCalls::failFromNth(static_cast<FaultyCalls::Call>(call), 1, error);
        else
            FaultyCalls::failNth(static_cast<FaultyCalls::Call>(call), 2, error);
        job.run({channel("None", "a")});
        FaultyCalls::heal();
        const QMap<QString, QByteArray> made = contents(job);
        for (auto file = made.cbegin(); file != made.cend(); ++file)
            QVERIFY2(file.value() == whole.value(file.key()) || (replacing && file.value() == "old"),
                     qPrintable(file.key()));
        QVERIFY(lasting || made.size() >= whole.size() - 1);
    }
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
    const CategoryOn icons("quenzo.icons");
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

void tst_IconFaults::smallIconNeedsNoFurtherThreads()
{
    QThreadPool* const pool = QThreadPool::globalInstance();
    const int before = pool->maxThreadCount();
    pool->setMaxThreadCount(300);
    Job job;
    job.writePicture(job.icon, photograph(120, 120));
    FaultyCalls::startCounting();
    job.run({channel("None", "a")}, ios);
    const int started = FaultyCalls::count(FaultyCalls::StartingThread);
    FaultyCalls::failFromNth(FaultyCalls::StartingThread, 2, EAGAIN);
    job.run({channel("None", "b")}, ios);
    FaultyCalls::heal();
    pool->setMaxThreadCount(before);
    QVERIFY2(started <= 1 + QThread::idealThreadCount(), qPrintable(QString::number(started)));
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("b")), ios), QString());
}

void tst_IconFaults::threadsOfARunTakeNoSignals()
{
    Job job;
    sigset_t signalsOfThread{};
    // A thread begins with those blocked that its maker has blocked; the run's own is the first.
    FaultyCalls::actBeforeNth(FaultyCalls::StartingThread, 2,
                              [&] { pthread_sigmask(SIG_SETMASK, nullptr, &signalsOfThread); });
    job.run({channel("None", "a")});
    QVERIFY(FaultyCalls::wasHit());
    for (const int signal : {SIGTERM, SIGINT, SIGUSR1, SIGCHLD})
        QCOMPARE(sigismember(&signalsOfThread, signal), 1);
}

void tst_IconFaults::fileWhoseRightsCannotBeGivenIsOverwritten_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("unnamed");
    for (const int error : {EPERM, EOPNOTSUPP, ENOSYS}) {
        QTest::addRow("%s, unnamed files", std::strerror(error)) << error << true;
        QTest::addRow("%s, named files", std::strerror(error)) << error << false;
    }
}

void tst_IconFaults::fileWhoseRightsCannotBeGivenIsOverwritten()
{
    QFETCH(const int, error);
    QFETCH(const bool, unnamed);
    Job job;
    job.write(job.out(QStringLiteral("a/icon48x48.png")), QByteArray(100000, 'x'));
    job.thread.setClearDirFirst(false);
    FaultyCalls::allowUnnamedFiles(unnamed);
    FaultyCalls::failFromNth(FaultyCalls::ChangingMode, 1, error);
    job.run({channel("None", "a")});
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
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
    const CategoryOn icons("quenzo.icons");
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
    if (argc == 3 && qstrncmp(argv[1], "--die", 5) == 0)
        return dieInTheMidstOfAFile(argv[2], qstrcmp(argv[1], "--die") == 0);
    tst_IconFaults test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_iconfaults.moc"
