// SPDX-License-Identifier: MIT
#include "jsonschema.h"
#include "quenzoprocess.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

constexpr int timeLimitMs = 60000;
const auto& words = QuenzoProcess::words;

} // namespace

// What callers that want JSON learn of a command that a signal has ended.
class tst_HostInterruption : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void objectTellsOfIt_data();
    void objectTellsOfIt();
    void workUnderWayIsInterrupted_data();
    void workUnderWayIsInterrupted();
    void peopleGetNoFurtherWord();
    void programsOfScriptsGetTheirSignals();

private:
    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;
    void checkObject(const Ended& ended, const QString& command);

    QTemporaryDir m_folder;
    JsonSchema m_schema{QStringLiteral("output.schema.json")};
};

void tst_HostInterruption::write(const char* name, const QByteArray& content) const
{
    QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void tst_HostInterruption::initTestCase()
{
    write("script.py",
          "import os, signal, subprocess, time\n"
          "def end(number):\n    os.kill(os.getpid(), int(number))\n    time.sleep(60)\n"
          "def blocked():\n    return subprocess.check_output(['grep', 'SigBlk', '/proc/self/status'])\n");
    QVERIFY(QFile::copy(QStringLiteral(SOURCE_DIR "/host/sample/skyharbour.apk"), path("game.apk")));
    write("pass", "secret");
    // A stand-in that never signs; it ends with its parent's interest.
    write("bin/apksigner", "#!/bin/sh\nkill -INT $PPID\nexec sleep 60\n");
    QVERIFY(QFile::setPermissions(path("bin/apksigner"), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
}

void tst_HostInterruption::checkObject(const Ended& ended, const QString& command)
{
    QCOMPARE(ended.output.count('\n'), 1);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QCOMPARE(ended.json().value(QStringLiteral("command")).toString(), command);
    QCOMPARE(ended.json().value(QStringLiteral("ok")), QJsonValue(false));
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    QVERIFY2(ended.error.endsWith("quenzo: interrupted; the work may be done in part\n"),
             ended.error.constData());
}

void tst_HostInterruption::objectTellsOfIt_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("number");
    const auto row = [](const char* line, int number) {
        QTest::newRow(line) << QString::fromLatin1(line) << number;
    };
    row("run script.py end 2 --json", SIGINT);
    row("run script.py end 15 --json", SIGTERM);
    row("run --any script.py end 1 --json", SIGHUP);
    row("sign game.apk --keystore pass --pass-file pass --json", SIGINT);
}

void tst_HostInterruption::objectTellsOfIt()
{
    QFETCH(const QString, line);
    QFETCH(const int, number);
    const QStringList arguments = words(line.toUtf8().constData());
    QuenzoProcess process(arguments, m_folder.path());
    process.setVariable("PATH", path("bin") + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    const Ended ended = process.end();
    QVERIFY2(ended.code == -number, ended.error.constData());
    checkObject(ended, arguments.first());
}

void tst_HostInterruption::workUnderWayIsInterrupted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("doing");
    QTest::newRow("db") << QStringLiteral("db --file records.db insert channel id=1")
                        << QByteArray("waiting for the database");
    QTest::newRow("copy") << QStringLiteral("copy source target") << QByteArray("copying");
}

void tst_HostInterruption::workUnderWayIsInterrupted()
{
    QFETCH(const QString, line);
    QFETCH(const QByteArray, doing);
    for (int i = 0; line.startsWith(QLatin1String("copy")) && i < 20000; ++i)
        write(QByteArray("source/" + QByteArray::number(i)).constData(), "content");
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("lock"));
    database.setDatabaseName(path("records.db"));
    QVERIFY(database.open());
    QVERIFY(QSqlQuery(database).exec(QStringLiteral("CREATE TABLE IF NOT EXISTS channel(id INTEGER)")));
    QVERIFY(QSqlQuery(database).exec(QStringLiteral("BEGIN EXCLUSIVE")));

    const QStringList arguments = words(line.toUtf8().constData());
    QuenzoProcess process(arguments + words("--json --progress=json"), m_folder.path());
    process.setReadChannel(QProcess::StandardError);
    process.start();
    QByteArray told;
    while (!told.contains(doing) && process.waitForReadyRead(timeLimitMs))
        told += process.readAllStandardError();
    QVERIFY2(told.contains(doing), told.constData());
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    const Ended ended = process.end();
    QCOMPARE(ended.code, -SIGINT);
    checkObject(ended, arguments.first());
}

void tst_HostInterruption::peopleGetNoFurtherWord()
{
    const Ended ended = QuenzoProcess(words("run script.py end 2"), m_folder.path()).end();
    QCOMPARE(ended.code, -SIGINT);
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.error, QByteArray());
}

// They would outlive the terminal whose Ctrl-C is meant for them, too.
void tst_HostInterruption::programsOfScriptsGetTheirSignals()
{
    const Ended ended = QuenzoProcess(words("run --any script.py blocked --json"), m_folder.path()).end();
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.result()
                 .value(QStringLiteral("value"))
                 .toString()
                 .endsWith(QStringLiteral("\t0000000000000000\n")),
             ended.output.constData());
}

QTEST_GUILESS_MAIN(tst_HostInterruption)
#include "tst_hostinterruption.moc"
