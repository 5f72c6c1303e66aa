// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

namespace {

// An archive with one stored entry, "a", whose content begins at 31.
QByteArray unaligned()
{
    return QByteArray::fromBase64(
        "UEsDBBQAAAAAAAAAIQCDFtyMAQAAAAEAAAABAAAAYXhQSwECFAAUAAAAAAAAACEAgxbcjAEAAAABAAAA"
        "AQAAAAAAAAAAAAAAAAAAAAAAYVBLBQYAAAAAAQABAC8AAAAgAAAAAAA=");
}

} // namespace

// The commands sign and check, with the real programs where they are, and with others that tell how they were
// called.
class tst_ApkCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sampleIsWholeAlignedAndUnsigned();
    void everythingWrongIsToldInOneRun();
    void missingAaptIsNamed();
    void damagedArchiveIsNamed();
    void passwordComesFromOnePlace_data();
    void passwordComesFromOnePlace();
    void missingSignerIsToldWithTheWayToGetIt();
    void passwordIsNotOnTheCommandLine();
    void failedSigningLeavesTheApk_data();
    void failedSigningLeavesTheApk();
    void interruptionEndsTheSignersChildren();
    void unalignedApkIsNotSigned();
    void signedApkIsVerified();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content, bool program = false) const;
    QByteArray read(const char* name) const;
    Ended run(const char* line, const QString& searchPath = {}) const;
    QStringList leftovers() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ApkCommands::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/skyharbour.apk"), path("game.apk")));
    write("store", "keystore");
    write("pass", "a secret of nobody\n");
}

void tst_ApkCommands::write(const char* name, const QByteArray& content, bool program) const
{
    const QString file = path(name);
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
    if (program)
        QVERIFY(
            target.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
}

QByteArray tst_ApkCommands::read(const char* name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

Ended tst_ApkCommands::run(const char* line, const QString& searchPath) const
{
    QuenzoProcess process(QuenzoProcess::words(line), m_folder->path());
    process.setVariable("STORE_PASS", QStringLiteral("a secret of nobody"));
    if (!searchPath.isEmpty())
        process.setVariable("PATH", searchPath);
    return process.end();
}

QStringList tst_ApkCommands::leftovers() const
{
    return QDir(m_folder->path()).entryList({QStringLiteral(".quenzo-*")}, QDir::Files | QDir::Hidden);
}

void tst_ApkCommands::sampleIsWholeAlignedAndUnsigned()
{
    const Ended ended = run("check game.apk");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output,
             QByteArray("archive    whole, 12 entries\nalignment  good\nsignature  unsigned\n"
                        "package    com.quenzo.skyharbour, version 1.2.0 (12)\n"));
    QCOMPARE(ended.code, 0);
}

void tst_ApkCommands::everythingWrongIsToldInOneRun()
{
    write("bad.zip", unaligned());
    const Ended ended = run("check bad.zip");
    QVERIFY2(ended.error.contains("bad.zip: 1 entries are not aligned: a."), ended.error.constData());
    QVERIFY2(ended.error.contains("bad.zip: aapt finds no package name"), ended.error.constData());
    QCOMPARE(ended.code, 1);
}

// A host that ships its scripts without the tool.
void tst_ApkCommands::missingAaptIsNamed()
{
    const QFileInfo program(QStringLiteral(QUENZO_PROGRAM));
    QVERIFY(QDir().mkpath(path("bin")));
    QVERIFY(QFile::copy(program.filePath(), path("bin/quenzo")));
    QVERIFY(QFile::link(program.absolutePath() + QStringLiteral("/../Script"), path("Script")));
    QuenzoProcess process(QuenzoProcess::words("check game.apk --json"), m_folder->path());
    process.setProgram(path("bin/quenzo"));
    const QJsonObject failure = process.end().failure();
    QCOMPARE(failure.value(QStringLiteral("code")).toString(), QStringLiteral("no-tool"));
    const QString message = failure.value(QStringLiteral("message")).toString();
    QVERIFY2(message.startsWith(QLatin1String("the program aapt is missing: ")), qPrintable(message));
}

void tst_ApkCommands::damagedArchiveIsNamed()
{
    QByteArray content = read("game.apk");
    content[content.size() / 2] = char(content.at(content.size() / 2) ^ 1);
    write("game.apk", content);
    const Ended ended = run("check game.apk");
    QVERIFY2(ended.error.startsWith("quenzo: game.apk: '"), ended.error.constData());
    QVERIFY2(ended.error.contains("damaged"), ended.error.constData());
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.code, 1);
}

void tst_ApkCommands::passwordComesFromOnePlace_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* line, const char* text) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(text);
    };
    row("sign game.apk --keystore store --pass-file pass --pass-env STORE_PASS",
        "--pass-file and --pass-env exclude each other");
    row("sign game.apk --keystore store --pass-env NOBODY_SET_THIS",
        "--pass-env: there is no environment variable 'NOBODY_SET_THIS'");
}

void tst_ApkCommands::passwordComesFromOnePlace()
{
    QFETCH(const QString, line);
    QFETCH(const QString, text);
    const Ended ended = run(line.toLatin1().constData());
    QCOMPARE(QString::fromUtf8(ended.error),
             QStringLiteral("quenzo: ") + text + QStringLiteral(" (see quenzo sign --help)\n"));
    QCOMPARE(ended.code, 2);
}

void tst_ApkCommands::missingSignerIsToldWithTheWayToGetIt()
{
    const Ended ended =
        run("sign game.apk --keystore store --pass-file pass", QStringLiteral("/nonexistent"));
    QCOMPARE(ended.error,
             QByteArray("quenzo: the program apksigner is missing (on Debian \"apt-get install apksigner\" "
                        "brings it)\n"));
    QCOMPARE(ended.code, 1);
}

void tst_ApkCommands::passwordIsNotOnTheCommandLine()
{
    write(
        "bin/apksigner",
        "#!/bin/sh\necho \"$@\" >>calls\n[ \"$1\" = sign ] || { echo 'Signer #1 certificate SHA-256 digest: "
        "00ff'; exit; }\nfor last; do :; done\ncp \"$last\" \"${9}\"\n",
        true);
    const QString searchPath = path("bin") + QStringLiteral(":/usr/bin:/bin");
    for (const char* line : {"sign game.apk --keystore store --pass-file pass --alias release",
                             "sign game.apk --keystore store --pass-env STORE_PASS"}) {
        const Ended ended = run(line, searchPath);
        QCOMPARE(ended.error, QByteArray());
        QCOMPARE(ended.output, QByteArray("signed game.apk, SHA-256 of the certificate 00ff\n"));
        QCOMPARE(ended.code, 0);
    }
    const QByteArray calls = read("calls");
    QVERIFY2(calls.contains("--ks-pass file:pass") && calls.contains("--ks-pass env:STORE_PASS")
                 && calls.contains("--ks-key-alias release"),
             calls.constData());
    QVERIFY2(!calls.contains("secret"), calls.constData());
    QCOMPARE(leftovers(), QStringList());
}

void tst_ApkCommands::failedSigningLeavesTheApk_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("signing fails") << QByteArray(
        "echo 'Failed to load signer' >&2; echo '\tat x.y' >&2; exit 2")
                                   << QByteArray("Failed to load signer");
    QTest::newRow("nothing is said") << QByteArray("exit 1") << QByteArray("apksigner gave no reason");
    QTest::newRow("verifying fails") << QByteArray("[ $1 = sign ] && { echo x >$9; exit 0; }\n"
                                                   "echo 'DOES NOT VERIFY' >&2; exit 1")
                                     << QByteArray("DOES NOT VERIFY");
    QTest::newRow("nothing is written") << QByteArray("exit 0") << QByteArray("No such file or directory");
    QTest::newRow("endless output") << QByteArray("cat /dev/zero & wait")
                                    << QByteArray("it printed more than 67108864 bytes");
    QTest::newRow("crash") << QByteArray("kill -9 $$") << QByteArray("it crashed");
}

void tst_ApkCommands::failedSigningLeavesTheApk()
{
    QFETCH(const QByteArray, program);
    QFETCH(const QByteArray, reason);
    write("bin/apksigner", "#!/bin/sh\n" + program + '\n', true);
    const QByteArray before = read("game.apk");
    const Ended ended = run("sign game.apk --keystore store --pass-file pass",
                            path("bin") + QStringLiteral(":/usr/bin:/bin"));
    QCOMPARE(ended.error, "quenzo: game.apk was not signed: " + reason + '\n');
    QCOMPARE(ended.code, 1);
    QCOMPARE(read("game.apk"), before);
    QCOMPARE(leftovers(), QStringList());
}

// What the program has started holds the fifo open until it ends.
void tst_ApkCommands::interruptionEndsTheSignersChildren()
{
    const QByteArray name = QFile::encodeName(path("fifo"));
    QCOMPARE(mkfifo(name.constData(), 0600), 0);
    QFile fifo;
    QVERIFY(fifo.open(open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC), QIODevice::ReadOnly,
                      QFileDevice::AutoCloseHandle));
    write("bin/apksigner", "#!/bin/sh\nexec 3>fifo\nsleep 600 &\nkill -INT $PPID\nwait\n", true);
    const Ended interrupted = run("sign game.apk --keystore store --pass-file pass",
                                  path("bin") + QStringLiteral(":/usr/bin:/bin"));
    QCOMPARE(interrupted.code, -SIGINT);
    pollfd ended{fifo.handle(), POLLIN, 0};
    QVERIFY2(poll(&ended, 1, 10000) == 1 && (ended.revents & POLLHUP) != 0, "a child lives on");
}

void tst_ApkCommands::unalignedApkIsNotSigned()
{
    write("game.apk", unaligned());
    const Ended ended = run("sign game.apk --keystore store --pass-file pass");
    QVERIFY2(ended.error.contains("are not aligned"), ended.error.constData());
    QCOMPARE(ended.code, 1);
}

void tst_ApkCommands::signedApkIsVerified()
{
    if (QStandardPaths::findExecutable(QStringLiteral("apksigner")).isEmpty()
        || QStandardPaths::findExecutable(QStringLiteral("keytool")).isEmpty())
        QSKIP("apksigner or keytool is not installed (scripts/dependencies.sh android)");
    QProcess keytool;
    keytool.setProgram(QStringLiteral("keytool"));
    keytool.setArguments(
        QuenzoProcess::words("-genkeypair -keystore real.jks -alias game -keyalg RSA -keysize 2048 "
                             "-dname CN=quenzo -validity 1000 -storepass:file pass")
        << QStringLiteral("-keypass:file") << QStringLiteral("pass"));
    keytool.setWorkingDirectory(m_folder->path());
    keytool.start();
    QVERIFY(keytool.waitForFinished(60000));
    const QByteArray error = keytool.readAllStandardError();
    QVERIFY2(keytool.exitCode() == 0, error.constData());

    const Ended ended = run("sign game.apk --keystore real.jks --pass-file pass");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    const Ended checked = run("check game.apk --json");
    QCOMPARE(checked.code, 0);
    QVERIFY2(checked.output.contains("\"verified\""), checked.output.constData());
    QCOMPARE(leftovers(), QStringList());

    QByteArray content = read("game.apk");
    // The mark of the block's second form stands before what it has signed.
    const int place = content.indexOf("\x1a\x87\x09\x71") + 200;
    content[place] = char(content.at(place) ^ 1);
    write("game.apk", content);
    const Ended broken = run("check game.apk");
    QCOMPARE(broken.code, 1);
    QVERIFY2(broken.error.contains("the signature does not hold: "), broken.error.constData());
}

QTEST_GUILESS_MAIN(tst_ApkCommands)
#include "tst_apkcommands.moc"
