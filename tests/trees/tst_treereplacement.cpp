// SPDX-License-Identifier: MIT
// When an existing file goes for another one, and when it stays.

#include "faultycalls.h"
#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

#include <unistd.h>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::makeFolder;
using TreeFiles::setMode;
using TreeFiles::write;
using namespace TreeRuns;

class tst_TreeReplacement : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void existingFileThatResistsIsForced_data() { addEveryWay(); }
    void existingFileThatResistsIsForced();
    void existingLinkThatCannotBeRemovedLeavesOthersTheirRights_data() { addEveryWay(); }
    void existingLinkThatCannotBeRemovedLeavesOthersTheirRights();
    void linkThatTakesTheFilesPlaceLeavesOthersTheirRights_data();
    void linkThatTakesTheFilesPlaceLeavesOthersTheirRights();
    void existingFileGoesWhenItsReplacementIsWhole_data() { addEveryWay(); }
    void existingFileGoesWhenItsReplacementIsWhole();
    void sourceThatAnotherRunTakesIsNotLost_data();
    void sourceThatAnotherRunTakesIsNotLost();
    void existingFileMakesRoomForItsReplacement_data() { addEveryWay(); }
    void existingFileMakesRoomForItsReplacement();
    void existingFileThatCannotBeRemovedIsFalse_data() { addEveryWay(); }
    void existingFileThatCannotBeRemovedIsFalse();
};

void tst_TreeReplacement::cleanup()
{
    FaultyCalls::heal();
    TreeFixture::cleanup();
}

// As a read-only file does on some systems.
void tst_TreeReplacement::existingFileThatResistsIsForced()
{
    QFETCH(Manner, manner);
    write(m_source + "/file", "new");
    write(m_target + "/file", "old");
    const QByteArray file = m_target + "/file";
    const QByteArray kept = m_target + "/kept";
    QCOMPARE(link(file.constData(), kept.constData()), 0);
    FaultyCalls::failNth(FaultyCalls::Removing, 1, EACCES);
    QVERIFY(transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(TreeFiles::read(file), QByteArray("new"));
    QCOMPARE(TreeFiles::mode(file), 0644);
    QCOMPARE(TreeFiles::mode(kept), 0002);
}

void tst_TreeReplacement::existingLinkThatCannotBeRemovedLeavesOthersTheirRights()
{
    QFETCH(Manner, manner);
    const QByteArray outside = m_root + "/outside";
    write(m_source + "/file", "new");
    write(outside, "others'");
    makeFolder(m_target);
    TreeFiles::makeLink("../outside", m_target + "/file");
    FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EACCES);
    QVERIFY(!transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(TreeFiles::mode(outside), 0644);
    QVERIFY(exists(m_source + "/file"));
}

void tst_TreeReplacement::linkThatTakesTheFilesPlaceLeavesOthersTheirRights_data()
{
    QTest::addColumn<Manner>("manner");
    QTest::addColumn<int>("removal");
    for (const auto& [manner, what] : everyWay) {
        QTest::addRow("%s, before it is forced", what) << manner << 1;
        QTest::addRow("%s, before it gets its rights back", what) << manner << 2;
    }
}

// Somebody else exchanges the file that resists for a link in the very moment.
void tst_TreeReplacement::linkThatTakesTheFilesPlaceLeavesOthersTheirRights()
{
    QFETCH(Manner, manner);
    QFETCH(int, removal);
    const QByteArray outside = m_root + "/outside";
    const QByteArray aside = m_root + "/aside";
    const QByteArray file = m_target + "/file";
    write(m_source + "/file", "new");
    write(file, "old");
    write(outside, "others'");
    setMode(outside, 0640);
    int removals = 0;
    FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EACCES, [&] {
        if (++removals != removal)
            return;
        QCOMPARE(rename(file.constData(), aside.constData()), 0);
        TreeFiles::makeLink("../outside", file);
    });
    QVERIFY(!transfer(manner));
    QVERIFY(removals >= removal);
    QCOMPARE(TreeFiles::mode(outside), 0640);
    QCOMPARE(TreeFiles::read(outside), QByteArray("others'"));
}

void tst_TreeReplacement::existingFileGoesWhenItsReplacementIsWhole()
{
    QFETCH(Manner, manner);
    write(m_source + "/file", "new");
    write(m_target + "/file", "old");
    for (const FaultyCalls::Call call : {FaultyCalls::Opening, FaultyCalls::Copying}) {
        FaultyCalls::failFromNth(call, 1, EIO);
        QVERIFY(!transfer(manner));
        QVERIFY(FaultyCalls::wasHit());
        FaultyCalls::heal();
        QCOMPARE(content(m_target), Tree({{"file", "file old"}}));
        QCOMPARE(content(m_source), Tree({{"file", "file new"}}));
    }
}

void tst_TreeReplacement::sourceThatAnotherRunTakesIsNotLost_data()
{
    QTest::addColumn<Manner>("manner");
    QTest::addColumn<int>("call");
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<bool>("byCopy");
    using namespace FaultyCalls;
    const QVector<QPair<int, const char*>> calls{
        {Opening, "opening"}, {Copying, "copying"}, {Linking, "naming"}, {Removing, "removing"}};
    for (const auto& [manner, what] : {everyWay[1], everyWay[2]}) {
        for (const auto& [call, name] : calls) {
            for (const bool byCopy : {false, true}) {
                const char* const how = byCopy ? "copied" : "renamed";
                QTest::addRow("%s, there, %s before %s", what, how, name) << manner << call << true << byCopy;
                if (call != Removing)
                    QTest::addRow("%s, new, %s before %s", what, how, name)
                        << manner << call << false << byCopy;
            }
        }
    }
}

// Somebody else with the same folders comes to the same file first.
void tst_TreeReplacement::sourceThatAnotherRunTakesIsNotLost()
{
    QFETCH(Manner, manner);
    QFETCH(int, call);
    QFETCH(bool, isThere);
    QFETCH(bool, byCopy);
    const QByteArray source = m_source + "/file";
    const QByteArray target = m_target + "/file";
    write(source, "new");
    makeFolder(m_target);
    if (isThere)
        write(target, "old");
    FaultyCalls::actBeforeNth(static_cast<FaultyCalls::Call>(call), 1, [&] {
        const QByteArray moved = byCopy ? QByteArray(target + ".copy") : source;
        if (byCopy)
            write(moved, "new");
        QCOMPARE(rename(moved.constData(), target.constData()), 0);
        unlink(source.constData());
    });
    transfer(manner);
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_target), Tree({{"file", "file new"}}));
}

void tst_TreeReplacement::existingFileMakesRoomForItsReplacement()
{
    QFETCH(Manner, manner);
    const Mount disk = Mount::smallDisk(m_target, "size=1m");
    write(m_source + "/file", QByteArray(700000, 'n'));
    write(m_target + "/file", QByteArray(700000, 'o'));
    const Tree before = content(m_source);
    // Only root can make a small disk: for others it says so, and has room when it is asked again.
    if (!disk.isMounted)
        FaultyCalls::failNth(FaultyCalls::Copying, 1, ENOSPC);
    QVERIFY(transfer(manner));
    QVERIFY(disk.isMounted || FaultyCalls::wasHit());
    QCOMPARE(content(m_target), before);
}

void tst_TreeReplacement::existingFileThatCannotBeRemovedIsFalse()
{
    QFETCH(Manner, manner);
    write(m_source + "/file", "new");
    write(m_target + "/file", "old");
    const QByteArray file = m_target + "/file";
    FaultyCalls::failFromNth(FaultyCalls::Removing, 1, EACCES);
    QVERIFY(!transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(TreeFiles::mode(file), 0644); // its own again
    QCOMPARE(content(m_target), Tree({{"file", "file old"}}));
    QCOMPARE(content(m_source), Tree({{"file", "file new"}}));
    QCOMPARE(RunRoot::log().count("Copy Fail:"), manner == CutForOutput ? 1 : 0);
}

QTEST_GUILESS_MAIN(tst_TreeReplacement)
#include "tst_treereplacement.moc"
