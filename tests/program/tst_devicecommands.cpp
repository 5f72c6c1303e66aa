// SPDX-License-Identifier: MIT
#include "devicefixture.h"
#include "jsonschema.h"
#include "runroot.h"

#include <QtTest>

#include <csignal>

// The host with scripted programs in its tool folder.
class tst_DeviceCommands : public DeviceFixture {
    Q_OBJECT

private Q_SLOTS:
    void devicesArePrinted();
    void inaccessibleDeviceIsNoDevice();
    void missingToolIsSaidPlainly();
    void brokenToolIsSaidPlainly_data();
    void brokenToolIsSaidPlainly();
    void packageNameIsPrinted();
    void unusableApkIsRefused_data();
    void unusableApkIsRefused();
    void failingAdbIsNoEmptyList_data();
    void failingAdbIsNoEmptyList();
    void yesIsNeededInAPipe();
    void missingFileIsToldBeforeYesIsAskedFor();
    void installReportsItsSuccess();
    void refusalIsExplained_data();
    void refusalIsExplained();
    void uninstallReportsItsOutcome();
    void silenceEndsByTimeOut();
    void programThatCannotStartEndsByTimeOut();
    void adbIsGivenTheRemainingTime();
    void wrongTimeOutIsAUsageError_data();
    void wrongTimeOutIsAUsageError();
    void helpSaysThatDataGo();
    void questionEndsWithTheProgram();
    void interruptionTellsWhatWasBegun_data();
    void interruptionTellsWhatWasBegun();
    void outcomesAreOfTheSchema_data();
    void outcomesAreOfTheSchema();
    void interruptionIsOfTheSchema_data();
    void interruptionIsOfTheSchema();

private:
    JsonSchema m_schema{QStringLiteral("output.schema.json")};
};

void tst_DeviceCommands::devicesArePrinted()
{
    Ended run = quenzo({QStringLiteral("devices")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.error, QByteArray("quenzo: no device is ready\n"));

    ScriptedTools::attach(
        {QStringLiteral("b c"), QStringLiteral("0\toffline"), QStringLiteral("10.0.0.1:5555")});
    run = quenzo({QStringLiteral("devices")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.output, QByteArray("b c\n10.0.0.1:5555\n"));
    QCOMPARE(run.error, QByteArray());

    run = quenzo({QStringLiteral("devices"), QStringLiteral("--json")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.result().value(QStringLiteral("devices")).toVariant().toStringList(),
             QStringList({QStringLiteral("b c"), QStringLiteral("10.0.0.1:5555")}));
    QCOMPARE(run.json().value(QStringLiteral("ok")).toBool(), true);
}

void tst_DeviceCommands::inaccessibleDeviceIsNoDevice()
{
    ScriptedTools::attach(
        {QStringLiteral("0123\tno permissions; see [http://developer.android.com/tools/device.html]"),
         QStringLiteral("b")});
    Ended run = quenzo({QStringLiteral("devices")});
    QCOMPARE(run.output, QByteArray("b\n"));
    QVERIFY2(run.error.startsWith("quenzo: not usable: 0123 no permissions"), run.error.constData());
    // The flow sees two: the one that is a device is taken without a question.
    run = confirmed({QStringLiteral("install"), m_apk});
    QCOMPARE(run.code, 0);
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <-s><b><install><-r><%1>").arg(m_apk));
}

void tst_DeviceCommands::missingToolIsSaidPlainly()
{
    ScriptedTools::attach({QStringLiteral("a")});
    for (const char* tool : {"aapt", "adb"}) {
        QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/tool/mac/") + QLatin1String(tool)));
        const Ended run = confirmed({QStringLiteral("install"), m_apk});
        QCOMPARE(run.code, 1);
        const QByteArray wanted = QByteArray("quenzo: the program ") + tool + " is missing";
        QVERIFY2(run.error.startsWith(wanted), run.error.constData());
    }
    QCOMPARE(quenzo({QStringLiteral("devices")}).code, 1);
    QCOMPARE(quenzo({QStringLiteral("package-name"), m_apk}).code, 1);
    QCOMPARE(ScriptedTools::calls(), QStringList(QStringLiteral("adb <version>")));
}

void tst_DeviceCommands::brokenToolIsSaidPlainly_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("own words") << QByteArray("echo 'the program was not found on the PATH' >&2; exit 127")
                               << QByteArray("does not work: the program was not found on the PATH");
    QTest::newRow("silence") << QByteArray("exit 7") << QByteArray("/adb ended with code 7: it said nothing");
    QTest::newRow("crash") << QByteArray("kill -9 $$") << QByteArray("/adb crashed: it said nothing");
    QTest::newRow("flood") << QByteArray("exec cat /dev/zero")
                           << QByteArray("/adb was ended: it printed more than 67108864 bytes");
}

void tst_DeviceCommands::brokenToolIsSaidPlainly()
{
    QFETCH(const QByteArray, version);
    QFETCH(const QByteArray, reason);
    ScriptedTools::answer(QStringLiteral("version"), version);
    const Ended run = quenzo({QStringLiteral("devices"), QStringLiteral("--json")});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.error.trimmed().endsWith(reason), run.error.constData());
    QCOMPARE(run.json().value(QStringLiteral("ok")).toBool(true), false);
    QVERIFY(
        run.failure().value(QStringLiteral("message")).toString().contains(QStringLiteral("/tool/mac/adb")));
}

void tst_DeviceCommands::packageNameIsPrinted()
{
    Ended run = quenzo({QStringLiteral("package-name"), m_apk});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.output, QByteArray("org.example.game\n"));
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("aapt <d><badging><%1>").arg(m_apk));
    run = quenzo({QStringLiteral("package-name"), m_apk, QStringLiteral("--json")});
    QCOMPARE(run.result().value(QStringLiteral("package")).toString(), QStringLiteral("org.example.game"));
}

void tst_DeviceCommands::unusableApkIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("badging");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no file") << QStringLiteral("none.apk") << QByteArray(":") << QByteArray("no such file");
    QTest::newRow("a folder") << QStringLiteral(".") << QByteArray(":") << QByteArray("no such file");
    QTest::newRow("no APK") << QStringLiteral("my game.apk") << QByteArray("echo ERROR >&2; exit 1")
                            << QByteArray("aapt finds no package name");
    const auto named = [](const char* name) -> QByteArray {
        return QByteArray("printf \"package: name='") + name + "' versionCode='1'\"";
    };
    const QByteArray noName("cannot be the name of a package");
    const QString game = QStringLiteral("my game.apk");
    QTest::newRow("option for a name") << game << named("-k") << noName;
    QTest::newRow("two words for a name") << game << named("a.b c.d") << noName;
    QTest::newRow("no-break blank in a name") << game << named("a.b\\302\\240c.d") << noName;
    QTest::newRow("vertical blank in a name") << game << named("a.b\\013c.d") << noName;
    QTest::newRow("line feed in a name") << game << named("a.b\\n") << noName;
    QTest::newRow("quotation mark in a name") << game << named("a.b\\042\\042") << noName;
    QTest::newRow("quotation mark") << QStringLiteral("a\"b.apk") << QByteArray(":")
                                    << QByteArray("quotation mark");
}

void tst_DeviceCommands::unusableApkIsRefused()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, badging);
    QFETCH(const QByteArray, reason);
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("d"), badging);
    if (name.contains(QLatin1Char('"')))
        QVERIFY(QFile(m_folder->filePath(name)).open(QIODevice::WriteOnly));
    for (const char* command : {"install", "uninstall", "package-name"}) {
        const QStringList arguments{QLatin1String(command), m_folder->filePath(name)};
        const bool asks = QLatin1String(command) != QLatin1String("package-name");
        const Ended run = asks ? confirmed(arguments) : quenzo(arguments);
        QCOMPARE(run.code, 1);
        QVERIFY2(run.error.contains(reason), run.error.constData());
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceCommands::failingAdbIsNoEmptyList_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("cause");
    QTest::newRow("exit code") << QByteArray("echo 'cannot bind' >&2; exit 1")
                               << QByteArray("/adb ended with code 1: cannot bind");
    QTest::newRow("crash") << QByteArray("kill -9 $$") << QByteArray("/adb crashed: it said nothing");
    QTest::newRow("no list") << QByteArray("echo hello") << QByteArray("adb listed no devices: hello");
}

void tst_DeviceCommands::failingAdbIsNoEmptyList()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QByteArray, cause);
    ScriptedTools::answer(QStringLiteral("devices"), answer);
    for (const Ended& run :
         {quenzo({QStringLiteral("devices")}), confirmed({QStringLiteral("install"), m_apk})}) {
        QCOMPARE(run.code, 1);
        QVERIFY2(run.error.startsWith("quenzo: the devices cannot be listed\n"), run.error.constData());
        QVERIFY2(run.error.endsWith(cause + '\n'), run.error.constData());
    }
    const QJsonObject json = quenzo({QStringLiteral("devices"), QStringLiteral("--json")}).json();
    QCOMPARE(json.value(QStringLiteral("ok")).toBool(true), false);
}

void tst_DeviceCommands::yesIsNeededInAPipe()
{
    ScriptedTools::attach({QStringLiteral("a")});
    for (const char* command : {"install", "uninstall"}) {
        const Ended run = quenzo({QLatin1String(command), m_apk});
        QCOMPARE(run.code, 2);
        QVERIFY2(run.error.contains("--yes"), run.error.constData());
    }
    QCOMPARE(ScriptedTools::calls(), QStringList());
}

void tst_DeviceCommands::missingFileIsToldBeforeYesIsAskedFor()
{
    for (const char* command : {"install", "uninstall"}) {
        const Ended run = quenzo({QLatin1String(command), QStringLiteral("none.apk")});
        QCOMPARE(run.error, QByteArray("quenzo: none.apk: no such file\n"));
        QCOMPARE(run.code, 1);
    }
}

void tst_DeviceCommands::installReportsItsSuccess()
{
    ScriptedTools::attach({QStringLiteral("a")});
    Ended run = confirmed({QStringLiteral("install"), m_apk});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.output, QByteArray("Installation is complete!\n"));
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")),
             QStringList({QStringLiteral("adb <uninstall><org.example.game>"),
                          QStringLiteral("adb <install><-r><%1>").arg(m_apk)}));

    run = confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--json")});
    QCOMPARE(run.code, 0);
    const QJsonObject json = run.result();
    QCOMPARE(run.json().value(QStringLiteral("ok")).toBool(), true);
    QCOMPARE(json.value(QStringLiteral("package")).toString(), QStringLiteral("org.example.game"));
    QCOMPARE(json.value(QStringLiteral("device")).toString(), QStringLiteral("a"));
}

void tst_DeviceCommands::refusalIsExplained_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("known") << QByteArray("INSTALL_FAILED_OLDER_SDK")
                           << QStringLiteral(
                                  "Installation failed! INSTALL_FAILED_OLDER_SDK: The device's Android is "
                                  "older than the APK demands.");
    QTest::newRow("explained") << QByteArray("INSTALL_FAILED_INVALID_APK: res=-113")
                               << QStringLiteral(
                                      "Installation failed! INSTALL_FAILED_INVALID_APK: The APK is damaged, "
                                      "or the device cannot use what is in it. (res=-113)");
    QTest::newRow("unknown") << QByteArray("INSTALL_FAILED_ODD")
                             << QStringLiteral(
                                    "Installation failed! INSTALL_FAILED_ODD: The device refused the APK.");
    QTest::newRow("launcher's own") << QByteArray("ADB_FAILED: no room")
                                    << QStringLiteral(
                                           "Installation failed! ADB_FAILED: adb could not do its work. "
                                           "(no room)");
}

void tst_DeviceCommands::refusalIsExplained()
{
    QFETCH(const QByteArray, key);
    QFETCH(const QString, text);
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("install"), "echo P; echo 'Failure [" + key + "]'");
    const Ended run = confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--json")});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.error, QStringLiteral("quenzo: %1\n").arg(text).toUtf8());
    QCOMPARE(run.failure().value(QStringLiteral("message")).toString(), text);
    QCOMPARE(run.result().value(QStringLiteral("errorKey")).toString(), QString::fromUtf8(key));
    QCOMPARE(run.json().value(QStringLiteral("ok")).toBool(true), false);
}

void tst_DeviceCommands::uninstallReportsItsOutcome()
{
    ScriptedTools::attach({QStringLiteral("a")});
    Ended run = confirmed({QStringLiteral("uninstall"), m_apk});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.output, QByteArray("Uninstall successful!\n"));
    ScriptedTools::answer(QStringLiteral("uninstall"), "echo 'Failure [DELETE_FAILED_INTERNAL_ERROR]'");
    run = confirmed({QStringLiteral("uninstall"), m_apk});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.error, QByteArray("quenzo: Uninstallation failed (app may not exist)!\n"));
    ScriptedTools::answer(QStringLiteral("uninstall"), "echo 'own words' >&2; kill -9 $$");
    run = confirmed({QStringLiteral("uninstall"), m_apk});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.error, QByteArray("quenzo: own words\n"));
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("<install>")), QStringList());
}

void tst_DeviceCommands::silenceEndsByTimeOut()
{
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("install"), "echo P; echo 'Error: no code'");
    const Ended run =
        confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--timeout"), QStringLiteral("1")});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.error.startsWith("quenzo: no outcome was reported within 1 s."), run.error.constData());
}

void tst_DeviceCommands::programThatCannotStartEndsByTimeOut()
{
    ScriptedTools::attach({QStringLiteral("a")});
    // The second question for the package name is the flow's own: what it starts then is gone.
    ScriptedTools::answer(QStringLiteral("d"),
                          "[ ! -e \"$dir/asked\" ] || chmod -x \"$dir/adb\"; : >\"$dir/asked\"\n"
                          "echo \"package: name='a.b'\"");
    const Ended run =
        confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--timeout"), QStringLiteral("1")});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.error.startsWith("quenzo: no outcome was reported within 1 s."), run.error.constData());
}

void tst_DeviceCommands::adbIsGivenTheRemainingTime()
{
    ScriptedTools::attach({QStringLiteral("a")});
    const QByteArray slow = R"(echo "$QUENZO_ADB_TIMEOUT" >>"$dir/limits"; sleep 1.5; echo; echo Success)";
    ScriptedTools::answer(QStringLiteral("uninstall"), slow);
    ScriptedTools::answer(QStringLiteral("install"), slow);
    QCOMPARE(
        confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--timeout"), QStringLiteral("8m20s")})
            .code,
        0);
    QFile limits(RunRoot::path() + QStringLiteral("/tool/mac/limits"));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    const QByteArrayList lines = limits.readAll().split('\n');
    QVERIFY(lines.at(0).toInt() > 300 && lines.at(0).toInt() <= 500);
    QVERIFY(lines.at(1).toInt() > 300 && lines.at(1).toInt() < lines.at(0).toInt());
}

void tst_DeviceCommands::wrongTimeOutIsAUsageError_data()
{
    QTest::addColumn<QString>("value");
    for (const char* value : {"0", "-1", "x", "1.5", "", "m", "2m1h", "25h", "86401", "99999999999"})
        QTest::newRow(value) << QString::fromLatin1(value);
}

void tst_DeviceCommands::wrongTimeOutIsAUsageError()
{
    QFETCH(const QString, value);
    const Ended run = confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--timeout=") + value});
    QCOMPARE(run.code, 2);
    QCOMPARE(ScriptedTools::calls(), QStringList());
}

void tst_DeviceCommands::helpSaysThatDataGo()
{
    for (const char* command : {"install", "uninstall"}) {
        const Ended run = quenzo({QLatin1String(command), QStringLiteral("--help")});
        QCOMPARE(run.code, 0);
        QVERIFY2(run.output.contains("data"), run.output.constData());
    }
    QVERIFY(quenzo({QStringLiteral("install"), QStringLiteral("--help")})
                .output.contains("always removed first, with all its data"));
    QCOMPARE(quenzo({QStringLiteral("install")}).code, 2);
    QCOMPARE(quenzo({QStringLiteral("devices"), QStringLiteral("x")}).code, 2);
}

// The question has a process group of its own, which Ctrl-C at a terminal does not reach.
void tst_DeviceCommands::questionEndsWithTheProgram()
{
    ScriptedTools::answer(QStringLiteral("devices"), R"(echo $$ >"$dir/new"; mv "$dir/new" "$dir/pid"
read line <"$dir/gate")");
    QuenzoProcess process(QuenzoProcess::words("devices"));
    prepare(process);
    process.start();
    QFile file(RunRoot::path() + QStringLiteral("/tool/mac/pid"));
    QTRY_VERIFY_WITH_TIMEOUT(file.exists(), timeLimitMs);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray pid = file.readAll().trimmed();
    ::kill(pid_t(process.processId()), SIGINT);
    QCOMPARE(process.end().code, -SIGINT);
    // An orphan may stay listed until somebody asks for its exit code.
    const auto hasEnded = [&pid] {
        QFile status(QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(pid)));
        return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), timeLimitMs);
}

void tst_DeviceCommands::interruptionTellsWhatWasBegun_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("told");
    const QString head = QStringLiteral("quenzo: interrupted on a. The last of these may be done or not:\n");
    const QString removal = QStringLiteral("removing the package org.example.game and its data\n");
    QTest::newRow("removal") << QStringLiteral("uninstall") << head + removal;
    QTest::newRow("install") << QStringLiteral("install")
                             << head + removal + QStringLiteral("installing %1\n");
}

void tst_DeviceCommands::interruptionTellsWhatWasBegun()
{
    QFETCH(const QString, step);
    QFETCH(const QString, told);
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(step, "read line <\"$dir/gate\"");
    QuenzoProcess process(QuenzoProcess::words("install --yes") << m_apk);
    prepare(process);
    process.start();
    const QString call = QStringLiteral("<%1>").arg(step);
    QTRY_VERIFY_WITH_TIMEOUT(!ScriptedTools::calls().filter(call).isEmpty(), timeLimitMs);
    ::kill(pid_t(process.processId()), SIGINT);
    const Ended ended = process.end();
    QCOMPARE(ended.code, -SIGINT);
    QCOMPARE(QString::fromUtf8(ended.error), told.contains(QLatin1Char('%')) ? told.arg(m_apk) : told);
    // adb was not meant, and is still at work.
    ScriptedTools::openGate();
}

void tst_DeviceCommands::outcomesAreOfTheSchema_data()
{
    QTest::addColumn<QStringList>("serials");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("code");
    const QStringList one{QStringLiteral("a")};
    const QStringList two{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("no device") << QStringList() << QStringLiteral("devices") << 0;
    QTest::newRow("devices") << two << QStringLiteral("devices") << 0;
    QTest::newRow("install") << one << QStringLiteral("install @ --yes") << 0;
    QTest::newRow("install, chosen") << two << QStringLiteral("install @ --yes -s b") << 0;
    QTest::newRow("install, no choice") << two << QStringLiteral("install @ --yes") << 1;
    QTest::newRow("uninstall") << one << QStringLiteral("uninstall @ --yes") << 0;
    QTest::newRow("uninstall, no device") << QStringList() << QStringLiteral("uninstall @ --yes") << 1;
    QTest::newRow("package name") << QStringList() << QStringLiteral("package-name @") << 0;
}

void tst_DeviceCommands::outcomesAreOfTheSchema()
{
    QFETCH(const QStringList, serials);
    QFETCH(const QString, line);
    QFETCH(const int, code);
    ScriptedTools::attach(serials);
    QStringList words = QuenzoProcess::words(line.toUtf8().constData()) << QStringLiteral("--json");
    words.replaceInStrings(QStringLiteral("@"), m_apk);
    const Ended run = quenzo(words);
    QVERIFY2(run.code == code, run.error.constData());
    QCOMPARE(run.output.count('\n'), 1);
    QCOMPARE(m_schema.verdictOn(run.output), QByteArray("valid"));
    QCOMPARE(run.json().value(QStringLiteral("command")).toString(), words.first());
    QCOMPARE(run.json().value(QStringLiteral("ok")).toBool(), code == 0);
}

void tst_DeviceCommands::interruptionIsOfTheSchema_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("lastStep");
    QTest::newRow("install") << QStringLiteral("install") << QStringLiteral("installing %1");
    QTest::newRow("uninstall") << QStringLiteral("uninstall")
                               << QStringLiteral("removing the package org.example.game and its data");
}

void tst_DeviceCommands::interruptionIsOfTheSchema()
{
    QFETCH(const QString, command);
    QFETCH(const QString, lastStep);
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(command, "read line <\"$dir/gate\"");
    QuenzoProcess process({command, m_apk, QStringLiteral("--yes"), QStringLiteral("--json")});
    prepare(process);
    process.start();
    const QString call = QStringLiteral("<%1>").arg(command);
    QTRY_VERIFY_WITH_TIMEOUT(!ScriptedTools::calls().filter(call).isEmpty(), timeLimitMs);
    ::kill(pid_t(process.processId()), SIGINT);
    const Ended ended = process.end();
    QCOMPARE(ended.code, -SIGINT);
    QCOMPARE(ended.output.count('\n'), 1);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QCOMPARE(ended.json().value(QStringLiteral("command")).toString(), command);
    const QJsonObject failure = ended.failure();
    QCOMPARE(failure.value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    const QString told = lastStep.contains(QLatin1Char('%')) ? lastStep.arg(m_apk) : lastStep;
    QCOMPARE(failure.value(QStringLiteral("cause")).toString().section(QLatin1Char('\n'), -1), told);
    QCOMPARE(ended.result().value(QStringLiteral("device")).toString(), QStringLiteral("a"));
    ScriptedTools::openGate();
}

QTEST_GUILESS_MAIN(tst_DeviceCommands)
#include "tst_devicecommands.moc"
