// SPDX-License-Identifier: MIT
// The program's command remove, and what it leaves alone.
#include "treefiles.h"
#include "treescene.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::write;

class tst_HostRemoval : public QObject, private TreeScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { open(); }
    void cleanup() { close(); }

    void removeTakesEverythingButWhatLinksLeadTo();
    void foldersBehindLinksAreNamedAsTheSystemDoes();
    void removeLeavesFilesBehindLinksWithoutTextualNames();
    void removeLeavesTheRightsOfFilesWithOtherNames();
    void removeStopsAtALinkThatCannotBeRemoved();
};

void tst_HostRemoval::removeTakesEverythingButWhatLinksLeadTo()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    const Ended outcome = run("remove source");
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
    QCOMPARE(run("remove link/../away").code, 0);
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
    QCOMPARE(run("remove source").code, 0);
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
    QCOMPARE(run("remove source").code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostRemoval::removeStopsAtALinkThatCannotBeRemoved()
{
    write(m_root + "/elsewhere/file", "kept");
    TreeFiles::makeFolder(m_root + "/source/closed");
    TreeFiles::makeLink("../../elsewhere", m_root + "/source/closed/link");
    giveToPlainUser();
    const QByteArray closed = m_root + "/source/closed";
    chmod(closed.constData(), 0555);
    const auto before = TreeFiles::content(m_root);
    const Ended outcome = runPlainly("remove source");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/source/closed/link'"), outcome.error.constData());
    QVERIFY2(outcome.error.contains("Permission denied"), outcome.error.constData());
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
    QCOMPARE(TreeFiles::content(m_root), before);
    chmod(closed.constData(), 0755);
}

QTEST_GUILESS_MAIN(tst_HostRemoval)
#include "tst_hostremoval.moc"
