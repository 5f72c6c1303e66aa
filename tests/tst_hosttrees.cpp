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

} // namespace

class tst_HostTrees : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

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
    void controlCharactersAreShownEscaped_data();
    void controlCharactersAreShownEscaped();
    void unknownCommandsAreShownEscaped();
    void resultsSteerNoTerminal();

private:
    Outcome run(const QStringList& words) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_root;
};

void tst_HostTrees::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_root = QFile::encodeName(m_folder->path());
}

Outcome tst_HostTrees::run(const QStringList& words) const
{
    QProcess process;
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
    QVERIFY2(text.output.contains(QLatin1String("2 files, 8 bytes")), qPrintable(text.output));
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
        QStringLiteral("quenzo: '%1/source/folder/link' could not be copied to '%1/target/folder/link'\n")
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
    QVERIFY2(outcome.error.contains(QLatin1String("pipe' is neither a file nor a folder")),
             qPrintable(outcome.error));
}

void tst_HostTrees::namesWithAColonAreFilesAndNotResources()
{
    write(m_root + "/:source/:x", "content");
    QCOMPARE(run({QStringLiteral("cut"), QStringLiteral(":source"), QStringLiteral(":target")}).code, 0);
    QCOMPARE(TreeFiles::read(m_root + "/:target/:x"), QByteArray("content"));
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
    QVERIFY2(done.output.endsWith(shown + QLatin1Char('\n')), qPrintable(done.output));
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
