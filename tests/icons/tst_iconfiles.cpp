// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconrun.h"
#include "messagelog.h"
#include "treefiles.h"

#include <QDirIterator>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>

#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace IconPictures;
using namespace IconRun;

namespace {

// A limit on the size of files breaks off writing as a full disk does.
void runWithSmallFilesOnly(Job& job)
{
    const auto handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 70000;
    if (setrlimit(RLIMIT_FSIZE, &small) != 0)
        qFatal("cannot limit the size of files");
    job.run({channel("None", "a")});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handlerBefore);
}

} // namespace

// Which files and folders ThreadGenerateIcon makes, replaces and leaves.
class tst_IconFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void missingIconTouchesNothing();
    void emptyOutputRootTouchesNothing();
    void relativeOutputRootTouchesNothing();
    void emptyListClearsAndMakesRoot();
    void rootIsMadeWithItsParents();
    void withoutClearingFilesStayAndAreOverwritten();
    void clearingDeletesEverything();
    void clearingIsNeverLedAway();
    void clearingTakesThePathAsTheSystemDoes();
    void rootIsAPlainPrefix();
    void channelFolderIsMadeWithoutParents();
    void folderNamedLikeAFileCannotBeMade();
    void pipeIsNoFileToWrite();
    void fileThatCannotBeWrittenIsPassedOver();
    void filesNamedLikeUnfinishedOnesStay();
    void halfWrittenFileIsTakenAway();
    void fileThatCannotBeReplacedWholeStays_data();
    void fileThatCannotBeReplacedWholeStays();
    void replacedFileKeepsItsRights();
    void replacedFileKeepsItsOwners_data();
    void replacedFileKeepsItsOwners();
    void fileWithTwoNamesIsOverwrittenUnderBoth();
    void fullDiskEndsWithWholeFilesOnly();
    void overwritingGoesThroughLinks();
    void linkThatLeadsNowhereIsWrittenAsQtWritesIt_data();
    void linkThatLeadsNowhereIsWrittenAsQtWritesIt();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_IconFiles::missingIconTouchesNothing()
{
    Job job;
    job.write(job.out(QStringLiteral("kept")), "kept");
    job.icon = job.path(QStringLiteral("absent.png"));
    job.run({channel("red", "a")});
    QCOMPARE(job.filesIn({}), QStringList(QStringLiteral("kept")));
    QVERIFY(!QFileInfo::exists(job.out(QStringLiteral("a"))));
}

void tst_IconFiles::emptyOutputRootTouchesNothing()
{
    Job job;
    const QString before = QDir::currentPath();
    QDir::setCurrent(job.path({}));
    const QStringList entries = QDir(job.path({})).entryList();
    job.outputDir.clear();
    job.run({channel("red", "a")});
    QCOMPARE(QDir(job.path({})).entryList(), entries);
    QVERIFY(!QFileInfo::exists(QStringLiteral("/a")));
    QDir::setCurrent(before);
}

void tst_IconFiles::relativeOutputRootTouchesNothing()
{
    Job job;
    job.write(job.out(QStringLiteral("kept")), "kept");
    const QString before = QDir::currentPath();
    QDir::setCurrent(job.path({}));
    job.outputDir = QStringLiteral("out/");
    job.run({channel("red", "a")});
    QDir::setCurrent(before);
    QCOMPARE(QDir(job.out()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList(QStringLiteral("kept")));
}

void tst_IconFiles::emptyListClearsAndMakesRoot()
{
    Job job;
    job.write(job.out(QStringLiteral("old/deep/file")), "old");
    job.run({});
    QVERIFY(QDir(job.out()).exists());
    QVERIFY(QDir(job.out()).isEmpty());
}

void tst_IconFiles::rootIsMadeWithItsParents()
{
    Job job;
    job.outputDir = job.out(QStringLiteral("x/y/z/"));
    job.run({channel("None", "a")});
    QCOMPARE(job.filesIn(QStringLiteral("x/y/z/a")), namesOf(android));
}

void tst_IconFiles::withoutClearingFilesStayAndAreOverwritten()
{
    Job job;
    job.write(job.out(QStringLiteral("a/notes.txt")), "kept");
    job.write(job.out(QStringLiteral("a/icon36x36.png")), QByteArray(100000, 'x'));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QFile notes(job.out(QStringLiteral("a/notes.txt")));
    QVERIFY(notes.open(QIODevice::ReadOnly));
    QCOMPARE(notes.readAll(), QByteArray("kept"));
    QVERIFY(notes.remove());
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

void tst_IconFiles::clearingDeletesEverything()
{
    Job job;
    job.write(job.out(QStringLiteral("a/notes.txt")), "old");
    job.write(job.out(QStringLiteral("other/notes.txt")), "old");
    job.run({channel("None", "a")});
    QCOMPARE(QDir(job.out()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList(QStringLiteral("a")));
    QCOMPARE(job.filesIn(QStringLiteral("a")), namesOf(android));
}

void tst_IconFiles::clearingIsNeverLedAway()
{
    constexpr int files = 300;
    Job job;
    const auto fill = [&job](const QString& folder) {
        for (int i = 0; i < files; ++i)
            job.write(job.path(folder) + QStringLiteral("/file%1").arg(i), "content");
    };
    const QByteArray folder = QFile::encodeName(job.out(QStringLiteral("folder")));
    const QByteArray precious = QFile::encodeName(job.path(QStringLiteral("precious")));
    fill(QStringLiteral("precious"));
    for (int round = 0; round < 10; ++round) {
        fill(QStringLiteral("out/folder"));
        const QByteArray aside = QFile::encodeName(job.path(QStringLiteral("aside%1").arg(round)));
        std::atomic<bool> stop{false};
        // Once a file is gone, the folder is changed for a link.
        std::thread swapper([&] {
            while (!stop) {
                if (QDir(job.out(QStringLiteral("folder"))).count() < files + 2
                    && std::rename(folder.constData(), aside.constData()) == 0) {
                    stop = symlink(precious.constData(), folder.constData()) == 0;
                    return;
                }
            }
        });
        job.run({});
        stop = true;
        swapper.join();
        QCOMPARE(QDir(job.path(QStringLiteral("precious"))).count(), uint(files + 2));
        QFile::remove(QFile::decodeName(folder));
    }
}

void tst_IconFiles::clearingTakesThePathAsTheSystemDoes()
{
    Job job;
    job.write(job.out(QStringLiteral("kept")), "kept");
    job.write(job.path(QStringLiteral("real/inner/file")), "old");
    job.write(job.path(QStringLiteral("real/file")), "old");
    QVERIFY(QFile::link(job.path(QStringLiteral("real/inner")), job.out(QStringLiteral("link"))));
    // The folder above the link's target, not the one above the link.
    job.outputDir = job.out(QStringLiteral("link/../"));
    job.run({});
    QVERIFY(QFileInfo::exists(job.out(QStringLiteral("kept"))));
    QVERIFY(QDir(job.path(QStringLiteral("real"))).isEmpty());
}

void tst_IconFiles::rootIsAPlainPrefix()
{
    Job job;
    job.outputDir = job.path(QStringLiteral("icons-of-"));
    job.run({channel("None", "a")});
    QVERIFY(QFileInfo(job.path(QStringLiteral("icons-of-"))).isDir());
    QVERIFY(QFileInfo::exists(job.path(QStringLiteral("icons-of-a/icon36x36.png"))));
}

void tst_IconFiles::channelFolderIsMadeWithoutParents()
{
    Job job;
    job.run({channel("None", "x/y"), channel("None", "x"), channel("None", "x/z")});
    QVERIFY(!QFileInfo::exists(job.out(QStringLiteral("x/y"))));
    QCOMPARE(job.filesIn(QStringLiteral("x")), namesOf(android));
    QCOMPARE(job.filesIn(QStringLiteral("x/z")), namesOf(android));
}

void tst_IconFiles::folderNamedLikeAFileCannotBeMade()
{
    Job job;
    job.run({channel("None", ""), channel("None", "icon36x36.png")});
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(), android), QString());
}

void tst_IconFiles::pipeIsNoFileToWrite()
{
    Job job;
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    makePipe(job.out(QStringLiteral("a/icon48x48.png")));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon48x48.png"));
    QCOMPARE(job.filesIn(QStringLiteral("a")), expected);
}

void tst_IconFiles::fileThatCannotBeWrittenIsPassedOver()
{
    Job job;
    job.write(job.out(QStringLiteral("file")), "in the way of a folder");
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("b/icon72x72.png"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "file"), channel("None", "b"), channel("None", "c")});
    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon72x72.png"));
    QCOMPARE(job.filesIn(QStringLiteral("b")), expected);
    QCOMPARE(job.filesIn(QStringLiteral("c")), namesOf(android));
    QVERIFY(QFileInfo(job.out(QStringLiteral("file"))).isFile());
}

void tst_IconFiles::filesNamedLikeUnfinishedOnesStay()
{
    Job job;
    const QString precious = job.path(QStringLiteral("precious"));
    job.write(precious, "precious");
    job.write(job.out(QStringLiteral("a/icon36x36.png.part")), "precious");
    job.write(job.out(QStringLiteral("a/icon36x36.png.part1")), "precious");
    QVERIFY(QFile::link(precious, job.out(QStringLiteral("a/icon48x48.png.part"))));
    QVERIFY(QFile::link(job.path(QStringLiteral("absent")), job.out(QStringLiteral("a/icon72x72.png.part"))));
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a/icon96x96.png.part"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    for (const char* file :
         {"precious", "out/a/icon36x36.png.part", "out/a/icon36x36.png.part1", "out/a/icon48x48.png.part"}) {
        QFile kept(job.path(QString::fromUtf8(file)));
        QVERIFY2(kept.open(QIODevice::ReadOnly), file);
        QCOMPARE(kept.readAll(), QByteArray("precious"));
    }
    QVERIFY(!QFileInfo::exists(job.path(QStringLiteral("absent"))));
    for (const char* name :
         {"icon36x36.png.part", "icon36x36.png.part1", "icon48x48.png.part", "icon72x72.png.part"})
        QVERIFY2(QFile::remove(job.out(QStringLiteral("a/") + QString::fromUtf8(name))), name);
    QVERIFY(QDir().rmdir(job.out(QStringLiteral("a/icon96x96.png.part"))));
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

void tst_IconFiles::halfWrittenFileIsTakenAway()
{
    Job job;
    runWithSmallFilesOnly(job);
    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon512x512.png"));
    QCOMPARE(job.filesIn(QStringLiteral("a")), expected);
}

void tst_IconFiles::fileThatCannotBeReplacedWholeStays_data()
{
    QTest::addColumn<bool>("linked");
    QTest::newRow("file") << false;
    QTest::newRow("file behind a link") << true;
}

void tst_IconFiles::fileThatCannotBeReplacedWholeStays()
{
    QFETCH(const bool, linked);
    Job job;
    const QString icon = job.out(QStringLiteral("a/icon512x512.png"));
    const QString file = linked ? job.path(QStringLiteral("shared/old.png")) : icon;
    job.write(file, "old");
    if (linked) {
        QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
        QVERIFY(QFile::link(file, icon));
    }
    job.thread.setClearDirFirst(false);
    runWithSmallFilesOnly(job);
    QCOMPARE(TreeFiles::read(QFile::encodeName(icon)), QByteArray("old"));
    QCOMPARE(QFileInfo(icon).isSymLink(), linked);
    QCOMPARE(job.filesIn(QStringLiteral("a")), namesOf(android));
    QCOMPARE(QDir(QFileInfo(file).path()).entryList(QDir::Files).contains(QStringLiteral("old.png.part")),
             false);
}

void tst_IconFiles::replacedFileKeepsItsRights()
{
    Job job;
    const QString icon = job.out(QStringLiteral("a/icon48x48.png"));
    job.write(icon, "old");
    QVERIFY(QFile::setPermissions(icon, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QCOMPARE(QImage(icon).size(), QSize(48, 48));
    QCOMPARE(TreeFiles::mode(QFile::encodeName(icon)), 0640);
}

void tst_IconFiles::replacedFileKeepsItsOwners_data()
{
    QTest::addColumn<uint>("user");
    QTest::addColumn<uint>("group");
    QTest::newRow("another user") << 65534U << getegid();
    QTest::newRow("another group") << geteuid() << 65534U;
}

void tst_IconFiles::replacedFileKeepsItsOwners()
{
    QFETCH(const uint, user);
    QFETCH(const uint, group);
    Job job;
    const QByteArray icon = QFile::encodeName(job.out(QStringLiteral("a/icon48x48.png")));
    job.write(QFile::decodeName(icon), "old");
    if (chown(icon.constData(), user, group) != 0)
        QSKIP("only root can give files away");
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    const QFileInfo replaced(QFile::decodeName(icon));
    QCOMPARE(QImage(replaced.filePath()).size(), QSize(48, 48));
    QCOMPARE(replaced.ownerId(), user);
    QCOMPARE(replaced.groupId(), group);
}

void tst_IconFiles::fileWithTwoNamesIsOverwrittenUnderBoth()
{
    Job job;
    const QString shared = job.path(QStringLiteral("shared.png"));
    job.write(shared, "old");
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    QCOMPARE(link(QFile::encodeName(shared), QFile::encodeName(job.out(QStringLiteral("a/icon48x48.png")))),
             0);
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QCOMPARE(QImage(shared).size(), QSize(48, 48));
}

void tst_IconFiles::fullDiskEndsWithWholeFilesOnly()
{
    Job job;
    const QByteArray disk = QFile::encodeName(job.path(QStringLiteral("disk")));
    QVERIFY(QDir().mkpath(QFile::decodeName(disk)));
    if (mount("tmpfs", disk.constData(), "tmpfs", 0, "size=300k") != 0)
        QSKIP("only root can mount a small disk; the limit on file sizes stands for it elsewhere");
    job.outputDir = QFile::decodeName(disk) + QStringLiteral("/out/");
    job.run({channel("None", "a"), channel("red", "b"), channel("blue", "c"), channel("red", "d", 1)});

    int whole = 0;
    QStringList faults;
    QDirIterator files(job.outputDir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        faults += faultsOf({files.next()});
        whole += QImage(files.filePath()).isNull() ? 0 : 1;
        if (!files.fileName().endsWith(QLatin1String(".png")))
            faults += files.fileName();
    }
    const bool madeAll = QFileInfo::exists(job.outputDir + QStringLiteral("d"));
    QCOMPARE(umount(disk.constData()), 0);
    QCOMPARE(faults.join(QString()), QString());
    QVERIFY2(whole > 0 && whole < 28, qPrintable(QString::number(whole)));
    QVERIFY(madeAll);
}

void tst_IconFiles::overwritingGoesThroughLinks()
{
    Job job;
    job.write(job.path(QStringLiteral("shared.png")), "old");
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    QVERIFY(QFile::link(job.path(QStringLiteral("shared.png")), job.out(QStringLiteral("a/icon48x48.png"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QVERIFY(QFileInfo(job.out(QStringLiteral("a/icon48x48.png"))).isSymLink());
    QCOMPARE(QImage(job.path(QStringLiteral("shared.png"))).size(), QSize(48, 48));
}

void tst_IconFiles::linkThatLeadsNowhereIsWrittenAsQtWritesIt_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<bool>("written");
    QTest::newRow("beside it") << QByteArray("absent.png") << true;
    QTest::newRow("in another folder") << QByteArray("../other/absent.png") << true;
    QTest::newRow("by another link") << QByteArray("link") << true;
    QTest::newRow("in a folder behind a link") << QByteArray("../linked/absent.png") << true;
    QTest::newRow("in an absent folder") << QByteArray("../absent/absent.png") << false;
    QTest::newRow("to itself") << QByteArray("icon48x48.png") << false;
}

void tst_IconFiles::linkThatLeadsNowhereIsWrittenAsQtWritesIt()
{
    QFETCH(const QByteArray, target);
    QFETCH(const bool, written);
    const auto prepare = [&](const Job& job) {
        QDir().mkpath(job.out(QStringLiteral("a")));
        QDir().mkpath(job.out(QStringLiteral("other")));
        const QByteArray folder = QFile::encodeName(job.out());
        return symlink(target.constData(), QByteArray(folder + "a/icon48x48.png").constData()) == 0
            && symlink("../other/absent.png", QByteArray(folder + "a/link").constData()) == 0
            && symlink("other", QByteArray(folder + "linked").constData()) == 0;
    };
    const auto state = [](const Job& job) {
        QStringList entries;
        QDirIterator all(job.out(), QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
        while (all.hasNext()) {
            all.next();
            const QString path = all.filePath().mid(job.out().size());
            if (!path.startsWith(QLatin1String("a/icon")) || path == QLatin1String("a/icon48x48.png"))
                entries.append(path + (all.fileInfo().isSymLink() ? QStringLiteral(" link") : QString())
                               + QString::number(QImage(all.filePath()).width()));
        }
        entries.sort();
        return entries;
    };
    Job job;
    Job plain;
    QVERIFY(prepare(job) && prepare(plain));
    QCOMPARE(photograph(48, 48).save(plain.out(QStringLiteral("a/icon48x48.png"))), written);
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QCOMPARE(state(job), state(plain));
}

QTEST_GUILESS_MAIN(tst_IconFiles)
#include "tst_iconfiles.moc"
