// SPDX-License-Identifier: MIT
#include "privateadb.h"

#include "deviceemulator.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 60000;

// A port that nobody listens on at the moment.
QByteArray freePort()
{
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 || bind(listener, plain, length) != 0 || getsockname(listener, plain, &length) != 0)
        qFatal("no free port");
    close(listener);
    return QByteArray::number(ntohs(address.sin_port));
}

} // namespace

PrivateAdb::PrivateAdb()
{
    const QByteArray home = QFile::encodeName(m_home.path());
    for (const char* name : {"HOME", "TMPDIR", "ANDROID_SDK_HOME"})
        qputenv(name, home);
    qputenv("ANDROID_ADB_SERVER_PORT", freePort());
    // Keeps the server from looking for emulators of the machine.
    qputenv("ADB_LOCAL_TRANSPORT_MAX_PORT", "5553");
    qunsetenv("ADB_SERVER_SOCKET");
    qunsetenv("ADB_VENDOR_KEYS");
    qunsetenv("ANDROID_SERIAL");
    qunsetenv("ADB_TRACE");
}

PrivateAdb::~PrivateAdb()
{
    stop();
}

QString PrivateAdb::program()
{
    return QStandardPaths::findExecutable(QStringLiteral("adb"));
}

bool PrivateAdb::start()
{
    run({QStringLiteral("start-server")});
    return run({QStringLiteral("devices")}).startsWith("List of devices attached");
}

void PrivateAdb::stop()
{
    run({QStringLiteral("kill-server")});
}

QByteArray PrivateAdb::run(const QStringList& arguments) const
{
    QProcess adb;
    adb.setProcessChannelMode(QProcess::MergedChannels);
    adb.start(program(), arguments);
    if (!adb.waitForFinished(timeLimitMs)) {
        adb.kill();
        adb.waitForFinished();
        return "no answer in time";
    }
    return adb.readAll();
}

QStringList PrivateAdb::devices() const
{
    QStringList lines = QString::fromUtf8(run({QStringLiteral("devices")})).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeFirst();
    return lines;
}

bool PrivateAdb::connectTo(const DeviceEmulator& device, const QString& state) const
{
    // For a device that does not become ready this takes ten seconds, though the list shows it at once.
    QProcess adb;
    adb.start(program(), {QStringLiteral("connect"), device.serial()});
    const bool shown = waitFor(device, state);
    adb.kill();
    adb.waitForFinished();
    return shown;
}

bool PrivateAdb::waitFor(const DeviceEmulator& device, const QString& state) const
{
    const QString line = device.serial() + QLatin1Char('\t') + state;
    return QTest::qWaitFor([&] { return devices().contains(line); }, timeLimitMs);
}

void PrivateAdb::disconnectAll() const
{
    run({QStringLiteral("disconnect")});
}
