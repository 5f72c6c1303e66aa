// SPDX-License-Identifier: MIT
#include <quenzotool.h>
#include <threadcommon.h>

#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QEventLoop>
#include <QtTest>

#include <algorithm>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;

namespace {

/** Lets a test see and reach what a subclass may. */
class Worker : public ThreadCommon {
public:
    using ThreadCommon::execMigrateData;
    using ThreadCommon::m_exceptDir;
    using ThreadCommon::m_filterList;
    using ThreadCommon::m_outputDir;

    QVariant perform(THREAD_OPERATE operate, const QVariant& param)
    {
        if (!StartOperate(operate, param))
            return QStringLiteral("refused");
        start();
        wait();
        return getResult();
    }
};

/** Is to end before it has begun. */
class InterruptedWorker : public Worker {
protected:
    void run() override
    {
        requestInterruption();
        ThreadCommon::run();
    }
};

} // namespace

class tst_ThreadCommon : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void codesAreFixed();
    void freshObjectHasNoResult();
    void copyMakesTheDestinationWithItsParents();
    void copyReplacesAndKeepsTheSource();
    void cutDoesNotMakeParents();
    void cutLeavesTheTopFolder();
    void missingSourceCountsAsEmpty();
    void parameterThatIsNoMapIsFalse_data();
    void parameterThatIsNoMapIsFalse();
    void unknownOperationKeepsTheResult();
    void unstartedOperationDoesNothing();
    void finishedComesAfterTheResult();
    void interruptionEndsAnOperation_data();
    void interruptionEndsAnOperation();

    void filterLeavesTopNamesInAnyCase();
    void filterIsNotTrimmed();
    void emptyFilterMovesEverything();
    void filterOfAnEarlierRunIsUsedAgain();
    void outputElsewhereKeepsExceptDir();
    void outputInsideTheSourceAsDescribed();
    void foldersOfTheOutputStay();
    void siblingWithTheSameBeginningIsTakenForInner();
    void equalFoldersLoseAFileAndFail();
    void linkToItsOwnTargetLosesThatFile();
    void linkGoesThoughItsTargetIsReplaced();
    void readOnlyFileAtTheDestinationIsReplaced();
    void missingParentOfTheDestinationMovesNothing();
    void failedCopyIsLogged();
    void failureKeepsWhatWasMoved();
    void linkedFolderIsEmptiedAndGetsOtherRights();
    void migrationHasNoExclusions();
    void exceptCutSparesFoldersOfExceptDir();
    void runawayEndsWithoutLoss_data();
    void runawayEndsWithoutLoss();

private:
    QVariantMap folders(const QString& filter = {}) const;
};

QVariantMap tst_ThreadCommon::folders(const QString& filter) const
{
    QVariantMap map = TreeFixture::folders();
    map.insert(QStringLiteral("extra"), 1);
    if (!filter.isNull())
        map.insert(QStringLiteral("filter"), filter);
    return map;
}

void tst_ThreadCommon::codesAreFixed()
{
    QCOMPARE(int(OPERATE_COPY), 0);
    QCOMPARE(int(OPERATE_CUT), 1);
    QCOMPARE(int(OPERATE_CUT_OUTPUT), 2);
    QCOMPARE(sizeof(THREAD_OPERATE), std::size_t(4));
    Worker worker;
    QVERIFY(worker.qt_metacast("ThreadCommon") != nullptr);
}

void tst_ThreadCommon::freshObjectHasNoResult()
{
    Worker worker;
    QVERIFY(!worker.getResult().isValid());
    QVERIFY(worker.StartOperate(OPERATE_COPY, QVariant()));
    QVERIFY(!worker.isRunning());
    QVERIFY(!worker.getResult().isValid());
}

void tst_ThreadCommon::copyMakesTheDestinationWithItsParents()
{
    write(m_source + "/folder/file", "content");
    m_target = m_root + "/several/missing/parents";
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_COPY, folders()), QVariant(true));
    QCOMPARE(TreeFiles::content(m_target), TreeFiles::content(m_source));
}

void tst_ThreadCommon::copyReplacesAndKeepsTheSource()
{
    write(m_source + "/file", "new");
    write(m_target + "/file", "old");
    write(m_target + "/other", "other");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_COPY, folders()), QVariant(true));
    QCOMPARE(TreeFiles::content(m_target), Tree({{"file", "file new"}, {"other", "file other"}}));
    QVERIFY(exists(m_source + "/file"));
}

void tst_ThreadCommon::cutDoesNotMakeParents()
{
    write(m_source + "/file");
    m_target = m_root + "/missing/target";
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT, folders()), QVariant(false));
    QVERIFY(exists(m_source + "/file"));
    QVERIFY(!exists(m_root + "/missing"));
    m_target = m_root + "/target";
    QCOMPARE(worker.perform(OPERATE_CUT, folders()), QVariant(true));
    QVERIFY(exists(m_target + "/file"));
}

void tst_ThreadCommon::cutLeavesTheTopFolder()
{
    write(m_source + "/folder/file", "1");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT, folders()), QVariant(true));
    QVERIFY(exists(m_source));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QCOMPARE(TreeFiles::content(m_target), Tree({{"folder", "folder"}, {"folder/file", "file 1"}}));
}

void tst_ThreadCommon::missingSourceCountsAsEmpty()
{
    m_source = m_root + "/missing";
    for (const THREAD_OPERATE operate : {OPERATE_COPY, OPERATE_CUT, OPERATE_CUT_OUTPUT}) {
        Worker worker;
        QCOMPARE(worker.perform(operate, folders()), QVariant(true));
        QCOMPARE(TreeFiles::content(m_root), Tree({{"source", "folder"}, {"target", "folder"}}));
        QVERIFY(worker.exceptCut(QFile::decodeName(m_source), QFile::decodeName(m_root + "/not made"), {}));
        QCOMPARE(rmdir(m_target.constData()), 0);
    }
    QVERIFY(!exists(m_root + "/not made"));
    QVERIFY(RunRoot::log().isEmpty());
}

void tst_ThreadCommon::parameterThatIsNoMapIsFalse_data()
{
    QTest::addColumn<QVariant>("param");
    QTest::newRow("invalid") << QVariant();
    QTest::newRow("text") << QVariant(QStringLiteral("src"));
    QTest::newRow("empty map") << QVariant(QVariantMap());
    QTest::newRow("no dest") << QVariant(QVariantMap{{QStringLiteral("src"), QStringLiteral("/")}});
    QTest::newRow("no src") << QVariant(QVariantMap{{QStringLiteral("dest"), QStringLiteral("/")}});
    QTest::newRow("other case") << QVariant(QVariantMap{{QStringLiteral("SRC"), QStringLiteral("/")},
                                                        {QStringLiteral("Dest"), QStringLiteral("/")}});
}

void tst_ThreadCommon::parameterThatIsNoMapIsFalse()
{
    QFETCH(QVariant, param);
    for (const THREAD_OPERATE operate : {OPERATE_COPY, OPERATE_CUT, OPERATE_CUT_OUTPUT}) {
        Worker worker;
        QCOMPARE(worker.perform(operate, param), QVariant(false));
        QCOMPARE(worker.m_outputDir, QString());
    }
    Worker worker;
    worker.StartOperate(OPERATE_COPY, param);
    worker.execMigrateData();
    QCOMPARE(worker.getResult(), QVariant(false));
    QVERIFY(RunRoot::log().isEmpty());
}

void tst_ThreadCommon::unknownOperationKeepsTheResult()
{
    Worker worker;
    QVERIFY(!worker.perform(static_cast<THREAD_OPERATE>(3), folders()).isValid());
    QCOMPARE(worker.perform(OPERATE_COPY, folders()), QVariant(true));
    QCOMPARE(worker.perform(static_cast<THREAD_OPERATE>(4), QVariant()), QVariant(true));
    QCOMPARE(worker.perform(static_cast<THREAD_OPERATE>(-1), QVariant()), QVariant(true));
}

void tst_ThreadCommon::unstartedOperationDoesNothing()
{
    Worker worker;
    worker.start();
    QVERIFY(worker.wait());
    QVERIFY(!worker.getResult().isValid());
}

void tst_ThreadCommon::finishedComesAfterTheResult()
{
    write(m_source + "/file");
    Worker worker;
    QEventLoop loop;
    connect(&worker, &QThread::finished, &loop, &QEventLoop::quit);
    worker.StartOperate(OPERATE_COPY, folders());
    worker.start();
    loop.exec();
    QCOMPARE(worker.getResult(), QVariant(true));
}

void tst_ThreadCommon::interruptionEndsAnOperation_data()
{
    QTest::addColumn<int>("operate");
    QTest::newRow("copy") << int(OPERATE_COPY);
    QTest::newRow("cut") << int(OPERATE_CUT);
    QTest::newRow("cut for output") << int(OPERATE_CUT_OUTPUT);
}

void tst_ThreadCommon::interruptionEndsAnOperation()
{
    QFETCH(const int, operate);
    TreeFiles::writeMany(m_source + "/file", 10, "stays");
    makeFolder(m_source + "/folder");
    write(m_source + "/folder/file", "stays");
    const Tree before = TreeFiles::content(m_source);
    InterruptedWorker worker;
    QCOMPARE(worker.perform(THREAD_OPERATE(operate), folders()), QVariant(false));
    QCOMPARE(TreeFiles::content(m_source), before);
    const auto arrived = TreeFiles::content(m_target).values();
    QVERIFY2(std::none_of(arrived.cbegin(), arrived.cend(),
                          [](const QByteArray& value) { return value.startsWith("file "); }),
             QByteArrayList(arrived).join("\n").constData());
}

void tst_ThreadCommon::filterLeavesTopNamesInAnyCase()
{
    write(m_source + "/log/file", "stays");
    write(m_source + "/BUILD", "stays");
    write(m_source + "/folder/log/file", "moves");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders(QStringLiteral("Log,build"))), QVariant(true));
    QCOMPARE(TreeFiles::content(m_source),
             Tree({{"log", "folder"}, {"log/file", "file stays"}, {"BUILD", "file stays"}}));
    QCOMPARE(TreeFiles::content(m_target).value("folder/log/file"), QByteArray("file moves"));
}

void tst_ThreadCommon::filterIsNotTrimmed()
{
    write(m_source + "/a", "stays");
    write(m_source + "/b", "moves");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders(QStringLiteral("a, b"))), QVariant(true));
    QCOMPARE(TreeFiles::content(m_source), Tree({{"a", "file stays"}}));
    QCOMPARE(worker.m_filterList, QStringList({QStringLiteral("a"), QStringLiteral(" b")}));
}

void tst_ThreadCommon::emptyFilterMovesEverything()
{
    write(m_source + "/a", "moves");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders(QStringLiteral(""))), QVariant(true));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QCOMPARE(worker.m_filterList, QStringList({QString()}));
}

void tst_ThreadCommon::filterOfAnEarlierRunIsUsedAgain()
{
    write(m_source + "/a", "stays");
    write(m_source + "/b", "moves");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders(QStringLiteral("a"))), QVariant(true));
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(TreeFiles::content(m_source), Tree({{"a", "file stays"}}));
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders(QStringLiteral("b"))), QVariant(true));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
}

void tst_ThreadCommon::outputElsewhereKeepsExceptDir()
{
    write(m_source + "/a");
    Worker worker;
    worker.m_exceptDir = QStringLiteral("as it was");
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(worker.m_exceptDir, QStringLiteral("as it was"));
    QCOMPARE(worker.m_outputDir, QFile::decodeName(m_target));
}

void tst_ThreadCommon::outputInsideTheSourceAsDescribed()
{
    makeFolder(m_source + "/a");
    makeFolder(m_source + "/b");
    // The output gets the mode 0002 when its turn comes, and a plain user brings nothing into it after that:
    // it is the folder listed last.
    const QStringList listed = folder(m_source).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    const QByteArray folder = QFile::encodeName(listed.first());
    const QByteArray out = QFile::encodeName(listed.last());
    m_target = m_source + '/' + out;
    write(m_source + '/' + folder + "/file", "moved");
    write(m_target + "/old.txt", "old");
    write(m_target + "/apk/game.apk", "game");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(TreeFiles::mode(m_target), 0002);
    setMode(m_target, 0755);
    QCOMPARE(TreeFiles::content(m_source),
             Tree({{out, "folder"},
                   {out + "/apk", "folder"},
                   {out + "/apk/game.apk", "file game"},
                   {out + '/' + folder, "folder"},
                   {out + '/' + folder + "/file", "file moved"},
                   {out + '/' + out, "folder"},
                   {out + '/' + out + "/old.txt", "file old"}}));
    QCOMPARE(worker.m_exceptDir, QFile::decodeName(m_target + '/' + out + '/' + out));
    // The inner walk gave up at its first file, whichever was listed first.
    QCOMPARE(RunRoot::log().count("Copy Fail:"), 1);
    const QByteArray inner = "\r\nDest:" + m_target + '/' + out + '/';
    QVERIFY2(RunRoot::log().contains(inner), RunRoot::log().constData());
}

void tst_ThreadCommon::foldersOfTheOutputStay()
{
    write(m_source + "/a/file", "1");
    m_target = m_source;
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(TreeFiles::content(m_source), Tree({{"a", "folder"}, {"a/file", "file 1"}}));
}

void tst_ThreadCommon::siblingWithTheSameBeginningIsTakenForInner()
{
    m_target = m_root + "/source2";
    write(m_source + "/file", "1");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(worker.m_exceptDir, QFile::decodeName(m_root + "/source22"));
    QCOMPARE(TreeFiles::content(m_target), Tree({{"file", "file 1"}}));
}

void tst_ThreadCommon::equalFoldersLoseAFileAndFail()
{
    for (const char* name : {"/1", "/2", "/3", "/4"})
        write(m_source + name);
    write(m_source + "/folder/file");
    m_target = m_source;
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    QCOMPARE(worker.m_exceptDir, QFile::decodeName(m_source));
    // One to the inner walk, one to the outer one.
    QCOMPARE(folder(m_source).entryList(QDir::Files).size(), 2);
    QVERIFY(exists(m_source + "/folder/file"));
    QCOMPARE(RunRoot::log().count("Copy Fail:"), 2);
}

void tst_ThreadCommon::linkToItsOwnTargetLosesThatFile()
{
    write(m_target + "/file", "lost");
    makeLink("../target/file", m_source + "/file");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    QVERIFY(TreeFiles::content(m_target).isEmpty());
    QVERIFY(exists(m_source + "/file"));
    QCOMPARE(RunRoot::log().count("Copy Fail:"), 1);
}

void tst_ThreadCommon::linkGoesThoughItsTargetIsReplaced()
{
    write(m_target + "/file", "old");
    // One of them is copied before the file, in most orders of a listing.
    makeLink("../target/file", m_source + "/first");
    write(m_source + "/file", "new, and longer");
    makeLink("../target/file", m_source + "/last");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QCOMPARE(TreeFiles::content(m_target).size(), 3);
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("new, and longer"));
}

void tst_ThreadCommon::readOnlyFileAtTheDestinationIsReplaced()
{
    write(m_source + "/file", "new");
    write(m_target + "/file", "old");
    const QByteArray old = m_target + "/file";
    setMode(old, 0444);
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(TreeFiles::read(old), QByteArray("new"));
}

void tst_ThreadCommon::missingParentOfTheDestinationMovesNothing()
{
    write(m_source + "/file");
    m_target = m_root + "/missing/target";
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    QVERIFY(exists(m_source + "/file"));
    QVERIFY(RunRoot::log().isEmpty());
}

void tst_ThreadCommon::failedCopyIsLogged()
{
    m_target = m_root + "/out%2put";
    makeLink("nowhere", m_source + "/%1link");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    const QByteArray entry =
        " Copy Fail:\r\nSrc:" + m_source + "/%1link\r\nDest:" + m_target + "/%1link\r\n\n";
    QVERIFY2(RunRoot::log().endsWith(entry), RunRoot::log().constData());
    QVERIFY(exists(m_source + "/%1link"));
}

void tst_ThreadCommon::failureKeepsWhatWasMoved()
{
    TreeFiles::writeMany(m_source + "/file", 100, "moved");
    makeLink("nowhere", m_source + "/link");
    const QStringList listed = folder(m_source).entryList(QDir::Files | QDir::System, QDir::Unsorted);
    const int before = listed.indexOf(QStringLiteral("link"));
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    QCOMPARE(TreeFiles::content(m_target).size(), before);
    QCOMPARE(TreeFiles::content(m_source).size(), 101 - before);
}

void tst_ThreadCommon::linkedFolderIsEmptiedAndGetsOtherRights()
{
    write(m_root + "/elsewhere/file", "1");
    makeLink("../elsewhere", m_source + "/link");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(true));
    QCOMPARE(TreeFiles::content(m_target), Tree({{"link", "folder"}, {"link/file", "file 1"}}));
    QVERIFY(exists(m_source + "/link"));
    const QByteArray elsewhere = m_root + "/elsewhere";
    QCOMPARE(TreeFiles::mode(elsewhere), 0002);
    setMode(elsewhere, 0755);
    QVERIFY(TreeFiles::content(elsewhere).isEmpty());
}

void tst_ThreadCommon::migrationHasNoExclusions()
{
    write(m_source + "/a", "1");
    Worker worker;
    worker.m_filterList = QStringList({QStringLiteral("a")});
    worker.m_outputDir = QStringLiteral("/as it was");
    worker.StartOperate(OPERATE_COPY, folders());
    worker.execMigrateData();
    QCOMPARE(worker.getResult(), QVariant(true));
    QCOMPARE(TreeFiles::content(m_target), Tree({{"a", "file 1"}}));
    QCOMPARE(worker.m_outputDir, QStringLiteral("/as it was"));
}

void tst_ThreadCommon::exceptCutSparesFoldersOfExceptDir()
{
    write(m_source + "/file", "1");
    write(m_source + "/folder/file", "2");
    makeFolder(m_target);
    Worker worker;
    worker.m_exceptDir = QFile::decodeName(m_source);
    QVERIFY(
        worker.exceptCut(QFile::decodeName(m_source), QFile::decodeName(m_target), QStringLiteral("any")));
    QCOMPARE(TreeFiles::content(m_source), Tree({{"folder", "folder"}, {"folder/file", "file 2"}}));
    // A target that is missing is not made.
    worker.m_exceptDir.clear();
    QVERIFY(!worker.exceptCut(QFile::decodeName(m_source), QFile::decodeName(m_target), QString()));
    QVERIFY(exists(m_source + "/folder/file"));
}

void tst_ThreadCommon::runawayEndsWithoutLoss_data()
{
    QTest::addColumn<QByteArray>("dest");
    QTest::newRow("trailing slash") << QByteArray("/source/out/");
    QTest::newRow("detour") << QByteArray("/source/./out");
}

void tst_ThreadCommon::runawayEndsWithoutLoss()
{
    QFETCH(QByteArray, dest);
    m_target = m_root + dest;
    for (const char* name : {"/a/1", "/b/2", "/b/c/3", "/4"})
        write(m_source + name, name);
    write(m_source + "/out/5", "/out/5");
    Worker worker;
    QCOMPARE(worker.perform(OPERATE_CUT_OUTPUT, folders()), QVariant(false));
    QStringList found;
    const auto values = TreeFiles::content(m_source).values();
    for (const QByteArray& value : values) {
        if (value.startsWith("file "))
            found.append(QString::fromUtf8(value.mid(5)));
    }
    found.sort();
    QVERIFY(remove(m_source)); // much faster than what the temporary folder would do
    QCOMPARE(found.join(QLatin1Char(' ')), QStringLiteral("/4 /a/1 /b/2 /b/c/3 /out/5"));
}

QTEST_GUILESS_MAIN(tst_ThreadCommon)
#include "tst_threadcommon.moc"
