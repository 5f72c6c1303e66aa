// SPDX-License-Identifier: MIT
// Copies and moves in a world that breaks: system calls that fail, a disk that is full, a process that is
// killed.
#include <quenzotool.h>

#include "faultycalls.h"
#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::write;
using TreeFiles::writeMany;
using TreeFiles::writeManySizes;
using TreeFiles::writeSparse;
using namespace TreeRuns;

namespace {

// Every file of the first tree that is not in the second one whole, by name and content.
QList<QByteArray> lost(const Tree& before, const Tree& source, const Tree& target)
{
    QList<QByteArray> names;
    for (auto entry = before.cbegin(); entry != before.cend(); ++entry) {
        if (source.value(entry.key()) != entry.value() && target.value(entry.key()) != entry.value())
            names.append(entry.key());
    }
    return names;
}

// Every file that stands under its name without being whole, or that nobody asked for.
QList<QByteArray> broken(const Tree& before, const Tree& target)
{
    QList<QByteArray> names;
    for (auto entry = target.cbegin(); entry != target.cend(); ++entry) {
        if (before.value(entry.key()) != entry.value())
            names.append(entry.key());
    }
    return names;
}

} // namespace

class tst_TreeFaults : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void failedCallsLoseNothing_data();
    void failedCallsLoseNothing();
    void folderThatIsExchangedEndsTheWalkOnItsWayBack();
    void copyGoesOnWithoutAFurtherThread();
    void helperThreadsTakeNoSignals();
    void contentThatCannotBeWrittenLeavesNoFile_data();
    void contentThatCannotBeWrittenLeavesNoFile();
    void sourceThatShrinksIsCopiedAsItIsOrNotAtAll_data();
    void sourceThatShrinksIsCopiedAsItIsOrNotAtAll();
    void temporaryFileThatCannotBeMadeFailsTheCopy();
    void folderThatCannotBeListedKeepsItsRights();
    void fullDiskLeavesNoPartOfAFile_data() { addEveryWay(); }
    void fullDiskLeavesNoPartOfAFile();
    void sizeLimitLeavesNoPartOfAFile();
    void killedCopyLeavesNoPartOfAFile_data() { addEveryWay(); }
    void killedCopyLeavesNoPartOfAFile();
};

void tst_TreeFaults::cleanup()
{
    FaultyCalls::heal();
    TreeFixture::cleanup();
}

void tst_TreeFaults::failedCallsLoseNothing_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<Manner>("manner");
    using namespace FaultyCalls;
    for (const auto& [manner, what] : everyWay) {
        QTest::addRow("%s, opening", what) << int(Opening) << EIO << manner;
        QTest::addRow("%s, too many files", what) << int(Opening) << EMFILE << manner;
        QTest::addRow("%s, copying", what) << int(Copying) << EIO << manner;
        QTest::addRow("%s, copying without room", what) << int(Copying) << ENOSPC << manner;
        QTest::addRow("%s, linking", what) << int(Linking) << EIO << manner;
        QTest::addRow("%s, linking without room", what) << int(Linking) << ENOSPC << manner;
        QTest::addRow("%s, listing", what) << int(Listing) << EIO << manner;
    }
}

// The n-th call of its kind fails, for every n there is.
void tst_TreeFaults::failedCallsLoseNothing()
{
    QFETCH(int, call);
    QFETCH(int, error);
    QFETCH(Manner, manner);
    writeManySizes(m_source + "/folder/file", 40);
    write(m_source + "/large", QByteArray(200000, 'y'));
    const Tree before = content(m_source);
    bool hit = true;
    bool failed = false;
    for (int n = 1; hit && n < 300; ++n) {
        FaultyCalls::failFromNth(static_cast<FaultyCalls::Call>(call), n, error);
        const bool done = transfer(manner);
        hit = FaultyCalls::wasHit();
        FaultyCalls::heal();
        failed = failed || !done;
        const Tree source = content(m_source);
        const Tree target = exists(m_target) ? content(m_target) : Tree();
        QVERIFY2(hit || done, qPrintable(QStringLiteral("call %1 of an undisturbed run").arg(n)));
        QCOMPARE(lost(before, source, target), QList<QByteArray>());
        QCOMPARE(broken(before, target), QList<QByteArray>());
        if (done)
            QCOMPARE(target, before);
        if (manner == Copy)
            QCOMPARE(source, before);
        // As it was at the beginning, for the next call.
        QVERIFY(TreeRuns::transfer(m_target, m_source, Move) || !exists(m_target));
        QVERIFY(remove(m_target));
        QCOMPARE(content(m_source), before);
    }
    QVERIFY2(!hit, "there were more calls than expected");
    QVERIFY2(failed, "no call ever failed");
}

// The outer folders of a deep walk are opened anew on its way back: behind a link, by their paths.
void tst_TreeFaults::folderThatIsExchangedEndsTheWalkOnItsWayBack()
{
    constexpr int inTheDepth = 70; // of the calls that list, two a folder
    const QByteArray file = QByteArray("/n").repeated(40) + "/file";
    write(m_root + "/elsewhere" + file, "deep");
    const QByteArray other = m_root + "/other";
    const QByteArray aside = m_root + "/aside";
    write(other + "/one/file", "of another");
    write(other + "/two/file", "of another");
    makeLink("../elsewhere", m_source + "/one");
    makeLink("../elsewhere", m_source + "/two");
    FaultyCalls::actBeforeNth(FaultyCalls::Listing, inTheDepth, [&] {
        QCOMPARE(rename(m_source.constData(), aside.constData()), 0);
        QCOMPARE(rename(other.constData(), m_source.constData()), 0);
    });
    QVERIFY(!copy());
    QVERIFY(FaultyCalls::wasHit());
    const Tree copied = content(m_target);
    QCOMPARE(copied.keys("file deep").size(), 1);
    QCOMPARE(copied.keys("file of another"), QList<QByteArray>());
}

void tst_TreeFaults::copyGoesOnWithoutAFurtherThread()
{
    writeManySizes(m_source + "/file", 300);
    const Tree before = content(m_source);
    for (const Manner manner : {Copy, Move}) {
        FaultyCalls::failFromNth(FaultyCalls::StartingThread, 1, EAGAIN);
        QVERIFY(transfer(manner));
        QVERIFY(FaultyCalls::wasHit());
        QCOMPARE(content(m_target), before);
        QCOMPARE(content(m_source), manner == Copy ? before : Tree());
        QVERIFY(folder(m_target).removeRecursively());
    }
}

void tst_TreeFaults::helperThreadsTakeNoSignals()
{
    writeMany(m_source + "/file", 300);
    QDir source = folder(m_source);
    const QVector<std::function<bool()>> jobs{[&] { return copy(); },
                                              [&] { return QuenzoTool::removeRecursively(source); }};
    for (const auto& job : jobs) {
        sigset_t signalsOfThread{};
        // A thread begins with those blocked that its maker has blocked.
        FaultyCalls::actBeforeNth(FaultyCalls::StartingThread, 1,
                                  [&] { pthread_sigmask(SIG_SETMASK, nullptr, &signalsOfThread); });
        QVERIFY(job());
        QVERIFY(FaultyCalls::wasHit());
        for (const int signal : {SIGTERM, SIGINT, SIGUSR1, SIGCHLD})
            QVERIFY(sigismember(&signalsOfThread, signal) == 1);
        pthread_sigmask(SIG_SETMASK, nullptr, &signalsOfThread);
        QVERIFY(sigismember(&signalsOfThread, SIGTERM) == 0);
    }
}

void tst_TreeFaults::contentThatCannotBeWrittenLeavesNoFile_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("no room") << ENOSPC;
    QTest::newRow("broken") << EIO;
}

void tst_TreeFaults::contentThatCannotBeWrittenLeavesNoFile()
{
    QFETCH(int, error);
    makeLink("/proc/version", m_source + "/version");
    FaultyCalls::failFromNth(FaultyCalls::Writing, 1, error);
    QVERIFY(!copy());
    QVERIFY(FaultyCalls::wasHit());
    FaultyCalls::heal();
    QCOMPARE(content(m_target), Tree());
}

void tst_TreeFaults::sourceThatShrinksIsCopiedAsItIsOrNotAtAll_data()
{
    QTest::addColumn<bool>("sparse");
    QTest::addColumn<int>("size");
    QTest::newRow("dense, nothing left") << false << 0;
    QTest::newRow("dense, half left") << false << 100000;
    QTest::newRow("sparse, nothing left") << true << 0;
    QTest::newRow("sparse, less than the first part left") << true << 50000;
    QTest::newRow("sparse, part of the hole left") << true << 300000;
    QTest::newRow("sparse, part of the end left") << true << 450000;
}

void tst_TreeFaults::sourceThatShrinksIsCopiedAsItIsOrNotAtAll()
{
    QFETCH(bool, sparse);
    QFETCH(int, size);
    const QByteArray file = m_source + "/file";
    bool hit = true;
    for (int n = 1; hit; ++n) {
        for (const Manner manner : {Copy, Move}) {
            write(file, QByteArray(sparse ? 0 : 200000, 'd'));
            if (sparse)
                writeSparse(file);
            const Tree before = content(m_source);
            FaultyCalls::actBeforeNth(FaultyCalls::Copying, n,
                                      [&] { QCOMPARE(truncate(file.constData(), size), 0); });
            const bool done = transfer(manner);
            hit = FaultyCalls::wasHit();
            const Tree target = content(m_target);
            QCOMPARE(target.contains("file"), done);
            const Tree shrunk{{"file", before.value("file").left(5 + size)}};
            QVERIFY(!done || target == before || (hit && target == shrunk));
            QVERIFY(hit || done);
            QVERIFY(remove(m_target));
        }
    }
}

void tst_TreeFaults::temporaryFileThatCannotBeMadeFailsTheCopy()
{
    write(m_source + "/file", "kept");
    FaultyCalls::allowUnnamedFiles(false);
    FaultyCalls::failFromNth(FaultyCalls::Opening, 2, EACCES); // the source is the first
    QVERIFY(!copy());
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_target), Tree());
}

void tst_TreeFaults::folderThatCannotBeListedKeepsItsRights()
{
    const CategoryOn trees("quenzo.trees");
    write(m_source + "/file", "kept");
    TreeFiles::setMode(m_source + "/file", 0640);
    FaultyCalls::failFromNth(FaultyCalls::Listing, 1, EIO);
    QDir source = folder(m_source);
    QuenzoTool::changePermessionRecursively(source);
    QVERIFY(FaultyCalls::wasHit());
    FaultyCalls::heal();
    const QString told = m_messages->takeWarnings().join(QLatin1Char('\n'));
    QVERIFY2(told.contains(QLatin1String("could not be read: Input/output error")), qPrintable(told));
    QCOMPARE(TreeFiles::mode(m_source + "/file"), 0640);
}

void tst_TreeFaults::fullDiskLeavesNoPartOfAFile()
{
    QFETCH(Manner, manner);
    const Mount disk = Mount::smallDisk(m_target, "size=1m");
    if (!disk.isMounted)
        QSKIP("only root can make a small disk; a size limit takes its place");
    for (int i = 0; i < 40; ++i)
        write(m_source + "/file" + QByteArray::number(i), QByteArray(i == 20 ? 700000 : 30000, 'x'));
    const Tree before = content(m_source);
    for (int tries = 0; tries < 2; ++tries) {
        QVERIFY(!transfer(manner));
        QCOMPARE(broken(before, content(m_target)), QList<QByteArray>());
        QCOMPARE(lost(before, content(m_source), content(m_target)), QList<QByteArray>());
    }
    if (manner == Copy)
        QCOMPARE(content(m_source), before);
    QCOMPARE(RunRoot::log().count("Copy Fail:"), manner == CutForOutput ? 2 : 0);
}

void tst_TreeFaults::sizeLimitLeavesNoPartOfAFile()
{
    write(m_source + "/folder/large", QByteArray(300000, 'x'));
    const Tree before = content(m_source);
    struct rlimit was { };
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &was), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit = was;
    limit.rlim_cur = 100000;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool copied = copy();
    const bool moved = move();
    const bool cut = transfer(CutForOutput);
    setrlimit(RLIMIT_FSIZE, &was);
    std::signal(SIGXFSZ, SIG_DFL);
    QVERIFY(!copied);
    QVERIFY(!moved);
    QVERIFY(!cut);
    QCOMPARE(content(m_source), before);
    QCOMPARE(content(m_target), Tree({{"folder", "folder"}}));
}

void tst_TreeFaults::killedCopyLeavesNoPartOfAFile()
{
    QFETCH(Manner, manner);
    QTemporaryDir disk; // on a disk, where a large file takes a while
    const QByteArray root = QFile::encodeName(disk.path());
    makeFolder(root + "/source");
    QFile large(QFile::decodeName(root + "/source/large"));
    QVERIFY(large.open(QIODevice::WriteOnly));
    const QByteArray block(1 << 20, 'x');
    for (int i = 0; i < 512; ++i)
        QCOMPARE(large.write(block), qint64(block.size()));
    large.close();

    QProcess copier;
    copier.start(
        QCoreApplication::applicationFilePath(),
        {QString::number(manner), QFile::decodeName(root + "/source"), QFile::decodeName(root + "/target")});
    QVERIFY(copier.waitForStarted());
    // In the middle of the file is when the nameless copy is open.
    const QString handles = QStringLiteral("/proc/%1/fd").arg(copier.processId());
    const auto isCopying = [&handles, &root] {
        const QFileInfoList open = QDir(handles).entryInfoList(QDir::AllEntries | QDir::System);
        return std::any_of(open.cbegin(), open.cend(), [&root](const QFileInfo& info) {
            return info.symLinkTarget().startsWith(QFile::decodeName(root + "/target/#"));
        });
    };
    while (!isCopying() && copier.state() == QProcess::Running)
        copier.waitForFinished(1);
    copier.kill();
    copier.waitForFinished();
    QCOMPARE(copier.exitStatus(), QProcess::CrashExit);
    QCOMPARE(folder(root + "/target").entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
    QCOMPARE(QFileInfo(large).size(), qint64(512) << 20);
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 4)
        return transfer(argv[2], argv[3], static_cast<Manner>(QByteArray(argv[1]).toInt())) ? 0 : 1;
    tst_TreeFaults test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_treefaults.moc"
