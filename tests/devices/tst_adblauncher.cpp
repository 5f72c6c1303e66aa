// SPDX-License-Identifier: MIT
#include <QtTest>

#include <utility>

namespace {

constexpr int timeLimitMs = 60000;

struct Outcome {
    int code = -1;
    QStringList lines;
    QByteArray error;
};

} // namespace

// The launcher with programs in adb's place that answer as told.
class tst_AdbLauncher : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void otherCommandsGoStraightOn_data();
    void otherCommandsGoStraightOn();
    void installEndsInAClearLine_data();
    void installEndsInAClearLine();
    void uninstallEndsInAClearLine_data();
    void uninstallEndsInAClearLine();
    void wordsOfAdbStandOnTheErrorStream();
    void argumentsReachAdbWhole();
    void serialIsHandedOn();
    void onlyReadyDeviceIsChosen_data();
    void onlyReadyDeviceIsChosen();
    void serialOfTheEnvironmentStays();
    void waitingForADeviceIsLimited();
    void deviceThatComesBackIsServed();
    void adbThatHangsIsEnded();
    void launcherWorksFromAFolderWithBlanks();
    void adbIsFoundOnThePath();
    void launcherNeverCallsItself();
    void missingAdbIsSaid();

private:
    void writeAdb(const QByteArray& script, const QString& path = {});
    Outcome run(const QStringList& arguments, const QList<std::pair<QString, QString>>& variables = {});
    QStringList calls();

    std::unique_ptr<QTemporaryDir> m_root;
    QString m_folder;
};

void tst_AdbLauncher::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    m_folder = m_root->filePath(QStringLiteral("tool folder"));
    QVERIFY(QDir().mkpath(m_folder));
    QVERIFY(QFile::copy(QStringLiteral(QUENZO_ADB_LAUNCHER), m_folder + QStringLiteral("/adb")));
}

void tst_AdbLauncher::writeAdb(const QByteArray& script, const QString& path)
{
    QFile file(path.isEmpty() ? m_folder + QStringLiteral("/adb-program") : path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\nroot='" + QFile::encodeName(m_root->path())
               + "'\n"
                 "{ printf '%s' \"${ANDROID_SERIAL-}\"; printf '<%s>' \"$@\"; echo; } >>\"$root/calls\"\n"
               + script + '\n');
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}

Outcome tst_AdbLauncher::run(const QStringList& arguments,
                             const QList<std::pair<QString, QString>>& variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ANDROID_SERIAL"));
    for (const auto& [name, value] : variables)
        environment.insert(name, value);
    QProcess launcher;
    launcher.setProcessEnvironment(environment);
    launcher.start(m_folder + QStringLiteral("/adb"), arguments);
    if (!launcher.waitForFinished(timeLimitMs)) {
        launcher.kill();
        launcher.waitForFinished();
        return {};
    }
    QStringList lines = QString::fromUtf8(launcher.readAllStandardOutput()).split(QLatin1Char('\n'));
    lines.removeLast();
    return {launcher.exitStatus() == QProcess::NormalExit ? launcher.exitCode() : -1, lines,
            launcher.readAllStandardError()};
}

// Without the question for the ready devices, which precedes every call that names none.
QStringList tst_AdbLauncher::calls()
{
    QFile file(m_root->filePath(QStringLiteral("calls")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeAll(QStringLiteral("<devices>"));
    return lines;
}

void tst_AdbLauncher::otherCommandsGoStraightOn_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("devices") << QStringList{QStringLiteral("devices")};
    QTest::newRow("version") << QStringList{QStringLiteral("version")};
    QTest::newRow("shell on a device") << QStringList{QStringLiteral("-s"), QStringLiteral("a b"),
                                                      QStringLiteral("shell"), QStringLiteral("ls  *")};
    QTest::newRow("install behind another option")
        << QStringList{QStringLiteral("-d"), QStringLiteral("install"), QStringLiteral("a.apk")};
    QTest::newRow("serial alone") << QStringList{QStringLiteral("-s"), QStringLiteral("install")};
    QTest::newRow("nothing") << QStringList();
}

void tst_AdbLauncher::otherCommandsGoStraightOn()
{
    QFETCH(const QStringList, arguments);
    writeAdb(R"(printf '[%s]\n' "$@"; echo error >&2; exit 7)");
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.code, 7);
    QCOMPARE(outcome.error, QByteArray("error\n"));
    QStringList wanted;
    for (const QString& word : arguments.isEmpty() ? QStringList(QString()) : arguments)
        wanted.append(QLatin1Char('[') + word + QLatin1Char(']'));
    QCOMPARE(outcome.lines, wanted);
}

void tst_AdbLauncher::installEndsInAClearLine_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* name, const QByteArray& script, int code, const char* line,
                        const char* file = "/a/game.apk") {
        QTest::newRow(name) << script << QString::fromUtf8(file) << code << QString::fromUtf8(line);
    };
    const QByteArray pushed =
        "echo 'Performing Push Install'; printf '%s: 1 file pushed\\n\\tpkg: /data/local/tmp/%s\\n'"
        " \"$3\" \"${3##*/}\"\n";

    row("streamed", "echo 'Performing Streamed Install'; echo Success", 0, "Success");
    row("carriage returns", R"(printf 'P\r\nSuccess\r\n')", 0, "Success");
    row("no line break", "printf Success", 0, "Success");
    row("pushed", pushed + "echo Success", 0, "Success");
    row("refused on the error stream",
        "echo P; printf 'adb: failed to install %s: Failure [INSTALL_FAILED_OLDER_SDK]\\n' \"$3\" >&2; exit "
        "1",
        1, "Failure [INSTALL_FAILED_OLDER_SDK]");
    row("refused with an explanation",
        R"(printf 'Failure [INSTALL_FAILED_X: a [b] \303\244 Success]\r\n'; exit 1)", 1,
        "Failure [INSTALL_FAILED_X: a (b) \303\244 success]");
    row("refused with exit code 0", pushed + "echo 'Failure [INSTALL_FAILED_X]'", 1,
        "Failure [INSTALL_FAILED_X]");
    row("failure without a code", "echo P; echo Failure", 1, "Failure [ADB_FAILED: Failure]");
    row("success by a failing exit code", "echo Success; exit 3", 3, "Failure [ADB_FAILED: success]");
    row("error with exit code 0", "echo P; echo 'Error: Unknown option'", 1,
        "Failure [ADB_FAILED: Error: Unknown option]");
    row("cause on the error stream", "echo P; echo 'adb: error: device offline' >&2; exit 255", 255,
        "Failure [ADB_FAILED: adb: error: device offline]");
    row("nothing printed", "exit 0", 1, "Failure [ADB_FAILED: adb said nothing]");
    row("killed", "echo 'error: out of memory' >&2; kill -9 $$", 137,
        "Failure [ADB_FAILED: error: out of memory]");
    row("no line break behind the cause", "printf 'adb: failed to install %s: ' \"$3\" >&2; exit 1", 1,
        "Failure [ADB_FAILED: adb: failed to install APK]");
    row("daemon started on the way",
        "echo '* daemon not running; starting now' >&2; echo '* daemon started successfully' >&2; echo "
        "Success",
        0, "Success");
    row("brackets in the path", pushed + "echo 'Failure [INSTALL_FAILED_X]'", 1, "Failure [INSTALL_FAILED_X]",
        "/a[1]/b [2].apk");
    row("success in the path", pushed + "echo 'Error: no room'", 1, "Failure [ADB_FAILED: Error: no room]",
        "/a/Success.apk");
    row("lines in the path", pushed + "echo 'Error: no room'", 1, "Failure [ADB_FAILED: Error: no room]",
        "/a\nSuccess\n/b\nSuccess\n.apk");
    row("failure in the path", pushed + "echo Success", 0, "Success", "/a/\nFailure [X]\n.apk");
    row("pattern in the path", "echo \"$3: failed\"; exit 1", 1, "Failure [ADB_FAILED: APK: failed]",
        "/a/*?.APK");
    row("percent sign and backslash in the path", R"(echo "$3"; echo 'Failure [X\\n%s]'; exit 1)", 1,
        "Failure [X\\n%s]", "/a/%s\\n.apk");
    row("name without the ending", "echo 'adb: filename does not end .apk: x'; exit 1", 1,
        "Failure [ADB_FAILED: adb: filename does not end .apk: x]", "/a/Success");
}

void tst_AdbLauncher::installEndsInAClearLine()
{
    QFETCH(const QByteArray, script);
    QFETCH(const QString, file);
    writeAdb("[ \"$1\" != devices ] || exit 0\n" + script);
    const Outcome outcome = run({QStringLiteral("install"), QStringLiteral("-r"), file});
    QFETCH(const QString, line);
    QCOMPARE(outcome.lines, QStringList({QStringLiteral("Performing Install"), line}));
    QTEST(outcome.code, "code");
}

void tst_AdbLauncher::uninstallEndsInAClearLine_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* name, const QByteArray& script, int code, const char* line) {
        QTest::newRow(name) << script << code << QString::fromUtf8(line);
    };
    row("removed", "echo Success", 0, "Success");
    row("absent", "echo 'Failure [DELETE_FAILED_INTERNAL_ERROR]'; exit 1", 1,
        "Failure [DELETE_FAILED_INTERNAL_ERROR]");
    row("absent, exit code 0", "echo 'Failure [DELETE_FAILED_INTERNAL_ERROR]'", 1,
        "Failure [DELETE_FAILED_INTERNAL_ERROR]");
    row("nothing printed", "exit 0", 1, "Failure [ADB_FAILED: adb said nothing]");
    row("exception", R"(printf '\njava.lang.SecurityException: no\n  at x\n' >&2; exit 255)", 255,
        "Failure [ADB_FAILED: java.lang.SecurityException: no]");
    row("no package", "echo 'adb: uninstall requires an argument' >&2; exit 1", 1,
        "Failure [ADB_FAILED: adb: uninstall requires an argument]");
}

void tst_AdbLauncher::uninstallEndsInAClearLine()
{
    QFETCH(const QByteArray, script);
    writeAdb("[ \"$1\" != devices ] || exit 0\n" + script);
    const Outcome outcome = run({QStringLiteral("uninstall"), QStringLiteral("a.b")});
    QFETCH(const QString, line);
    QCOMPARE(outcome.lines, QStringList(line));
    QTEST(outcome.code, "code");
}

void tst_AdbLauncher::wordsOfAdbStandOnTheErrorStream()
{
    writeAdb("echo one; echo two >&2; exit 1");
    const Outcome outcome = run({QStringLiteral("uninstall"), QStringLiteral("a.b")});
    QCOMPARE(outcome.error.trimmed(), QByteArray("one\ntwo"));
}

void tst_AdbLauncher::argumentsReachAdbWhole()
{
    writeAdb("echo Success");
    const QString file = QString::fromUtf8("-r  'ä' \"b\" $(c) [1]*.apk");
    run({QStringLiteral("install"), QStringLiteral("-r"), file});
    QCOMPARE(calls(), QStringList(QStringLiteral("<install><-r><%1>").arg(file)));
}

void tst_AdbLauncher::serialIsHandedOn()
{
    writeAdb("echo Success");
    run({QStringLiteral("-s"), QStringLiteral("my phone"), QStringLiteral("uninstall"),
         QStringLiteral("a.b")});
    QCOMPARE(calls(), QStringList(QStringLiteral("my phone<uninstall><a.b>")));
}

void tst_AdbLauncher::onlyReadyDeviceIsChosen_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("serial");
    QTest::newRow("none") << QByteArray() << QString();
    QTest::newRow("one") << QByteArray("a\\tdevice\\n") << QStringLiteral("a");
    QTest::newRow("beside others") << QByteArray(R"(x\toffline\na b:1\tdevice\r\ny\tunauthorized\n)")
                                   << QStringLiteral("a b:1");
    QTest::newRow("two") << QByteArray(R"(a\tdevice\nb\tdevice\n)") << QString();
    QTest::newRow("not ready") << QByteArray("a\\toffline\\n") << QString();
    QTest::newRow("not permitted") << QByteArray("a\\tno permissions; see [x/device.html]\\n") << QString();
}

void tst_AdbLauncher::onlyReadyDeviceIsChosen()
{
    QFETCH(const QByteArray, list);
    QFETCH(const QString, serial);
    writeAdb(R"(if [ "$1" = devices ]; then printf 'List of devices attached\n)" + list
             + "\\n'; else echo Success; fi");
    run({QStringLiteral("uninstall"), QStringLiteral("a.b")});
    QCOMPARE(calls(), QStringList(serial + QStringLiteral("<uninstall><a.b>")));
}

void tst_AdbLauncher::serialOfTheEnvironmentStays()
{
    writeAdb(R"(if [ "$1" = devices ]; then printf 'List\na\tdevice\n'; else echo Success; fi)");
    run({QStringLiteral("uninstall"), QStringLiteral("a.b")},
        {{QStringLiteral("ANDROID_SERIAL"), QStringLiteral("b")}});
    QCOMPARE(calls(), QStringList(QStringLiteral("b<uninstall><a.b>")));
}

void tst_AdbLauncher::waitingForADeviceIsLimited()
{
    writeAdb("case $1 in\nuninstall) echo '- waiting for device -' >&2; exec sleep 300 ;;\n"
             "wait-for-device) exec sleep 300 ;;\nesac");
    const Outcome outcome = run({QStringLiteral("uninstall"), QStringLiteral("a.b")},
                                {{QStringLiteral("QUENZO_ADB_WAIT"), QStringLiteral("1")}});
    QCOMPARE(
        outcome.lines,
        QStringList(QStringLiteral("Failure [ADB_TIMEOUT: the device did not become ready within 1 s]")));
    QVERIFY(outcome.code > 0);
}

void tst_AdbLauncher::deviceThatComesBackIsServed()
{
    // The removal goes on once the device is back, for longer than the wait may last.
    writeAdb(
        "case $1 in\n"
        "uninstall) echo '- waiting for device -' >&2; while [ ! -e \"$root/back\" ]; do sleep 0.05; done\n"
        "    sleep 1.5; echo Success ;;\n"
        "wait-for-device) : >\"$root/back\" ;;\nesac");
    const Outcome outcome = run({QStringLiteral("uninstall"), QStringLiteral("a.b")},
                                {{QStringLiteral("QUENZO_ADB_WAIT"), QStringLiteral("1")}});
    QCOMPARE(outcome.lines, QStringList(QStringLiteral("Success")));
    QCOMPARE(outcome.code, 0);
}

void tst_AdbLauncher::adbThatHangsIsEnded()
{
    writeAdb("[ \"$1\" != install ] || exec sleep 300");
    const Outcome outcome = run({QStringLiteral("install"), QStringLiteral("-r"), QStringLiteral("a.apk")},
                                {{QStringLiteral("QUENZO_ADB_TIMEOUT"), QStringLiteral("1")}});
    QCOMPARE(outcome.lines,
             QStringList({QStringLiteral("Performing Install"),
                          QStringLiteral("Failure [ADB_TIMEOUT: adb did not end within 1 s]")}));
    QCOMPARE(outcome.code, 124);
}

void tst_AdbLauncher::launcherWorksFromAFolderWithBlanks()
{
    m_folder = m_root->filePath(QString::fromUtf8("ä b/c  d"));
    QVERIFY(QDir().mkpath(m_folder));
    QVERIFY(QFile::copy(QStringLiteral(QUENZO_ADB_LAUNCHER), m_folder + QStringLiteral("/adb")));
    writeAdb("echo Success");
    QCOMPARE(run({QStringLiteral("uninstall"), QStringLiteral("a.b")}).lines,
             QStringList(QStringLiteral("Success")));
}

void tst_AdbLauncher::adbIsFoundOnThePath()
{
    const QString other = m_root->filePath(QStringLiteral("other place"));
    QVERIFY(QDir().mkpath(other));
    writeAdb("echo found", other + QStringLiteral("/adb"));
    // The link leads nowhere once adb has moved.
    QVERIFY(QFile::link(m_root->filePath(QStringLiteral("gone")), m_folder + QStringLiteral("/adb-program")));
    const QString path =
        m_folder + QLatin1Char(':') + other + QLatin1Char(':') + qEnvironmentVariable("PATH");
    QCOMPARE(run({QStringLiteral("version")}, {{QStringLiteral("PATH"), path}}).lines,
             QStringList(QStringLiteral("found")));
}

void tst_AdbLauncher::launcherNeverCallsItself()
{
    // Two launchers on the path, and the coreutils, but no adb.
    const QString other = m_root->filePath(QStringLiteral("other place"));
    QVERIFY(QDir().mkpath(other));
    QVERIFY(QFile::copy(QStringLiteral(QUENZO_ADB_LAUNCHER), other + QStringLiteral("/adb")));
    for (const char* name : {"tr", "timeout", "stdbuf", "sh"})
        QVERIFY(QFile::link(QStandardPaths::findExecutable(QLatin1String(name)),
                            other + QLatin1Char('/') + QLatin1String(name)));
    const Outcome outcome = run({QStringLiteral("uninstall"), QStringLiteral("a.b")},
                                {{QStringLiteral("PATH"), m_folder + QLatin1Char(':') + other}});
    QCOMPARE(outcome.lines,
             QStringList(QStringLiteral("Failure [ADB_MISSING: the program adb was not found on the PATH]")));
}

void tst_AdbLauncher::missingAdbIsSaid()
{
    const QString path = m_root->filePath(QStringLiteral("bin"));
    QVERIFY(QDir().mkpath(path));
    QVERIFY(QFile::link(QStandardPaths::findExecutable(QStringLiteral("tr")), path + QStringLiteral("/tr")));
    const Outcome listed = run({QStringLiteral("devices")}, {{QStringLiteral("PATH"), path}});
    QCOMPARE(listed.code, 127);
    QCOMPARE(listed.lines, QStringList());
    QVERIFY(listed.error.contains("adb: the program was not found"));
    const Outcome installed =
        run({QStringLiteral("install"), QStringLiteral("a.apk")}, {{QStringLiteral("PATH"), path}});
    QCOMPARE(installed.code, 127);
    QCOMPARE(installed.lines.last(),
             QStringLiteral("Failure [ADB_MISSING: the program adb was not found on the PATH]"));
}

QTEST_GUILESS_MAIN(tst_AdbLauncher)
#include "tst_adblauncher.moc"
