// SPDX-License-Identifier: MIT
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int timeLimitMs = 60000;

struct Ended {
    int code = -1;
    QByteArray output;
    QByteArray error;
};

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

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
    void inputThatCannotBeReadIsAFailure();

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
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    const QString command = QStringLiteral("exec \"$0\" \"$@\" ") + redirection;
    process.start(QStringLiteral("/bin/sh"),
                  QStringList{QStringLiteral("-c"), command, QStringLiteral(QUENZO_PROGRAM)} + arguments);
    const bool ended = process.waitForFinished(timeLimitMs);
    if (!ended) {
        process.kill();
        process.waitForFinished();
    }
    return {ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
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

void tst_HostStreams::inputThatCannotBeReadIsAFailure()
{
    const Ended ended = quenzo(words("db --file records.db insert channel"), QStringLiteral("< ."));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the standard input cannot be read"), ended.error.constData());
}

QTEST_GUILESS_MAIN(tst_HostStreams)
#include "tst_hoststreams.moc"
