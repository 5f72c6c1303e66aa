// SPDX-License-Identifier: MIT
// Copies and moves where the file system or the kernel can less, or hands work back half done.
#include "faultycalls.h"
#include "treefixture.h"

#include <QtTest>

#include <cerrno>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::makeLink;
using TreeFiles::write;
using TreeFiles::writeManySizes;
using namespace TreeRuns;

class tst_TreeFileSystems : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void copyGoesOnWithoutModes_data();
    void copyGoesOnWithoutModes();
    void copyingNothingIsNoEnd();
    void fileSystemsThatCopyNothingByThemselvesServe_data();
    void fileSystemsThatCopyNothingByThemselvesServe();
    void interruptedCallsAreMadeAgain_data();
    void interruptedCallsAreMadeAgain();
    void fileSystemsWithoutUnnamedFilesServe_data();
    void fileSystemsWithoutUnnamedFilesServe();
    void olderKernelsServe_data();
    void olderKernelsServe();
    void folderThatTellsNoKindsIsWalked();

private:
    void writeEveryKind();
};

void tst_TreeFileSystems::cleanup()
{
    FaultyCalls::heal();
    TreeFixture::cleanup();
}

// A small file, one of many blocks, and one with a hole.
void tst_TreeFileSystems::writeEveryKind()
{
    write(m_source + "/small", QByteArray(5000, 's'));
    write(m_source + "/dense", QByteArray(300000, 'd'));
    TreeFiles::writeSparse(m_source + "/sparse");
}

void tst_TreeFileSystems::copyGoesOnWithoutModes_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("unnamed");
    for (const int error : {EOPNOTSUPP, EPERM}) {
        QTest::addRow("error %d, unnamed files", error) << error << true;
        QTest::addRow("error %d, temporary files", error) << error << false;
    }
}

// Some file systems know no permission bits.
void tst_TreeFileSystems::copyGoesOnWithoutModes()
{
    QFETCH(int, error);
    QFETCH(bool, unnamed);
    FaultyCalls::allowUnnamedFiles(unnamed);
    writeManySizes(m_source + "/file", 60);
    const Tree before = content(m_source);
    for (const Manner manner : {Copy, Move}) {
        FaultyCalls::failFromNth(FaultyCalls::ChangingMode, 1, error);
        QVERIFY(transfer(manner));
        QVERIFY(FaultyCalls::wasHit());
        QCOMPARE(content(m_target), before);
    }
    QVERIFY(content(m_source).isEmpty());
}

// Files of some network and user-space file systems are copied by reading alone.
void tst_TreeFileSystems::copyingNothingIsNoEnd()
{
    writeEveryKind();
    const Tree before = content(m_source);
    bool hit = true;
    for (int n = 1; hit; ++n) {
        for (const Manner manner : {Copy, Move}) {
            FaultyCalls::failFromNth(FaultyCalls::Copying, n, FaultyCalls::nothingDone);
            QVERIFY(transfer(manner));
            hit = FaultyCalls::wasHit();
            FaultyCalls::heal();
            QCOMPARE(content(m_target), before);
        }
        QVERIFY(content(m_source).isEmpty());
        QVERIFY(TreeRuns::transfer(m_target, m_source, Move));
    }
}

void tst_TreeFileSystems::fileSystemsThatCopyNothingByThemselvesServe_data()
{
    QTest::addColumn<int>("error");
    for (const int error : {EINVAL, EXDEV, ENOSYS, EOPNOTSUPP, EPERM, EBADF, ETXTBSY})
        QTest::addRow("error %d", error) << error;
}

void tst_TreeFileSystems::fileSystemsThatCopyNothingByThemselvesServe()
{
    QFETCH(int, error);
    writeEveryKind();
    const Tree before = content(m_source);
    for (const Manner manner : {Copy, Move}) {
        FaultyCalls::failFromNth(FaultyCalls::Copying, 1, error);
        QVERIFY(transfer(manner));
        QVERIFY(FaultyCalls::wasHit());
        QCOMPARE(content(m_target), before);
    }
    QVERIFY(content(m_source).isEmpty());
}

void tst_TreeFileSystems::interruptedCallsAreMadeAgain_data()
{
    QTest::addColumn<int>("call");
    QTest::newRow("copying") << int(FaultyCalls::Copying);
    QTest::newRow("writing") << int(FaultyCalls::Writing);
}

void tst_TreeFileSystems::interruptedCallsAreMadeAgain()
{
    QFETCH(int, call);
    writeEveryKind();
    // What the kernel makes up is copied by reading and writing.
    makeLink("/proc/version", m_source + "/version");
    Tree expected = content(m_source);
    expected["version"] = "file " + TreeFiles::read("/proc/version");
    bool hit = true;
    int interrupted = 0;
    for (int n = 1; hit; ++n) {
        FaultyCalls::failNth(static_cast<FaultyCalls::Call>(call), n, EINTR);
        QVERIFY(copy());
        hit = FaultyCalls::wasHit();
        interrupted += hit ? 1 : 0;
        QCOMPARE(content(m_target), expected);
    }
    QVERIFY(interrupted > 0);
}

void tst_TreeFileSystems::fileSystemsWithoutUnnamedFilesServe_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    using namespace FaultyCalls;
    QTest::newRow("no unnamed files") << int(OpeningUnnamed) << EOPNOTSUPP;
    QTest::newRow("old kernel") << int(OpeningUnnamed) << EISDIR;
    QTest::newRow("no right to name them") << int(Linking) << ENOENT;
}

void tst_TreeFileSystems::fileSystemsWithoutUnnamedFilesServe()
{
    QFETCH(int, call);
    QFETCH(int, error);
    writeManySizes(m_source + "/folder/file", 60);
    write(m_source + "/large", QByteArray(200000, 'y'));
    const Tree before = content(m_source);
    FaultyCalls::failFromNth(static_cast<FaultyCalls::Call>(call), 1, error);
    QVERIFY(copy());
    QCOMPARE(content(m_target), before);
    // Where files of these names are already, and may not be replaced.
    QVERIFY(!copy(false));
    QVERIFY(move());
    QCOMPARE(content(m_target), before);
    QVERIFY(content(m_source).isEmpty());
}

void tst_TreeFileSystems::olderKernelsServe_data()
{
    QTest::addColumn<bool>("links");
    QTest::newRow("links") << true;
    QTest::newRow("a file system without links") << false;
}

// Without files that have no name, and without a way to rename only if the new name is free.
void tst_TreeFileSystems::olderKernelsServe()
{
    QFETCH(bool, links);
    FaultyCalls::allowUnnamedFiles(false);
    FaultyCalls::allowRenamingIfFree(false);
    if (!links)
        FaultyCalls::failFromNth(FaultyCalls::Linking, 1, EPERM);
    writeManySizes(m_source + "/folder/file", 30);
    const Tree before = content(m_source);
    QVERIFY(copy());
    QCOMPARE(content(m_target), before);
    write(m_source + "/folder/file7", "another");
    QVERIFY(!copy(false));
    QCOMPARE(content(m_target), before);
    const Tree changed = content(m_source);
    QVERIFY(move());
    QCOMPARE(content(m_target), changed);
    QVERIFY(content(m_source).isEmpty());
}

void tst_TreeFileSystems::folderThatTellsNoKindsIsWalked()
{
    writeManySizes(m_source + "/folder/inner/file", 5);
    write(m_root + "/elsewhere/file", "behind a link");
    makeLink("../elsewhere/file", m_source + "/link");
    makeLink("../elsewhere", m_source + "/folderlink");
    QVERIFY(copy());
    const Tree expected = content(m_target);
    QVERIFY(remove(m_target));
    FaultyCalls::tellKinds(false);
    QVERIFY(copy());
    QCOMPARE(content(m_target), expected);
    QVERIFY(remove(m_target));
    QVERIFY(!exists(m_target));
    QCOMPARE(expected.value("folderlink/file"), QByteArray("file behind a link"));
}

QTEST_GUILESS_MAIN(tst_TreeFileSystems)
#include "tst_treefilesystems.moc"
