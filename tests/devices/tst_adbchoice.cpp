// SPDX-License-Identifier: MIT
#include "adbfixture.h"

#include <QtTest>

// Which of several devices is touched, and what comes of one that is away or unknown.
class tst_AdbChoice : public AdbFixture {
    Q_OBJECT

private Q_SLOTS:
    void chosenDeviceAloneIsTouched_data();
    void chosenDeviceAloneIsTouched();
    void readyDeviceBesideAnOfflineOne_data();
    void readyDeviceBesideAnOfflineOne();
    void removalOnADeviceThatIsAway_data();
    void removalOnADeviceThatIsAway();
    void installOnAnUnknownDevice_data();
    void installOnAnUnknownDevice();
};

void tst_AdbChoice::chosenDeviceAloneIsTouched_data()
{
    addToolsAndKinds();
}

void tst_AdbChoice::chosenDeviceAloneIsTouched()
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

void tst_AdbChoice::readyDeviceBesideAnOfflineOne_data()
{
    addTools();
}

void tst_AdbChoice::readyDeviceBesideAnOfflineOne()
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

void tst_AdbChoice::removalOnADeviceThatIsAway_data()
{
    QTest::addColumn<bool>("launcher");
    QTest::addColumn<bool>("unauthorized");
    QTest::newRow("plain adb, offline") << false << false;
    QTest::newRow("plain adb, unauthorized") << false << true;
    QTest::newRow("launcher, offline") << true << false;
    QTest::newRow("launcher, unauthorized") << true << true;
}

void tst_AdbChoice::removalOnADeviceThatIsAway()
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

void tst_AdbChoice::installOnAnUnknownDevice_data()
{
    addTools();
}

void tst_AdbChoice::installOnAnUnknownDevice()
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

QTEST_GUILESS_MAIN(tst_AdbChoice)
#include "tst_adbchoice.moc"
