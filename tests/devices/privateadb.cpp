// SPDX-License-Identifier: MIT
#include "privateadb.h"

#include "deviceemulator.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>

#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 60000;

// A socket, bound to a free loopback port, or connected to the given one; without success, the descriptor is
// closed.
quint16 tryPort(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool fine = port == 0
        ? bind(descriptor, plain, length) == 0 && getsockname(descriptor, plain, &length) == 0
        : connect(descriptor, plain, length) == 0;
    close(descriptor);
    return fine ? ntohs(address.sin_port) : 0;
}

quint16 freePort()
{
    return tryPort(0);
}

bool isServed(quint16 port)
{
    return tryPort(port) != 0;
}

} // namespace

// A group of its own keeps the server apart from the children that the library starts.
void PrivateAdb::Server::setupChildProcess()
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

PrivateAdb::PrivateAdb()
    : m_port(freePort())
{
    const QByteArray home = QFile::encodeName(m_home.path());
    for (const char* name : {"HOME", "TMPDIR", "ANDROID_SDK_HOME"})
        qputenv(name, home);
    qputenv("ANDROID_ADB_SERVER_PORT", QByteArray::number(m_port));
    // Keeps the server from looking for emulators of the machine.
    qputenv("ADB_LOCAL_TRANSPORT_MAX_PORT", "5553");
    for (const char* name : {"ADB_SERVER_SOCKET", "ADB_VENDOR_KEYS", "ANDROID_SERIAL", "ADB_TRACE"})
        qunsetenv(name);
    m_server.setStandardOutputFile(QProcess::nullDevice());
    m_server.setStandardErrorFile(QProcess::nullDevice());
}

PrivateAdb::~PrivateAdb()
{
    stop();
}

QString PrivateAdb::program()
{
    return QStandardPaths::findExecutable(QStringLiteral("adb"));
}

// A client that finds no server would start one that outlives us: none runs before ours listens.
bool PrivateAdb::start()
{
    m_server.start(program(), {QStringLiteral("nodaemon"), QStringLiteral("server")});
    return QTest::qWaitFor([&] { return isServed(m_port); }, timeLimitMs)
        && run({QStringLiteral("devices")}).startsWith("List of devices attached");
}

void PrivateAdb::stop()
{
    m_server.kill();
    m_server.waitForFinished();
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
    QStringList lines =
        QString::fromUtf8(run({QStringLiteral("devices")})).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
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
