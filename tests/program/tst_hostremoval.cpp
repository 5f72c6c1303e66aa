// SPDX-License-Identifier: MIT
// The program's command remove, and what it leaves alone.
#include "terminal.h"
#include "treefiles.h"
#include "treescene.h"

#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::write;

class tst_HostRemoval : public QObject, private TreeScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { openScene(); }
    void cleanup() { closeScene(); }

    void removeTakesEverythingButWhatLinksLeadTo();
    void foldersBehindLinksAreNamedAsTheSystemDoes();
    void removeLeavesFilesBehindLinksWithoutTextualNames();
    void removeLeavesTheRightsOfFilesWithOtherNames();
    void removeTellsWhatCannotBeRemoved();
    void removeGoesOnBehindWhatStays();
    void removeReachesAnyDepth();
    void removeAsksOnATerminal_data();
    void removeAsksOnATerminal();
    void removeNeedsYesWhereNobodyCanBeAsked();
};

void tst_HostRemoval::removeTakesEverythingButWhatLinksLeadTo()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    const Ended outcome = run("remove --yes source");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostRemoval::foldersBehindLinksAreNamedAsTheSystemDoes()
{
    write(m_root + "/far/away/file");
    write(m_root + "/far/named");
    write(m_root + "/named/kept");
    TreeFiles::makeLink("far/away", m_root + "/link");
    // Behind the link, ".." is the folder "far".
    QCOMPARE(run("remove --yes link/../away").code, 0);
    QVERIFY(!exists(m_root + "/far/away"));
    QVERIFY(exists(m_root + "/named/kept"));
}

void tst_HostRemoval::removeLeavesFilesBehindLinksWithoutTextualNames()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("../../elsewhere", m_root + "/source/folder/link\xff");
    TreeFiles::makeFolder(m_root + "/source/folder\xfe");
    TreeFiles::makeLink("../../elsewhere/file", m_root + "/source/folder\xfe/link");
    QCOMPARE(run("remove --yes source").code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostRemoval::removeLeavesTheRightsOfFilesWithOtherNames()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/other");
    const QByteArray file = m_root + "/elsewhere/file";
    const QByteArray other = m_root + "/source/file";
    QCOMPARE(link(file.constData(), other.constData()), 0);
    QCOMPARE(run("remove --yes source").code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostRemoval::removeTellsWhatCannotBeRemoved()
{
    write(m_root + "/elsewhere/file", "kept");
    TreeFiles::makeFolder(m_root + "/source/closed");
    TreeFiles::makeLink("../../elsewhere", m_root + "/source/closed/link");
    giveToPlainUser();
    const QByteArray closed = m_root + "/source/closed";
    chmod(closed.constData(), 0555);
    const auto before = TreeFiles::content(m_root);
    const Ended outcome = runPlainly("remove --yes source");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/source/closed/link'"), outcome.error.constData());
    QVERIFY2(outcome.error.contains("Permission denied"), outcome.error.constData());
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
    QCOMPARE(TreeFiles::content(m_root), before);
    chmod(closed.constData(), 0755);
}

void tst_HostRemoval::removeGoesOnBehindWhatStays()
{
    for (const char* folder : {"/source/a", "/source/b", "/source/c"})
        write(m_root + folder + "/file");
    giveToPlainUser();
    const QByteArray closed = m_root + "/source/b";
    chmod(closed.constData(), 0555);
    const Ended outcome = runPlainly("remove --yes source --json");
    QCOMPARE(outcome.code, 1);
    QCOMPARE(outcome.result().value(QStringLiteral("files")), QJsonValue(2));
    QCOMPARE(outcome.failure().value(QStringLiteral("message")).toString(),
             QStringLiteral("'%1/source/b/file' could not be removed: Permission denied").arg(folder()));
    QCOMPARE(TreeFiles::content(m_root + "/source").keys(), (QList<QByteArray>{"b", "b/file"}));
    chmod(closed.constData(), 0755);
}

// Further down than paths, and the handles of a process, reach.
void tst_HostRemoval::removeReachesAnyDepth()
{
    constexpr int depth = 3000;
    TreeFiles::makeFolder(m_root + "/source");
    const QByteArray source = m_root + "/source";
    int handle = open(source.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < depth && handle >= 0; ++i) {
        QCOMPARE(mkdirat(handle, "folder", 0755), 0);
        const int next = openat(handle, "folder", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(handle);
        handle = next;
    }
    QVERIFY(handle >= 0);
    close(openat(handle, "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    close(handle);
    const Ended outcome = run("remove --yes source --json");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.result().value(QStringLiteral("files")), QJsonValue(1));
    QVERIFY(!exists(m_root + "/source"));
}

void tst_HostRemoval::removeAsksOnATerminal_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("code");
    QTest::newRow("y") << QByteArray("y\n") << 0;
    QTest::newRow("YES") << QByteArray("YES\n") << 0;
    QTest::newRow("n") << QByteArray("n\n") << 1;
    QTest::newRow("nothing") << QByteArray("\n") << 1;
    QTest::newRow("end of the input") << QByteArray("\x04") << 1;
}

void tst_HostRemoval::removeAsksOnATerminal()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, code);
    write(m_root + "/source/file", "12345");
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("remove source"), folder());
    process.setStandardInputFile(terminal.path());
    process.setStandardErrorFile(terminal.path());
    process.start();
    const QByteArray question =
        "Remove '" + m_root + "/source' with all in it (files: 1, size: 5 bytes)? [y/N]";
    QTRY_VERIFY2_WITH_TIMEOUT(terminal.shown().contains(question), terminal.shown().constData(), 60000);
    QVERIFY(exists(m_root + "/source/file"));
    terminal.type(answer);
    QCOMPARE(process.end().code, code);
    QCOMPARE(exists(m_root + "/source/file"), code != 0);
}

void tst_HostRemoval::removeNeedsYesWhereNobodyCanBeAsked()
{
    write(m_root + "/source/file");
    const Ended outcome = run("remove source");
    QCOMPARE(outcome.code, 2);
    QCOMPARE(
        QString::fromUtf8(outcome.error),
        QStringLiteral("quenzo: this removes '%1/source' with all in it: --yes is needed where nobody can be "
                       "asked (see quenzo remove --help)\n")
            .arg(folder()));
    QVERIFY(exists(m_root + "/source/file"));
}

QTEST_GUILESS_MAIN(tst_HostRemoval)
#include "tst_hostremoval.moc"
