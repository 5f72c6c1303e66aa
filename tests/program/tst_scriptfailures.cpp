// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

constexpr int timeLimitMs = 60000;
constexpr int mebibyte = 1 << 20;
const auto& words = QuenzoProcess::words;

} // namespace

// What the shipped scripts have to say reaches callers of the program, and a signal leaves none of their
// scratch behind.
class tst_ScriptFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sentencesOfScriptsAreCauses_data();
    void sentencesOfScriptsAreCauses();
    void keysTellTheirFailuresAlone_data();
    void keysTellTheirFailuresAlone();
    void missingKeyNamesTheWayToOne();
    void wordsOfScriptsAreWarnings();
    void otherAnswersHintAtAny();
    void missingFunctionIsNamed();
    void lostSignatureIsAWarning_data();
    void lostSignatureIsAWarning();
    void standardStreamIsNoFile_data();
    void standardStreamIsNoFile();
    void interruptedWorkLeavesNothing_data();
    void interruptedWorkLeavesNothing();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;
    void writeLarge(const char* name) const;
    Ended run(const QByteArray& line) const;
    QStringList names(const QStringList& filters = {}) const;
    QString cause(const Ended& ended) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ScriptFailures::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/skyharbour.apk"), path("game.apk")));
    for (const char* name : {"another-sdk.zip", "damaged.zip", "hostile.zip"})
        QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/packages/") + QLatin1String(name), path(name)));
    write("text", "no archive");
    write("folder/file", "content");
    write("script.py", "def other(): return 'another'\ndef end():\n    import sys\n    sys.exit(3)\n");
}

void tst_ScriptFailures::write(const char* name, const QByteArray& content) const
{
    QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

// Holes, which take no room on the disk.
void tst_ScriptFailures::writeLarge(const char* name) const
{
    write(name, {});
    QVERIFY(QFile::resize(path(name), qint64(200) * mebibyte));
}

// Under a person who has no key yet.
Ended tst_ScriptFailures::run(const QByteArray& line) const
{
    QuenzoProcess process(words(line.constData()), m_folder->path());
    process.setVariable("XDG_DATA_HOME", path("data"));
    process.setVariable("QUENZO_KEY", QString());
    return process.end();
}

QStringList tst_ScriptFailures::names(const QStringList& filters) const
{
    return QDir(m_folder->path()).entryList(filters, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

QString tst_ScriptFailures::cause(const Ended& ended) const
{
    return ended.failure()
        .value(QStringLiteral("cause"))
        .toString()
        .remove(m_folder->path() + QLatin1Char('/'));
}

void tst_ScriptFailures::sentencesOfScriptsAreCauses_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("told");
    const auto row = [](const char* line, const char* code, const char* told) {
        QTest::newRow(line) << QByteArray(line) << QString::fromLatin1(code) << QString::fromLatin1(told);
    };
    row("import another-sdk.zip sdk --sdk-id 7", "bad-input", "^the package is SDK 8, not 7$");
    row("import another-sdk.zip sdk --sdk-id 7 --dry-run", "bad-input", "^the package is SDK 8, not 7$");
    row("import damaged.zip sdk", "bad-input", "damaged");
    row("import hostile.zip sdk", "bad-input", "^entry name ");
    row("import text sdk", "bad-input", "^this is not a zip archive$");
    row("encrypt text", "bad-input", "^this is not a zip archive$");
    row("decrypt game.apk", "bad-input", "^the assets are not encrypted$");
    row("unpack text out", "bad-input", "^this is not a zip archive$");
    row("unpack game.apk text", "failed", "^a file is in the way: text$");
    row("pack folder text/archive.zip", "failed", "^a file is in the way: text$");
    row("pack folder folder/archive.zip", "failed", "^the archive would lie in the folder to pack: ");
    row("export 999 out", "not-found", "^no record for channel 999 in .*develop_info.json$");
}

void tst_ScriptFailures::sentencesOfScriptsAreCauses()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QString, code);
    QFETCH(const QString, told);
    const Ended ended = run(line + " --json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), code);
    QVERIFY2(QRegularExpression(told).match(cause(ended)).hasMatch(), qPrintable(cause(ended)));
    const QString lines = QStringLiteral("quenzo: %1\n%2\n")
                              .arg(ended.failure().value(QStringLiteral("message")).toString(),
                                   ended.failure().value(QStringLiteral("cause")).toString());
    QCOMPARE(QString::fromUtf8(ended.error), lines);
}

void tst_ScriptFailures::keysTellTheirFailuresAlone_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* line, const char* code, const char* message) {
        QTest::newRow(line) << QByteArray(line) << QString::fromLatin1(code) << QString::fromLatin1(message);
    };
    row("key show --key absent", "not-found", "the key file: No such file or directory: ");
    row("key new --key text", "refused", "there is a key already, which packages may need: ");
    row("key check text", "bad-input", "this is not a zip archive");
}

void tst_ScriptFailures::keysTellTheirFailuresAlone()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QString, code);
    QFETCH(const QString, message);
    const QJsonObject failure = run(line + " --json").failure();
    QCOMPARE(failure.value(QStringLiteral("code")).toString(), code);
    const QString told = failure.value(QStringLiteral("message")).toString();
    QVERIFY2(told.startsWith(message), qPrintable(told));
    QVERIFY(failure.value(QStringLiteral("cause")).isNull());
}

void tst_ScriptFailures::missingKeyNamesTheWayToOne()
{
    const QJsonObject failure = run("key show --json").failure();
    QCOMPARE(failure.value(QStringLiteral("code")).toString(), QStringLiteral("not-found"));
    QCOMPARE(failure.value(QStringLiteral("hint")).toString(),
             QStringLiteral("\"quenzo key new\" makes one"));
    QCOMPARE(run("key new").code, 0);
    QCOMPARE(run("encrypt game.apk").code, 0);
    QVERIFY(QDir(path("data")).removeRecursively());
    const Ended ended = run("decrypt game.apk --json");
    QCOMPARE(cause(ended), QStringLiteral("there is no key: data/quenzo/encrypt.key"));
    QCOMPARE(ended.failure().value(QStringLiteral("hint")), failure.value(QStringLiteral("hint")));
}

void tst_ScriptFailures::wordsOfScriptsAreWarnings()
{
    const Ended ended = run("encrypt game.apk --exclude *.nobody --json");
    QCOMPARE(ended.code, 0);
    const QJsonArray warnings = ended.json().value(QStringLiteral("warnings")).toArray();
    QCOMPARE(warnings.size(), 2);
    QCOMPARE(warnings.at(0).toString(), QStringLiteral("no asset is called like '*.nobody'"));
    QCOMPARE(warnings.at(1).toString(),
             QStringLiteral("made the key %1; keep a copy, without it nothing can be decrypted")
                 .arg(path("data/quenzo/encrypt.key")));
    QCOMPARE(
        QString::fromUtf8(ended.error),
        QStringLiteral("quenzo: %1\nquenzo: %2\n").arg(warnings.at(0).toString(), warnings.at(1).toString()));
}

void tst_ScriptFailures::otherAnswersHintAtAny()
{
    QCOMPARE(
        run("run script.py other").error,
        QByteArray("quenzo: other did not answer \"param\" (--any takes whatever a function answers)\n"));
    const QJsonObject raised = run("run script.py end --json").failure();
    QVERIFY(raised.value(QStringLiteral("hint")).isNull());
}

void tst_ScriptFailures::missingFunctionIsNamed()
{
    QCOMPARE(run("run --any script.py absent").error,
             QByteArray("quenzo: absent gave no answer\nscript.py has no function absent\n"));
}

void tst_ScriptFailures::lostSignatureIsAWarning_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"encrypt signed.apk --key team.key", "pack folder out.apk --like signed.apk",
                             "pack folder out.apk --onto signed.apk"})
        QTest::newRow(line) << QByteArray(line);
}

void tst_ScriptFailures::lostSignatureIsAWarning()
{
    QFETCH(const QByteArray, line);
    write("folder/assets/file", "content");
    write("folder/META-INF/CERT.SF", "signature");
    QCOMPARE(run("pack folder signed.apk").code, 0);
    QCOMPARE(run("key new --key team.key").code, 0);
    const Ended ended = run(line + " --json");
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.json().value(QStringLiteral("warnings")).toArray(),
             QJsonArray{QStringLiteral("the signature is gone: sign it again")});
    QVERIFY(!run("pack folder out.apk --like game.apk --json").json().contains(QStringLiteral("warnings")));
}

void tst_ScriptFailures::standardStreamIsNoFile_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("subject");
    const auto row = [](const char* line, const char* subject) {
        QTest::newRow(line) << QByteArray(line) << QByteArray(subject);
    };
    row("decrypt game.apk --key -", "--key");
    row("key show --key -", "--key");
    row("sign game.apk --keystore text --pass-file -", "--pass-file");
    row("run - f", "run");
}

void tst_ScriptFailures::standardStreamIsNoFile()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, subject);
    const Ended ended = run(line);
    QCOMPARE(ended.code, 2);
    QCOMPARE(ended.error,
             "quenzo: " + subject + ": - stands for no file here; one of this name is ./- (see quenzo "
                 + line.left(line.indexOf(' ')) + " --help)\n");
}

void tst_ScriptFailures::interruptedWorkLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("pack") << QByteArray("pack large result");
    QTest::newRow("unpack") << QByteArray("unpack large.zip result");
    QTest::newRow("unpack into a folder") << QByteArray("unpack large.zip folder");
    QTest::newRow("encrypt") << QByteArray("encrypt large.zip");
}

void tst_ScriptFailures::interruptedWorkLeavesNothing()
{
    QFETCH(const QByteArray, line);
    writeLarge("large/assets/a.png");
    writeLarge("large/assets/b.png");
    if (!line.startsWith("pack"))
        QCOMPARE(run("pack large large.zip").code, 0);
    const QStringList before = names();
    const qint64 bytes = QFileInfo(path("large.zip")).size();
    QuenzoProcess process(words(line.constData()) << QStringLiteral("--json"), m_folder->path());
    process.setVariable("XDG_DATA_HOME", path("large")); // where nobody looks
    process.start();
    QTRY_VERIFY_WITH_TIMEOUT(!names({QStringLiteral(".quenzo-*")}).isEmpty(), timeLimitMs);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const Ended ended = process.end();
    QCOMPARE(ended.code, -SIGINT);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    QCOMPARE(names(), before);
    QCOMPARE(QDir(path("folder")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("file")));
    QCOMPARE(QFileInfo(path("large.zip")).size(), bytes);
}

QTEST_GUILESS_MAIN(tst_ScriptFailures)
#include "tst_scriptfailures.moc"
