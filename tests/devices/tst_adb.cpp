// SPDX-License-Identifier: MIT
#include "adbfixture.h"

#include <QtTest>

namespace {

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

} // namespace

Q_DECLARE_METATYPE(Step::What)
Q_DECLARE_METATYPE(Report)
Q_DECLARE_METATYPE(DeviceEmulator::Answers)

// What the library makes of the answers of adb and aapt.
class tst_Adb : public AdbFixture {
    Q_OBJECT

private Q_SLOTS:
    void packageNameIsReadByAapt_data();
    void packageNameIsReadByAapt();
    void packageNameOfTheSampleGameIsRead();
    void devicesAreListed_data();
    void devicesAreListed();
    void outcomeIsReported_data();
    void outcomeIsReported();
    void removalGoesBeforeTheInstall_data();
    void removalGoesBeforeTheInstall();
    void largeApkArrivesWhole_data();
    void largeApkArrivesWhole();
};

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
