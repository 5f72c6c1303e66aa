// SPDX-License-Identifier: MIT
// What the tree commands of the program "quenzo" rest on: progress seen from outside.
#include "treefiles.h"
#include "trees/treeprogress.h"

#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <unistd.h>

using TreeFiles::write;

class tst_HostTreeParts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void walkVisitsLinkedFoldersOnce();
    void progressCountsWhatIsDone_data();
    void progressCountsWhatIsDone();
    void progressCountsInAnyOrder();
    void progressAsksLittle();
    void filesFromBeforeHaveNotArrived();
    void filesMovedOnWithinTheTargetHaveArrived();
    void bytesWithoutANameCount();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_root;
};

void tst_HostTreeParts::init()
{
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    m_root = QFile::encodeName(m_folder->path());
}

void tst_HostTreeParts::walkVisitsLinkedFoldersOnce()
{
    write(m_root + "/tree/a/file", "12");
    TreeFiles::makeLink("..", m_root + "/tree/a/up");
    TreeFiles::makeLink("a", m_root + "/tree/again");
    TreeFiles::makeLink("nowhere", m_root + "/tree/dangling");
    const TreeCount followed = TreeCount::of({m_root + "/tree"});
    QCOMPARE(followed.files, 3);
    QCOMPARE(followed.bytes, 4);
    const TreeCount kept = TreeCount::of({m_root + "/tree", TreeScope::Kept});
    QCOMPARE(kept.files, 4);
    QCOMPARE(kept.bytes, 2);
}

void tst_HostTreeParts::progressCountsWhatIsDone_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("done");
    for (const int files : {1, 2, 7, 2047, 2048, 5000, 20000}) {
        for (const int done : {0, 1, files / 3, files / 2, files - 1, files})
            QTest::addRow("%d of %d", done, files) << files << done;
    }
}

void tst_HostTreeParts::progressCountsWhatIsDone()
{
    QFETCH(int, files);
    QFETCH(int, done);
    for (int i = 0; i < files; ++i)
        write(m_root + "/tree/" + QByteArray::number(i % 7) + "/file" + QByteArray::number(i), "12345");
    const TreeScope scope{m_root + "/tree"};
    TreeProgress progress(scope);
    QCOMPARE(progress.all().files, files);
    QCOMPARE(progress.all().bytes, 5 * files);
    QSet<QByteArray> first;
    scope.walk([&](const WalkedEntry& entry) {
        if (!entry.isFolder() && first.size() < done)
            first.insert(entry.path);
        return TreeScope::GoOn;
    });
    const auto isDone = [&first](const QByteArray& path) { return first.contains(path); };
    const TreeCount seen = progress.done(isDone);
    // Of a large tree not every file is looked at.
    const int most = files < 2048 ? 0 : files / 1024 + 1;
    QVERIFY2(seen.files <= done && seen.files >= done - most, QByteArray::number(seen.files).constData());
    QCOMPARE(seen.bytes, 5 * seen.files);
    QCOMPARE(progress.done(isDone).files, seen.files);
}

void tst_HostTreeParts::progressCountsInAnyOrder()
{
    constexpr int files = 1000;
    for (int i = 0; i < files; ++i)
        write(m_root + "/tree/file" + QByteArray::number(i), "1");
    TreeProgress progress({m_root + "/tree"});
    for (int tenth = 9; tenth >= 0; --tenth) {
        const auto isDone = [tenth](const QByteArray& path) { return path.back() - '0' >= tenth; };
        QCOMPARE(progress.done(isDone).files, files / 10 * (10 - tenth));
    }
}

void tst_HostTreeParts::progressAsksLittle()
{
    constexpr int files = 10000;
    for (int i = 0; i < files; ++i)
        write(m_root + "/tree/file" + QByteArray::number(i), "");
    TreeProgress progress({m_root + "/tree"});
    int asked = 0;
    const auto isDone = [&asked](const QByteArray&) { return ++asked % 2 == 0; };
    progress.done(isDone);
    QVERIFY2(asked < 2048, QByteArray::number(asked).constData());
    const int before = std::exchange(asked, 0);
    progress.done(isDone);
    QCOMPARE(asked, before - before / 2);
}

void tst_HostTreeParts::filesFromBeforeHaveNotArrived()
{
    write(m_root + "/target/old");
    const TreeArrival arrival({m_root + "/target"});
    QVERIFY(!arrival.has("old"));
    QVERIFY(!arrival.has("new"));
    write(m_root + "/target/new");
    QVERIFY(arrival.has("new"));
    QVERIFY(QFile::remove(m_folder->filePath(QStringLiteral("target/old"))));
    write(m_root + "/target/old");
    QVERIFY(arrival.has("old"));
}

void tst_HostTreeParts::filesMovedOnWithinTheTargetHaveArrived()
{
    const TreeArrival arrival({m_root + "/out", m_root + "/out/out"});
    write(m_root + "/out/out/file");
    QVERIFY(arrival.has("file"));
}

void tst_HostTreeParts::bytesWithoutANameCount()
{
    const TreeArrival arrival({m_root + "/target"});
    QCOMPARE(arrival.unnamedBytes(), 0);
    const QByteArray path = m_root + "/file";
    const int handle = open(path.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    QVERIFY(handle >= 0);
    QCOMPARE(ftruncate(handle, 1000), 0);
    QCOMPARE(arrival.unnamedBytes(), 0);
    QCOMPARE(unlink(path.constData()), 0);
    QCOMPARE(arrival.unnamedBytes(), 1000);
    // What was there before is not what is being copied.
    QCOMPARE(TreeArrival({m_root + "/target"}).unnamedBytes(), 0);
    close(handle);
    QCOMPARE(arrival.unnamedBytes(), 0);
}

QTEST_GUILESS_MAIN(tst_HostTreeParts)
#include "tst_hosttreeparts.moc"
