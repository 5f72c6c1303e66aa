// SPDX-License-Identifier: MIT
// Cut for output with trees of the harder kind.
#include <quenzotool.h>
#include <threadcommon.h>

#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;

class tst_OutputTrees : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void everyNameGetsThrough_data() { TreeRuns::addHardNames(); }
    void everyNameGetsThrough();
    void everyNameIsLogged_data();
    void everyNameIsLogged();
    void pipesAreFalseAtOnce();
    void deepTreeIsMoved();
    void deepTreeInAnOutputInsideTheSourceEndsNothing();
    void linkToAMovedFolderIsAFileByThen_data();
    void linkToAMovedFolderIsAFileByThen();
    void treeThatGetsTooDeepIsFalseAndWhole();
    void sparseFileStaysSparse();
    void filterFoldsEveryLetter();

private:
    bool cut(const QString& filter = {});
};

bool tst_OutputTrees::cut(const QString& filter)
{
    QVariantMap map = folders();
    if (!filter.isNull())
        map.insert(QStringLiteral("filter"), filter);
    ThreadCommon thread;
    thread.StartOperate(OPERATE_CUT_OUTPUT, map);
    thread.start();
    thread.wait();
    return thread.getResult() == QVariant(true);
}

void tst_OutputTrees::everyNameGetsThrough()
{
    QFETCH(QByteArray, name);
    write(m_source + '/' + name, "top");
    write(m_source + "/folder/" + name + '/' + name, "deep");
    const Tree before = content(m_source);
    QVERIFY(cut());
    QVERIFY(content(m_source).isEmpty());
    QCOMPARE(content(m_target), before);
    // Once more, over what is there.
    write(m_source + '/' + name, "new");
    QVERIFY(cut());
    QCOMPARE(TreeFiles::read(m_target + '/' + name), QByteArray("new"));
    QVERIFY(RunRoot::log().isEmpty());
    // The temporary folder could not remove every name.
    QVERIFY(remove(m_target));
}

void tst_OutputTrees::everyNameIsLogged_data()
{
    QTest::addColumn<QByteArray>("name");
    const auto names = TreeFiles::hardNames();
    for (const auto& [what, name] : names) {
        // Others are not text, and cannot be written as such.
        if (QString::fromUtf8(name).toUtf8() == name)
            QTest::newRow(what.constData()) << name;
    }
}

void tst_OutputTrees::everyNameIsLogged()
{
    QFETCH(QByteArray, name);
    makeLink("nowhere", m_source + '/' + name);
    QVERIFY(!cut());
    const QByteArray entry =
        " Copy Fail:\r\nSrc:" + m_source + '/' + name + "\r\nDest:" + m_target + '/' + name + "\r\n\n";
    QVERIFY2(RunRoot::log().endsWith(entry), RunRoot::log().constData());
}

void tst_OutputTrees::pipesAreFalseAtOnce()
{
    const QByteArray pipe = m_source + "/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    QVERIFY(!cut());
    QVERIFY(exists(pipe));
    QVERIFY(content(m_target).isEmpty());
    QCOMPARE(RunRoot::log().count("Copy Fail:\r\nSrc:" + pipe), 1);
    // One that stands where a file is to go is replaced as a file would be.
    const QByteArray elsewhere = m_target + "/pipe";
    QCOMPARE(mkfifo(elsewhere.constData(), 0644), 0);
    QCOMPARE(unlink(pipe.constData()), 0);
    write(pipe, "now a file");
    QVERIFY(cut());
    QCOMPARE(content(m_target), Tree({{"pipe", "file now a file"}}));
}

void tst_OutputTrees::deepTreeIsMoved()
{
    const QByteArray deepest = m_source + QByteArray("/n").repeated(800);
    write(deepest + "/file", "deep");
    write(m_source + "/n/n/n/side", "side");
    const Tree before = content(m_source);
    QVERIFY(cut());
    QCOMPARE(content(m_target), before);
    QVERIFY(content(m_source).isEmpty());
}

// The target's path is longer than the source's, and so too long sooner.
void tst_OutputTrees::deepTreeInAnOutputInsideTheSourceEndsNothing()
{
    m_target = m_source + "/out";
    const QByteArray deepest = m_target + QByteArray("/n").repeated(40);
    write(deepest + "/file", "deep");
    write(m_source + "/file", "moved");
    write(m_source + "/folder/file", "moved, too");
    QVERIFY(cut());
    setMode(m_target, 0755);
    QCOMPARE(TreeFiles::read(deepest + "/file"), QByteArray("deep"));
    QCOMPARE(TreeFiles::read(m_target + "/folder/file"), QByteArray("moved, too"));
    QVERIFY(!exists(m_source + "/file"));
    QVERIFY(!exists(m_source + "/folder"));
}

void tst_OutputTrees::linkToAMovedFolderIsAFileByThen_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("output") << 0;
    QTest::newRow("around") << 1;
    QTest::newRow("move") << 2;
}

void tst_OutputTrees::linkToAMovedFolderIsAFileByThen()
{
    QFETCH(int, way);
    // Made anew until the folder is listed before the link.
    const QString source = QFile::decodeName(m_source);
    QStringList listed;
    for (int i = 0; listed.value(0) != QLatin1String("folder"); ++i) {
        QVERIFY2(i < 100, "the link is always listed first");
        QVERIFY(QDir(source).removeRecursively());
        makeFolder(m_source);
        const QByteArray link = m_source + "/link" + QByteArray::number(i / 2);
        if (i % 2 == 0)
            makeLink("folder", link);
        write(m_source + "/folder/file", "moved");
        if (i % 2 == 1)
            makeLink("folder", link);
        listed = QDir(source).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Unsorted);
    }
    const QString target = QFile::decodeName(m_target);
    makeFolder(m_target);
    if (way == 1)
        makeFolder(m_target + "/folder"); // which this walk does not make
    const bool done = way == 0 ? cut()
        : way == 1             ? ThreadCommon().exceptCut(source, target, {})
                               : QuenzoTool::copyDirectory(QDir(source), QDir(target), true, true);
    QVERIFY(!done);
    QCOMPARE(content(m_target), Tree({{"folder", "folder"}, {"folder/file", "file moved"}}));
    QCOMPARE(content(m_source), Tree({{QFile::encodeName(listed.value(1)), "link folder"}}));
    QCOMPARE(RunRoot::log().count("Copy Fail:"), way == 2 ? 0 : 1);
}

void tst_OutputTrees::treeThatGetsTooDeepIsFalseAndWhole()
{
    const QByteArray level = '/' + QByteArray(200, 'n');
    QByteArray deepest = m_source;
    constexpr int nearlyTooLong = 4080;
    while (deepest.size() + level.size() < nearlyTooLong)
        deepest += level;
    deepest += '/' + QByteArray(nearlyTooLong - 1 - deepest.size(), 'm');
    write(deepest + "/file", "deep");
    m_target += QByteArray(200, 'o');
    QVERIFY(!cut());
    QCOMPARE(TreeFiles::read(deepest + "/file"), QByteArray("deep"));
    // The temporary folder would take long.
    QVERIFY(remove(m_target));
}

void tst_OutputTrees::sparseFileStaysSparse()
{
    constexpr qint64 size = qint64(64) << 20;
    const QByteArray file = m_source + "/sparse";
    TreeFiles::writeAt(file, 0, "beginning");
    TreeFiles::writeAt(file, size / 2, "middle");
    TreeFiles::writeAt(file, size - 3, "end");
    const QByteArray before = TreeFiles::read(file);
    QVERIFY(cut());
    QVERIFY(!exists(file));
    const QByteArray moved = m_target + "/sparse";
    QVERIFY(TreeFiles::read(moved) == before);
    struct stat status { };
    QCOMPARE(stat(moved.constData(), &status), 0);
    QVERIFY2(status.st_blocks < 1000, "the holes were filled");
}

// Letter by letter: what a word's last letter looks like is of no account.
void tst_OutputTrees::filterFoldsEveryLetter()
{
    for (const char* name : {"/\u00e4rger", "/\u0416\u0423\u0420\u041d\u0410\u041b",
                             "/\u03bf\u03b4\u03bf\u03c3", "/arger", "/\u03bf\u03b4\u03bf\u03c2", "/log"})
        write(m_source + name, "1");
    QVERIFY(cut(QString::fromUtf8("\u00c4RGER,\u0436\u0443\u0440\u043d\u0430\u043b,"
                                  "\u039f\u0394\u039f\u03a3")));
    QCOMPARE(content(m_target).keys(), QList<QByteArray>({"arger", "log", "\u03bf\u03b4\u03bf\u03c2"}));
    QCOMPARE(content(m_source).size(), 3);
}

QTEST_GUILESS_MAIN(tst_OutputTrees)
#include "tst_outputtrees.moc"
