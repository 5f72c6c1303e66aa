// SPDX-License-Identifier: MIT
#include <quenzobase.h>

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <memory>
#include <thread>
#include <vector>

namespace {

// The texts of the log's entries, each stripped of its time; an entry of another form stands as it is,
// marked.
QStringList entries()
{
    static const QRegularExpression form(QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} (.*)$)"));
    QStringList texts;
    QStringList lines = QString::fromUtf8(RunRoot::log()).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (const QString& line : qAsConst(lines)) {
        const QRegularExpressionMatch match = form.match(line);
        texts.append(match.hasMatch() ? match.captured(1) : QStringLiteral("no entry: ") + line);
    }
    return texts;
}

QString entryText(int writer, int number)
{
    return QStringLiteral("writer %1 entry %2 ").arg(writer).arg(number) + QString(100, QLatin1Char('.'));
}

// Entries of one writer stand in their order, and nothing else is in the log.
QByteArray disorder(int writers, int count)
{
    std::vector<int> next(static_cast<std::size_t>(writers), 0);
    const QStringList texts = entries();
    for (const QString& text : texts) {
        bool expected = false;
        for (int writer = 0; writer < writers && !expected; ++writer) {
            int& number = next.at(static_cast<std::size_t>(writer));
            expected = text == entryText(writer, number);
            number += expected ? 1 : 0;
        }
        if (!expected)
            return text.toUtf8();
    }
    return texts.size() == writers * count ? QByteArray() : QByteArray::number(texts.size()) + " entries";
}

QString helper()
{
    return RunRoot::path() + QStringLiteral("/bin/basehost");
}

} // namespace

class tst_QuenzoBase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void init() { RunRoot::clear(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void runPathIsTheFolderOfTheExecutable();
    void runPathNeedsNoApplicationAndFollowsLinks();

    void entryIsTimeBlankTextLineFeed();
    void timesGoOnWithTheSeconds();
    void folderIsMadeWhenMissing();
    void textStandsAsItIs_data();
    void textStandsAsItIs();
    void lineWithinAnEntryPassesForNoOther_data();
    void lineWithinAnEntryPassesForNoOther();
    void entriesAreAppended();
    void logRemovedWhileRunningIsBegunAnew();
    void logMovedAwayAndBegunByAnotherIsGoneOnWith();
    void folderRemovedWhileRunningIsMadeAnew();
    void unwritableLogIsDroppedInSilence();
    void everyEntryGoesWhereTheLinkLeads();

    void entriesOfThreadsDoNotMix();
    void entriesOfProcessesDoNotMix();

    void hostsOwnCompanionTakesThePlace();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_QuenzoBase::runPathIsTheFolderOfTheExecutable()
{
    QCOMPARE(QuenzoBase::getRunPath(), QCoreApplication::applicationDirPath());
    QVERIFY(!QuenzoBase::getRunPath().endsWith(QLatin1Char('/')));
    QCOMPARE(QuenzoBase::getRunPath(), QuenzoBase::getRunPath());
}

void tst_QuenzoBase::runPathNeedsNoApplicationAndFollowsLinks()
{
    QTemporaryDir folder;
    const QString link = folder.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(helper(), link));
    QProcess host;
    host.setWorkingDirectory(QStringLiteral("/"));
    host.start(link, {QStringLiteral("paths")});
    QVERIFY2(host.waitForFinished(), qPrintable(host.errorString()));
    const QString bin = RunRoot::path() + QStringLiteral("/bin");
    QCOMPARE(QString::fromUtf8(host.readAllStandardOutput()),
             bin + QLatin1Char('\n') + bin + QStringLiteral("/../tool/mac\n"));
}

void tst_QuenzoBase::entryIsTimeBlankTextLineFeed()
{
    const QDateTime before = QDateTime::currentDateTime();
    QuenzoBase::Log(QStringLiteral("the text"));
    const QDateTime after = QDateTime::currentDateTime();
    const QString line = QString::fromUtf8(RunRoot::log());
    QVERIFY2(line.endsWith(QStringLiteral(" the text\n")), qPrintable(line));
    const QDateTime time = QDateTime::fromString(line.section(QLatin1Char(' '), 0, 0), Qt::ISODateWithMs);
    QVERIFY2(time >= before && time <= after, qPrintable(line));
    QCOMPARE(entries(), QStringList{QStringLiteral("the text")});
}

void tst_QuenzoBase::timesGoOnWithTheSeconds()
{
    QuenzoBase::Log(QStringLiteral("early"));
    const qint64 second = QDateTime::currentSecsSinceEpoch();
    QTRY_VERIFY_WITH_TIMEOUT(QDateTime::currentSecsSinceEpoch() > second, 60000);
    const QDateTime before = QDateTime::currentDateTime();
    QuenzoBase::Log(QStringLiteral("late"));
    const QString line = QString::fromUtf8(RunRoot::log()).section(QLatin1Char('\n'), 1, 1);
    const QDateTime time = QDateTime::fromString(line.section(QLatin1Char(' '), 0, 0), Qt::ISODateWithMs);
    QVERIFY2(time >= before, qPrintable(line));
}

void tst_QuenzoBase::folderIsMadeWhenMissing()
{
    QVERIFY(!QFileInfo::exists(RunRoot::path() + QStringLiteral("/log")));
    QuenzoBase::Log(QStringLiteral("first"));
    QCOMPARE(entries(), QStringList{QStringLiteral("first")});
}

void tst_QuenzoBase::textStandsAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("beyond ASCII") << QStringLiteral("é 中文 \U0001F600");
    QTest::newRow("line feeds") << QStringLiteral("one\ntwo\r\n\n");
    QTest::newRow("blanks around") << QStringLiteral("  \t text  ");
    QTest::newRow("place markers") << QStringLiteral("%1 %s %n");
    QTest::newRow("a time at the beginning") << QStringLiteral("2001-02-03T04:05:06.007 text");
    QTest::newRow("a time within a line") << QStringLiteral("one\n 2001-02-03T04:05:06.007 text");
    QTest::newRow("a line with a date") << QStringLiteral("one\n2001-02-03 text\n2001-02-03T04:05:06");
    QTest::newRow("null character") << QStringLiteral("a").append(QChar(0)).append(QLatin1Char('b'));
    QTest::newRow("a million letters") << QString(1000000, QLatin1Char('x'));
}

void tst_QuenzoBase::textStandsAsItIs()
{
    QFETCH(const QString, text);
    QuenzoBase::Log(text);
    const QByteArray log = RunRoot::log();
    QCOMPARE(log.mid(log.indexOf(' ')), ' ' + text.toUtf8() + '\n');
}

void tst_QuenzoBase::lineWithinAnEntryPassesForNoOther_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("written");
    const QString time = QStringLiteral("2001-02-03T04:05:06.007 ");
    const auto row = [](const char* name, const QString& text, const QString& written) {
        QTest::newRow(name) << text << written;
    };
    row("line feed", QStringLiteral("a\n") + time + QStringLiteral("b"),
        QStringLiteral("a\n ") + time + QStringLiteral("b"));
    row("carriage return", QStringLiteral("a\r") + time, QStringLiteral("a\r ") + time);
    row("both", QStringLiteral("a\r\n") + time, QStringLiteral("a\r\n ") + time);
    const QString everyDigit = QStringLiteral("9876-54-32T10:98:76.543 ");
    row("every digit", QStringLiteral("a\n") + everyDigit, QStringLiteral("a\n ") + everyDigit);
    for (const char* other : {"2001-02-03T04:05:06.00/ ", "2001-02-03T04:05:06.00: ",
                              "2001-02-03 04:05:06.007 ", "2001-02-03T04:05:06.007"}) {
        const QString text = QStringLiteral("a\n") + QLatin1String(other);
        row(other, text, text);
    }
    row("several", QStringLiteral("\n") + time + QStringLiteral("x\n\n") + time + QStringLiteral("y\nz"),
        QStringLiteral("\n ") + time + QStringLiteral("x\n\n ") + time + QStringLiteral("y\nz"));
    row("a path in a failed copy",
        QStringLiteral("Copy Fail:\r\nSrc:/a\n") + time + QStringLiteral("b\r\nDest:/c\r\n"),
        QStringLiteral("Copy Fail:\r\nSrc:/a\n ") + time + QStringLiteral("b\r\nDest:/c\r\n"));
}

void tst_QuenzoBase::lineWithinAnEntryPassesForNoOther()
{
    QFETCH(const QString, text);
    QFETCH(const QString, written);
    QuenzoBase::Log(text);
    const QByteArray log = RunRoot::log();
    QCOMPARE(log.mid(log.indexOf(' ')), ' ' + written.toUtf8() + '\n');
}

void tst_QuenzoBase::entriesAreAppended()
{
    RunRoot::write(QStringLiteral("log/quenzotool.log"), "2001-02-03T04:05:06.007 from before\n");
    for (int i = 0; i < 3; ++i)
        QuenzoBase::Log(QString::number(i));
    QCOMPARE(entries(),
             (QStringList{QStringLiteral("from before"), QStringLiteral("0"), QStringLiteral("1"),
                          QStringLiteral("2")}));
}

void tst_QuenzoBase::logRemovedWhileRunningIsBegunAnew()
{
    QuenzoBase::Log(QStringLiteral("first"));
    QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/log/quenzotool.log")));
    QuenzoBase::Log(QStringLiteral("second"));
    QCOMPARE(entries(), QStringList{QStringLiteral("second")});
}

void tst_QuenzoBase::logMovedAwayAndBegunByAnotherIsGoneOnWith()
{
    const QString path = RunRoot::path() + QStringLiteral("/log/quenzotool.log");
    QuenzoBase::Log(QStringLiteral("first"));
    QVERIFY(QFile::rename(path, path + QStringLiteral(".1")));
    RunRoot::write(QStringLiteral("log/quenzotool.log"), "2001-02-03T04:05:06.007 of another\n");
    QuenzoBase::Log(QStringLiteral("second"));
    QCOMPARE(entries(), (QStringList{QStringLiteral("of another"), QStringLiteral("second")}));
}

void tst_QuenzoBase::folderRemovedWhileRunningIsMadeAnew()
{
    QuenzoBase::Log(QStringLiteral("first"));
    QVERIFY(QDir(RunRoot::path() + QStringLiteral("/log")).removeRecursively());
    QuenzoBase::Log(QStringLiteral("second"));
    QCOMPARE(entries(), QStringList{QStringLiteral("second")});
}

void tst_QuenzoBase::unwritableLogIsDroppedInSilence()
{
    const QString folder = RunRoot::path() + QStringLiteral("/log");
    RunRoot::write(QStringLiteral("log"), "a file where the folder should be");
    QuenzoBase::Log(QStringLiteral("dropped"));
    QVERIFY(QFile::remove(folder));

    QVERIFY(QDir().mkpath(folder + QStringLiteral("/quenzotool.log")));
    QuenzoBase::Log(QStringLiteral("dropped"));
    QVERIFY(QDir(folder).removeRecursively());

    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), folder + QStringLiteral("/quenzotool.log")));
    QuenzoBase::Log(QStringLiteral("dropped"));
    QVERIFY(QDir(folder).removeRecursively());

    QuenzoBase::Log(QStringLiteral("written"));
    QCOMPARE(entries(), QStringList{QStringLiteral("written")});
}

void tst_QuenzoBase::everyEntryGoesWhereTheLinkLeads()
{
    const QString folder = RunRoot::path() + QStringLiteral("/log");
    const QString link = folder + QStringLiteral("/quenzotool.log");
    QVERIFY(QDir().mkpath(folder));
    // As fast as can be: no entry may rely on what the one before has seen.
    for (int i = 0; i < 50; ++i) {
        const QString target = folder + QStringLiteral("/log.%1").arg(i);
        QVERIFY(QFile(target).open(QIODevice::WriteOnly));
        QVERIFY(QFile::link(target, link));
        QuenzoBase::Log(QString::number(i));
        QCOMPARE(entries(), QStringList{QString::number(i)});
        QVERIFY(QFile::remove(link));
    }
}

void tst_QuenzoBase::entriesOfThreadsDoNotMix()
{
    constexpr int writers = 4;
    constexpr int count = 500;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([writer] {
            for (int i = 0; i < count; ++i)
                QuenzoBase::Log(entryText(writer, i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(disorder(writers, count), QByteArray());
}

void tst_QuenzoBase::entriesOfProcessesDoNotMix()
{
    constexpr int writers = 3;
    constexpr int count = 1000;
    std::vector<std::unique_ptr<QProcess>> hosts;
    for (int writer = 0; writer < writers; ++writer) {
        hosts.push_back(std::make_unique<QProcess>());
        const QString text = entryText(writer, -1).replace(QStringLiteral("-1"), QStringLiteral("%1"));
        hosts.back()->start(helper(), {QStringLiteral("log"), text, QString::number(count)});
    }
    for (const auto& host : hosts) {
        QVERIFY2(host->waitForFinished(), qPrintable(host->errorString()));
        QCOMPARE(host->exitCode(), 0);
        QCOMPARE(host->readAllStandardError(), QByteArray());
    }
    QCOMPARE(disorder(writers, count), QByteArray());
}

void tst_QuenzoBase::hostsOwnCompanionTakesThePlace()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(COMPANION_FOLDER));
    QProcess host;
    host.setProcessEnvironment(environment);
    host.start(helper(), {QStringLiteral("paths")});
    QVERIFY2(host.waitForFinished(), qPrintable(host.errorString()));
    QCOMPARE(host.readAllStandardError(), QByteArray());
    QCOMPARE(host.readAllStandardOutput(),
             QByteArray("/host's own/run path\n/host's own/run path/../tool/mac\n"));

    host.start(helper(), {QStringLiteral("log"), QStringLiteral("entry %1"), QStringLiteral("2")});
    QVERIFY2(host.waitForFinished(), qPrintable(host.errorString()));
    QCOMPARE(host.readAllStandardError(), QByteArray("companion: entry 0\ncompanion: entry 1\n"));
    QCOMPARE(RunRoot::log(), QByteArray());
}

QTEST_GUILESS_MAIN(tst_QuenzoBase)
#include "tst_quenzobase.moc"
