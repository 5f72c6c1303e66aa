// SPDX-License-Identifier: MIT
// Changes of rights in trees, and their removal.
#include <quenzotool.h>

#include "treefixture.h"

#include <QDir>
#include <QThread>
#include <QtTest>

#include <sys/resource.h>

using TreeFiles::exists;
using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;

class tst_TreeRemoval : public TreeFixture {
    Q_OBJECT

public:
    tst_TreeRemoval()
        : TreeFixture(TreeFiles::diskFolder())
    {
    }

private Q_SLOTS:
    void tooDeepTreeForTheStackIsRemoved();
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
};

void tst_TreeRemoval::tooDeepTreeForTheStackIsRemoved()
{
    QByteArray deepest = m_source;
    while (deepest.size() < 2000)
        deepest += "/n";
    write(deepest + "/file", "kept");
    QDir source = folder(m_source);
    const auto isTrueOnSmallStack = [&source](bool (*operation)(QDir&)) {
        bool result = false;
        const std::unique_ptr<QThread> thread(QThread::create([&] { result = operation(source); }));
        thread->setStackSize(192U << 10U);
        thread->start();
        return thread->wait() && result;
    };
    {
        const CategoryOn trees("quenzo.trees");
        QVERIFY(isTrueOnSmallStack(QuenzoTool::changePermessionRecursively));
    }
    QCOMPARE(TreeFiles::mode(deepest + "/file"), 0644);
    const QStringList told = m_messages->takeWarnings();
    QCOMPARE(told.size(), 1);
    QVERIFY2(told.first().endsWith(QStringLiteral("it is too deep for the thread's stack")),
             qUtf8Printable(told.first()));
    QVERIFY(isTrueOnSmallStack(QuenzoTool::removeRecursively));
    QVERIFY(!exists(m_source));
}

void tst_TreeRemoval::changeOfMissingFolderIsTrue()
{
    QDir missing = folder(m_root + "/missing");
    QVERIFY(QuenzoTool::changePermessionRecursively(missing));
    QCOMPARE(m_messages->takeDebugTexts(), QStringList());
}

void tst_TreeRemoval::changeTellsEveryStep()
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

void tst_TreeRemoval::changeTellsOfReadOnlyFiles()
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

void tst_TreeRemoval::changeFollowsLinks()
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

void tst_TreeRemoval::changeEndsInLoopsOfLinks()
{
    write(m_source + "/folder/file");
    makeLink(".", m_source + "/one");
    makeLink(".", m_source + "/two");
    makeLink("..", m_source + "/folder/three");
    QDir source = folder(m_source);
    QVERIFY(QuenzoTool::changePermessionRecursively(source));
    QCOMPARE(TreeFiles::mode(m_source + "/folder/file"), 0002);
}

void tst_TreeRemoval::removalOfMissingFolderIsTrue()
{
    QVERIFY(remove(m_root + "/missing"));
}

void tst_TreeRemoval::removalTakesReadOnlyFiles()
{
    write(m_source + "/file");
    write(m_source + "/folder/file");
    setMode(m_source + "/folder/file", 0444);
    QVERIFY(remove(m_source));
    QVERIFY(!exists(m_source));
}

void tst_TreeRemoval::removalLeavesWhatLinksLeadTo()
{
    write(m_root + "/elsewhere/file", "kept");
    makeLink("../elsewhere", m_source + "/link");
    makeLink("nowhere", m_source + "/dangling");
    QVERIFY(remove(m_source));
    QVERIFY(!exists(m_source));
    QVERIFY(exists(m_root + "/elsewhere/file"));
}

void tst_TreeRemoval::removalThroughALinkIsFalse()
{
    write(m_source + "/file");
    makeLink("source", m_root + "/link");
    QVERIFY(!remove(m_root + "/link"));
    QVERIFY(TreeFiles::content(m_source).isEmpty());
    QVERIFY(exists(m_root + "/link"));
}

void tst_TreeRemoval::removalReportsWhatStays()
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

void tst_TreeRemoval::removalWithoutFreeHandlesIsFalse()
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

void tst_TreeRemoval::removalTakesFoldersOfManyFiles()
{
    for (int i = 0; i < 1001; ++i)
        write(m_source + "/folder" + QByteArray::number(i % 3) + "/file" + QByteArray::number(i));
    QVERIFY(remove(m_source));
    QVERIFY(!exists(m_source));
}

QTEST_GUILESS_MAIN(tst_TreeRemoval)
#include "tst_treeremoval.moc"
