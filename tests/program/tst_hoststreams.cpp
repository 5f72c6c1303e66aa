// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"
#include "terminal.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

const auto& words = QuenzoProcess::words;

} // namespace

// The program with standard streams that are full, or missing.
class tst_HostStreams : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fullOutputIsAFailure_data();
    void fullOutputIsAFailure();
    void wrongWordsStayWrongWords();
    void closedOutputIsAFailure();
    void closedInputIsAtItsEnd();
    void closedStreamsHarmNothing();
    void slowInputIsWaitedFor_data();
    void slowInputIsWaitedFor();
    void inputThatCannotBeReadIsAFailure();
    void inputThatDoesNotWaitIsWaitedFor();
    void wordsThatAreNoTextAreRefused_data();
    void wordsThatAreNoTextAreRefused();
    void negativeSdkNumbersAreRefused();
    void unknownCommandsAreShownEscaped();
    void resultsSteerNoTerminal();
    void interruptionIsSeenAs130();
    void namesMakeNoLinesOnATerminal();

private:
    QString path() const { return m_folder.filePath(QStringLiteral("records.db")); }
    Ended quenzo(const QStringList& arguments, const QString& redirection) const;

    QTemporaryDir m_folder;
};

void tst_HostStreams::initTestCase()
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        database.setDatabaseName(path());
        QVERIFY(database.open());
        QSqlQuery query(database);
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE channel(id, name)")));
        QVERIFY(query.exec(QStringLiteral("INSERT INTO channel VALUES(1, 'a')")));
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    QFile script(m_folder.filePath(QStringLiteral("script.py")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("def say():\n    print 'said'\n    return 'param'\n");
}

Ended tst_HostStreams::quenzo(const QStringList& arguments, const QString& redirection) const
{
    const QString command = QStringLiteral("exec \"$0\" \"$@\" ") + redirection;
    QuenzoProcess process(QStringList{QStringLiteral("-c"), command, QStringLiteral(QUENZO_PROGRAM)}
                              + arguments,
                          m_folder.path());
    process.setProgram(QStringLiteral("/bin/sh"));
    return process.end();
}

void tst_HostStreams::fullOutputIsAFailure_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* line :
         {"--help", "--version", "copy --help", "encode words", "encode words --json",
          "db --file records.db select channel", "db --file records.db select channel --csv",
          "db --file records.db insert channel id=2", "run script.py say"})
        QTest::newRow(line) << words(line);
}

void tst_HostStreams::fullOutputIsAFailure()
{
    QFETCH(const QStringList, arguments);
    const Ended ended = quenzo(arguments, QStringLiteral(">/dev/full"));
    QVERIFY2(ended.error.endsWith("quenzo: the standard output cannot be written: No space left on device\n"),
             ended.error.constData());
    QCOMPARE(ended.code, 1);
}

void tst_HostStreams::wrongWordsStayWrongWords()
{
    QCOMPARE(quenzo(words("nonsense"), QStringLiteral(">/dev/full")).code, 2);
}

void tst_HostStreams::closedOutputIsAFailure()
{
    const Ended ended = quenzo(words("db --file records.db select channel"), QStringLiteral(">&-"));
    QVERIFY2(ended.error.startsWith("quenzo: the standard output cannot be written: "),
             ended.error.constData());
    QCOMPARE(ended.code, 1);
}

void tst_HostStreams::closedInputIsAtItsEnd()
{
    const Ended ended = quenzo(words("db --file records.db insert channel"), QStringLiteral("<&-"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, QByteArray("inserted into channel, rows: 0\n"));
    QCOMPARE(ended.code, 0);
}

void tst_HostStreams::closedStreamsHarmNothing()
{
    const Ended ended =
        quenzo(words("db --file records.db insert channel name=closed"), QStringLiteral("<&- >&- 2>&-"));
    QCOMPARE(ended.code, 1);
    const Ended selected =
        quenzo(words("db --file records.db select channel --where name=closed"), QStringLiteral("2>&- <&-"));
    QCOMPARE(selected.output, QByteArray("{\"id\":null,\"name\":\"closed\"}\n"));
    QCOMPARE(selected.code, 0);
}

void tst_HostStreams::slowInputIsWaitedFor_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("nonBlocking");
    QTest::newRow("text") << words("encode -") << false;
    QTest::newRow("text, told not to wait") << words("encode -") << true;
    QTest::newRow("rows") << words("db --file records.db insert channel") << false;
    QTest::newRow("channels") << words("icons --icon no --marks no --out out --platform ios -") << false;
}

// Blanks, so that what is read makes no difference; each is written when the one before has been read.
void tst_HostStreams::slowInputIsWaitedFor()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const bool, nonBlocking);
    int ends[2];
    QCOMPARE(pipe2(ends, O_CLOEXEC), 0);
    if (nonBlocking)
        QCOMPARE(fcntl(ends[0], F_SETFL, O_NONBLOCK), 0);
    QuenzoProcess process(arguments, m_folder.path());
    process.before = [&ends] { dup2(ends[0], STDIN_FILENO); };
    process.start();
    QVERIFY(process.waitForStarted());
    const auto unread = [&ends] {
        int count = -1;
        return ioctl(ends[0], FIONREAD, &count) == 0 ? count : -1;
    };
    for (int i = 0; i < 20; ++i) {
        QCOMPARE(write(ends[1], "\n", 1), ssize_t(1));
        QTRY_VERIFY_WITH_TIMEOUT(unread() == 0 || process.state() == QProcess::NotRunning, 30000);
    }
    close(ends[1]);
    const Ended ended = process.end();
    close(ends[0]);
    QVERIFY2(!ended.error.contains("the standard input cannot be read"), ended.error.constData());
    if (arguments.first() == QLatin1String("icons")) {
        QVERIFY2(ended.error.contains("is not JSON"), ended.error.constData());
    } else if (arguments.first() == QLatin1String("encode")) {
        const QByteArray scrambled = ended.output.trimmed();
        QCOMPARE(QuenzoProcess({QStringLiteral("decode"), QString::fromLatin1(scrambled)}).end().output,
                 QByteArray(20, '\n'));
    } else {
        QCOMPARE(ended.output, QByteArray("inserted into channel, rows: 0\n"));
    }
}

void tst_HostStreams::inputThatCannotBeReadIsAFailure()
{
    const Ended ended = quenzo(words("db --file records.db insert channel"), QStringLiteral("< ."));
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.error, QByteArray("quenzo: the standard input cannot be read: Is a directory\n"));
}

// Who shares the pipe may have made it so, a remote shell for one.
void tst_HostStreams::inputThatDoesNotWaitIsWaitedFor()
{
    QuenzoProcess process(words("encode -"));
    process.before = [] { fcntl(STDIN_FILENO, F_SETFL, fcntl(STDIN_FILENO, F_GETFL) | O_NONBLOCK); };
    process.start();
    QVERIFY(process.waitForStarted());
    // It is to meet a pipe that is empty: a wrong one ends here.
    QVERIFY2(!process.waitForFinished(1000), process.readAllStandardError().constData());
    const Ended ended = process.end("hello world\n");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, QByteArray("GasVGbg82d9ybGQ=\n"));
}

void tst_HostStreams::wordsThatAreNoTextAreRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("command") << QStringLiteral("\"$0\" \"$(printf 'rem\\377ove')\" folder");
    for (const char* line : {"remove", "copy folder", "db --file", "icons --out", "install", "encode", "run"})
        QTest::newRow(line) << QStringLiteral("\"$0\" %1 \"$(printf 'a\\377')\"").arg(QLatin1String(line));
    QTest::newRow("mark of order") << QStringLiteral("\"$0\" encode \"$(printf '\\357\\273\\277abcd')\"");
}

void tst_HostStreams::wordsThatAreNoTextAreRefused()
{
    QFETCH(QString, line);
    QuenzoProcess process({QStringLiteral("-c"), line, QStringLiteral(QUENZO_PROGRAM)}, m_folder.path());
    process.setProgram(QStringLiteral("/bin/sh"));
    const Ended ended = process.end();
    QCOMPARE(ended.output, QByteArray());
    QVERIFY2(ended.error.contains("is not UTF-8 text (see quenzo --help)\n"), ended.error.constData());
    QCOMPARE(ended.code, 2);
}

void tst_HostStreams::negativeSdkNumbersAreRefused()
{
    const Ended ended = QuenzoProcess(words("import script.py target --sdk-id -1"), m_folder.path()).end();
    QCOMPARE(ended.error,
             QByteArray(
                 "quenzo: --sdk-id takes a whole number that is not negative (see quenzo import --help)\n"));
    QCOMPARE(ended.code, 2);
    QVERIFY(!QFile::exists(m_folder.filePath(QStringLiteral("target"))));
}

void tst_HostStreams::unknownCommandsAreShownEscaped()
{
    const Ended ended = QuenzoProcess({QStringLiteral("copy\x1b]0;title\x07")}).end();
    QCOMPARE(ended.code, 2);
    QVERIFY2(ended.error.contains(R"('copy\x1b]0;title\x07')"), ended.error.constData());
}

void tst_HostStreams::interruptionIsSeenAs130()
{
    QFile script(m_folder.filePath(QStringLiteral("interrupt.py")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(
        "import os, signal, time\ndef f():\n    os.kill(os.getpid(), signal.SIGINT)\n    time.sleep(60)\n");
    script.close();
    QuenzoProcess process({QStringLiteral("-c"), QStringLiteral("\"$0\" run interrupt.py f; echo $?"),
                           QStringLiteral(QUENZO_PROGRAM)},
                          m_folder.path());
    process.setProgram(QStringLiteral("/bin/sh"));
    QCOMPARE(process.end().output, QByteArray("130\n"));
}

void tst_HostStreams::resultsSteerNoTerminal()
{
    const QString text = QStringLiteral("two\nlines \x1b[2J ") + QChar(0x9b) + QStringLiteral("2J");
    const QByteArray scrambled = QuenzoProcess({QStringLiteral("encode"), text}).end().output.trimmed();
    const QStringList decode{QStringLiteral("decode"), QString::fromUtf8(scrambled)};
    QCOMPARE(QuenzoProcess(decode).end().output, text.toUtf8() + '\n');
    const Ended json = QuenzoProcess(decode + words("--json")).end();
    QCOMPARE(json.result().value(QStringLiteral("text")).toString(), text);
    QVERIFY(!QString::fromUtf8(json.output).contains(QChar(0x9b)));

    Terminal terminal;
    QuenzoProcess process(decode);
    process.setStandardOutputFile(terminal.path());
    QCOMPARE(process.end().code, 0);
    QCOMPARE(terminal.shown(), QByteArray("two\r\nlines \\x1b[2J \\x9b2J\r\n"));
}

void tst_HostStreams::namesMakeNoLinesOnATerminal()
{
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("packed")));
    Terminal terminal;
    QuenzoProcess process(
        {QStringLiteral("pack"), QStringLiteral("packed"), QStringLiteral("a\nb\t\x1b[2J.zip")},
        m_folder.path());
    process.setStandardOutputFile(terminal.path());
    const Ended ended = process.end();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY2(terminal.shown().startsWith("packed packed into a\\nb\\t\\x1b[2J.zip, "),
             terminal.shown().constData());
    QCOMPARE(terminal.shown().count('\n'), 1);
}

QTEST_GUILESS_MAIN(tst_HostStreams)
#include "tst_hoststreams.moc"
