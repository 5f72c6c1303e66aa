// SPDX-License-Identifier: MIT
// The tree commands of the program "quenzo", as a user runs them.
#include "terminal.h"
#include "treefiles.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <functional>
#include <grp.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::exists;
using TreeFiles::write;

namespace {

struct Outcome {
    int code;
    QString output;
    QString error;

    QJsonObject json() const { return QJsonDocument::fromJson(output.toUtf8()).object(); }
};

/** A program that is changed, once it is a process, before it begins. */
class ChangedProcess : public QProcess {
public:
    std::function<void()> change;

protected:
    void setupChildProcess() override
    {
        if (change)
            change();
    }
};

void becomePlainUser()
{
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
        _exit(127);
}

} // namespace

class tst_HostTrees : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void copyReportsFilesAndBytes();
    void cutEmptiesTheSource();
    void outputLeavesNamesAndRestoresRights();
    void removeTakesEverythingButWhatLinksLeadTo();
    void uselessCallsAreExplained_data();
    void uselessCallsAreExplained();
    void wrongNumberOfArgumentsIsAUsageError();
    void failedOutputNamesTheFileFromTheLog();
    void failedCopyNamesTheEntry();
    void namesWithAColonAreFilesAndNotResources();
    void aDeletedCurrentFolderIsNotTheRoot_data();
    void aDeletedCurrentFolderIsNotTheRoot();
    void emptyNamesAreRefused();
    void foldersBehindLinksAreNamedAsTheSystemDoes();
    void removeLeavesFilesBehindLinksWithoutTextualNames();
    void removeLeavesTheRightsOfFilesWithOtherNames();
    void removeStopsAtALinkThatCannotBeRemoved();
    void workThatCannotStartIsReported_data();
    void workThatCannotStartIsReported();
    void countsFollowLinksAsTheLibraryDoes();
    void countsHoldNamesThatAreNoText();
    void countsAreRightForOneFile();
    void failuresTellTheirCause_data();
    void failuresTellTheirCause();
    void failedOutputTellsWhatBlocksAFolder();
    void failedOutputTellsWhatBlocksTheInnerFolder();
    void forgedLogEntriesAreNotBelieved();
    void fullDisksAreTold();
    void missingRightsAreTold();
    void outputThroughAnAliasEnds();
    void outputGivesRightsBackToEveryFolder();
    void outputGivesRightsBackToAFolderItMade();
    void interruptedOutputGivesRightsBack();
    void plainUsersOutputIsWhole_data();
    void plainUsersOutputIsWhole();
    void progressIsShownOnATerminal_data();
    void progressIsShownOnATerminal();
    void controlCharactersAreShownEscaped_data();
    void controlCharactersAreShownEscaped();
    void unknownCommandsAreShownEscaped();
    void resultsSteerNoTerminal();

private:
    Outcome run(const QStringList& words, const std::function<void()>& change = {}) const;
    Outcome runPlainly(const QStringList& words) const { return run(words, becomePlainUser); }
    void giveToPlainUser() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_root;
};

// Names that are no text stop the temporary folder's own removal.
void tst_HostTrees::cleanup()
{
    if (m_folder)
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), m_folder->path()});
}

void tst_HostTrees::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_root = QFile::encodeName(m_folder->path());
}

Outcome tst_HostTrees::run(const QStringList& words, const std::function<void()>& change) const
{
    ChangedProcess process;
    process.change = change;
    process.setWorkingDirectory(m_folder->path());
    process.start(QStringLiteral(QUENZO_PROGRAM), words);
    if (!process.waitForFinished(60000))
        return {-1, QString(), process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void tst_HostTrees::copyReportsFilesAndBytes()
{
    write(m_root + "/source/folder/file", "12345");
    write(m_root + "/source/other", "123");
    const Outcome text =
        run({QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("a/b/target")});
    QCOMPARE(text.error, QString());
    QCOMPARE(text.code, 0);
    QVERIFY2(text.output.endsWith(QLatin1String(": files: 2, bytes: 8\n")), qPrintable(text.output));
    QCOMPARE(TreeFiles::content(m_root + "/a/b/target"), TreeFiles::content(m_root + "/source"));

    const Outcome json = run({QStringLiteral("copy"), QStringLiteral("--json"), QStringLiteral("source"),
                              QStringLiteral("second")});
    QCOMPARE(json.code, 0);
    QCOMPARE(json.json().value(QStringLiteral("ok")), QJsonValue(true));
    QCOMPARE(json.json().value(QStringLiteral("files")), QJsonValue(2));
    QCOMPARE(json.json().value(QStringLiteral("bytes")), QJsonValue(8));
}

void tst_HostTrees::cutEmptiesTheSource()
{
    write(m_root + "/source/folder/file", "12345");
    const Outcome outcome = run({QStringLiteral("cut"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(outcome.code, 0);
    QVERIFY(TreeFiles::content(m_root + "/source").isEmpty());
    QCOMPARE(TreeFiles::read(m_root + "/target/folder/file"), QByteArray("12345"));
}

void tst_HostTrees::outputLeavesNamesAndRestoresRights()
{
    write(m_root + "/source/Log/file", "stays");
    write(m_root + "/source/build", "stays");
    write(m_root + "/source/folder/file", "moves");
    write(m_root + "/source/out/apk/game.apk", "game");
    const QByteArray out = m_root + "/source/out";
    chmod(out.constData(), 0750);
    const Outcome outcome =
        run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("source/out/"),
             QStringLiteral("--leave"), QStringLiteral("log,BUILD")});
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(TreeFiles::mode(out), 0750);
    QCOMPARE(TreeFiles::read(m_root + "/source/Log/file"), QByteArray("stays"));
    QCOMPARE(TreeFiles::read(m_root + "/source/build"), QByteArray("stays"));
    QCOMPARE(TreeFiles::read(out + "/folder/file"), QByteArray("moves"));
    QCOMPARE(TreeFiles::read(out + "/apk/game.apk"), QByteArray("game"));
    QVERIFY(!exists(m_root + "/source/folder"));
}

void tst_HostTrees::removeTakesEverythingButWhatLinksLeadTo()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    const Outcome outcome = run({QStringLiteral("remove"), QStringLiteral("source")});
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostTrees::uselessCallsAreExplained_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing source") << QStringLiteral("copy missing target")
                                    << QStringLiteral("there is no folder");
    QTest::newRow("file as source") << QStringLiteral("copy source/file target")
                                    << QStringLiteral("is not a folder");
    QTest::newRow("file as target") << QStringLiteral("copy source source/file")
                                    << QStringLiteral("is not a folder");
    QTest::newRow("same folder") << QStringLiteral("copy source ./source/")
                                 << QStringLiteral("are the same folder");
    QTest::newRow("same folder by a link")
        << QStringLiteral("output source alias") << QStringLiteral("are the same folder");
    QTest::newRow("target inside") << QStringLiteral("cut source source/inner")
                                   << QStringLiteral("is inside");
    QTest::newRow("target inside a link")
        << QStringLiteral("copy source alias/inner") << QStringLiteral("is inside");
    QTest::newRow("missing parent") << QStringLiteral("cut source a/b") << QStringLiteral("does not exist");
    QTest::newRow("missing parent of output")
        << QStringLiteral("output source a/b") << QStringLiteral("does not exist");
    QTest::newRow("remove nothing") << QStringLiteral("remove missing")
                                    << QStringLiteral("there is no folder");
    QTest::newRow("remove a file") << QStringLiteral("remove source/file")
                                   << QStringLiteral("is not a folder");
    QTest::newRow("remove a link") << QStringLiteral("remove alias") << QStringLiteral("is a link");
    QTest::newRow("remove here") << QStringLiteral("remove .") << QStringLiteral("current folder");
    QTest::newRow("remove everything") << QStringLiteral("remove /") << QStringLiteral("current folder");
}

void tst_HostTrees::uselessCallsAreExplained()
{
    QFETCH(QString, call);
    QFETCH(QString, reason);
    write(m_root + "/source/file", "kept");
    TreeFiles::makeLink("source", m_root + "/alias");
    const auto before = TreeFiles::content(m_root);
    const Outcome outcome = run(call.split(QLatin1Char(' ')) << QStringLiteral("--json"));
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.startsWith(QLatin1String("quenzo: ")), qPrintable(outcome.error));
    QVERIFY2(outcome.error.contains(reason), qPrintable(outcome.error));
    QVERIFY(outcome.json().value(QStringLiteral("error")).toString().contains(reason));
    QCOMPARE(outcome.json().value(QStringLiteral("ok")), QJsonValue(false));
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTrees::wrongNumberOfArgumentsIsAUsageError()
{
    QCOMPARE(run({QStringLiteral("copy"), QStringLiteral("source")}).code, 2);
    QCOMPARE(run({QStringLiteral("remove")}).code, 2);
    QCOMPARE(
        run({QStringLiteral("output"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}).code,
        2);
    QCOMPARE(run({QStringLiteral("cut"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("--leave")})
                 .code,
             2);
}

void tst_HostTrees::failedOutputNamesTheFileFromTheLog()
{
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("nowhere", m_root + "/source/folder/link");
    const Outcome outcome =
        run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(outcome.code, 1);
    const QString expected =
        QStringLiteral("quenzo: '%1/source/folder/link' could not be copied to '%1/target/folder/link': "
                       "the link leads nowhere\n")
            .arg(m_folder->path());
    QCOMPARE(outcome.error, expected);
}

void tst_HostTrees::failedCopyNamesTheEntry()
{
    write(m_root + "/source/file");
    const QByteArray pipe = m_root + "/source/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    const Outcome outcome = run({QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("/source/pipe' could not be copied")),
             qPrintable(outcome.error));
    QVERIFY2(outcome.error.contains(QLatin1String("it is neither a file nor a folder")),
             qPrintable(outcome.error));
}

void tst_HostTrees::namesWithAColonAreFilesAndNotResources()
{
    write(m_root + "/:source/:x", "content");
    QCOMPARE(run({QStringLiteral("cut"), QStringLiteral(":source"), QStringLiteral(":target")}).code, 0);
    QCOMPARE(TreeFiles::read(m_root + "/:target/:x"), QByteArray("content"));
}

void tst_HostTrees::giveToPlainUser() const
{
    if (geteuid() != 0)
        return;
    QProcess process;
    process.start(QStringLiteral("chown"),
                  {QStringLiteral("-Rh"), QStringLiteral("65534:65534"), m_folder->path()});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

void tst_HostTrees::aDeletedCurrentFolderIsNotTheRoot_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"remove quenzo-none", "cut quenzo-none /tmp", "copy quenzo-none /tmp",
                             "output quenzo-none /tmp", "copy /tmp quenzo-none"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTrees::aDeletedCurrentFolderIsNotTheRoot()
{
    QFETCH(QString, call);
    const QByteArray here = m_root + "/here";
    const Outcome outcome = run(call.split(QLatin1Char(' ')), [here] {
        if (mkdir(here.constData(), 0755) != 0 || chdir(here.constData()) != 0
            || rmdir(here.constData()) != 0)
            _exit(127);
    });
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("the current folder is gone")), qPrintable(outcome.error));
    QVERIFY(!exists("/quenzo-none"));
}

void tst_HostTrees::emptyNamesAreRefused()
{
    write(m_root + "/file");
    const Outcome outcome = run({QStringLiteral("cut"), QString(), QStringLiteral("/tmp")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("is empty")), qPrintable(outcome.error));
    QVERIFY(exists(m_root + "/file"));
}

void tst_HostTrees::foldersBehindLinksAreNamedAsTheSystemDoes()
{
    write(m_root + "/far/away/file");
    write(m_root + "/far/named");
    write(m_root + "/named/kept");
    TreeFiles::makeLink("far/away", m_root + "/link");
    // Behind the link, ".." is the folder "far".
    QCOMPARE(run({QStringLiteral("remove"), QStringLiteral("link/../away")}).code, 0);
    QVERIFY(!exists(m_root + "/far/away"));
    QVERIFY(exists(m_root + "/named/kept"));
}

void tst_HostTrees::removeLeavesFilesBehindLinksWithoutTextualNames()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/folder/file");
    TreeFiles::makeLink("../../elsewhere", m_root + "/source/folder/link\xff");
    TreeFiles::makeFolder(m_root + "/source/folder\xfe");
    TreeFiles::makeLink("../../elsewhere/file", m_root + "/source/folder\xfe/link");
    QCOMPARE(run({QStringLiteral("remove"), QStringLiteral("source")}).code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostTrees::removeLeavesTheRightsOfFilesWithOtherNames()
{
    write(m_root + "/elsewhere/file", "kept");
    write(m_root + "/source/other");
    const QByteArray file = m_root + "/elsewhere/file";
    const QByteArray other = m_root + "/source/file";
    QCOMPARE(link(file.constData(), other.constData()), 0);
    QCOMPARE(run({QStringLiteral("remove"), QStringLiteral("source")}).code, 0);
    QVERIFY(!exists(m_root + "/source"));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
}

void tst_HostTrees::removeStopsAtALinkThatCannotBeRemoved()
{
    write(m_root + "/elsewhere/file", "kept");
    TreeFiles::makeFolder(m_root + "/source/closed");
    TreeFiles::makeLink("../../elsewhere", m_root + "/source/closed/link");
    giveToPlainUser();
    const QByteArray closed = m_root + "/source/closed";
    chmod(closed.constData(), 0555);
    const auto before = TreeFiles::content(m_root);
    const Outcome outcome = runPlainly({QStringLiteral("remove"), QStringLiteral("source")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("/source/closed/link'")), qPrintable(outcome.error));
    QVERIFY2(outcome.error.contains(QLatin1String("Permission denied")), qPrintable(outcome.error));
    QCOMPARE(TreeFiles::mode(m_root + "/elsewhere/file"), 0644);
    QCOMPARE(TreeFiles::content(m_root), before);
    chmod(closed.constData(), 0755);
}

void tst_HostTrees::workThatCannotStartIsReported_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call :
         {"copy source target", "cut source target", "output source target", "remove source"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTrees::workThatCannotStartIsReported()
{
    QFETCH(QString, call);
    write(m_root + "/source/file");
    giveToPlainUser();
    const auto before = TreeFiles::content(m_root);
    const Outcome outcome = run(call.split(QLatin1Char(' ')), [] {
        becomePlainUser();
        const struct rlimit one {
            1, 1
        };
        setrlimit(RLIMIT_NPROC, &one);
    });
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("quenzo: no thread could be started")),
             qPrintable(outcome.error));
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTrees::countsFollowLinksAsTheLibraryDoes()
{
    write(m_root + "/elsewhere/one", "1");
    write(m_root + "/elsewhere/deep/two", "22");
    write(m_root + "/source/three", "333");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    const Outcome copied = run({QStringLiteral("copy"), QStringLiteral("--json"), QStringLiteral("source"),
                                QStringLiteral("target")});
    QCOMPARE(copied.json().value(QStringLiteral("files")), QJsonValue(3));
    QCOMPARE(copied.json().value(QStringLiteral("bytes")), QJsonValue(6));
    const Outcome moved = run({QStringLiteral("cut"), QStringLiteral("--json"), QStringLiteral("source"),
                               QStringLiteral("second")});
    QCOMPARE(moved.json().value(QStringLiteral("files")), QJsonValue(3));
    QCOMPARE(moved.json().value(QStringLiteral("bytes")), QJsonValue(6));
}

void tst_HostTrees::countsHoldNamesThatAreNoText()
{
    write(m_root + "/source/a\xff", "1");
    write(m_root + "/source/b\xfe/c", "22");
    const auto count = [this](const char* call) {
        const QJsonObject json = run(QString::fromLatin1(call).split(QLatin1Char(' '))).json();
        return QPair<int, int>(json.value(QStringLiteral("files")).toInt(),
                               json.value(QStringLiteral("bytes")).toInt());
    };
    const QPair<int, int> whole(2, 3);
    QCOMPARE(count("copy --json source target"), whole);
    QCOMPARE(count("cut --json source second"), whole);
    QCOMPARE(count("output --json second third"), whole);
    QCOMPARE(count("remove --json third"), whole);
}

void tst_HostTrees::countsAreRightForOneFile()
{
    write(m_root + "/source/file", "12345678901234567890");
    const Outcome outcome = run({QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(outcome.output,
             QStringLiteral("Copied to %1/target: files: 1, bytes: 20\n").arg(m_folder->path()));
}

void tst_HostTrees::failuresTellTheirCause_data()
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
        row("blocked", "blocked/x", "something that is no folder stands in its place");
        row("overlaid", "overlaid/y", "a folder stands in its place");
    }
    QTest::newRow("copy, link in a circle")
        << QStringLiteral("copy circle target") << QStringLiteral("circle/link")
        << QStringLiteral("the link leads back to a folder that holds it");
    QTest::newRow("output, link to the target")
        << QStringLiteral("output upward target") << QStringLiteral("upward/link")
        << QStringLiteral("the link leads to the target, or to a folder that holds it");
    QTest::newRow("copy, link to the target")
        << QStringLiteral("copy upward target") << QStringLiteral("upward/link")
        << QStringLiteral("the link leads to the target, or to a folder that holds it");
}

void tst_HostTrees::failuresTellTheirCause()
{
    QFETCH(QString, call);
    QFETCH(QString, entry);
    QFETCH(QString, cause);
    write(m_root + "/target/x", "a file");
    write(m_root + "/target/y/file", "in a folder");
    for (const char* folder : {"/dangling", "/special", "/circle", "/upward"})
        TreeFiles::makeFolder(m_root + folder);
    TreeFiles::makeLink("nowhere", m_root + "/dangling/link");
    const QByteArray pipe = m_root + "/special/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    write(m_root + "/blocked/x/file");
    write(m_root + "/overlaid/y");
    TreeFiles::makeLink(".", m_root + "/circle/link");
    TreeFiles::makeLink("../target", m_root + "/upward/link");
    const Outcome outcome = run(call.split(QLatin1Char(' ')));
    QCOMPARE(outcome.code, 1);
    const QString name = entry.mid(entry.indexOf(QLatin1Char('/')));
    QCOMPARE(outcome.error,
             QStringLiteral("quenzo: '%1/%2' could not be copied to '%1/target%3': %4\n")
                 .arg(m_folder->path(), entry, name, cause));
}

void tst_HostTrees::failedOutputTellsWhatBlocksAFolder()
{
    write(m_root + "/source/Log/file", "stays");
    write(m_root + "/source/x/file");
    write(m_root + "/target/x", "in the way");
    const Outcome outcome = run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("target"),
                                 QStringLiteral("--leave"), QStringLiteral("log")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("/source/x' could not be copied")),
             qPrintable(outcome.error));
}

// The failure to move the output folder's own files inwards is logged, too, but ends nothing.
void tst_HostTrees::failedOutputTellsWhatBlocksTheInnerFolder()
{
    write(m_root + "/source/out/out", "in the way");
    write(m_root + "/source/out/old");
    const Outcome outcome =
        run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("source/out")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("/source/out' could not be copied")),
             qPrintable(outcome.error));
    QVERIFY2(outcome.error.contains(QLatin1String("something that is no folder stands in its place")),
             qPrintable(outcome.error));
}

void tst_HostTrees::forgedLogEntriesAreNotBelieved()
{
    TreeFiles::makeFolder(m_root + "/source");
    TreeFiles::makeLink("nowhere", m_root + "/source/a\r\nDest:evil");
    const Outcome outcome =
        run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String(R"(/target/a\r\nDest:evil': the link leads nowhere)")),
             qPrintable(outcome.error));
}

void tst_HostTrees::fullDisksAreTold()
{
    const QByteArray target = m_root + "/target";
    TreeFiles::makeFolder(target);
    if (mount("none", target.constData(), "tmpfs", 0, "size=1m") != 0)
        QSKIP("only root can mount a small file system");
    write(m_root + "/source/large", QByteArray(2 << 20, 'x'));
    const Outcome outcome = run({QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(umount(target.constData()), 0);
    QCOMPARE(outcome.code, 1);
    QVERIFY2(outcome.error.contains(QLatin1String("/source/large' could not be copied")),
             qPrintable(outcome.error));
    QVERIFY2(outcome.error.contains(QLatin1String("there is no room for it")), qPrintable(outcome.error));
}

void tst_HostTrees::missingRightsAreTold()
{
    write(m_root + "/source/file");
    write(m_root + "/source/sub/file");
    write(m_root + "/target/sub/other");
    giveToPlainUser();
    const QByteArray file = m_root + "/source/file";
    const QByteArray folder = m_root + "/target/sub";
    chmod(folder.constData(), 0555);
    const Outcome closed =
        runPlainly({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(closed.code, 1);
    QVERIFY2(closed.error.contains(QLatin1String("no right to write to the folder")),
             qPrintable(closed.error));
    chmod(folder.constData(), 0755);
    write(file);
    giveToPlainUser();
    chmod(file.constData(), 0);
    const Outcome unreadable =
        runPlainly({QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("target")});
    QCOMPARE(unreadable.code, 1);
    QVERIFY2(unreadable.error.contains(QLatin1String("/source/file' could not be copied")),
             qPrintable(unreadable.error));
    QVERIFY2(unreadable.error.contains(QLatin1String("there is no right to read it")),
             qPrintable(unreadable.error));
}

void tst_HostTrees::outputThroughAnAliasEnds()
{
    write(m_root + "/source/folder/file", "moved");
    TreeFiles::makeLink("source", m_root + "/alias");
    const Outcome outcome =
        run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("alias/out")});
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(TreeFiles::read(m_root + "/source/out/folder/file"), QByteArray("moved"));
    QVERIFY(!exists(m_root + "/source/out/out/out"));
}

void tst_HostTrees::outputGivesRightsBackToEveryFolder()
{
    // Folders that stay: the output folder, the one above it, and what links lead to, over several links.
    const QByteArray above = m_root + "/source/above\xff";
    write(above + "/out/apk/game.apk");
    write(m_root + "/one/file");
    write(m_root + "/two/file");
    TreeFiles::makeLink("../one", m_root + "/source/link");
    TreeFiles::makeLink("../two", m_root + "/one/link");
    chmod(above.constData(), 02775);
    const QByteArray one = m_root + "/one";
    const QByteArray two = m_root + "/two";
    chmod(one.constData(), 0750);
    chmod(two.constData(), 01711);
    const QByteArray out = m_root + "/source/out";
    TreeFiles::makeFolder(out);
    chmod(out.constData(), 02775);
    // A link keeps the folder with the name that is no text.
    write(m_root + "/three/file");
    TreeFiles::makeLink("../../three", above + "/link");
    QCOMPARE(run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("source/out")}).code, 0);
    QCOMPARE(TreeFiles::mode(out), 02775);
    QCOMPARE(TreeFiles::mode(above), 02775);
    QCOMPARE(TreeFiles::mode(one), 0750);
    QCOMPARE(TreeFiles::mode(two), 01711);
}

void tst_HostTrees::outputGivesRightsBackToAFolderItMade()
{
    write(m_root + "/source/file");
    QCOMPARE(run({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("source/out")}).code, 0);
    const mode_t mask = umask(0);
    umask(mask);
    QCOMPARE(TreeFiles::mode(m_root + "/source/out"), int(0777 & ~mask));
}

void tst_HostTrees::interruptedOutputGivesRightsBack()
{
    // Listed from the newest on, where it is in memory: the folder is done first, and the files are not.
    QTemporaryDir quick(TreeFiles::quickFolder());
    const QByteArray root = QFile::encodeName(quick.path());
    for (int i = 0; i < 40000; ++i)
        write(root + "/source/file" + QByteArray::number(i), "");
    const QByteArray out = root + "/source/out";
    TreeFiles::makeFolder(out);
    QProcess process;
    process.start(
        QStringLiteral(QUENZO_PROGRAM),
        {QStringLiteral("output"), quick.filePath(QStringLiteral("source")), QFile::decodeName(out)});
    QVERIFY(process.waitForStarted());
    while (TreeFiles::mode(out) != 02 && process.state() == QProcess::Running)
        process.waitForFinished(1);
    kill(pid_t(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGINT);
    QCOMPARE(TreeFiles::mode(out), 0755);
}

void tst_HostTrees::plainUsersOutputIsWhole_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("disk") << QDir::tempPath() + QStringLiteral("/trees.XXXXXX");
    QTest::newRow("memory") << TreeFiles::quickFolder();
}

void tst_HostTrees::plainUsersOutputIsWhole()
{
    QFETCH(QString, folder);
    m_folder = std::make_unique<QTemporaryDir>(folder);
    m_root = QFile::encodeName(m_folder->path());
    // Whatever the order of the listing is, some come after the output folder.
    constexpr int count = 40;
    for (int i = 0; i < count; ++i) {
        write(m_root + "/source/file" + QByteArray::number(i));
        write(m_root + "/source/folder" + QByteArray::number(i) + "/file");
        if (i == count / 2)
            TreeFiles::makeFolder(m_root + "/source/out");
    }
    write(m_root + "/source/log/file");
    giveToPlainUser();
    const Outcome outcome =
        runPlainly({QStringLiteral("output"), QStringLiteral("source"), QStringLiteral("source/out"),
                    QStringLiteral("--leave"), QStringLiteral("Log"), QStringLiteral("--json")});
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(outcome.json().value(QStringLiteral("files")), QJsonValue(2 * count));
    QCOMPARE(TreeFiles::mode(m_root + "/source/out"), 0755);
    QDir source(m_folder->filePath(QStringLiteral("source")));
    QCOMPARE(source.entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             (QStringList{QStringLiteral("log"), QStringLiteral("out")}));
    for (int i = 0; i < count; ++i) {
        const QByteArray file = "/file" + QByteArray::number(i);
        QVERIFY(exists(m_root + "/source/out" + file) || exists(m_root + "/source/out/out" + file));
        QVERIFY(exists(m_root + "/source/out/folder" + QByteArray::number(i) + "/file"));
    }
}

void tst_HostTrees::progressIsShownOnATerminal_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call :
         {"copy source target", "cut source target", "output source target", "remove source"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTrees::progressIsShownOnATerminal()
{
    QFETCH(QString, call);
    constexpr int count = 40000;
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    m_root = QFile::encodeName(m_folder->path());
    for (int i = 0; i < count; ++i)
        write(m_root + "/source/" + QByteArray::number(i / 100) + "/file" + QByteArray::number(i), "1234");
    Terminal terminal;
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.setStandardErrorFile(terminal.path());
    process.start(QStringLiteral(QUENZO_PROGRAM), call.split(QLatin1Char(' ')));
    while (!process.waitForFinished(20) && process.state() == QProcess::Running)
        terminal.shown();
    QCOMPARE(process.exitCode(), 0);
    const QString shown = QString::fromUtf8(terminal.shown());
    // Somewhere on the way there is a figure from the way.
    const QRegularExpression figure(QStringLiteral("files: ([0-9,]+) of 40,?000"));
    QRegularExpressionMatchIterator found = figure.globalMatch(shown);
    QVector<int> figures;
    while (found.hasNext())
        figures.append(found.next().captured(1).remove(QLatin1Char(',')).toInt());
    QVERIFY2(std::any_of(figures.cbegin(), figures.cend(), [](int n) { return n > 0 && n < count; }),
             qPrintable(shown));
    QVERIFY2(std::is_sorted(figures.cbegin(), figures.cend()), qPrintable(shown));
}

void tst_HostTrees::controlCharactersAreShownEscaped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* tag, const QString& name, const char* shown) {
        QTest::newRow(tag) << name << QString::fromLatin1(shown);
    };
    row("escape", QStringLiteral("a\x1b[31mred"), R"(a\x1b[31mred)");
    row("C1 control", QStringLiteral("a") + QChar(0x9b) + QStringLiteral("2J"), R"(a\x9b2J)");
    row("DEL", QStringLiteral("a\x7f"), R"(a\x7f)");
    row("line", QStringLiteral("a\r\nquenzo: b"), R"(a\r\nquenzo: b)");
    row("tab and bell", QStringLiteral("a\t\x07"), R"(a\t\x07)");
    row("others stay", QStringLiteral("\u00a0\u00e9\u4e2d\\n"), "\\n");
}

void tst_HostTrees::controlCharactersAreShownEscaped()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    const Outcome failed =
        run({QStringLiteral("copy"), name, QStringLiteral("target"), QStringLiteral("--json")});
    QCOMPARE(failed.code, 1);
    QVERIFY2(failed.error.contains(shown + QLatin1Char('\'')), qPrintable(failed.error));
    QCOMPARE(failed.error.count(QLatin1Char('\n')), 1);
    QCOMPARE(failed.json().value(QStringLiteral("source")).toString(),
             m_folder->path() + QLatin1Char('/') + name);

    write(m_root + "/source/file");
    const Outcome done = run({QStringLiteral("copy"), QStringLiteral("source"), name});
    QCOMPARE(done.code, 0);
    QVERIFY2(done.output.contains(shown + QStringLiteral(": files: 1, ")), qPrintable(done.output));
    QCOMPARE(done.output.count(QLatin1Char('\n')), 1);
}

void tst_HostTrees::unknownCommandsAreShownEscaped()
{
    const Outcome outcome = run({QStringLiteral("copy\x1b]0;title\x07")});
    QCOMPARE(outcome.code, 2);
    QVERIFY2(outcome.error.contains(QLatin1String(R"('copy\x1b]0;title\x07')")), qPrintable(outcome.error));
}

void tst_HostTrees::resultsSteerNoTerminal()
{
    const QString text = QStringLiteral("two\nlines \x1b[2J ") + QChar(0x9b) + QStringLiteral("2J");
    const QString scrambled = run({QStringLiteral("encode"), text}).output.trimmed();
    QCOMPARE(run({QStringLiteral("decode"), scrambled}).output, text + QLatin1Char('\n'));
    const Outcome json = run({QStringLiteral("decode"), QStringLiteral("--json"), scrambled});
    QCOMPARE(json.json().value(QStringLiteral("text")).toString(), text);
    QVERIFY(!json.output.contains(QChar(0x9b)));

    Terminal terminal;
    QProcess process;
    process.setStandardOutputFile(terminal.path());
    process.start(QStringLiteral(QUENZO_PROGRAM), {QStringLiteral("decode"), scrambled});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(terminal.shown(), QByteArray("two\r\nlines \\x1b[2J \\x9b2J\r\n"));
}

QTEST_GUILESS_MAIN(tst_HostTrees)
#include "tst_hosttrees.moc"
