// SPDX-License-Identifier: MIT
// Copies of links, through links, and of folders into each other.
#include <quenzotool.h>

#include "treefixture.h"

#include <QDir>
#include <QtTest>

#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::write;

class tst_TreeLinks : public TreeFixture {
    Q_OBJECT

public:
    tst_TreeLinks()
        : TreeFixture(TreeFiles::diskFolder())
    {
    }

private Q_SLOTS:
    void linkToFileIsCopiedAsFile();
    void linkToFolderIsWalked();
    void walkGoesOnBehindADeepLinkedFolder();
    void danglingLinkIsFalse();
    void linkToParentEndsAfterFortyLevels();
    void linkToMovedFileDangles();
    void targetInsideSourceTouchesNothing_data();
    void targetInsideSourceTouchesNothing();
    void targetReachedThroughALinkEndsTheWalk();
    void linkIntoTheTargetEndsTheWalk_data();
    void linkIntoTheTargetEndsTheWalk();
    void linkToAnotherFolderOfTheTargetIsWalked();
    void folderIsNotCopiedOntoItself_data();
    void folderIsNotCopiedOntoItself();
    void emptyFolderIsCopiedOntoItself();
    void linkToItsOwnTargetIsSpared();
    void linkToTheSameFileIsReplaced();
    void hardLinkIsReplaced();
    void sourceInsideTargetIsMovedUp();
    void whatWasMovedUpMakesWayForWhatComesBehind_data();
    void whatWasMovedUpMakesWayForWhatComesBehind();

private:
};

void tst_TreeLinks::linkToFileIsCopiedAsFile()
{
    write(m_root + "/elsewhere", "behind the link");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(move());
    QCOMPARE(TreeFiles::content(m_target).value("link"), QByteArray("file behind the link"));
    QVERIFY(!exists(m_source + "/link"));
    QVERIFY(exists(m_root + "/elsewhere"));
}

void tst_TreeLinks::linkToFolderIsWalked()
{
    write(m_root + "/elsewhere/folder/file", "behind the link");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target).value("link/folder/file"), QByteArray("file behind the link"));
    QVERIFY(move());
    QVERIFY(TreeFiles::content(m_root + "/elsewhere").isEmpty());
    QVERIFY(exists(m_source + "/link"));
}

// The outer folders of a deep walk are opened anew on its way back, which leads past the link.
void tst_TreeLinks::walkGoesOnBehindADeepLinkedFolder()
{
    const QByteArray file = QByteArray("/n").repeated(40) + "/file";
    write(m_root + "/elsewhere/start" + file, "deep");
    for (const char* name : {"/one", "/two"}) {
        write(m_root + "/elsewhere" + name + "/file", "beside the linked folder");
        makeLink("../elsewhere/start", m_source + name);
    }
    QVERIFY(copy());
    const Tree copied = TreeFiles::content(m_target);
    QCOMPARE(copied.value("one" + file), QByteArray("file deep"));
    QCOMPARE(copied.value("two" + file), QByteArray("file deep"));
    QCOMPARE(copied.keys("file beside the linked folder"), QList<QByteArray>());
}

void tst_TreeLinks::danglingLinkIsFalse()
{
    makeLink("nowhere", m_source + "/link");
    QVERIFY(!copy());
    QVERIFY(!move());
    QVERIFY(exists(m_source + "/link"));
    QVERIFY(TreeFiles::content(m_target).isEmpty());
}

void tst_TreeLinks::linkToParentEndsAfterFortyLevels()
{
    makeLink(".", m_source + "/again");
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::content(m_target).size(), 40);
}

// In the order described each file is gone when the next one is looked at.
void tst_TreeLinks::linkToMovedFileDangles()
{
    write(m_source + "/file");
    makeLink("file", m_source + "/link");
    const QStringList listed = folder(m_source).entryList(QDir::Files, QDir::Unsorted);
    QCOMPARE(move(), listed.first() == QLatin1String("link"));
    QVERIFY(!exists(m_source + "/file"));
    QVERIFY(exists(m_target + "/file"));
}

void tst_TreeLinks::targetInsideSourceTouchesNothing_data()
{
    QTest::addColumn<QByteArray>("inner");
    QTest::addColumn<bool>("isThere");
    for (const char* inner : {"/target", "/folder/target"}) {
        QTest::addRow("%s missing", inner) << QByteArray(inner) << false;
        QTest::addRow("%s there", inner) << QByteArray(inner) << true;
    }
}

void tst_TreeLinks::targetInsideSourceTouchesNothing()
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

void tst_TreeLinks::targetReachedThroughALinkEndsTheWalk()
{
    m_target = m_root + "/elsewhere/target";
    write(m_root + "/elsewhere/file");
    makeFolder(m_target);
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(!copy());
    QVERIFY(TreeFiles::content(m_target).isEmpty());
}

void tst_TreeLinks::linkIntoTheTargetEndsTheWalk_data()
{
    QTest::addColumn<bool>("isMove");
    QTest::newRow("copy") << false;
    QTest::newRow("move") << true;
}

// To a folder that the walk itself makes and is in: it would copy what it writes.
void tst_TreeLinks::linkIntoTheTargetEndsTheWalk()
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

void tst_TreeLinks::linkToAnotherFolderOfTheTargetIsWalked()
{
    write(m_target + "/other/file", "there before");
    makeFolder(m_source + "/folder");
    makeLink("../../target/other", m_source + "/folder/link");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::read(m_target + "/folder/link/file"), QByteArray("there before"));
}

void tst_TreeLinks::folderIsNotCopiedOntoItself_data()
{
    QTest::addColumn<QByteArray>("alias");
    QTest::newRow("same path") << QByteArray("/source");
    QTest::newRow("link") << QByteArray("/alias");
}

void tst_TreeLinks::folderIsNotCopiedOntoItself()
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

void tst_TreeLinks::emptyFolderIsCopiedOntoItself()
{
    m_target = m_source;
    QVERIFY(copy());
    QVERIFY(move());
    QVERIFY(exists(m_source));
}

void tst_TreeLinks::linkToItsOwnTargetIsSpared()
{
    write(m_target + "/file", "the only one");
    makeLink("../target/file", m_source + "/file");
    QVERIFY(!copy());
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("the only one"));
}

void tst_TreeLinks::linkToTheSameFileIsReplaced()
{
    write(m_root + "/file", "shared");
    makeFolder(m_target);
    makeLink("../file", m_source + "/link");
    makeLink("../file", m_target + "/link");
    QVERIFY(copy());
    QCOMPARE(TreeFiles::content(m_target), Tree({{"link", "file shared"}}));
    QCOMPARE(TreeFiles::read(m_root + "/file"), QByteArray("shared"));
}

void tst_TreeLinks::hardLinkIsReplaced()
{
    write(m_source + "/file", "shared");
    makeFolder(m_target);
    const QByteArray source = m_source + "/file";
    const QByteArray target = m_target + "/file";
    QCOMPARE(link(source.constData(), target.constData()), 0);
    QVERIFY(move());
    QCOMPARE(TreeFiles::read(m_target + "/file"), QByteArray("shared"));
}

void tst_TreeLinks::sourceInsideTargetIsMovedUp()
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

void tst_TreeLinks::whatWasMovedUpMakesWayForWhatComesBehind_data()
{
    QTest::addColumn<QByteArray>("within");
    QTest::newRow("files") << QByteArray();
    QTest::newRow("folders") << QByteArray("/file");
}

// Nothing is replaced here: a file is gone before another one, or a folder, takes its name.
void tst_TreeLinks::whatWasMovedUpMakesWayForWhatComesBehind()
{
    QFETCH(QByteArray, within);
    for (int i = 0; i < 100; ++i)
        write(m_source + "/name" + QByteArray::number(i), "outer");
    makeFolder(m_source + "/source");
    const QStringList listed =
        folder(m_source).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    // What is listed behind the inner folder is still there when that is moved.
    const QStringList names = listed.mid(0, listed.indexOf(QStringLiteral("source")));
    Tree expected;
    for (const QString& name : names) {
        const QByteArray inner = "source/" + QFile::encodeName(name) + within;
        write(m_source + '/' + inner, "inner");
        expected.insert(inner, "file inner");
    }
    m_target = m_root;
    QVERIFY(QuenzoTool::copyDirectory(folder(m_source), folder(m_target), false, true));
    const Tree after = TreeFiles::content(m_root);
    for (auto entry = expected.cbegin(); entry != expected.cend(); ++entry)
        QCOMPARE(after.value(entry.key()), entry.value());
    for (const QString& name : names)
        QCOMPARE(after.value(QFile::encodeName(name)), QByteArray("file outer"));
}

QTEST_GUILESS_MAIN(tst_TreeLinks)
#include "tst_treelinks.moc"
