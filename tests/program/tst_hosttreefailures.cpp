// SPDX-License-Identifier: MIT
// Why the tree commands of the program "quenzo" fail, as they tell it.
#include "treefiles.h"
#include "treescene.h"

#include <QtTest>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::write;

class tst_HostTreeFailures : public QObject, private TreeScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { openScene(); }
    void cleanup() { closeScene(); }

    void failedOutputNamesTheFile();
    void failedCopyNamesTheEntry();
    void failuresTellTheirCause_data();
    void failuresTellTheirCause();
    void linksToTheTargetAreRefused_data();
    void linksToTheTargetAreRefused();
    void failedOutputTellsWhatBlocksAFolder();
    void failedOutputTellsWhatBlocksTheInnerFolder();
    void namesWithLineBreaksStayInOneLine();
    void fullDisksAreTold();
    void missingRightsAreTold();
    void whatEndedTheRunIsToldFirst_data();
    void whatEndedTheRunIsToldFirst();
    void uselessCallsAreExplained_data();
    void uselessCallsAreExplained();
    void workThatCannotStartIsReported_data();
    void workThatCannotStartIsReported();
    void aDeletedCurrentFolderIsNotTheRoot_data();
    void aDeletedCurrentFolderIsNotTheRoot();
    void emptyNamesAreRefused();

private:
    QByteArray makePipeListedAfter(const QByteArray& folder) const;
};

void tst_HostTreeFailures::uselessCallsAreExplained_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char* tag, const char* call, const char* reason) {
        QTest::newRow(tag) << QString::fromLatin1(call) << QByteArray(reason);
    };
    row("missing source", "copy missing target", "there is no folder");
    row("missing source of a cut", "cut missing target", "there is no folder");
    row("missing source of an output", "output missing target", "there is no folder");
    row("file as source", "copy source/file target", "is not a folder");
    row("file as target", "copy source source/file", "is not a folder");
    row("same folder", "copy source ./source/", "are the same folder");
    row("same folder by a link", "output source alias", "are the same folder");
    row("target inside", "cut source source/inner", "is inside");
    row("target inside a link", "copy source alias/inner", "is inside");
    row("missing parent", "cut source a/b", "does not exist");
    row("missing parent of output", "output source a/b", "does not exist");
    row("remove nothing", "remove missing", "there is no folder");
    row("remove a file", "remove source/file", "is not a folder");
    row("remove a link", "remove alias", "is a link");
    row("remove here", "remove .", "current folder");
    row("remove everything", "remove /", "current folder");
}

void tst_HostTreeFailures::uselessCallsAreExplained()
{
    QFETCH(QString, call);
    QFETCH(QByteArray, reason);
    write(m_root + "/source/file", "kept");
    TreeFiles::makeLink("source", m_root + "/alias");
    const auto before = TreeFiles::content(m_root);
    const Ended outcome = run(call.split(QLatin1Char(' ')) << QStringLiteral("--json"));
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.startsWith("quenzo: "), outcome.error.constData());
    QVERIFY2(outcome.error.contains(reason), outcome.error.constData());
    QVERIFY(outcome.failure().value(QStringLiteral("message")).toString().toUtf8().contains(reason));
    QCOMPARE(outcome.json().value(QStringLiteral("ok")), QJsonValue(false));
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTreeFailures::failedOutputNamesTheFile()
{
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("nowhere", m_root + "/source/folder/link");
    const Ended outcome = run("output source target");
    QCOMPARE(outcome.code, 1);
    const QString expected =
        QStringLiteral("quenzo: '%1/source/folder/link' could not be copied to '%1/target/folder/link': "
                       "the link leads nowhere\n")
            .arg(folder());
    QCOMPARE(QString::fromUtf8(outcome.error), expected);
}

void tst_HostTreeFailures::failedCopyNamesTheEntry()
{
    write(m_root + "/source/file");
    const QByteArray pipe = m_root + "/source/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    const Ended outcome = run("copy source target");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/source/pipe' could not be copied"), outcome.error.constData());
    QVERIFY2(outcome.error.contains("it is neither a file nor a folder"), outcome.error.constData());
}

void tst_HostTreeFailures::aDeletedCurrentFolderIsNotTheRoot_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"remove quenzo-none", "cut quenzo-none /tmp", "copy quenzo-none /tmp",
                             "output quenzo-none /tmp", "copy /tmp quenzo-none"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTreeFailures::aDeletedCurrentFolderIsNotTheRoot()
{
    QFETCH(QString, call);
    const QByteArray here = m_root + "/here";
    const Ended outcome = run(call.split(QLatin1Char(' ')), [here] {
        if (mkdir(here.constData(), 0755) != 0 || chdir(here.constData()) != 0
            || rmdir(here.constData()) != 0)
            _exit(127);
    });
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("the current folder is gone"), outcome.error.constData());
    QVERIFY(!exists("/quenzo-none"));
}

void tst_HostTreeFailures::emptyNamesAreRefused()
{
    write(m_root + "/file");
    const Ended outcome = run({QStringLiteral("cut"), QString(), QStringLiteral("/tmp")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("is empty"), outcome.error.constData());
    QVERIFY(exists(m_root + "/file"));
}

void tst_HostTreeFailures::workThatCannotStartIsReported_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call :
         {"copy source target", "cut source target", "output source target", "remove source --yes"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTreeFailures::workThatCannotStartIsReported()
{
    QFETCH(QString, call);
    write(m_root + "/source/file");
    giveToPlainUser();
    const auto before = TreeFiles::content(m_root);
    const Ended outcome = run(call.split(QLatin1Char(' ')), [] {
        QuenzoProcess::becomePlainUser();
        const struct rlimit one {
            1, 1
        };
        setrlimit(RLIMIT_NPROC, &one);
    });
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("quenzo: no thread could be started"), outcome.error.constData());
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTreeFailures::failuresTellTheirCause_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("cause");
    for (const char* operation : {"copy", "cut", "output"}) {
        const auto row = [operation](const char* folder, const char* entry, const char* cause) {
            QTest::addRow("%s, %s", operation, folder)
                << QStringLiteral("%1 %2 target").arg(QLatin1String(operation), QLatin1String(folder))
                << QString::fromLatin1(entry) << QString::fromLatin1(cause);
        };
        row("dangling", "dangling/link", "the link leads nowhere");
        row("special", "special/pipe", "it is neither a file nor a folder");
        row("overlaid", "overlaid/y", "Is a directory");
    }
}

void tst_HostTreeFailures::failuresTellTheirCause()
{
    QFETCH(QString, call);
    QFETCH(QString, entry);
    QFETCH(QString, cause);
    write(m_root + "/target/y/file", "in a folder");
    for (const char* folder : {"/dangling", "/special"})
        TreeFiles::makeFolder(m_root + folder);
    TreeFiles::makeLink("nowhere", m_root + "/dangling/link");
    const QByteArray pipe = m_root + "/special/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    write(m_root + "/overlaid/y");
    const Ended outcome = run(call.split(QLatin1Char(' ')));
    QCOMPARE(outcome.code, 1);
    const QString name = entry.mid(entry.indexOf(QLatin1Char('/')));
    QCOMPARE(QString::fromUtf8(outcome.error),
             QStringLiteral("quenzo: '%1/%2' could not be copied to '%1/target%3': %4\n")
                 .arg(folder(), entry, name, cause));
}

void tst_HostTreeFailures::linksToTheTargetAreRefused_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QByteArray>("leadsTo");
    for (const char* call : {"copy source target", "cut source target", "output source target"}) {
        QTest::addRow("%s, the target", call) << QString::fromLatin1(call) << QByteArray("../../target");
        QTest::addRow("%s, what holds it", call) << QString::fromLatin1(call) << QByteArray("../..");
    }
}

// The library would move what is in the target further and further into it.
void tst_HostTreeFailures::linksToTheTargetAreRefused()
{
    QFETCH(QString, call);
    QFETCH(QByteArray, leadsTo);
    write(m_root + "/source/file");
    write(m_root + "/target/kept");
    TreeFiles::makeFolder(m_root + "/source/folder");
    TreeFiles::makeLink(leadsTo, m_root + "/source/folder/link");
    const auto before = TreeFiles::content(m_root);
    const Ended outcome = run(qPrintable(call));
    QCOMPARE(outcome.code, 1);
    QCOMPARE(
        QString::fromUtf8(outcome.error),
        QStringLiteral("quenzo: '%1/source/folder/link' is a link to the target, or to a folder that holds "
                       "it; nothing was touched\n")
            .arg(folder()));
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTreeFailures::failedOutputTellsWhatBlocksAFolder()
{
    write(m_root + "/source/Log/file", "stays");
    write(m_root + "/source/x/file");
    write(m_root + "/target/x", "in the way");
    const Ended outcome = run("output source target --leave log");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/target/x' could not be made: File exists"), outcome.error.constData());
}

// The failure to move the output folder's own files inwards is told, too, but ends nothing.
void tst_HostTreeFailures::failedOutputTellsWhatBlocksTheInnerFolder()
{
    write(m_root + "/source/out/out", "in the way");
    write(m_root + "/source/out/old");
    const Ended outcome = run("output source source/out");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/source/out/out' could not be made: File exists"),
             outcome.error.constData());
}

void tst_HostTreeFailures::namesWithLineBreaksStayInOneLine()
{
    TreeFiles::makeFolder(m_root + "/source");
    TreeFiles::makeLink("nowhere", m_root + "/source/a\r\nDest:evil");
    const Ended outcome = run("output source target");
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(R"(/target/a\r\nDest:evil': the link leads nowhere)"),
             outcome.error.constData());
}

void tst_HostTreeFailures::fullDisksAreTold()
{
    const QByteArray target = m_root + "/target";
    TreeFiles::makeFolder(target);
    if (mount("none", target.constData(), "tmpfs", 0, "size=1m") != 0)
        QSKIP("only root can mount a small file system");
    write(m_root + "/source/large", QByteArray(2 << 20, 'x'));
    const Ended outcome = run("copy source target");
    QCOMPARE(umount(target.constData()), 0);
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains("/source/large' could not be copied"), outcome.error.constData());
    QVERIFY2(outcome.error.contains("No space left on device"), outcome.error.constData());
}

void tst_HostTreeFailures::missingRightsAreTold()
{
    write(m_root + "/source/file");
    write(m_root + "/source/sub/file");
    write(m_root + "/target/sub/other");
    giveToPlainUser();
    const QByteArray file = m_root + "/source/file";
    const QByteArray folder = m_root + "/target/sub";
    chmod(folder.constData(), 0555);
    const Ended closed = runPlainly("output source target");
    QCOMPARE(closed.code, 1);
    QVERIFY2(closed.error.contains("Permission denied"), closed.error.constData());
    chmod(folder.constData(), 0755);
    write(file);
    giveToPlainUser();
    chmod(file.constData(), 0);
    const Ended unreadable = runPlainly("copy source target");
    QCOMPARE(unreadable.code, 1);
    QVERIFY2(unreadable.error.contains("/source/file' could not be copied"), unreadable.error.constData());
    QVERIFY2(unreadable.error.contains("Permission denied"), unreadable.error.constData());
}

void tst_HostTreeFailures::whatEndedTheRunIsToldFirst_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"cut source target", "output source target"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

// What was copied before is removed, or not, after the entry that cannot be copied has ended the run.
void tst_HostTreeFailures::whatEndedTheRunIsToldFirst()
{
    QFETCH(QString, call);
    for (int i = 0; i < 7; ++i)
        write(m_root + "/source/locked/file" + QByteArray::number(i));
    const QByteArray pipe = makePipeListedAfter("/source/locked");
    QVERIFY2(!pipe.isEmpty(), "no name is listed after the folder");
    giveToPlainUser();
    const QByteArray locked = m_root + "/source/locked";
    chmod(locked.constData(), 0555);
    const Ended outcome = runPlainly(qPrintable(call));
    chmod(locked.constData(), 0755);
    QCOMPARE(outcome.code, 1);
    const QList<QByteArray> lines = outcome.error.split('\n');
    QCOMPARE(lines.first(),
             "quenzo: '" + pipe + "' could not be copied to '" + m_root + "/target/"
                 + pipe.mid(pipe.lastIndexOf('/') + 1) + "': it is neither a file nor a folder");
    QCOMPARE(lines.size(), 7);
    for (const QByteArray& line : lines.mid(1, 4))
        QVERIFY2(line.contains("could not be removed: Permission denied"), line.constData());
    QCOMPARE(lines.at(5), QByteArray("and 3 more like these"));
}

// The order of a folder's entries is the file system's: by the names, or by when they were made.
QByteArray tst_HostTreeFailures::makePipeListedAfter(const QByteArray& folder) const
{
    const QByteArray parent = m_root + folder.left(folder.lastIndexOf('/'));
    const QString before = QFile::decodeName(folder.mid(folder.lastIndexOf('/') + 1));
    for (int i = 0; i < 64; ++i) {
        const QByteArray pipe = parent + "/pipe" + QByteArray::number(i);
        const bool folderLast = i % 2 == 1;
        const QByteArray aside = m_root + "/aside";
        if (folderLast && rename(QByteArray(m_root + folder).constData(), aside.constData()) != 0)
            return {};
        if (mkfifo(pipe.constData(), 0644) != 0)
            return {};
        if (folderLast && rename(aside.constData(), QByteArray(m_root + folder).constData()) != 0)
            return {};
        const QStringList names =
            QDir(QFile::decodeName(parent))
                .entryList(QDir::Dirs | QDir::Files | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
        if (names.last() != before)
            return pipe;
        unlink(pipe.constData());
    }
    return {};
}

QTEST_GUILESS_MAIN(tst_HostTreeFailures)
#include "tst_hosttreefailures.moc"
