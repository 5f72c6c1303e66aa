// SPDX-License-Identifier: MIT
#include "adbfixture.h"

#include "childsignal.h"
#include "runroot.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

bool hasChild()
{
    siginfo_t info{};
    return waitid(P_PGID, id_t(getpgrp()), &info, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0;
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

// Before Qt Test begins threads of its own.
AdbFixture::AdbFixture()
{
    maskChildSignal(SIG_BLOCK);
}

void AdbFixture::initTestCase()
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

void AdbFixture::cleanupTestCase()
{
    m_adb.reset();
}

void AdbFixture::init()
{
    RunRoot::clear();
}

void AdbFixture::cleanup()
{
    m_adb->disconnectAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(!childAtWork(), "a child of the library is left");
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

bool AdbFixture::childAtWork()
{
    for (int turn = 0; turn < 20 && !hasChild(); ++turn)
        QTest::qWait(1);
    return hasChild();
}

void AdbFixture::useTool(bool launcher)
{
    QVERIFY(QFile::link(systemProgram("aapt"), toolPath(QStringLiteral("aapt"))));
    QVERIFY(QFile::link(PrivateAdb::program(),
                        toolPath(launcher ? QStringLiteral("adb-program") : QStringLiteral("adb"))));
    if (launcher)
        QVERIFY(QFile::copy(QStringLiteral(QUENZO_ADB_LAUNCHER), toolPath(QStringLiteral("adb"))));
}

QString AdbFixture::makeApk(const QString& folder, int assetMiB)
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

void AdbFixture::addTools()
{
    QTest::addColumn<bool>("launcher");
    QTest::newRow("plain adb") << false;
    QTest::newRow("launcher") << true;
}

void AdbFixture::addToolsAndKinds()
{
    QTest::addColumn<bool>("launcher");
    QTest::addColumn<DeviceEmulator::Kind>("kind");
    QTest::newRow("plain adb, streamed") << false << DeviceEmulator::Streaming;
    QTest::newRow("plain adb, pushed") << false << DeviceEmulator::Pushing;
    QTest::newRow("launcher, streamed") << true << DeviceEmulator::Streaming;
    QTest::newRow("launcher, pushed") << true << DeviceEmulator::Pushing;
}
