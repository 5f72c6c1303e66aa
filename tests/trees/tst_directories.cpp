// SPDX-License-Identifier: MIT
#include <quenzotool.h>
#include <threadcommon.h>

#include "treefixture.h"

#include <QDir>
#include <QThread>
#include <QtTest>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;

namespace {

// Every combination of the nine bits, copied by Qt and by us, by whoever runs this. Each in a folder of its
// own, which takes no further thread: the sanitizer forbids these to a forked process.
bool bitsAreThoseOfQtsCopy(const QByteArray& root)
{
    int compared = 0;
    for (mode_t mode = 0; mode < 01000; ++mode) {
        const QByteArray name = "/folder" + QByteArray::number(mode);
        const QByteArray source = root + "/source" + name;
        const QByteArray expected = root + "/expected" + name;
        const QByteArray target = root + "/target" + name;
        write(source + "/file");
        makeFolder(expected);
        setMode(source + "/file", mode);
        const bool copied =
            QFile::copy(QFile::decodeName(source + "/file"), QFile::decodeName(expected + "/file"));
        makeFolder(root + "/target");
        if (QuenzoTool::copyDirectory(folder(source), folder(target), false, false) != copied)
            return false;
        if (copied && TreeFiles::mode(target + "/file") != TreeFiles::mode(expected + "/file"))
            return false;
        compared += copied ? 1 : 0;
    }
    return compared > 200;
}

} // namespace

class tst_Directories : public TreeFixture {
    Q_OBJECT

public:
    tst_Directories()
        : TreeFixture(TreeFiles::diskFolder())
    {
    }

private Q_SLOTS:
    void missingParentOfTargetCreatesNothing();
    void missingSourceCountsAsEmpty();
    void targetThatIsAFileIsFalse();
    void readOnlyFileIsReplacedOnlyWithOverwrite();
    void movedTreeLeavesTopFolderEmpty();
    void hiddenFilesAreCopied();
    void emptyFolderGivesEmptyTarget();
    void existingFilesStopACopyWithoutOverwrite();
    void everyNameGetsThrough_data() { TreeRuns::addHardNames(); }
    void everyNameGetsThrough();
    void namesOfResourcesStayInTheTree();
    void permissionBitsAreThoseOfQtsCopy();
    void plainUsersPermissionBitsAreThoseOfQtsCopy();
    void specialFilesAreFalseAtOnce();
    void unreadableFolderIsFalse();
    void unwritableTargetIsFalse();
    void unremovableSourceIsIgnored();
    void hugeSparseFileStaysSparse();
    void holeAtTheEndIsCopied_data();
    void holeAtTheEndIsCopied();
    void pathsReachAsFarAsTheSystemAllows_data();
    void pathsReachAsFarAsTheSystemAllows();
    void deepTreeIsCopiedMovedAndRemoved();
    void tooDeepTreeForTheStackIsFalse_data();
    void tooDeepTreeForTheStackIsFalse();
    void manyFilesArriveInEveryFolder();
    void relativePathsAreTakenFromTheWorkingFolder();

private:
    static constexpr unsigned smallStack = 192U << 10U;
    void makeDeepest();
};

void tst_Directories::missingParentOfTargetCreatesNothing()
{
    write(m_source + "/file");
    m_target = m_root + "/missing/target";
    QVERIFY(!copy());
    QVERIFY(!move());
    QVERIFY(!exists(m_root + "/missing"));
    QVERIFY(exists(m_source + "/file"));
}

void tst_Directories::missingSourceCountsAsEmpty()
{
    for (const char* missing : {"/missing", "/missing/deeper", "/file"}) {
        write(m_root + "/file");
        m_source = m_root + missing;
        QVERIFY(copy());
        QVERIFY(TreeFiles::content(m_target).isEmpty());
        QCOMPARE(rmdir(m_target.constData()), 0);
        QVERIFY(move());
        QVERIFY(TreeFiles::content(m_target).isEmpty());
        QVERIFY(exists(m_root + "/file"));
    }
    m_target = m_root + "/no/parent";
    QVERIFY(!copy());
}

void tst_Directories::targetThatIsAFileIsFalse()
{
    write(m_source + "/file");
    write(m_target, "kept");
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::read(m_target), QByteArray("kept"));
}

void tst_Directories::readOnlyFileIsReplacedOnlyWithOverwrite()
{
    write(m_source + "/folder/file", "new");
    write(m_target + "/folder/file", "old");
    setMode(m_source + "/folder/file", 0444);
    setMode(m_target + "/folder/file", 0444);
    QVERIFY(!copy(false));
    QCOMPARE(TreeFiles::read(m_target + "/folder/file"), QByteArray("old"));
    QVERIFY(copy());
    QCOMPARE(TreeFiles::read(m_target + "/folder/file"), QByteArray("new"));
}

void tst_Directories::movedTreeLeavesTopFolderEmpty()
{
    write(m_source + "/file", "1");
    write(m_source + "/folder/deeper/file", "2");
    makeFolder(m_source + "/folder/empty");
    const auto before = TreeFiles::content(m_source);
    QVERIFY(move());
    QVERIFY(exists(m_source));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QCOMPARE(TreeFiles::content(m_target), before);
}

void tst_Directories::hiddenFilesAreCopied()
{
    write(m_source + "/.hidden");
    write(m_source + "/.folder/.deeper");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), TreeFiles::content(m_source));
}

void tst_Directories::emptyFolderGivesEmptyTarget()
{
    QVERIFY(copy());
    QVERIFY(exists(m_target));
    QVERIFY(TreeFiles::content(m_target).isEmpty());
    QVERIFY(copy());
    QVERIFY(move());
}

void tst_Directories::existingFilesStopACopyWithoutOverwrite()
{
    TreeFiles::writeMany(m_source + "/file", 200, "new");
    write(m_target + "/file7", "old");
    QVERIFY(!copy(false));
    QCOMPARE(TreeFiles::read(m_target + "/file7"), QByteArray("old"));
    // What had been listed before it was copied, and nothing behind it.
    const int before =
        folder(m_source).entryList(QDir::Files, QDir::Unsorted).indexOf(QStringLiteral("file7"));
    QCOMPARE(TreeFiles::content(m_target).size(), before + 1);
}

void tst_Directories::everyNameGetsThrough()
{
    QFETCH(QByteArray, name);
    write(m_source + '/' + name, "top");
    write(m_source + "/folder/" + name + '/' + name, "deep");
    const auto before = TreeFiles::content(m_source);
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(move());
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(remove(m_target));
    QVERIFY(!exists(m_target));
}

void tst_Directories::namesOfResourcesStayInTheTree()
{
    write(m_source + "/:x", "resource");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(QFile::decodeName(m_root)));
    const bool moved =
        QuenzoTool::copyDirectory(QDir(QStringLiteral("source")), QDir(QStringLiteral("target")), true, true);
    QDir::setCurrent(before);
    QVERIFY(moved);
    QCOMPARE(TreeFiles::read(m_target + "/:x"), QByteArray("resource"));
}

void tst_Directories::permissionBitsAreThoseOfQtsCopy()
{
    makeFolder(m_root + "/expected");
    QVERIFY(bitsAreThoseOfQtsCopy(m_root));
}

void tst_Directories::plainUsersPermissionBitsAreThoseOfQtsCopy()
{
    setMode(m_root, 0777);
    setMode(m_source, 0777);
    makeFolder(m_root + "/expected");
    setMode(m_root + "/expected", 0777);
    QVERIFY(TreeFiles::asPlainUser([this] { return bitsAreThoseOfQtsCopy(m_root); }));
}

void tst_Directories::specialFilesAreFalseAtOnce()
{
    const QByteArray pipe = m_source + "/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    QVERIFY(!copy());
    QVERIFY(!move());
    QVERIFY(exists(pipe));
    unlink(pipe.constData());
    makeLink("/dev/zero", m_source + "/zeroes");
    QVERIFY(!copy());
    QVERIFY(TreeFiles::content(m_target).isEmpty());
}

void tst_Directories::unreadableFolderIsFalse()
{
    write(m_source + "/folder/file", "kept");
    setMode(m_root, 0777);
    setMode(m_source, 0777);
    setMode(m_source + "/folder", 0333);
    QVERIFY(TreeFiles::asPlainUser([this] { return !copy() && !move(); }));
    m_source += "/folder";
    QVERIFY(TreeFiles::asPlainUser([this] { return !copy() && !move(); }));
    setMode(m_source, 0755);
    QCOMPARE(TreeFiles::read(m_source + "/file"), QByteArray("kept"));
}

void tst_Directories::unwritableTargetIsFalse()
{
    write(m_source + "/file", "kept");
    makeFolder(m_target);
    setMode(m_root, 0777);
    setMode(m_source, 0777);
    setMode(m_target, 0555);
    QVERIFY(TreeFiles::asPlainUser([this] { return !copy() && !move(); }));
    QVERIFY(TreeFiles::content(m_target).isEmpty());
    QVERIFY(exists(m_source + "/file"));
    setMode(m_target, 0755);
}

void tst_Directories::unremovableSourceIsIgnored()
{
    write(m_source + "/file", "kept");
    setMode(m_root, 0777);
    setMode(m_source, 0555);
    QVERIFY(TreeFiles::asPlainUser([this] { return move(); }));
    setMode(m_source, 0755);
    QCOMPARE(TreeFiles::read(m_source + "/file"), QByteArray("kept"));
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("kept"));
}

void tst_Directories::hugeSparseFileStaysSparse()
{
    constexpr qint64 size = (qint64(5) << 30) + 17;
    write(m_source + "/huge", "beginning");
    const QByteArray source = m_source + "/huge";
    const int handle = open(source.constData(), O_WRONLY | O_CLOEXEC);
    QVERIFY(handle >= 0);
    QCOMPARE(ftruncate(handle, size), 0);
    QCOMPARE(pwrite(handle, "middle", 6, size / 2), ssize_t(6));
    QCOMPARE(pwrite(handle, "end", 3, size - 3), ssize_t(3));
    ::close(handle);
    QVERIFY(move());
    QFile huge(QFile::decodeName(m_target + "/huge"));
    QVERIFY(huge.open(QIODevice::ReadOnly));
    QCOMPARE(huge.size(), size);
    QCOMPARE(huge.read(9), QByteArray("beginning"));
    QVERIFY(huge.seek(size / 2 - 1));
    QCOMPARE(huge.read(7), QByteArray("\0middle", 7));
    QVERIFY(huge.seek(size - 3));
    QCOMPARE(huge.readAll(), QByteArray("end"));
    struct stat status { };
    const QByteArray target = m_target + "/huge";
    QCOMPARE(stat(target.constData(), &status), 0);
    QVERIFY2(status.st_blocks < 10000, "the holes were filled");
}

void tst_Directories::holeAtTheEndIsCopied_data()
{
    QTest::addColumn<QByteArray>("beginning");
    QTest::newRow("behind content") << QByteArray("beginning");
    QTest::newRow("nothing but a hole") << QByteArray();
}

void tst_Directories::holeAtTheEndIsCopied()
{
    QFETCH(QByteArray, beginning);
    constexpr int size = 1 << 20;
    const QByteArray source = m_source + "/file";
    write(source, beginning);
    QCOMPARE(truncate(source.constData(), size), 0);
    QVERIFY(copy());
    const QByteArray copied = TreeFiles::read(m_target + "/file");
    QCOMPARE(copied.size(), size);
    QVERIFY2(copied == beginning + QByteArray(size - beginning.size(), '\0'), "another content");
}

void tst_Directories::pathsReachAsFarAsTheSystemAllows_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("allowed");
    for (const char* target : {"/short", "/longer-target"}) {
        const char* const which = qstrlen(target) > qstrlen("/source") ? "target" : "source";
        QTest::addRow("%s, longest", which) << QByteArray(target) << PATH_MAX - 1 << true;
        QTest::addRow("%s, a byte more", which) << QByteArray(target) << PATH_MAX << false;
    }
}

void tst_Directories::pathsReachAsFarAsTheSystemAllows()
{
    QFETCH(QByteArray, target);
    QFETCH(int, length);
    QFETCH(bool, allowed);
    m_target = m_root + target;
    const QByteArray file = "/file";
    const int inner = length - qMax(m_source.size(), m_target.size()) - file.size();
    QByteArray folder;
    while (folder.size() + 101 < inner)
        folder += '/' + QByteArray(99, 'n');
    folder += '/' + QByteArray(inner - 1 - folder.size(), 'm');
    const QByteArray deepest = m_source + folder;
    makeFolder(deepest);
    // From its folder, since the path itself may be too long.
    const int handle = open(deepest.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const int made = openat(handle, "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    QVERIFY(made >= 0);
    ::close(made);
    ::close(handle);
    QCOMPARE(copy(), allowed);
    QCOMPARE(exists(m_target + folder + file), allowed);
    // The temporary folder could not remove what lies so deep.
    QVERIFY(remove(m_source));
    QVERIFY(remove(m_target));
}

void tst_Directories::deepTreeIsCopiedMovedAndRemoved()
{
    const QByteArray deepest = m_source + QByteArray("/n").repeated(800);
    write(deepest + "/file", "deep");
    write(m_source + "/n/n/n/side", "side");
    const auto before = TreeFiles::content(m_source);
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(move());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QVERIFY(remove(m_target));
    QVERIFY(!exists(m_target));
}

void tst_Directories::makeDeepest()
{
    QByteArray deepest = m_source;
    while (deepest.size() < 2000)
        deepest += "/n";
    write(deepest + "/file", "kept");
    m_target = m_root + "/t";
}

void tst_Directories::tooDeepTreeForTheStackIsFalse_data()
{
    QTest::addColumn<int>("operate");
    QTest::newRow("copy") << int(OPERATE_COPY);
    QTest::newRow("cut") << int(OPERATE_CUT);
    QTest::newRow("output") << int(OPERATE_CUT_OUTPUT);
}

void tst_Directories::tooDeepTreeForTheStackIsFalse()
{
    QFETCH(int, operate);
    makeDeepest();
    ThreadCommon worker;
    worker.setStackSize(smallStack);
    worker.StartOperate(static_cast<THREAD_OPERATE>(operate), folders());
    worker.start();
    QVERIFY(worker.wait());
    QCOMPARE(worker.getResult(), QVariant(false));
    QVERIFY(remove(m_source));
    QVERIFY(remove(m_target));
}

// Above and below the numbers from which on files go in bulk.
void tst_Directories::manyFilesArriveInEveryFolder()
{
    for (const int count : {0, 1, 23, 24, 25, 40, 64, 100, 300}) {
        for (int i = 0; i < count; ++i)
            write(m_source + "/folder" + QByteArray::number(count) + "/file" + QByteArray::number(i),
                  QByteArray(i * 997 % 100000, static_cast<char>('a' + i % 26)));
    }
    const auto before = TreeFiles::content(m_source);
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(move());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(TreeFiles::content(m_source).isEmpty());
}

void tst_Directories::relativePathsAreTakenFromTheWorkingFolder()
{
    write(m_source + "/folder/file");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(QFile::decodeName(m_root)));
    const bool copied = QuenzoTool::copyDirectory(QDir(QStringLiteral("source")),
                                                  QDir(QStringLiteral("./target/")), false, false);
    QDir::setCurrent(before);
    QVERIFY(copied);
    QVERIFY(exists(m_target + "/folder/file"));
}

QTEST_GUILESS_MAIN(tst_Directories)
#include "tst_directories.moc"
