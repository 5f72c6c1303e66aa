// SPDX-License-Identifier: MIT
// Folders of Qt's resource system, and the name filters that a QDir brings along.
#include <quenzotool.h>
#include <threadcommon.h>

#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::write;

namespace {

const QString templates = QStringLiteral(":/templates");
const Tree templateTree{{"one.txt", "file one\n"},
                        {"two.ini", "file two\n"},
                        {"folder", "folder"},
                        {"folder/three.ini", "file three\n"}};

class Worker : public ThreadCommon {
public:
    using ThreadCommon::cutForOutput;
};

} // namespace

class tst_TreeResources : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void resourcesAreCopied_data();
    void resourcesAreCopied();
    void resourcesReplaceOnlyWithOverwrite();
    void resourcesAreCutForOutput();
    void resourceThatCannotBeCopiedIsLogged();
    void resourcesAreNotRemoved();
    void resourcesTakeNothing();
    void foldersNamedLikeResourcesStay();
    void nameFiltersHoldDirectlyInTheSource();
    void nameFiltersHoldInACutForOutput();
    void nameFiltersHoldInAChangeOfRights();

private:
    QDir m_targetDir;
};

void tst_TreeResources::init()
{
    TreeFixture::init();
    m_targetDir = folder(m_target);
}

void tst_TreeResources::resourcesAreCopied_data()
{
    QTest::addColumn<bool>("deleteSource");
    QTest::newRow("copy") << false;
    QTest::newRow("move, of which the sources stay") << true;
}

void tst_TreeResources::resourcesAreCopied()
{
    QFETCH(bool, deleteSource);
    for (int tries = 0; tries < 2; ++tries) {
        QVERIFY(QuenzoTool::copyDirectory(QDir(templates), m_targetDir, true, deleteSource));
        QCOMPARE(content(m_target), templateTree);
    }
    QVERIFY(QFile::exists(templates + QStringLiteral("/one.txt")));
    m_targetDir.setPath(QFile::decodeName(m_root + "/missing/target"));
    QVERIFY(!QuenzoTool::copyDirectory(QDir(templates), m_targetDir, true, deleteSource));
}

void tst_TreeResources::resourcesReplaceOnlyWithOverwrite()
{
    write(m_target + "/one.txt", "old");
    QVERIFY(!QuenzoTool::copyDirectory(QDir(templates), m_targetDir, false, false));
    QCOMPARE(TreeFiles::read(m_target + "/one.txt"), QByteArray("old"));
    QVERIFY(QuenzoTool::copyDirectory(QDir(templates), m_targetDir, true, false));
    QCOMPARE(content(m_target), templateTree);
}

void tst_TreeResources::resourcesAreCutForOutput()
{
    QStringList leftBehind{QStringLiteral("ONE.txt")};
    Worker worker;
    QVERIFY(worker.cutForOutput(QDir(templates), m_targetDir, &leftBehind));
    Tree expected = templateTree;
    expected.remove("one.txt");
    QCOMPARE(content(m_target), expected);
    QVERIFY(worker.exceptCut(templates, m_targetDir.path(), {}));
    QCOMPARE(content(m_target), templateTree);
}

void tst_TreeResources::resourceThatCannotBeCopiedIsLogged()
{
    makeFolder(m_target + "/one.txt");
    Worker worker;
    QVERIFY(!worker.cutForOutput(QDir(templates), m_targetDir, nullptr));
    const QByteArray entry = "Copy Fail:\r\nSrc::/templates/one.txt\r\nDest:" + m_target + "/one.txt\r\n";
    QVERIFY2(RunRoot::log().contains(entry), RunRoot::log().constData());
}

void tst_TreeResources::resourcesAreNotRemoved()
{
    QDir resources(templates);
    QVERIFY(QuenzoTool::changePermessionRecursively(resources));
    QStringList told = m_messages->takeDebugTexts();
    told.sort();
    QCOMPARE(
        told,
        QStringList({templates + QStringLiteral("/folder"), templates + QStringLiteral("/folder/three.ini"),
                     templates + QStringLiteral("/one.txt"), templates + QStringLiteral("/two.ini"),
                     QStringLiteral("false"), QStringLiteral("false"), QStringLiteral("false")}));
    QVERIFY(!QuenzoTool::removeRecursively(resources));
    QVERIFY(resources.exists());
    QDir missing(QStringLiteral(":/missing"));
    QVERIFY(QuenzoTool::changePermessionRecursively(missing));
    QVERIFY(QuenzoTool::removeRecursively(missing));
    QVERIFY(QuenzoTool::copyDirectory(missing, m_targetDir, true, false));
    QVERIFY(content(m_target).isEmpty());
}

void tst_TreeResources::resourcesTakeNothing()
{
    write(m_source + "/file");
    const QDir source = folder(m_source);
    for (const char* path : {":/templates", ":/missing", ":/"})
        QVERIFY(!QuenzoTool::copyDirectory(source, QDir(QString::fromLatin1(path)), true, true));
    QVERIFY(exists(m_source + "/file"));
}

// A folder of such a name in the working folder is none of them.
void tst_TreeResources::foldersNamedLikeResourcesStay()
{
    write(m_source + "/:/templates/file", "kept");
    write(m_source + "/:y/file", "kept");
    const Tree before = content(m_source);
    const QString workingFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(QFile::decodeName(m_source)));
    bool kept = true;
    for (const char* path : {":/templates", ":y"}) {
        QDir resource(QString::fromLatin1(path));
        kept = kept && QuenzoTool::copyDirectory(resource, m_targetDir, true, true)
            && QuenzoTool::changePermessionRecursively(resource);
        QuenzoTool::removeRecursively(resource);
    }
    QVERIFY(QDir::setCurrent(workingFolder));
    QVERIFY(kept);
    QCOMPARE(content(m_source), before);
    QCOMPARE(content(m_target), templateTree);
}

void tst_TreeResources::nameFiltersHoldDirectlyInTheSource()
{
    write(m_source + "/one.txt", "1");
    write(m_source + "/TWO.TXT", "2");
    write(m_source + "/other", "3");
    write(m_source + "/folder/file", "4");
    write(m_source + "/folder.txt/file", "5");
    QDir source = folder(m_source);
    source.setNameFilters({QStringLiteral("*.txt")});
    QVERIFY(QuenzoTool::copyDirectory(source, m_targetDir, true, false));
    QCOMPARE(content(m_target),
             Tree({{"one.txt", "file 1"},
                   {"TWO.TXT", "file 2"},
                   {"folder.txt", "folder"},
                   {"folder.txt/file", "file 5"}}));
    QDir resources(templates);
    resources.setNameFilters({QStringLiteral("fold*")});
    QVERIFY(QuenzoTool::removeRecursively(m_targetDir));
    QVERIFY(QuenzoTool::copyDirectory(resources, m_targetDir, true, false));
    QCOMPARE(content(m_target), Tree({{"folder", "folder"}, {"folder/three.ini", "file three\n"}}));
    m_messages->takeDebugTexts();
}

void tst_TreeResources::nameFiltersHoldInACutForOutput()
{
    write(m_source + "/one.txt", "1");
    write(m_source + "/other", "2");
    QDir source = folder(m_source);
    source.setNameFilters({QStringLiteral("*.txt")});
    Worker worker;
    QVERIFY(worker.cutForOutput(source, m_targetDir, nullptr));
    QCOMPARE(content(m_target), Tree({{"one.txt", "file 1"}}));
    QCOMPARE(content(m_source), Tree({{"other", "file 2"}}));
}

void tst_TreeResources::nameFiltersHoldInAChangeOfRights()
{
    write(m_source + "/one.txt");
    write(m_source + "/other");
    QDir source = folder(m_source);
    source.setNameFilters({QStringLiteral("*.txt")});
    QVERIFY(QuenzoTool::changePermessionRecursively(source));
    QCOMPARE(TreeFiles::mode(m_source + "/one.txt"), 0002);
    QVERIFY(TreeFiles::mode(m_source + "/other") != 0002);
    m_messages->takeDebugTexts();
}

QTEST_GUILESS_MAIN(tst_TreeResources)
#include "tst_treeresources.moc"
