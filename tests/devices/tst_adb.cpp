// SPDX-License-Identifier: MIT
#include "childsignal.h"
#include "deviceemulator.h"
#include "messagelog.h"
#include "privateadb.h"
#include "runroot.h"

#include <installapk.h>

#include <QtTest>

#include <sys/wait.h>
#include <unistd.h>

#include <memory>

// Generous: other work may load the machine.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

namespace {

const QString package = QStringLiteral("org.example.emulated");

// The protected operations, as a subclass of a host may call them.
class Flow : public CInstallApk {
public:
    using CInstallApk::Install;
    using CInstallApk::InstallReplace;
    using CInstallApk::UnInstall;
};

struct Step {
    enum What {
        InstallOnly, ///< the second step of an install
        WholeInstall,
        Removal
    };
};

// What the flow tells in the end; nothing when it is silent.
struct Report {
    bool told = true;
    bool success = true;
    QString key;
};

const Report done;
const Report silence{false, false, {}};
const Report failure{true, false, {}};

Report refusal(const char* key)
{
    return {true, false, QString::fromUtf8(key)};
}

bool hasChild()
{
    siginfo_t info{};
    return waitid(P_PGID, id_t(getpgrp()), &info, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0;
}

// Whether the library has a child. Qt takes one that has ended away at once, and tells of it in the event
// loop, where the next one may be begun: only a few turns without any tell that there is none.
bool childAtWork()
{
    for (int turn = 0; turn < 20 && !hasChild(); ++turn)
        QTest::qWait(1);
    return hasChild();
}

QString toolPath(const QString& name)
{
    return RunRoot::path() + QStringLiteral("/tool/mac/") + name;
}

QString systemProgram(const char* name)
{
    return QStandardPaths::findExecutable(QLatin1String(name));
}

} // namespace

Q_DECLARE_METATYPE(Step::What)
Q_DECLARE_METATYPE(Report)
Q_DECLARE_METATYPE(DeviceEmulator::Kind)
Q_DECLARE_METATYPE(DeviceEmulator::Answers)

// The library with the system's adb and aapt and with emulated devices, each with the plain program and with
// our launcher in the tool folder.
class tst_Adb : public QObject {
    Q_OBJECT

public:
    // Before Qt Test begins threads of its own.
    tst_Adb() { maskChildSignal(SIG_BLOCK); }

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();
    void packageNameIsReadByAapt_data();
    void packageNameIsReadByAapt();
    void packageNameOfTheSampleGameIsRead();
    void devicesAreListed_data();
    void devicesAreListed();
    void outcomeIsReported_data();
    void outcomeIsReported();
    void removalGoesBeforeTheInstall_data();
    void removalGoesBeforeTheInstall();
    void chosenDeviceAloneIsTouched_data();
    void chosenDeviceAloneIsTouched();
    void readyDeviceBesideAnOfflineOne_data();
    void readyDeviceBesideAnOfflineOne();
    void removalOnADeviceThatIsAway_data();
    void removalOnADeviceThatIsAway();
    void installOnAnUnknownDevice_data();
    void installOnAnUnknownDevice();
    void largeApkArrivesWhole_data();
    void largeApkArrivesWhole();

private:
    void useTool(bool launcher);
    QString makeApk(const QString& folder, int assetMiB = 0);
    static void addTools();
    static void addToolsAndKinds();

    std::unique_ptr<PrivateAdb> m_adb;
    std::unique_ptr<MessageLog> m_log;
    QTemporaryDir m_folder;
    QString m_apk;
};

void tst_Adb::initTestCase()
{
    maskChildSignal(SIG_UNBLOCK);
    QVERIFY2(!systemProgram("adb").isEmpty() && !systemProgram("aapt").isEmpty(),
             "adb and aapt are needed: scripts/dependencies.sh installs them");
    m_adb = std::make_unique<PrivateAdb>();
    QVERIFY(m_adb->start());
    QVERIFY2(m_adb->devices().isEmpty(),
             "a device is attached to this machine, which the tests must not touch");
    // No test is to wait for long where the launcher waits for a device.
    qputenv("QUENZO_ADB_WAIT", "1");
    m_log = std::make_unique<MessageLog>();
    m_apk = makeApk(m_folder.path());
}

void tst_Adb::cleanupTestCase()
{
    m_adb.reset();
}

void tst_Adb::init()
{
    RunRoot::clear();
}

void tst_Adb::cleanup()
{
    m_adb->disconnectAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(!childAtWork(), "a child of the library is left");
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

void tst_Adb::useTool(bool launcher)
{
    QVERIFY(QFile::link(systemProgram("aapt"), toolPath(QStringLiteral("aapt"))));
    QVERIFY(QFile::link(PrivateAdb::program(),
                        toolPath(launcher ? QStringLiteral("adb-program") : QStringLiteral("adb"))));
    if (launcher)
        QVERIFY(QFile::copy(QStringLiteral(QUENZO_ADB_LAUNCHER), toolPath(QStringLiteral("adb"))));
}

QString tst_Adb::makeApk(const QString& folder, int assetMiB)
{
    QDir().mkpath(folder + QStringLiteral("/assets"));
    QFile manifest(folder + QStringLiteral("/AndroidManifest.xml"));
    QFile asset(folder + QStringLiteral("/assets/pad.bin"));
    if (!manifest.open(QIODevice::WriteOnly) || !asset.open(QIODevice::WriteOnly)
        || !asset.resize(qint64(assetMiB) * 1024 * 1024))
        return {};
    manifest.write("<manifest package=\"" + package.toUtf8() + "\"/>\n");
    manifest.close();
    const QString apk = folder + QStringLiteral("/game.apk");
    const int code =
        QProcess::execute(systemProgram("aapt"),
                          {QStringLiteral("package"), QStringLiteral("-f"), QStringLiteral("-M"),
                           manifest.fileName(), QStringLiteral("-A"), folder + QStringLiteral("/assets"),
                           QStringLiteral("-0"), QStringLiteral("bin"), QStringLiteral("-F"), apk});
    return code == 0 ? apk : QString();
}

void tst_Adb::addTools()
{
    QTest::addColumn<bool>("launcher");
    QTest::newRow("plain adb") << false;
    QTest::newRow("launcher") << true;
}

void tst_Adb::addToolsAndKinds()
{
    QTest::addColumn<bool>("launcher");
    QTest::addColumn<DeviceEmulator::Kind>("kind");
    QTest::newRow("plain adb, streamed") << false << DeviceEmulator::Streaming;
    QTest::newRow("plain adb, pushed") << false << DeviceEmulator::Pushing;
    QTest::newRow("launcher, streamed") << true << DeviceEmulator::Streaming;
    QTest::newRow("launcher, pushed") << true << DeviceEmulator::Pushing;
}

void tst_Adb::packageNameIsReadByAapt_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("found");
    QTest::newRow("plain") << QStringLiteral("game.apk") << package;
    QTest::newRow("blanks") << QStringLiteral("my  game.apk") << package;
    QTest::newRow("beyond ASCII") << QString::fromUtf8("游戏 ü.apk") << package;
    QTest::newRow("brackets and words") << QStringLiteral("Success [1] 'device'.apk") << package;
    QTest::newRow("leading dash") << QStringLiteral("-game.apk") << package;
    QTest::newRow("no such file") << QStringLiteral("other.apk") << QString();
}

void tst_Adb::packageNameIsReadByAapt()
{
    QFETCH(const QString, name);
    useTool(false);
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    if (!name.startsWith(QStringLiteral("other")))
        QVERIFY(QFile::copy(m_apk, name));
    const QString found = CInstallApk::getApkPackageName(name);
    QVERIFY(QDir::setCurrent(before));
    QTEST(found, "found");
}

void tst_Adb::packageNameOfTheSampleGameIsRead()
{
    useTool(false);
    QCOMPARE(CInstallApk::getApkPackageName(QStringLiteral(QUENZO_SAMPLE_APK)),
             QStringLiteral("com.quenzo.skyharbour"));
}

void tst_Adb::devicesAreListed_data()
{
    addTools();
}

void tst_Adb::devicesAreListed()
{
    QFETCH(const bool, launcher);
    useTool(launcher);
    QCOMPARE(CInstallApk::getDeviceLs(), QStringList());
    const DeviceEmulator first(DeviceEmulator::Streaming);
    const DeviceEmulator second(DeviceEmulator::Pushing);
    const DeviceEmulator locked(DeviceEmulator::Unauthorized);
    DeviceEmulator gone(DeviceEmulator::Streaming);
    QVERIFY(m_adb->connectTo(first));
    QVERIFY(m_adb->connectTo(gone));
    QVERIFY(m_adb->connectTo(second));
    QVERIFY(m_adb->connectTo(locked, QStringLiteral("unauthorized")));
    gone.drop();
    QVERIFY(m_adb->waitFor(gone, QStringLiteral("offline")));
    QStringList serials = CInstallApk::getDeviceLs();
    serials.sort();
    QStringList wanted{first.serial(), second.serial()};
    wanted.sort();
    QCOMPARE(serials, wanted);
}

void tst_Adb::outcomeIsReported_data()
{
    QTest::addColumn<bool>("launcher");
    QTest::addColumn<DeviceEmulator::Kind>("kind");
    QTest::addColumn<DeviceEmulator::Answers>("answers");
    QTest::addColumn<Step::What>("step");
    QTest::addColumn<QString>("name");
    QTest::addColumn<Report>("report");

    DeviceEmulator::Answers answers;
    Step::What step = Step::WholeInstall;
    QString name = QStringLiteral("game.apk");
    const auto row = [&](const char* title, DeviceEmulator::Kind kind, const Report& plain,
                         const Report& clear) {
        for (const bool launcher : {false, true}) {
            QTest::addRow("%s: %s", launcher ? "launcher" : "plain adb", title)
                << launcher << kind << answers << step << name << (launcher ? clear : plain);
        }
    };
    const auto streaming = DeviceEmulator::Streaming;
    const auto pushing = DeviceEmulator::Pushing;

    row("streamed install", streaming, done, done);
    row("pushed install", pushing, done, done);

    answers.install = "Failure [INSTALL_FAILED_OLDER_SDK: needs 99]\n";
    row("streamed install, refused", streaming, silence, refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    row("pushed install, refused", pushing, refusal("INSTALL_FAILED_OLDER_SDK: needs 99"),
        refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    name = QStringLiteral("game[1].apk");
    row("streamed install, refused, brackets in the path", streaming, silence,
        refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    row("pushed install, refused, brackets in the path", pushing, refusal("1"),
        refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    name = QStringLiteral("Success.apk");
    row("streamed install, refused, word in the path", streaming, silence,
        refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    row("pushed install, refused, word in the path", pushing, done,
        refusal("INSTALL_FAILED_OLDER_SDK: needs 99"));
    name = QStringLiteral("game.apk");

    answers.install = "Error: java.io.IOException: No space left\n";
    row("streamed install, no room", streaming, silence,
        refusal("ADB_FAILED: adb: failed to install APK: Error: java.io.IOException: No space left"));
    answers.pushFailure = "No space left on device";
    row("pushed install, no room", pushing, silence,
        refusal(
            "ADB_FAILED: adb: error: failed to copy 'APK' to '/data/local/tmp/APK': remote No space left on "
            "device"));
    answers = {};

    answers.dropAfter = 100;
    row("streamed install, device lost", streaming, silence,
        refusal("ADB_FAILED: adb: failed to install APK"));
    row("pushed install, device lost", pushing, silence,
        refusal("ADB_FAILED: adb: error: failed to copy 'APK' to '/data/local/tmp/APK': couldn't read from "
                "device"));
    answers = {};

    step = Step::Removal;
    row("uninstall", streaming, done, done);
    row("uninstall on an old device", pushing, done, done);
    answers.uninstall = "Failure [DELETE_FAILED_INTERNAL_ERROR]\n";
    answers.uninstallCode = 1;
    row("uninstall of an absent package", streaming, failure, failure);
    row("uninstall of an absent package on an old device", pushing, failure, failure);
    answers.uninstall.clear();
    answers.uninstallError = "Exception occurred while executing:\njava.lang.SecurityException\n";
    answers.uninstallCode = 255;
    row("uninstall, exception on the device", streaming, done, failure);
    row("uninstall, exception on an old device", pushing, done, failure);
    answers = {};
    answers.dropAtUninstall = true;
    row("uninstall, device lost", streaming, done, failure);
    row("uninstall, old device lost", pushing, done, failure);
    answers = {};
    name = QStringLiteral("-no-apk");
    row("uninstall of an empty package name", streaming, done, failure);
    row("uninstall of an empty package name on an old device", pushing, done, failure);
}

void tst_Adb::outcomeIsReported()
{
    QFETCH(const bool, launcher);
    QFETCH(const DeviceEmulator::Kind, kind);
    QFETCH(const DeviceEmulator::Answers, answers);
    QFETCH(const Step::What, step);
    QFETCH(const QString, name);
    QFETCH(const Report, report);
    useTool(launcher);
    const QTemporaryDir folder;
    const QString apk = folder.filePath(name);
    if (name.startsWith(QLatin1Char('-')))
        QVERIFY(QFile(apk).open(QIODevice::WriteOnly));
    else
        QVERIFY(QFile::copy(m_apk, apk));
    DeviceEmulator device(kind);
    device.setAnswers(answers);
    QVERIFY(m_adb->connectTo(device));

    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(apk, step == Step::WholeInstall);
    QCOMPARE(choices.count(), 0);
    if (report.told)
        TRY_COMPARE(results.count(), 1);
    TRY_VERIFY(!childAtWork());
    QCOMPARE(results.count(), int(report.told));
    if (!report.told)
        return;
    QCOMPARE(results.first().at(0).toBool(), report.success);
    QCOMPARE(results.first().at(2).toString(), report.key);
    const char* const installText = report.success ? "Installation is complete!" : "Installation failed!";
    const char* const removalText =
        report.success ? "Uninstall successful!" : "Uninstallation failed (app may not exist)!";
    QCOMPARE(results.first().at(1).toString(),
             QString::fromLatin1(step == Step::WholeInstall ? installText : removalText));
}

void tst_Adb::removalGoesBeforeTheInstall_data()
{
    addToolsAndKinds();
}

void tst_Adb::removalGoesBeforeTheInstall()
{
    QFETCH(const bool, launcher);
    QFETCH(const DeviceEmulator::Kind, kind);
    useTool(launcher);
    const QTemporaryDir folder;
    const QString apk = folder.filePath(QString::fromUtf8("my 游戏.apk"));
    QVERIFY(QFile::copy(m_apk, apk));
    DeviceEmulator device(kind);
    QVERIFY(m_adb->connectTo(device));
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first().first().toBool(), true);

    const QByteArray size = QByteArray::number(QFileInfo(apk).size());
    const QByteArrayList streamed{"shell,v2,raw:cmd package 'uninstall' '" + package.toUtf8() + '\'',
                                  "exec:cmd package 'install' '-r' -S " + size};
    const QByteArray remote = "/data/local/tmp/my 游戏.apk";
    const QByteArrayList pushed{"shell:pm 'uninstall' '" + package.toUtf8() + '\'',
                                "sync:", "shell:pm 'install' '-r' '" + remote + '\'',
                                "shell:rm '" + remote + "' </dev/null"};
    // The terminal's name is of no interest here.
    QByteArrayList services = device.services();
    for (QByteArray& service : services) {
        if (service.startsWith("shell,v2"))
            service = "shell,v2,raw" + service.mid(service.indexOf(':'));
    }
    QCOMPARE(services, kind == DeviceEmulator::Streaming ? streamed : pushed);
}

void tst_Adb::chosenDeviceAloneIsTouched_data()
{
    addToolsAndKinds();
}

void tst_Adb::chosenDeviceAloneIsTouched()
{
    QFETCH(const bool, launcher);
    QFETCH(const DeviceEmulator::Kind, kind);
    useTool(launcher);
    DeviceEmulator first(kind);
    DeviceEmulator second(kind);
    QVERIFY(m_adb->connectTo(first));
    QVERIFY(m_adb->connectTo(second));
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(m_apk, true);
    QCOMPARE(choices.count(), 1);
    QVERIFY(choices.first().last().toStringList().contains(second.serial()));
    flow.onSelectDeviceFinish(second.serial());
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first().first().toBool(), true);
    QCOMPARE(first.services(), QByteArrayList());
    QCOMPARE(second.receivedSize(), QFileInfo(m_apk).size());
}

void tst_Adb::readyDeviceBesideAnOfflineOne_data()
{
    addTools();
}

void tst_Adb::readyDeviceBesideAnOfflineOne()
{
    QFETCH(const bool, launcher);
    useTool(launcher);
    DeviceEmulator ready(DeviceEmulator::Streaming);
    DeviceEmulator gone(DeviceEmulator::Streaming);
    QVERIFY(m_adb->connectTo(gone));
    QVERIFY(m_adb->connectTo(ready));
    gone.drop();
    QVERIFY(m_adb->waitFor(gone, QStringLiteral("offline")));
    Flow flow;
    QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, false);
    TRY_COMPARE(results.count(), 1);
    // A false success of the plain program: it refuses to choose, on its error stream.
    QCOMPARE(results.takeFirst().first().toBool(), true);
    QCOMPARE(ready.services().isEmpty(), !launcher);

    flow.startTask(m_apk, true);
    TRY_VERIFY(!childAtWork());
    QCOMPARE(results.count(), launcher ? 1 : 0);
    QCOMPARE(ready.receivedSize(), launcher ? QFileInfo(m_apk).size() : 0);
}

void tst_Adb::removalOnADeviceThatIsAway_data()
{
    QTest::addColumn<bool>("launcher");
    QTest::addColumn<bool>("unauthorized");
    QTest::newRow("plain adb, offline") << false << false;
    QTest::newRow("plain adb, unauthorized") << false << true;
    QTest::newRow("launcher, offline") << true << false;
    QTest::newRow("launcher, unauthorized") << true << true;
}

void tst_Adb::removalOnADeviceThatIsAway()
{
    QFETCH(const bool, launcher);
    QFETCH(const bool, unauthorized);
    useTool(launcher);
    DeviceEmulator device(unauthorized ? DeviceEmulator::Unauthorized : DeviceEmulator::Streaming);
    QVERIFY(
        m_adb->connectTo(device, unauthorized ? QStringLiteral("unauthorized") : QStringLiteral("device")));
    if (!unauthorized) {
        device.drop();
        QVERIFY(m_adb->waitFor(device, QStringLiteral("offline")));
    }
    Flow flow;
    QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, false);
    QCOMPARE(results.takeFirst().at(1).toString(), QStringLiteral("Device unavailable!"));
    flow.onSelectDeviceFinish(device.serial());
    if (launcher) {
        TRY_COMPARE(results.count(), 1);
        QCOMPARE(results.first().first().toBool(), false);
        return;
    }
    // The plain program waits for ever; only an install takes its place.
    QVERIFY(!QTest::qWaitFor([] { return !childAtWork(); }, 1500));
    flow.InstallReplace(device.serial());
    QVERIFY(childAtWork());
    flow.Install(device.serial());
    TRY_VERIFY(!childAtWork());
    QCOMPARE(results.count(), 0);
}

void tst_Adb::installOnAnUnknownDevice_data()
{
    addTools();
}

void tst_Adb::installOnAnUnknownDevice()
{
    QFETCH(const bool, launcher);
    useTool(launcher);
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.Install(QStringLiteral("nobody"));
    TRY_VERIFY(!childAtWork());
    QCOMPARE(results.count(), launcher ? 1 : 0);
    if (launcher) {
        const QString key = results.first().last().toString();
        QVERIFY2(key.startsWith(QStringLiteral("ADB_FAILED: ")), qUtf8Printable(key));
    }
}

void tst_Adb::largeApkArrivesWhole_data()
{
    addToolsAndKinds();
}

void tst_Adb::largeApkArrivesWhole()
{
    QFETCH(const bool, launcher);
    QFETCH(const DeviceEmulator::Kind, kind);
    useTool(launcher);
    const QTemporaryDir folder;
    const QString apk = makeApk(folder.path(), 100);
    QVERIFY(QFileInfo(apk).size() > 100'000'000);
    DeviceEmulator device(kind);
    QVERIFY(m_adb->connectTo(device));
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(results.first().first().toBool(), true);
    QCOMPARE(device.receivedSize(), QFileInfo(apk).size());
    QFile file(apk);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QVERIFY(file.open(QIODevice::ReadOnly) && hash.addData(&file));
    QCOMPARE(device.receivedHash(), hash.result());
}

QTEST_GUILESS_MAIN(tst_Adb)
#include "tst_adb.moc"
