// SPDX-License-Identifier: MIT
// The flow's children: when one starts, what becomes of it, and what is told of a silent end.
#include "installfixture.h"
#include "runroot.h"

#include <QProcess>

class tst_InstallChildren : public InstallFixture {
    Q_OBJECT

private Q_SLOTS:
    void taskDuringAChildStartsNothing();
    void removalAtWorkGoesOnWithTheNewFile();
    void installReplacesARunningChild();
    void finishedSlotEndsARunningChild();
    void strayFinishedSlotsReportNothing();
    void childThatCannotStartBlocksUntilAnInstall();
    void taskBegunInADirectSlotDoesNothing();
    void taskBegunInAQueuedSlotRuns();
    void destructionLeavesTheChildAtWork();
    void largeOutputIsReadWhole();
    void outputBehindAZeroByteIsRead();
    void endlessOutputCountsAsACrash();
    void silentEndsAreLoggedWhenAskedFor_data();
    void silentEndsAreLoggedWhenAskedFor();
};

void tst_InstallChildren::taskDuringAChildStartsNothing()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"; echo Success");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, false);
    TRY_COMPARE(ScriptedTools::calls().size(), 3);
    ScriptedTools::forgetCalls();
    flow.startTask(m_apk, true);
    flow.startTask(m_apk, false);
    flow.onSelectDeviceFinish(QStringLiteral("x"));
    QCOMPARE(results.count(), 0);
    QCOMPARE(ScriptedTools::calls(),
             QStringList({QStringLiteral("adb <devices>"), QStringLiteral("adb <devices>")}));
    ScriptedTools::openGate();
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first(), report(true, "Uninstall successful!"));
    makeIdle(flow, results);
}

void tst_InstallChildren::removalAtWorkGoesOnWithTheNewFile()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"");
    const QString other = m_folder->filePath(QStringLiteral("other.apk"));
    QVERIFY(QFile(other).open(QIODevice::WriteOnly));
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    flow.startTask(other, true);
    ScriptedTools::openGate();
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <install><-r><%1>").arg(other));
}

void tst_InstallChildren::installReplacesARunningChild()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, false);
    TRY_COMPARE(ScriptedTools::calls().size(), 3);
    flow.Install(QStringLiteral("x"));
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first(), report(true, "Installation is complete!"));
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <-s><x><install><-r><%1>").arg(m_apk));
    makeIdle(flow, results);
}

void tst_InstallChildren::finishedSlotEndsARunningChild()
{
    using Slot = void (CInstallApk::*)(int, QProcess::ExitStatus);
    Flow flow;
    QSignalSpy results(&flow, &CInstallApk::onResult);
    for (const Slot slot : {&CInstallApk::onInstallFinish, &CInstallApk::onUnInstallFinish}) {
        ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"");
        ScriptedTools::forgetCalls();
        flow.UnInstall({});
        TRY_COMPARE(ScriptedTools::calls().size(), 2);
        (flow.*slot)(0, QProcess::NormalExit);
        results.clear();
        makeIdle(flow, results);
    }
}

void tst_InstallChildren::strayFinishedSlotsReportNothing()
{
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.onInstallFinish(0, QProcess::NormalExit);
    flow.onInstallFinish(0, QProcess::CrashExit);
    flow.onUnInstallFinish(0, QProcess::NormalExit);
    flow.onUnInstallFinish(0, QProcess::CrashExit);
    QCOMPARE(results.count(), 0);
}

void tst_InstallChildren::childThatCannotStartBlocksUntilAnInstall()
{
    const QString adb = RunRoot::path() + QStringLiteral("/tool/mac/adb");
    const auto executable = QFile::permissions(adb);
    auto devices = std::make_unique<CategoryOn>("quenzo.devices");
    ScriptedTools::attach({QStringLiteral("ab")});
    // Between the list of devices and the removal the program turns unusable.
    ScriptedTools::answer(QStringLiteral("d"), R"(chmod -x "$dir/adb"; echo "package: name='a.b'")");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);

    // The child looks for its program on its own time: the program stays unusable until it has.
    QStringList told;
    const auto hasFailed = [&] {
        told += m_log->takeWarnings();
        return !told.isEmpty();
    };
    TRY_VERIFY(hasFailed());
    QVERIFY2(told.join(QLatin1Char('|')).contains(QStringLiteral("/adb cannot be started: ")),
             qPrintable(told.join(QLatin1Char('|'))));
    devices.reset();
    QCOMPARE(results.count(), 0);

    QVERIFY(QFile::setPermissions(adb, executable));
    ScriptedTools::forgetCalls();
    flow.startTask(m_apk, true);
    flow.startTask(m_apk, false);
    QCOMPARE(ScriptedTools::calls(),
             QStringList({QStringLiteral("adb <devices>"), QStringLiteral("adb <devices>")}));

    flow.Install({});
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first(), report(true, "Installation is complete!"));
    ScriptedTools::answer(QStringLiteral("d"), "echo \"package: name='a.b'\"");
    makeIdle(flow, results);
}

void tst_InstallChildren::taskBegunInADirectSlotDoesNothing()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const auto connection = connect(
        &flow, &CInstallApk::onResult, this, [&] { flow.startTask(m_apk, true); }, Qt::DirectConnection);
    flow.startTask(m_apk, false);
    TRY_COMPARE(results.count(), 1);
    disconnect(connection);
    const QStringList wanted = installCalls(m_apk).mid(0, 3) << QStringLiteral("adb <devices>");
    QCOMPARE(ScriptedTools::calls(), wanted);
    makeIdle(flow, results);
}

void tst_InstallChildren::taskBegunInAQueuedSlotRuns()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    int left = 2;
    connect(
        &flow, &CInstallApk::onResult, &flow,
        [&] {
            if (left-- > 0)
                flow.startTask(m_apk, true);
        },
        Qt::QueuedConnection);
    flow.startTask(m_apk, false);
    TRY_COMPARE(results.count(), 3);
    QCOMPARE(results.last(), report(true, "Installation is complete!"));
    TRY_COMPARE(left, -1);
}

void tst_InstallChildren::destructionLeavesTheChildAtWork()
{
    const QString marker = RunRoot::path() + QStringLiteral("/tool/mac/ended");
    ScriptedTools::answer(QStringLiteral("uninstall"), R"(read line <"$dir/gate"; : >"$dir/ended")");
    auto flow = std::make_unique<Flow>();
    const QSignalSpy results(flow.get(), &CInstallApk::onResult);
    flow->UnInstall({});
    TRY_COMPARE(ScriptedTools::calls().size(), 2);
    flow.reset();
    ScriptedTools::openGate();
    TRY_VERIFY(QFile::exists(marker));
    QCOMPARE(results.count(), 0);
}

void tst_InstallChildren::largeOutputIsReadWhole()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("uninstall"),
                          "head -c 1000000 /dev/zero | tr '\\0' x; echo Failure");
    ScriptedTools::answer(QStringLiteral("install"),
                          "echo P; head -c 1000000 /dev/zero | tr '\\0' x; echo 'Failure [LATE]'");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.last(), report(false, "Installation failed!", "LATE"));
    flow.startTask(m_apk, false);
    TRY_COMPARE(results.count(), 2);
    QCOMPARE(results.last(), report(false, "Uninstallation failed (app may not exist)!"));
}

void tst_InstallChildren::outputBehindAZeroByteIsRead()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("install"), "printf 'P\\n\\0Failure [LATE]'");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.last(), report(false, "Installation failed!", "LATE"));
}

void tst_InstallChildren::endlessOutputCountsAsACrash()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("uninstall"), "echo flood >&2; exec cat /dev/zero");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.last(), report(false, "flood\n"));
    makeIdle(flow, results);
}

void tst_InstallChildren::silentEndsAreLoggedWhenAskedFor_data()
{
    QTest::addColumn<QString>("subcommand");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("install");
    QTest::addColumn<int>("reports");
    QTest::addColumn<QStringList>("causes");
    const auto row = [](const char* name, const char* subcommand, const char* script, bool install,
                        int reports, const char* cause) {
        const QString text = QString::fromUtf8(cause);
        QTest::newRow(name) << QString::fromUtf8(subcommand) << QByteArray(script) << install << reports
                            << (text.isEmpty() ? QStringList() : text.split(QLatin1Char('|')));
    };
    row("nothing to tell", "install", "echo P; echo Success", true, 1, "");
    row("refusal with a code", "install", "echo P; echo 'Failure [NO]'; exit 1", true, 1, "");
    row("refusal without a code", "install", "echo P; echo 'adb: no room' >&2; exit 7", true, 0,
        "adb's install ended with code 7, without a code of the device: adb: no room P");
    row("absent package", "uninstall", "echo Failure; exit 1", true, 1, "");
    row("device lost", "uninstall", "echo gone >&2; exit 1", false, 1,
        "adb's uninstall ended with code 1, without a code of the device: gone");
    row("no list", "devices", "echo what; echo why >&2", true, 1, "adb listed no devices: why what");
    row("failing list", "devices", "echo why >&2; exit 1", true, 1,
        "/adb ended with code 1: why|adb listed no devices: why");
    row("no package", "d", "echo no APK >&2", false, 1, "/game.apk: no APK");
}

void tst_InstallChildren::silentEndsAreLoggedWhenAskedFor()
{
    QFETCH(const QString, subcommand);
    QFETCH(const QByteArray, script);
    QFETCH(const bool, install);
    QFETCH(const int, reports);
    QFETCH(const QStringList, causes);
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(subcommand, script);
    auto devices = std::make_unique<CategoryOn>("quenzo.devices");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    QStringList told;
    flow.startTask(m_apk, install);
    const auto hasEnded = [&] {
        told += m_log->takeWarnings();
        return told.size() >= causes.size() && results.count() >= reports;
    };
    TRY_VERIFY(hasEnded());
    devices.reset();
    makeIdle(flow, results);
    QVERIFY2(told.size() == causes.size(), qPrintable(told.join(QLatin1Char('\n'))));
    for (int i = 0; i < told.size(); ++i)
        QVERIFY2(told.at(i).endsWith(causes.at(i)), qPrintable(told.at(i)));
}

QTEST_GUILESS_MAIN(tst_InstallChildren)
#include "tst_installchildren.moc"
