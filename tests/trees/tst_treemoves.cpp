// SPDX-License-Identifier: MIT
// When the sources of a move go, and when they stay.
#include <quenzotool.h>
#include <threadcommon.h>

#include "faultycalls.h"
#include "messagelog.h"
#include "runroot.h"
#include "treefiles.h"
#include "treeruns.h"

#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::makeFolder;
using TreeFiles::write;
using namespace TreeRuns;
using Tree = QMap<QByteArray, QByteArray>;

class tst_TreeMoves : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { FaultyCalls::heal(); }

    void failedFlushKeepsTheSources_data();
    void failedFlushKeepsTheSources();
    void failedFlushIsLoggedWithAFileThatAwaitedIt();
    void flushComesBeforeRemoval_data();
    void flushComesBeforeRemoval();
    void sourcesThatCannotBeRemovedStay_data();
    void sourcesThatCannotBeRemovedStay();
    void sourceThatChangedSinceItsCopyStays_data();
    void sourceThatChangedSinceItsCopyStays();
    void sourceFolderThatChangedIsToldWithTheReason_data();
    void sourceFolderThatChangedIsToldWithTheReason();
    void moveWithinAFullDiskSucceeds_data();
    void moveWithinAFullDiskSucceeds();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_source;
    QByteArray m_target;
};

void tst_TreeMoves::init()
{
    RunRoot::clear();
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    m_source = QFile::encodeName(m_folder->path()) + "/source";
    m_target = QFile::encodeName(m_folder->path()) + "/target";
    makeFolder(m_source);
}

void tst_TreeMoves::failedFlushKeepsTheSources_data()
{
    addEveryMove();
}

void tst_TreeMoves::failedFlushKeepsTheSources()
{
    QFETCH(Manner, manner);
    for (int i = 0; i < 60; ++i)
        write(m_source + "/folder/file" + QByteArray::number(i), "kept");
    const Tree before = content(m_source);
    FaultyCalls::failFromNth(FaultyCalls::Flushing, 1, EIO);
    QVERIFY(!transfer(m_source, m_target, manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_source), before);
    QCOMPARE(RunRoot::log().count("Copy Fail:"), manner == CutForOutput ? 1 : 0);
}

// More files than a move keeps waiting: the flush is in their midst.
void tst_TreeMoves::failedFlushIsLoggedWithAFileThatAwaitedIt()
{
    constexpr int many = 33 * 1024;
    for (int i = 0; i < many; ++i)
        write(m_source + "/file" + QByteArray::number(i), {});
    FaultyCalls::failFromNth(FaultyCalls::Flushing, 1, EIO);
    QVERIFY(!transfer(m_source, m_target, CutForOutput));
    FaultyCalls::heal();
    const QByteArray log = RunRoot::log();
    QCOMPARE(log.count("Copy Fail:"), 1);
    const QByteArray source = log.mid(log.indexOf("Src:") + 4).split('\r').first();
    const QByteArray target = log.mid(log.indexOf("Dest:") + 5).split('\r').first();
    QVERIFY2(exists(source) && exists(target), log.constData());
    QCOMPARE(source.mid(m_source.size()), target.mid(m_target.size()));
}

void tst_TreeMoves::flushComesBeforeRemoval_data()
{
    addEveryMove();
}

void tst_TreeMoves::flushComesBeforeRemoval()
{
    QFETCH(Manner, manner);
    for (int i = 0; i < 60; ++i)
        write(m_source + "/file" + QByteArray::number(i));
    FaultyCalls::startCounting();
    QVERIFY(transfer(m_source, m_target, manner));
    QCOMPARE(FaultyCalls::count(FaultyCalls::Flushing), 1);
    QCOMPARE(FaultyCalls::linksBeforeFlush(), 60);
    QCOMPARE(FaultyCalls::removalsBeforeFlush(), 0);
    QCOMPARE(FaultyCalls::count(FaultyCalls::Removing), 60);
    FaultyCalls::startCounting();
    QVERIFY(transfer(m_target, m_source, Copy));
    QCOMPARE(FaultyCalls::count(FaultyCalls::Flushing), 0);
}

void tst_TreeMoves::sourcesThatCannotBeRemovedStay_data()
{
    addEveryMove();
}

void tst_TreeMoves::sourcesThatCannotBeRemovedStay()
{
    QFETCH(Manner, manner);
    for (int i = 0; i < 60; ++i)
        write(m_source + "/file" + QByteArray::number(i), "copied");
    const Tree before = content(m_source);
    FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EPERM);
    QVERIFY(transfer(m_source, m_target, manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_source), before);
    QCOMPARE(content(m_target), before);
}

void tst_TreeMoves::sourceThatChangedSinceItsCopyStays_data()
{
    QTest::addColumn<Manner>("manner");
    QTest::addColumn<QByteArray>("change");
    for (const auto& [manner, what] : {everyWay[1], everyWay[2]}) {
        for (const char* change : {"appended", "overwritten", "replaced", "cut short"})
            QTest::addRow("%s, %s", what, change) << manner << QByteArray(change);
    }
}

// Between the copy of a file and its removal is a flush, which takes its time.
void tst_TreeMoves::sourceThatChangedSinceItsCopyStays()
{
    QFETCH(Manner, manner);
    QFETCH(QByteArray, change);
    for (int i = 0; i < 60; ++i)
        write(m_source + "/folder/file" + QByteArray::number(i), "as it was");
    const QByteArray file = m_source + "/folder/file7";
    const Tree before = content(m_source);
    QTest::qWait(20); // the file system's clock may tick that slowly
    FaultyCalls::actBeforeNth(FaultyCalls::Flushing, 1, [&] {
        if (change == "appended") {
            TreeFiles::writeAt(file, 9, ", and more");
        } else if (change == "overwritten") {
            TreeFiles::writeAt(file, 0, "AS");
        } else if (change == "cut short") {
            QCOMPARE(truncate(file.constData(), 2), 0);
        } else {
            // By one of the same size and time.
            struct stat status { };
            QCOMPARE(stat(file.constData(), &status), 0);
            const QByteArray other = m_folder->path().toUtf8() + "/other";
            write(other, "is others");
            const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
            QCOMPARE(utimensat(AT_FDCWD, other.constData(), times.data(), 0), 0);
            QCOMPARE(rename(other.constData(), file.constData()), 0);
        }
    });
    QVERIFY(transfer(m_source, m_target, manner));
    QVERIFY(FaultyCalls::wasHit());
    // A cut for output forces other rights upon a folder that stays.
    QVERIFY(chmod(QByteArray(m_source + "/folder").constData(), 0755) == 0);
    const Tree left = content(m_source);
    QCOMPARE(left.keys(), QList<QByteArray>({"folder", "folder/file7"}));
    const QMap<QByteArray, QByteArray> changed{{"appended", "as it was, and more"},
                                               {"overwritten", "AS it was"},
                                               {"replaced", "is others"},
                                               {"cut short", "as"}};
    QCOMPARE(left.value("folder/file7"), "file " + changed.value(change));
    QCOMPARE(content(m_target), before);
}

void tst_TreeMoves::sourceFolderThatChangedIsToldWithTheReason_data()
{
    QTest::addColumn<bool>("replaced");
    QTest::addColumn<QString>("reason");
    QTest::newRow("gone") << false << QStringLiteral("No such file or directory");
    QTest::newRow("another") << true << QStringLiteral("it is no longer the folder that was copied");
}

void tst_TreeMoves::sourceFolderThatChangedIsToldWithTheReason()
{
    QFETCH(bool, replaced);
    QFETCH(QString, reason);
    const QByteArray moved = m_source + "/folder";
    const QByteArray elsewhere = QFile::encodeName(m_folder->path()) + "/elsewhere";
    write(moved + "/file", "copied");
    FaultyCalls::actBeforeNth(FaultyCalls::Flushing, 1, [&] {
        QCOMPARE(rename(moved.constData(), elsewhere.constData()), 0);
        if (replaced)
            write(moved + "/file", "another");
    });
    MessageLog messages;
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.trees.warning=true"));
    const bool done = transfer(m_source, m_target, Move);
    QLoggingCategory::setFilterRules({});
    QVERIFY(done && FaultyCalls::wasHit());
    const QString line =
        QStringLiteral("'%1' could not be emptied: %2").arg(QFile::decodeName(moved), reason);
    const QStringList told = messages.takeWarnings();
    QVERIFY2(told.contains(line), qUtf8Printable(told.join(QLatin1Char('\n'))));
    QCOMPARE(TreeFiles::read(elsewhere + "/file"), QByteArray("copied"));
    QCOMPARE(exists(moved + "/file"), replaced);
}

void tst_TreeMoves::moveWithinAFullDiskSucceeds_data()
{
    addEveryMove();
}

// Removed one after the other, the sources make the room that the next files need.
void tst_TreeMoves::moveWithinAFullDiskSucceeds()
{
    QFETCH(Manner, manner);
    const QByteArray root = QFile::encodeName(m_folder->path()) + "/small";
    const Mount disk = Mount::smallDisk(root, "size=2m");
    if (!disk.isMounted)
        QSKIP("only root can make a small disk");
    for (int i = 0; i < 60; ++i)
        write(root + "/source/file" + QByteArray::number(i), QByteArray(30000, 'x'));
    const Tree before = content(root + "/source");
    QVERIFY(transfer(root + "/source", root + "/target", manner));
    QCOMPARE(content(root + "/target"), before);
    QVERIFY(content(root + "/source").isEmpty());
}

QTEST_GUILESS_MAIN(tst_TreeMoves)
#include "tst_treemoves.moc"
