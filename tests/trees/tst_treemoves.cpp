// SPDX-License-Identifier: MIT
// When the sources of a move go, and when they stay.

#include "faultycalls.h"
#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;
using TreeFiles::writeMany;
using namespace TreeRuns;

class tst_TreeMoves : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void failedFlushKeepsTheSources_data() { addEveryMove(); }
    void failedFlushKeepsTheSources();
    void failedFlushIsLoggedWithAFileThatAwaitedIt();
    void flushComesBeforeRemoval_data() { addEveryMove(); }
    void flushComesBeforeRemoval();
    void sourcesThatCannotBeRemovedStay_data() { addEveryMove(); }
    void sourcesThatCannotBeRemovedStay();
    void sourceThatChangedSinceItsCopyStays_data();
    void sourceThatChangedSinceItsCopyStays();
    void sourceFolderThatChangedIsToldWithTheReason_data();
    void sourceFolderThatChangedIsToldWithTheReason();
    void folderThatIsExchangedLeavesOthersTheirRights_data();
    void folderThatIsExchangedLeavesOthersTheirRights();
    void folderThatStaysKeepsItsRights();
    void moveWithinAFullDiskSucceeds_data() { addEveryMove(); }
    void moveWithinAFullDiskSucceeds();
};

void tst_TreeMoves::cleanup()
{
    FaultyCalls::heal();
    TreeFixture::cleanup();
}

void tst_TreeMoves::failedFlushKeepsTheSources()
{
    QFETCH(Manner, manner);
    writeMany(m_source + "/folder/file", 60, "kept");
    const Tree before = content(m_source);
    FaultyCalls::failFromNth(FaultyCalls::Flushing, 1, EIO);
    QVERIFY(!transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_source), before);
    QCOMPARE(RunRoot::log().count("Copy Fail:"), manner == CutForOutput ? 1 : 0);
}

// More files than a move keeps waiting: the flush is in their midst.
void tst_TreeMoves::failedFlushIsLoggedWithAFileThatAwaitedIt()
{
    constexpr int many = 33 * 1024;
    writeMany(m_source + "/file", many, {});
    FaultyCalls::failFromNth(FaultyCalls::Flushing, 1, EIO);
    QVERIFY(!transfer(CutForOutput));
    FaultyCalls::heal();
    const QByteArray log = RunRoot::log();
    QCOMPARE(log.count("Copy Fail:"), 1);
    const QByteArray source = log.mid(log.indexOf("Src:") + 4).split('\r').first();
    const QByteArray target = log.mid(log.indexOf("Dest:") + 5).split('\r').first();
    QVERIFY2(exists(source) && exists(target), log.constData());
    QCOMPARE(source.mid(m_source.size()), target.mid(m_target.size()));
}

void tst_TreeMoves::flushComesBeforeRemoval()
{
    QFETCH(Manner, manner);
    writeMany(m_source + "/file", 60);
    FaultyCalls::startCounting();
    QVERIFY(transfer(manner));
    QCOMPARE(FaultyCalls::count(FaultyCalls::Flushing), 1);
    QCOMPARE(FaultyCalls::linksBeforeFlush(), 60);
    QCOMPARE(FaultyCalls::removalsBeforeFlush(), 0);
    QCOMPARE(FaultyCalls::count(FaultyCalls::Removing), 60);
    FaultyCalls::startCounting();
    QVERIFY(TreeRuns::transfer(m_target, m_source, Copy));
    QCOMPARE(FaultyCalls::count(FaultyCalls::Flushing), 0);
}

void tst_TreeMoves::sourcesThatCannotBeRemovedStay()
{
    QFETCH(Manner, manner);
    writeMany(m_source + "/file", 60, "copied");
    const Tree before = content(m_source);
    FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EPERM);
    QVERIFY(transfer(manner));
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
    writeMany(m_source + "/folder/file", 60, "as it was");
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
            const QByteArray other = m_root + "/other";
            write(other, "is others");
            const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
            QCOMPARE(utimensat(AT_FDCWD, other.constData(), times.data(), 0), 0);
            QCOMPARE(rename(other.constData(), file.constData()), 0);
        }
    });
    QVERIFY(transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    // A cut for output forces other rights upon a folder that stays.
    setMode(m_source + "/folder", 0755);
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
    const QByteArray elsewhere = m_root + "/elsewhere";
    write(moved + "/file", "copied");
    FaultyCalls::actBeforeNth(FaultyCalls::Flushing, 1, [&] {
        QCOMPARE(rename(moved.constData(), elsewhere.constData()), 0);
        if (replaced)
            write(moved + "/file", "another");
    });
    const CategoryOn trees("quenzo.trees");
    QVERIFY(move());
    QVERIFY(FaultyCalls::wasHit());
    const QString line =
        QStringLiteral("'%1' could not be emptied: %2").arg(QFile::decodeName(moved), reason);
    QCOMPARE(m_messages->takeInfoTexts(), QStringList(line));
    QCOMPARE(TreeFiles::read(elsewhere + "/file"), QByteArray("copied"));
    QCOMPARE(exists(moved + "/file"), replaced);
}

void tst_TreeMoves::folderThatIsExchangedLeavesOthersTheirRights_data()
{
    QTest::addColumn<QByteArray>("exchanged");
    QTest::addColumn<int>("removal");
    QTest::addColumn<bool>("byLink");
    const QVector<QPair<QByteArray, int>> moments{{"emptied", 2}, {"left", 3}, {"left/link", 1}};
    for (const auto& [exchanged, removal] : moments) {
        for (const bool byLink : {true, false})
            QTest::addRow("%s, %s", exchanged.constData(), byLink ? "for a link" : "for a folder")
                << exchanged << removal << byLink;
    }
}

// A folder that is to go gets other rights if it resists, and so does what a link of the source leads to.
// Somebody else puts something else in its place in the very moment.
void tst_TreeMoves::folderThatIsExchangedLeavesOthersTheirRights()
{
    QFETCH(QByteArray, exchanged);
    QFETCH(int, removal);
    QFETCH(bool, byLink);
    const QByteArray folder = m_source + '/' + exchanged;
    const QByteArray prepared = m_root + "/outside";
    const QByteArray outside = byLink ? prepared : folder;
    const QByteArray aside = m_root + "/aside";
    write(prepared + "/file", "others'");
    if (exchanged == "emptied") {
        write(folder + "/file", "moved");
    } else { // one with a link in it is left
        makeFolder(m_source + "/left");
        makeFolder(m_root + "/elsewhere");
        makeLink("../../elsewhere", m_source + "/left/link");
    }
    FaultyCalls::actBeforeNth(FaultyCalls::Removing, removal, [&] {
        QCOMPARE(rename(folder.constData(), aside.constData()), 0);
        if (byLink)
            makeLink(prepared, folder);
        else
            QCOMPARE(rename(prepared.constData(), folder.constData()), 0);
    });
    const CategoryOn trees("quenzo.trees");
    QVERIFY(transfer(CutForOutput));
    QVERIFY(FaultyCalls::wasHit());
    if (exchanged == "left/link") // what the cut leaves lets nobody but root look behind it
        setMode(m_source + "/left", 0755);
    QCOMPARE(TreeFiles::mode(outside), 0755);
    QCOMPARE(content(outside), Tree({{"file", "file others'"}}));
    const QString reason = QStringLiteral("it is no longer the folder that was copied");
    const QString line =
        QStringLiteral("'%1' could not be removed: %2").arg(QFile::decodeName(folder), reason);
    const QStringList told = m_messages->takeInfoTexts();
    if (byLink)
        QVERIFY2(told.contains(line), qUtf8Printable(told.join(QLatin1Char('\n'))));
}

// A cut for output forces others upon it; a move does not.
void tst_TreeMoves::folderThatStaysKeepsItsRights()
{
    const QByteArray folder = m_source + "/folder";
    write(folder + "/file", "moved");
    setMode(folder, 0750);
    FaultyCalls::actBeforeNth(FaultyCalls::Flushing, 1,
                              [&] { write(folder + "/late", "written meanwhile"); });
    QVERIFY(move());
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(TreeFiles::mode(folder), 0750);
    QCOMPARE(content(m_source), Tree({{"folder", "folder"}, {"folder/late", "file written meanwhile"}}));
}

// Removed one after the other, the sources make the room that the next files need.
void tst_TreeMoves::moveWithinAFullDiskSucceeds()
{
    QFETCH(Manner, manner);
    const QByteArray root = m_root + "/small";
    const Mount disk = Mount::smallDisk(root, "size=2m");
    writeMany(root + "/source/file", 60, QByteArray(30000, 'x'));
    const Tree before = content(root + "/source");
    // Only root can make a small disk: for others it says once that it is full.
    if (!disk.isMounted)
        FaultyCalls::failNth(FaultyCalls::Copying, 40, ENOSPC);
    QVERIFY(TreeRuns::transfer(root + "/source", root + "/target", manner));
    QVERIFY(disk.isMounted || FaultyCalls::wasHit());
    QCOMPARE(content(root + "/target"), before);
    QVERIFY(content(root + "/source").isEmpty());
}

QTEST_GUILESS_MAIN(tst_TreeMoves)
#include "tst_treemoves.moc"
