// SPDX-License-Identifier: MIT
#include <quenzotool.h>
#include <threadcommon.h>

#include "messagelog.h"
#include "treefiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::write;

namespace {

QDir folder(const QByteArray& path)
{
    return {QFile::decodeName(path)};
}

void setMode(const QByteArray& path, mode_t mode)
{
    if (chmod(path.constData(), mode) != 0)
        qFatal("cannot change %s", path.constData());
}

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

class tst_Directories : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { umask(022); }
    void init();
    void cleanup();

    void missingParentOfTargetCreatesNothing();
    void missingSourceCountsAsEmpty();
    void targetThatIsAFileIsFalse();
    void readOnlyFileIsReplacedOnlyWithOverwrite();
    void movedTreeLeavesTopFolderEmpty();
    void hiddenFilesAreCopied();
    void emptyFolderGivesEmptyTarget();
    void existingFilesStopACopyWithoutOverwrite();
    void everyNameGetsThrough_data();
    void everyNameGetsThrough();
    void namesOfResourcesStayInTheTree();
    void permissionBitsAreThoseOfQtsCopy();
    void plainUsersPermissionBitsAreThoseOfQtsCopy();
    void linkToFileIsCopiedAsFile();
    void linkToFolderIsWalked();
    void danglingLinkIsFalse();
    void linkToParentEndsAfterFortyLevels();
    void linkToMovedFileDangles();
    void specialFilesAreFalseAtOnce();
    void targetInsideSourceTouchesNothing_data();
    void targetInsideSourceTouchesNothing();
    void targetReachedThroughALinkEndsTheWalk();
    void linkIntoTheTargetEndsTheWalk_data();
    void linkIntoTheTargetEndsTheWalk();
    void linkToAnotherFolderOfTheTargetIsWalked();
    void folderIsNotCopiedOntoItself_data();
    void folderIsNotCopiedOntoItself();
    void linkToItsOwnTargetIsSpared();
    void hardLinkIsReplaced();
    void sourceInsideTargetIsMovedUp();
    void unreadableFolderIsFalse();
    void unwritableTargetIsFalse();
    void unremovableSourceIsIgnored();
    void hugeSparseFileStaysSparse();
    void deepTreeIsCopiedMovedAndRemoved();
    void tooDeepTreeForTheStackIsFalse_data();
    void tooDeepTreeForTheStackIsFalse();
    void tooDeepTreeForTheStackIsNotChanged();
    void manyFilesArriveInEveryFolder();
    void relativePathsAreTakenFromTheWorkingFolder();

    void changeOfMissingFolderIsTrue();
    void changeTellsEveryStep();
    void changeTellsOfReadOnlyFiles();
    void changeFollowsLinks();
    void changeEndsInLoopsOfLinks();

    void removalOfMissingFolderIsTrue();
    void removalTakesReadOnlyFiles();
    void removalLeavesWhatLinksLeadTo();
    void removalThroughALinkIsFalse();
    void removalReportsWhatStays();
    void removalWithoutFreeHandlesIsFalse();
    void removalTakesFoldersOfManyFiles();

private:
    static constexpr unsigned smallStack = 192U << 10U;
    void makeDeepest();
    bool copy(bool overwrite = true)
    {
        return QuenzoTool::copyDirectory(folder(m_source), folder(m_target), overwrite, false);
    }
    bool move() { return QuenzoTool::copyDirectory(folder(m_source), folder(m_target), true, true); }

    std::unique_ptr<MessageLog> m_messages;
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_root;
    QByteArray m_source;
    QByteArray m_target;
};

void tst_Directories::init()
{
    m_messages = std::make_unique<MessageLog>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_root = QFile::encodeName(m_folder->path());
    m_source = m_root + "/source";
    m_target = m_root + "/target";
    makeFolder(m_source);
}

void tst_Directories::cleanup()
{
    QCOMPARE(m_messages->takeWarnings(), QStringList());
    m_messages.reset();
}

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
    for (int i = 0; i < 200; ++i)
        write(m_source + "/file" + QByteArray::number(i), "new");
    write(m_target + "/file7", "old");
    QVERIFY(!copy(false));
    QCOMPARE(TreeFiles::read(m_target + "/file7"), QByteArray("old"));
    // What had been listed before it was copied, and nothing behind it.
    const int before = QDir(QFile::decodeName(m_source))
                           .entryList(QDir::Files, QDir::Unsorted)
                           .indexOf(QStringLiteral("file7"));
    QCOMPARE(TreeFiles::content(m_target).size(), before + 1);
}

void tst_Directories::everyNameGetsThrough_data()
{
    QTest::addColumn<QByteArray>("name");
    const auto names = TreeFiles::hardNames();
    for (const auto& [what, name] : names)
        QTest::newRow(what.constData()) << name;
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
    QDir target = folder(m_target);
    QVERIFY(QuenzoTool::removeRecursively(target));
    QVERIFY(!exists(m_target));
}

void tst_Directories::namesOfResourcesStayInTheTree()
{
    write(m_source + "/:x", "resource");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
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

void tst_Directories::linkToFileIsCopiedAsFile()
{
    write(m_root + "/elsewhere", "behind the link");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(move());
    QCOMPARE(TreeFiles::content(m_target).value("link"), QByteArray("file behind the link"));
    QVERIFY(!exists(m_source + "/link"));
    QVERIFY(exists(m_root + "/elsewhere"));
}

void tst_Directories::linkToFolderIsWalked()
{
    write(m_root + "/elsewhere/folder/file", "behind the link");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target).value("link/folder/file"), QByteArray("file behind the link"));
    QVERIFY(move());
    QVERIFY(TreeFiles::content(m_root + "/elsewhere").isEmpty());
    QVERIFY(exists(m_source + "/link"));
}

void tst_Directories::danglingLinkIsFalse()
{
    makeLink("nowhere", m_source + "/link");
    QVERIFY(!copy());
    QVERIFY(!move());
    QVERIFY(exists(m_source + "/link"));
    QVERIFY(TreeFiles::content(m_target).isEmpty());
}

void tst_Directories::linkToParentEndsAfterFortyLevels()
{
    makeLink(".", m_source + "/again");
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::content(m_target).size(), 40);
}

// In the order described each file is gone when the next one is looked at.
void tst_Directories::linkToMovedFileDangles()
{
    write(m_source + "/file");
    makeLink("file", m_source + "/link");
    const QStringList listed = QDir(QFile::decodeName(m_source)).entryList(QDir::Files, QDir::Unsorted);
    QCOMPARE(move(), listed.first() == QLatin1String("link"));
    QVERIFY(!exists(m_source + "/file"));
    QVERIFY(exists(m_target + "/file"));
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

void tst_Directories::targetInsideSourceTouchesNothing_data()
{
    QTest::addColumn<QByteArray>("inner");
    QTest::addColumn<bool>("isThere");
    for (const char* inner : {"/target", "/folder/target"}) {
        QTest::addRow("%s missing", inner) << QByteArray(inner) << false;
        QTest::addRow("%s there", inner) << QByteArray(inner) << true;
    }
}

void tst_Directories::targetInsideSourceTouchesNothing()
{
    QFETCH(QByteArray, inner);
    QFETCH(bool, isThere);
    write(m_source + "/file");
    write(m_source + "/folder/file");
    m_target = m_source + inner;
    if (isThere)
        makeFolder(m_target);
    const auto before = TreeFiles::content(m_source);
    QVERIFY(!copy());
    QVERIFY(!move());
    QCOMPARE(TreeFiles::content(m_source), before);
    // The same by another name of the source.
    makeLink("source", m_root + "/alias");
    m_source = m_root + "/alias";
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::content(m_root + "/source"), before);
}

void tst_Directories::targetReachedThroughALinkEndsTheWalk()
{
    m_target = m_root + "/elsewhere/target";
    write(m_root + "/elsewhere/file");
    makeFolder(m_target);
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(!copy());
    QVERIFY(TreeFiles::content(m_target).isEmpty());
}

void tst_Directories::linkIntoTheTargetEndsTheWalk_data()
{
    QTest::addColumn<bool>("isMove");
    QTest::newRow("copy") << false;
    QTest::newRow("move") << true;
}

// To a folder that the walk itself makes and is in: it would copy what it writes.
void tst_Directories::linkIntoTheTargetEndsTheWalk()
{
    QFETCH(bool, isMove);
    write(m_source + "/folder/inner/file", "only once");
    makeLink("../../target/folder", m_source + "/folder/link");
    QVERIFY(isMove ? !move() : !copy());
    int files = 0;
    const auto after = TreeFiles::content(m_root);
    for (auto entry = after.cbegin(); entry != after.cend(); ++entry)
        files += entry.value() == "file only once" ? 1 : 0;
    QVERIFY2(files == 1 || (files == 2 && !isMove), QByteArray::number(files).constData());
    QVERIFY(after.size() < 10);
}

void tst_Directories::linkToAnotherFolderOfTheTargetIsWalked()
{
    write(m_target + "/other/file", "there before");
    makeFolder(m_source + "/folder");
    makeLink("../../target/other", m_source + "/folder/link");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::read(m_target + "/folder/link/file"), QByteArray("there before"));
}

void tst_Directories::folderIsNotCopiedOntoItself_data()
{
    QTest::addColumn<QByteArray>("alias");
    QTest::newRow("same path") << QByteArray("/source");
    QTest::newRow("link") << QByteArray("/alias");
}

void tst_Directories::folderIsNotCopiedOntoItself()
{
    QFETCH(QByteArray, alias);
    write(m_source + "/file");
    write(m_source + "/folder/file");
    makeLink("source", m_root + "/alias");
    m_target = m_root + alias;
    const auto before = TreeFiles::content(m_source);
    QVERIFY(!copy());
    QVERIFY(!move());
    QVERIFY(!copy(false));
    QCOMPARE(TreeFiles::content(m_source), before);
}

void tst_Directories::linkToItsOwnTargetIsSpared()
{
    write(m_target + "/file", "the only one");
    makeLink("../target/file", m_source + "/file");
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("the only one"));
}

void tst_Directories::hardLinkIsReplaced()
{
    write(m_source + "/file", "shared");
    makeFolder(m_target);
    const QByteArray source = m_source + "/file";
    const QByteArray target = m_target + "/file";
    QCOMPARE(link(source.constData(), target.constData()), 0);
    QVERIFY(move());
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("shared"));
}

void tst_Directories::sourceInsideTargetIsMovedUp()
{
    for (int i = 0; i < 100; ++i) {
        const QByteArray number = QByteArray::number(i);
        write(m_source + "/file" + number, "inner " + number);
        write(m_source + "/source/deeper" + number, "deeper " + number);
    }
    m_target = m_root;
    QVERIFY(move());
    const auto after = TreeFiles::content(m_root);
    for (int i = 0; i < 100; ++i) {
        const QByteArray number = QByteArray::number(i);
        QCOMPARE(after.value("file" + number), "file inner " + number);
        QCOMPARE(after.value("source/deeper" + number), "file deeper " + number);
    }
    QCOMPARE(after.size(), 201);
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

void tst_Directories::deepTreeIsCopiedMovedAndRemoved()
{
    QByteArray deepest = m_source;
    for (int i = 0; i < 800; ++i)
        deepest += "/n";
    write(deepest + "/file", "deep");
    write(m_source + "/n/n/n/side", "side");
    const auto before = TreeFiles::content(m_source);
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(move());
    QCOMPARE(TreeFiles::content(m_target), before);
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QDir target = folder(m_target);
    QVERIFY(QuenzoTool::removeRecursively(target));
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
    worker.StartOperate(static_cast<THREAD_OPERATE>(operate),
                        QVariantMap{{QStringLiteral("src"), QFile::decodeName(m_source)},
                                    {QStringLiteral("dest"), QFile::decodeName(m_target)}});
    worker.start();
    QVERIFY(worker.wait());
    QCOMPARE(worker.getResult(), QVariant(false));
    QDir source = folder(m_source);
    QDir target = folder(m_target);
    QVERIFY(QuenzoTool::removeRecursively(source));
    QVERIFY(QuenzoTool::removeRecursively(target));
}

void tst_Directories::tooDeepTreeForTheStackIsNotChanged()
{
    makeDeepest();
    QDir source = folder(m_source);
    bool changed = true;
    const std::unique_ptr<QThread> thread(QThread::create([&changed, &source] {
        changed = QuenzoTool::changePermessionRecursively(source) || QuenzoTool::removeRecursively(source);
    }));
    thread->setStackSize(smallStack);
    thread->start();
    QVERIFY(thread->wait());
    QVERIFY(!changed);
    QVERIFY(QuenzoTool::removeRecursively(source));
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
    QVERIFY(QDir::setCurrent(m_folder->path()));
    const bool copied = QuenzoTool::copyDirectory(QDir(QStringLiteral("source")),
                                                  QDir(QStringLiteral("./target/")), false, false);
    QDir::setCurrent(before);
    QVERIFY(copied);
    QVERIFY(exists(m_target + "/folder/file"));
}

void tst_Directories::changeOfMissingFolderIsTrue()
{
    QDir missing = folder(m_root + "/missing");
    QVERIFY(QuenzoTool::changePermessionRecursively(missing));
    QCOMPARE(m_messages->takeDebugTexts(), QStringList());
}

void tst_Directories::changeTellsEveryStep()
{
    write(m_source + "/folder/\"file\"");
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::changePermessionRecursively(source));
    QCOMPARE(TreeFiles::mode(m_source + "/folder/\"file\""), 0002);
    QCOMPARE(TreeFiles::mode(m_source + "/folder"), 0755);
    const QVector<LoggedMessage> messages = m_messages->take();
    QStringList texts;
    for (const LoggedMessage& message : messages) {
        QCOMPARE(message.type, QtDebugMsg);
        QCOMPARE(message.file, QStringLiteral("QuenzoTool/source/quenzotool"));
        QCOMPARE(message.function,
                 QStringLiteral("bool __cdecl QuenzoTool::changePermessionRecursively(class QDir &)"));
        texts.append(message.text);
    }
    const QString path = QFile::decodeName(m_source) + QStringLiteral("/folder");
    QCOMPARE(texts, QStringList({path, path + QStringLiteral("/\"file\""), QStringLiteral("true")}));
}

void tst_Directories::changeTellsOfReadOnlyFiles()
{
    write(m_source + "/file");
    setMode(m_root, 0777);
    setMode(m_source + "/file", 0444);
    QVERIFY(TreeFiles::asPlainUser([this] {
        QDir source = folder(m_source);
        const QString path = QFile::decodeName(m_source) + QStringLiteral("/file");
        return QuenzoTool::changePermessionRecursively(source)
            && m_messages->takeDebugTexts() == QStringList({path, QStringLiteral("false")});
    }));
}

void tst_Directories::changeFollowsLinks()
{
    write(m_root + "/file");
    write(m_root + "/elsewhere/file");
    makeLink("../file", m_source + "/link");
    makeLink("../elsewhere", m_source + "/linked");
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::changePermessionRecursively(source));
    QCOMPARE(TreeFiles::mode(m_root + "/file"), 0002);
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0002);
}

void tst_Directories::changeEndsInLoopsOfLinks()
{
    write(m_source + "/folder/file");
    makeLink(".", m_source + "/one");
    makeLink(".", m_source + "/two");
    makeLink("..", m_source + "/folder/three");
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::changePermessionRecursively(source));
    QCOMPARE(TreeFiles::mode(m_source + "/folder/file"), 0002);
}

void tst_Directories::removalOfMissingFolderIsTrue()
{
    QDir missing = folder(m_root + "/missing");
    QVERIFY(QuenzoTool::removeRecursively(missing));
}

void tst_Directories::removalTakesReadOnlyFiles()
{
    write(m_source + "/file");
    write(m_source + "/folder/file");
    setMode(m_source + "/folder/file", 0444);
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::removeRecursively(source));
    QVERIFY(!exists(m_source));
}

void tst_Directories::removalLeavesWhatLinksLeadTo()
{
    write(m_root + "/elsewhere/file", "kept");
    makeLink("../elsewhere", m_source + "/link");
    makeLink("nowhere", m_source + "/dangling");
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::removeRecursively(source));
    QVERIFY(!exists(m_source));
    QVERIFY(exists(m_root + "/elsewhere/file"));
}

void tst_Directories::removalThroughALinkIsFalse()
{
    write(m_source + "/file");
    makeLink("source", m_root + "/link");
    QDir source = folder(m_root + "/link");
    QVERIFY(!QuenzoTool::removeRecursively(source));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QVERIFY(exists(m_root + "/link"));
}

void tst_Directories::removalReportsWhatStays()
{
    write(m_source + "/locked/file");
    write(m_source + "/free/file");
    setMode(m_root, 0777);
    setMode(m_source, 0777);
    setMode(m_source + "/free", 0777);
    setMode(m_source + "/locked", 0555);
    QVERIFY(TreeFiles::asPlainUser([this] {
        QDir source = folder(m_source);
        return !QuenzoTool::removeRecursively(source);
    }));
    QVERIFY(!exists(m_source + "/free/file"));
    QVERIFY(exists(m_source + "/locked/file"));
    setMode(m_source + "/locked", 0755);
}

void tst_Directories::removalWithoutFreeHandlesIsFalse()
{
    write(m_source + "/file");
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{3, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    QDir source = folder(m_source);
    const bool removed = QuenzoTool::removeRecursively(source);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
    QVERIFY(!removed);
    QVERIFY(exists(m_source + "/file"));
}

void tst_Directories::removalTakesFoldersOfManyFiles()
{
    for (int i = 0; i < 1001; ++i)
        write(m_source + "/folder" + QByteArray::number(i % 3) + "/file" + QByteArray::number(i));
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::removeRecursively(source));
    QVERIFY(!exists(m_source));
}

QTEST_GUILESS_MAIN(tst_Directories)
#include "tst_directories.moc"
