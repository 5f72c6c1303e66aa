// SPDX-License-Identifier: MIT
// The tree commands of the program "quenzo", as a user runs them.
#include "terminal.h"
#include "treefiles.h"
#include "treescene.h"

#include <QJsonArray>
#include <QtTest>

#include <algorithm>
#include <sys/stat.h>

using TreeFiles::write;

class tst_HostTrees : public QObject, private TreeScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { openScene(); }
    void cleanup() { closeScene(); }

    void copyReportsFilesAndBytes();
    void cutEmptiesTheSource();
    void filesThatCannotBeMovedAwayAreNotMoved_data();
    void filesThatCannotBeMovedAwayAreNotMoved();
    void wrongNumberOfArgumentsIsAUsageError();
    void namesWithAColonAreFilesAndNotResources();
    void countsFollowLinksAsTheLibraryDoes();
    void movedFilesCountOnce_data();
    void movedFilesCountOnce();
    void linkToAMovedFolderIsNothingLeft_data();
    void linkToAMovedFolderIsNothingLeft();
    void countsHoldNamesThatAreNoText();
    void countsAreRightForOneFile();
    void plansAreToldAndNotDone_data();
    void plansAreToldAndNotDone();
    void plansLeaveOutWhatStays();
    void progressIsShownOnATerminal_data();
    void progressIsShownOnATerminal();
    void controlCharactersAreShownEscaped_data();
    void controlCharactersAreShownEscaped();

private:
    QVector<int> figuresOnATerminal(const QString& call, int count);
};

void tst_HostTrees::copyReportsFilesAndBytes()
{
    write(m_root + "/source/folder/file", "12345");
    write(m_root + "/source/other", "123");
    const Ended text = run("copy source a/b/target");
    QCOMPARE(text.error, QByteArray());
    QCOMPARE(text.code, 0);
    QVERIFY2(text.output.endsWith(": files: 2, size: 8 bytes\n"), text.output.constData());
    QCOMPARE(TreeFiles::content(m_root + "/a/b/target"), TreeFiles::content(m_root + "/source"));

    const Ended json = run("copy --json source second");
    QCOMPARE(json.code, 0);
    QCOMPARE(json.json().value(QStringLiteral("ok")), QJsonValue(true));
    QCOMPARE(json.result().value(QStringLiteral("files")), QJsonValue(2));
    QCOMPARE(json.result().value(QStringLiteral("bytes")), QJsonValue(8));
}

void tst_HostTrees::cutEmptiesTheSource()
{
    write(m_root + "/source/folder/file", "12345");
    const Ended outcome = run("cut source target");
    QCOMPARE(outcome.code, 0);
    QVERIFY(TreeFiles::content(m_root + "/source").isEmpty());
    QCOMPARE(TreeFiles::read(m_root + "/target/folder/file"), QByteArray("12345"));
}

void tst_HostTrees::filesThatCannotBeMovedAwayAreNotMoved_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"cut source target --json", "output source target --json"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

void tst_HostTrees::filesThatCannotBeMovedAwayAreNotMoved()
{
    QFETCH(QString, call);
    write(m_root + "/source/folder/moved");
    write(m_root + "/source/stays");
    TreeFiles::makeFolder(m_root + "/target");
    giveToPlainUser();
    const QByteArray source = m_root + "/source";
    chmod(source.constData(), 0555);
    const Ended ended = runPlainly(qPrintable(call));
    chmod(source.constData(), 0755);
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.result().value(QStringLiteral("files")), QJsonValue(1));
    const QStringList lines =
        ended.failure().value(QStringLiteral("cause")).toString().split(QLatin1Char('\n'));
    QCOMPARE(ended.failure().value(QStringLiteral("message")).toString(),
             QStringLiteral("everything was copied to '%1/target', but files are still in '%1/source': 1")
                 .arg(folder()));
    QVERIFY2(lines.contains(
                 QStringLiteral("'%1/source/stays' could not be removed: Permission denied").arg(folder())),
             ended.error.constData());
    QVERIFY(TreeFiles::exists(m_root + "/target/stays"));
    QVERIFY(TreeFiles::exists(m_root + "/source/stays"));
}

void tst_HostTrees::wrongNumberOfArgumentsIsAUsageError()
{
    QCOMPARE(run("copy source").code, 2);
    QCOMPARE(run("remove").code, 2);
    QCOMPARE(run("output a b c").code, 2);
    QCOMPARE(run("cut a b --leave").code, 2);
}

void tst_HostTrees::namesWithAColonAreFilesAndNotResources()
{
    write(m_root + "/:source/:x", "content");
    QCOMPARE(run("cut :source :target").code, 0);
    QCOMPARE(TreeFiles::read(m_root + "/:target/:x"), QByteArray("content"));
}

void tst_HostTrees::countsFollowLinksAsTheLibraryDoes()
{
    write(m_root + "/elsewhere/one", "1");
    write(m_root + "/elsewhere/deep/two", "22");
    write(m_root + "/source/three", "333");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    const Ended copied = run("copy --json source target");
    QCOMPARE(copied.result().value(QStringLiteral("files")), QJsonValue(3));
    QCOMPARE(copied.result().value(QStringLiteral("bytes")), QJsonValue(6));
    const Ended moved = run("cut --json source second");
    QCOMPARE(moved.result().value(QStringLiteral("files")), QJsonValue(3));
    QCOMPARE(moved.result().value(QStringLiteral("bytes")), QJsonValue(6));
}

void tst_HostTrees::movedFilesCountOnce_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"cut source target --dry-run", "cut source target", "output source target"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

// The first of two links to a folder empties it. A cut for output locks a plain user out of that folder
// before the second is read, and ends there: what arrived is counted all the same, and nothing else. What is
// listed behind the links has not arrived then.
void tst_HostTrees::movedFilesCountOnce()
{
    QFETCH(QString, call);
    write(m_root + "/elsewhere/one", "1");
    write(m_root + "/elsewhere/deep/two", "22");
    write(m_root + "/source/three", "333");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/link");
    TreeFiles::makeLink("../elsewhere", m_root + "/source/same");
    const Ended moved = run(qPrintable(call + QStringLiteral(" --json")));
    QByteArrayList files{"1", "22", "333"};
    if (!call.endsWith(QLatin1String("--dry-run"))) {
        QByteArrayList arrived;
        for (const QByteArray& entry : TreeFiles::content(m_root + "/target")) {
            if (entry.startsWith("file "))
                arrived.append(entry.mid(5));
        }
        QVERIFY2(arrived.contains("1") && arrived.contains("22"), arrived.join(' ').constData());
        if (call.startsWith(QLatin1String("cut")) || moved.code == 0)
            QCOMPARE(arrived.size(), files.size());
        files = arrived;
    }
    QCOMPARE(moved.result().value(QStringLiteral("files")), QJsonValue(files.size()));
    QCOMPARE(moved.result().value(QStringLiteral("bytes")), QJsonValue(files.join().size()));
}

void tst_HostTrees::linkToAMovedFolderIsNothingLeft_data()
{
    QTest::addColumn<bool>("linkFirst");
    QTest::newRow("link made first") << true;
    QTest::newRow("folder made first") << false;
}

// Whichever is listed first takes the files along. The link stays, as one to a folder elsewhere does.
void tst_HostTrees::linkToAMovedFolderIsNothingLeft()
{
    QFETCH(bool, linkFirst);
    TreeFiles::makeFolder(m_root + "/source");
    const QByteArray link = m_root + "/source/link";
    if (linkFirst)
        TreeFiles::makeLink("folder", link);
    write(m_root + "/source/folder/file", "moved");
    if (!linkFirst)
        TreeFiles::makeLink("folder", link);
    const Ended moved = run("cut --json source target");
    QVERIFY2(moved.code == 0, moved.error.constData());
    QCOMPARE(moved.result().value(QStringLiteral("files")), QJsonValue(1));
    QCOMPARE(TreeFiles::content(m_root + "/source").keys(), QList<QByteArray>{"link"});
    QCOMPARE(TreeFiles::content(m_root + "/target").values().count("file moved"), 1);
}

void tst_HostTrees::countsHoldNamesThatAreNoText()
{
    write(m_root + "/source/a\xff", "1");
    write(m_root + "/source/b\xfe/c", "22");
    const auto count = [this](const char* call) {
        const QJsonObject json = run(call).result();
        return QPair<int, int>(json.value(QStringLiteral("files")).toInt(),
                               json.value(QStringLiteral("bytes")).toInt());
    };
    const QPair<int, int> whole(2, 3);
    QCOMPARE(count("copy --json source target"), whole);
    QCOMPARE(count("cut --json source second"), whole);
    QCOMPARE(count("output --json second third"), whole);
    QCOMPARE(count("remove --yes --json third"), whole);
}

void tst_HostTrees::countsAreRightForOneFile()
{
    write(m_root + "/source/file", "12345678901234567890");
    const Ended outcome = run("copy source target");
    QCOMPARE(QString::fromUtf8(outcome.output),
             QStringLiteral("Copied to %1/target: files: 1, size: 20 bytes\n").arg(folder()));
}

void tst_HostTrees::plansAreToldAndNotDone_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("verb");
    QTest::newRow("copy") << QStringLiteral("copy source target") << QStringLiteral("copy");
    QTest::newRow("cut") << QStringLiteral("cut source target") << QStringLiteral("move");
    QTest::newRow("output") << QStringLiteral("output source target") << QStringLiteral("move");
    QTest::newRow("remove") << QStringLiteral("remove source") << QStringLiteral("remove");
}

void tst_HostTrees::plansAreToldAndNotDone()
{
    QFETCH(QString, call);
    QFETCH(QString, verb);
    const bool isRemoval = verb == QLatin1String("remove");
    write(m_root + "/source/folder/file\n", "12345");
    write(m_root + "/target/folder/file\n", "old");
    const auto before = TreeFiles::content(m_root);
    const Ended text = run(qPrintable(call + QStringLiteral(" --dry-run")));
    const QString plan = isRemoval ? QStringLiteral("would %2 '%1/source/folder/file\\n'\n")
                                   : QStringLiteral("would %2 '%1/source/folder/file\\n' to "
                                                    "'%1/target/folder/file\\n', which is replaced\n");
    QCOMPARE(QString::fromUtf8(text.output),
             plan.arg(folder(), verb) + QStringLiteral("would %1 files: 1, size: 5 bytes\n").arg(verb));
    QCOMPARE(text.error, QByteArray());
    QCOMPARE(text.code, 0);

    const QJsonObject json = run(qPrintable(call + QStringLiteral(" -n --json"))).result();
    QCOMPARE(json.value(QStringLiteral("dryRun")), QJsonValue(true));
    QCOMPARE(json.value(QStringLiteral("files")), QJsonValue(1));
    const QJsonObject entry = json.value(QStringLiteral("entries")).toArray().at(0).toObject();
    QCOMPARE(entry.value(QStringLiteral("source")).toString(),
             folder() + QStringLiteral("/source/folder/file\n"));
    QCOMPARE(entry.contains(QStringLiteral("target")), !isRemoval);
    QCOMPARE(TreeFiles::content(m_root), before);
}

void tst_HostTrees::plansLeaveOutWhatStays()
{
    write(m_root + "/source/log/file");
    write(m_root + "/source/moved");
    write(m_root + "/source/out/old");
    const Ended outcome = run("output source source/out --leave Log --dry-run");
    QCOMPARE(
        QString::fromUtf8(outcome.output),
        QStringLiteral(
            "would move '%1/source/moved' to '%1/source/out/moved'\nwould move files: 1, size: 7 bytes\n")
            .arg(folder()));
}

void tst_HostTrees::progressIsShownOnATerminal_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call :
         {"copy source target", "cut source target", "output source target", "remove source --yes"})
        QTest::newRow(call) << QString::fromLatin1(call);
}

// The figures of files that a terminal shows while a tree of so many is worked on.
QVector<int> tst_HostTrees::figuresOnATerminal(const QString& call, int count)
{
    closeScene();
    openScene(TreeFiles::quickFolder());
    for (int i = 0; i < count; ++i)
        write(m_root + "/source/" + QByteArray::number(i / 100) + "/file" + QByteArray::number(i), "1234");
    Terminal terminal;
    QuenzoProcess process(call.split(QLatin1Char(' ')), folder());
    process.setStandardErrorFile(terminal.path());
    process.start();
    while (!process.waitForFinished(20) && process.state() == QProcess::Running)
        terminal.shown();
    if (process.end().code != 0)
        return {-1};
    const QRegularExpression figure(QStringLiteral("([0-9,]+) of [0-9,]+ files"));
    QRegularExpressionMatchIterator found = figure.globalMatch(QString::fromUtf8(terminal.shown()));
    QVector<int> figures;
    while (found.hasNext())
        figures.append(found.next().captured(1).remove(QLatin1Char(',')).toInt());
    return figures;
}

void tst_HostTrees::progressIsShownOnATerminal()
{
    QFETCH(QString, call);
    // Somewhere on the way there is a figure from the way; a machine may be too quick, or too busy to look.
    constexpr int most = 320000;
    bool isSeen = false;
    for (int count = 20000; count <= most && !isSeen; count *= 2) {
        const QVector<int> figures = figuresOnATerminal(call, count);
        QVERIFY(!figures.contains(-1));
        QVERIFY(std::is_sorted(figures.cbegin(), figures.cend()));
        isSeen = std::any_of(figures.cbegin(), figures.cend(), [=](int n) { return n > 0 && n < count; });
    }
    QVERIFY(isSeen);
}

void tst_HostTrees::controlCharactersAreShownEscaped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const char* tag, const QString& name, const char* shown) {
        QTest::newRow(tag) << name << QByteArray(shown);
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
    QFETCH(QByteArray, shown);
    const Ended failed =
        run({QStringLiteral("copy"), name, QStringLiteral("target"), QStringLiteral("--json")});
    QCOMPARE(failed.code, 1);
    QVERIFY2(failed.error.contains(shown + '\''), failed.error.constData());
    QCOMPARE(failed.error.count('\n'), 1);
    QCOMPARE(failed.result().value(QStringLiteral("source")).toString(), folder() + QLatin1Char('/') + name);

    write(m_root + "/source/file");
    const Ended done = run({QStringLiteral("copy"), QStringLiteral("source"), name});
    QCOMPARE(done.code, 0);
    QVERIFY2(done.output.contains(shown + ": files: 1, "), done.output.constData());
    QCOMPARE(done.output.count('\n'), 1);
}

QTEST_GUILESS_MAIN(tst_HostTrees)
#include "tst_hosttrees.moc"
