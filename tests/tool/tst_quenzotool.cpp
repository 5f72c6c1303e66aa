// SPDX-License-Identifier: MIT
#include <quenzotool.h>

#include "messagelog.h"
#include "runroot.h"
#include "terminal.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

#include <limits>
#include <memory>
#include <thread>

#include <csignal>

namespace {

// An orphan may stay listed until somebody asks for its exit code.
bool hasEnded(const QString& pid)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
    return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
}

} // namespace

class tst_QuenzoTool : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        RunRoot::clear();
        m_log = std::make_unique<MessageLog>();
    }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void toolPathIsRunPathWithSuffixUnresolved();

    void commandOutputAndErrorAreRead();
    void failingExitCodeStillCountsAsFinished();
    void crashedCommandCountsAsFinished();
    void missingProgramIsFalseAndTextsAreEmptied_data();
    void missingProgramIsFalseAndTextsAreEmptied();
    void quotationMarksKeepWordsTogether();
    void outputIsUtf8();
    void zeroByteDoesNotEndTheTexts();
    void largeOutputIsWhole();
    void endlessOutputMeetsALimit_data();
    void endlessOutputMeetsALimit();
    void childLeftBehindIsNotWaitedFor();
    void commandRunsOnAThreadWithoutEventLoop();
    void commandBeyondThirtySecondsIsKilledWithItsChildren();
    void causesOfFailureAreLoggedWhenAskedFor_data();
    void causesOfFailureAreLoggedWhenAskedFor();
    void commandLinesAreToldInDetail();
    void hostsBlockedSignalsReachTheCommand();
    void commandThatAsksTheTerminalIsNotStopped();

    void currentTimeFollowsTheFormat();

    void downloadFileName_data();
    void downloadFileName();

    void lengthIsInBytesOfTheLocalEncoding();

    void jsonToInt_data();
    void jsonToInt();
    void jsonToStr_data();
    void jsonToStr();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_QuenzoTool::toolPathIsRunPathWithSuffixUnresolved()
{
    QCOMPARE(QuenzoTool::getToolPath(),
             QCoreApplication::applicationDirPath() + QStringLiteral("/../tool/mac"));
    QCOMPARE(QuenzoTool::getToolPath(), QuenzoTool::getToolPath());
}

void tst_QuenzoTool::commandOutputAndErrorAreRead()
{
    QString output = QStringLiteral("before");
    QString error = QStringLiteral("before");
    QVERIFY(QuenzoTool::runCmdWaitFinish(QStringLiteral("sh -c \"echo out; echo err >&2\""), output, error));
    QCOMPARE(output, QStringLiteral("out\n"));
    QCOMPARE(error, QStringLiteral("err\n"));

    QVERIFY(QuenzoTool::runCmdWaitFinish(QStringLiteral("true"), output, error));
    QCOMPARE(output, QString());
    QCOMPARE(error, QString());
}

void tst_QuenzoTool::failingExitCodeStillCountsAsFinished()
{
    QString output;
    QString error;
    QVERIFY(
        QuenzoTool::runCmdWaitFinish(QStringLiteral("sh -c \"echo a; echo b >&2; exit 1\""), output, error));
    QCOMPARE(output, QStringLiteral("a\n"));
    QCOMPARE(error, QStringLiteral("b\n"));
}

void tst_QuenzoTool::crashedCommandCountsAsFinished()
{
    QString output;
    QString error;
    QVERIFY(QuenzoTool::runCmdWaitFinish(QStringLiteral("sh -c \"echo a; kill -9 $$\""), output, error));
    QCOMPARE(output, QStringLiteral("a\n"));
}

void tst_QuenzoTool::missingProgramIsFalseAndTextsAreEmptied_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("missing") << QStringLiteral("/nonexistent/program --option");
    QTest::newRow("not on the path") << QStringLiteral("no-program-of-this-name");
    QTest::newRow("folder") << QStringLiteral("/usr");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("   ");
    QTest::newRow("empty quotes") << QStringLiteral("\"\"");
}

void tst_QuenzoTool::missingProgramIsFalseAndTextsAreEmptied()
{
    QFETCH(const QString, command);
    QString output = QStringLiteral("before");
    QString error = QStringLiteral("before");
    QVERIFY(!QuenzoTool::runCmdWaitFinish(command, output, error));
    QCOMPARE(output, QString());
    QCOMPARE(error, QString());
}

void tst_QuenzoTool::quotationMarksKeepWordsTogether()
{
    const QString program = RunRoot::writeProgram(QStringLiteral("tool/with blank/words"),
                                                  "#!/bin/sh\nfor word; do echo \"[$word]\"; done\n");
    QString output;
    QString error;
    const QString words = QStringLiteral(" one \"two three\" \"\"\"four\"\"\" 'five six' é");
    QVERIFY(
        QuenzoTool::runCmdWaitFinish(QLatin1Char('"') + program + QLatin1Char('"') + words, output, error));
    QCOMPARE(output, QStringLiteral("[one]\n[two three]\n[\"four\"]\n['five]\n[six']\n[é]\n"));
    QCOMPARE(error, QString());
}

void tst_QuenzoTool::outputIsUtf8()
{
    QString output;
    QString error;
    QVERIFY(QuenzoTool::runCmdWaitFinish(
        QStringLiteral("printf \"%b\" \"\\303\\251\\377\\360\\237\\230\\200\""), output, error));
    QCOMPARE(output, QStringLiteral("é\uFFFD\U0001F600"));
}

void tst_QuenzoTool::zeroByteDoesNotEndTheTexts()
{
    QString output;
    QString error;
    QVERIFY(QuenzoTool::runCmdWaitFinish(QStringLiteral("sh -c \"printf 'a\\0b'; printf 'c\\0d\\0' >&2\""),
                                         output, error));
    QCOMPARE(output, QStringLiteral("a").append(QChar(0)).append(QLatin1Char('b')));
    QCOMPARE(error, QStringLiteral("c").append(QChar(0)).append(QLatin1Char('d')).append(QChar(0)));
}

void tst_QuenzoTool::endlessOutputMeetsALimit_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("inOutput");
    QTest::newRow("output") << QStringLiteral("sh -c \"echo $$ >&2; exec cat /dev/zero\"") << true;
    QTest::newRow("error") << QStringLiteral("sh -c \"echo $$; exec cat /dev/zero >&2\"") << false;
    QTest::newRow("of a child") << QStringLiteral("sh -c \"cat /dev/zero & echo $! >&2; wait\"") << true;
}

void tst_QuenzoTool::endlessOutputMeetsALimit()
{
    QFETCH(const QString, command);
    QFETCH(const bool, inOutput);
    QString output;
    QString error;
    QVERIFY(!QuenzoTool::runCmdWaitFinish(command, output, error));
    const QString& flood = inOutput ? output : error;
    constexpr int limit = 64 * 1024 * 1024;
    QVERIFY2(flood.size() > limit / 2 && flood.size() < 2 * limit, qPrintable(QString::number(flood.size())));
    const QString pid = (inOutput ? error : output).trimmed();
    QVERIFY2(pid.toInt() > 0, qPrintable(pid));
    QTRY_VERIFY2(hasEnded(pid), qPrintable(pid));
}

void tst_QuenzoTool::largeOutputIsWhole()
{
    constexpr int size = 4000000;
    const QString command =
        QStringLiteral("sh -c \"head -c %1 /dev/zero | tr '\\0' x; head -c %1 /dev/zero | tr '\\0' y >&2\"")
            .arg(size);
    QString output;
    QString error;
    QVERIFY(QuenzoTool::runCmdWaitFinish(command, output, error));
    QCOMPARE(output.count(QLatin1Char('x')), size);
    QCOMPARE(error.count(QLatin1Char('y')), size);
}

void tst_QuenzoTool::childLeftBehindIsNotWaitedFor()
{
    const QString released = RunRoot::path() + QStringLiteral("/tool/released");
    const QString program =
        RunRoot::writeProgram(QStringLiteral("tool/leave.sh"),
                              "#!/bin/sh\n(while [ ! -e \"$1\" ]; do sleep 0.05; done) &\necho done\n");
    QString output;
    QString error;
    // The child holds both pipes open until the file appears, which this test makes only afterwards.
    const QString command = QStringLiteral("\"%1\" \"%2\"").arg(program, released);
    QVERIFY(QuenzoTool::runCmdWaitFinish(command, output, error));
    QCOMPARE(output, QStringLiteral("done\n"));
    RunRoot::write(QStringLiteral("tool/released"), "now");
}

void tst_QuenzoTool::commandRunsOnAThreadWithoutEventLoop()
{
    QString output;
    bool finished = false;
    std::thread([&] {
        QString error;
        finished = QuenzoTool::runCmdWaitFinish(QStringLiteral("echo there"), output, error);
    }).join();
    QVERIFY(finished);
    QCOMPARE(output, QStringLiteral("there\n"));
}

void tst_QuenzoTool::commandBeyondThirtySecondsIsKilledWithItsChildren()
{
    QString output = QStringLiteral("before");
    QString error = QStringLiteral("before");
    const QString command =
        QStringLiteral("sh -c \"sleep 300 & echo $$ $!; echo waiting >&2; exec sleep 300\"");
    QVERIFY(!QuenzoTool::runCmdWaitFinish(command, output, error));
    QCOMPARE(error, QStringLiteral("waiting\n"));
    const QStringList pids = output.trimmed().split(QLatin1Char(' '));
    QCOMPARE(pids.size(), 2);
    QVERIFY2(pids.first().toInt() > 0, qPrintable(output));
    QCOMPARE(kill(pids.first().toInt(), 0), -1);
    QCOMPARE(errno, ESRCH);
    QTRY_VERIFY2(hasEnded(pids.last()), qPrintable(output));
}

void tst_QuenzoTool::causesOfFailureAreLoggedWhenAskedFor_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("causes");
    const auto cause = [](const char* text) { return QStringList{QString::fromUtf8(text)}; };
    QTest::newRow("none") << QStringLiteral("echo out") << QStringList();
    QTest::newRow("exit code") << QStringLiteral("sh -c \"echo bad; echo ' worse' >&2; exit 3\"")
                               << cause("sh ended with code 3: worse");
    QTest::newRow("silent") << QStringLiteral("false") << cause("false ended with code 1: it said nothing");
    QTest::newRow("crash") << QStringLiteral("sh -c \"kill -9 $$\"") << cause("sh crashed: it said nothing");
    QTest::newRow("flood") << QStringLiteral("cat /dev/zero")
                           << cause("cat was ended: it printed more than 67108864 bytes");
    QTest::newRow("not there") << QStringLiteral("/nonexistent/program")
                               << cause("/nonexistent/program cannot be started: ");
}

void tst_QuenzoTool::causesOfFailureAreLoggedWhenAskedFor()
{
    QFETCH(const QString, command);
    QFETCH(const QStringList, causes);
    QString output;
    QString error;
    QuenzoTool::runCmdWaitFinish(command, output, error);
    QCOMPARE(m_log->takeWarnings(), QStringList());

    const CategoryOn devices("quenzo.devices");
    QuenzoTool::runCmdWaitFinish(command, output, error);
    const QStringList told = m_log->takeWarnings();
    QCOMPARE(told.size(), causes.size());
    for (int i = 0; i < told.size(); ++i)
        QVERIFY2(told.at(i).startsWith(causes.at(i)), qPrintable(told.at(i)));
}

void tst_QuenzoTool::commandLinesAreToldInDetail()
{
    QString output;
    QString error;
    const CategoryOn devices("quenzo.devices");
    QVERIFY(QuenzoTool::runCmdWaitFinish(QStringLiteral("echo \"a b\""), output, error));
    QCOMPARE(m_log->takeDetails(), QStringList(QStringLiteral("running echo \"a b\"")));
}

void tst_QuenzoTool::hostsBlockedSignalsReachTheCommand()
{
    // A shell has what it runs in the background ignore it.
    std::signal(SIGINT, SIG_DFL);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    QString output;
    QString error;
    const bool finished =
        QuenzoTool::runCmdWaitFinish(QStringLiteral("sh -c \"kill -INT $$; echo alive\""), output, error);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    QVERIFY(finished);
    QCOMPARE(output, QString());
}

void tst_QuenzoTool::commandThatAsksTheTerminalIsNotStopped()
{
    Terminal terminal;
    QProcess host;
    host.setStandardInputFile(terminal.path());
    // The host has the terminal for its own: the shell before it could not open it otherwise.
    host.start(QStringLiteral("setsid"),
               {QStringLiteral("--ctty"), QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral(": </dev/tty && exec \"$0\" run \"$1\""), QStringLiteral(BASEHOST),
                QStringLiteral("sh -c \"read answer </dev/tty; echo done\"")});
    QVERIFY(host.waitForFinished(60000));
    QCOMPARE(host.exitCode(), 0);
    QCOMPARE(host.readAllStandardOutput(), QByteArray("done\n"));
}

void tst_QuenzoTool::currentTimeFollowsTheFormat()
{
    const QString format = QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime told = QDateTime::fromString(QuenzoTool::getCurrentTime(format), format);
    QVERIFY2(told >= before && told <= QDateTime::currentDateTime(), qPrintable(told.toString()));
    QCOMPARE(QuenzoTool::getCurrentTime(QStringLiteral("'at'")), QStringLiteral("at"));
    QCOMPARE(QuenzoTool::getCurrentTime(QString()), QString());
}

void tst_QuenzoTool::downloadFileName_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("name");
    const auto row = [](const QString& url, const QString& name) {
        QTest::newRow(qPrintable(url)) << url << name;
    };
    row(QStringLiteral("dir/app.apk?sign=1&t=2"), QStringLiteral("app.apk"));
    row(QStringLiteral("http://host/dir/app.apk"), QStringLiteral("app.apk"));
    row(QStringLiteral("app.apk"), QStringLiteral("app.apk"));
    row(QStringLiteral("http://host/dir/"), QString());
    row(QString(), QString());
    row(QStringLiteral("dir/?x=1"), QString());
    row(QStringLiteral("dir/a%20b+c.apk?d?e"), QStringLiteral("a%20b+c.apk"));
    row(QStringLiteral("dir/app.apk?path=/other/name"), QStringLiteral("name"));
    row(QStringLiteral("dir/app.apk#part"), QStringLiteral("app.apk#part"));
}

void tst_QuenzoTool::downloadFileName()
{
    QFETCH(const QString, url);
    QFETCH(const QString, name);
    QCOMPARE(QuenzoTool::getDownloadFileName(url), name);
}

void tst_QuenzoTool::lengthIsInBytesOfTheLocalEncoding()
{
    QCOMPARE(QuenzoTool::showLength(QString()), 0);
    QCOMPARE(QuenzoTool::showLength(QStringLiteral("abc")), 3);
    QCOMPARE(QuenzoTool::showLength(QStringLiteral("é中\U0001F600")), 2 + 3 + 4);
}

void tst_QuenzoTool::jsonToInt_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("number");
    const auto text = [](const char* row, const QString& value, int number) {
        QTest::newRow(row) << QJsonValue(value) << number;
    };
    text("text 42", QStringLiteral("42"), 42);
    text("text 4x", QStringLiteral("4x"), 0);
    text("text -7", QStringLiteral("-7"), -7);
    text("text 0x10 is not base 10", QStringLiteral("0x10"), 0);
    text("text 010 is base 10", QStringLiteral("010"), 10);
    text("text 2.5", QStringLiteral("2.5"), 0);
    text("text out of range", QStringLiteral("2147483648"), 0);
    text("empty text", QString(), 0);
    QTest::newRow("7.9") << QJsonValue(7.9) << 7;
    QTest::newRow("2.9") << QJsonValue(2.9) << 2;
    QTest::newRow("-2.9") << QJsonValue(-2.9) << -2;
    QTest::newRow("-0.5") << QJsonValue(-0.5) << 0;
    QTest::newRow("greatest") << QJsonValue(2147483647) << std::numeric_limits<int>::max();
    QTest::newRow("above the greatest") << QJsonValue(1e300) << std::numeric_limits<int>::max();
    QTest::newRow("below the least") << QJsonValue(-1e300) << std::numeric_limits<int>::min();
    QTest::newRow("true") << QJsonValue(true) << 0;
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << 0;
    QTest::newRow("array") << QJsonValue(QJsonArray{1}) << 0;
    QTest::newRow("object") << QJsonValue(QJsonObject{{QStringLiteral("a"), 1}}) << 0;
}

void tst_QuenzoTool::jsonToInt()
{
    QFETCH(const QJsonValue, value);
    QFETCH(const int, number);
    QJsonArray array{value};
    QCOMPARE(QuenzoTool::ConvertToInt(array[0]), number);
    QJsonObject object{{QStringLiteral("key"), value}};
    QCOMPARE(QuenzoTool::ConvertToInt(object[QStringLiteral("key")]), number);
    QCOMPARE(QuenzoTool::ConvertToInt(object[QStringLiteral("absent")]), 0);
}

void tst_QuenzoTool::jsonToStr_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("0.1") << QJsonValue(0.1) << QStringLiteral("0.1");
    QTest::newRow("1e8") << QJsonValue(1e8) << QStringLiteral("1e+08");
    QTest::newRow("3.0") << QJsonValue(3.0) << QStringLiteral("3");
    QTest::newRow("1234567") << QJsonValue(1234567) << QStringLiteral("1.23457e+06");
    QTest::newRow("123456") << QJsonValue(123456) << QStringLiteral("123456");
    QTest::newRow("text") << QJsonValue(QStringLiteral("é 1")) << QStringLiteral("é 1");
    QTest::newRow("true") << QJsonValue(true) << QString();
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << QString();
    QTest::newRow("array") << QJsonValue(QJsonArray{QStringLiteral("a")}) << QString();
    QTest::newRow("object") << QJsonValue(QJsonObject{}) << QString();
}

void tst_QuenzoTool::jsonToStr()
{
    QFETCH(const QJsonValue, value);
    QFETCH(const QString, text);
    QJsonArray array{value};
    QCOMPARE(QuenzoTool::ConvertToStr(array[0]), text);
}

QTEST_GUILESS_MAIN(tst_QuenzoTool)
#include "tst_quenzotool.moc"
