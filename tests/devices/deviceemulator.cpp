// SPDX-License-Identifier: MIT
#include "deviceemulator.h"

#include "childsignal.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <map>
#include <utility>

namespace {

constexpr quint32 commandOf(const char* name)
{
    return quint32(quint8(name[0])) | quint32(quint8(name[1])) << 8 | quint32(quint8(name[2])) << 16
        | quint32(quint8(name[3])) << 24;
}

constexpr quint32 connectCommand = commandOf("CNXN");
constexpr quint32 authCommand = commandOf("AUTH");
constexpr quint32 openCommand = commandOf("OPEN");
constexpr quint32 okayCommand = commandOf("OKAY");
constexpr quint32 closeCommand = commandOf("CLSE");
constexpr quint32 writeCommand = commandOf("WRTE");

// From this version on nobody looks at the checksum of the data.
constexpr quint32 protocolVersion = 0x01000001;
constexpr quint32 maximumData = 1024 * 1024;

QByteArray number(quint32 value)
{
    QByteArray little(4, Qt::Uninitialized);
    qToLittleEndian(value, little.data());
    return little;
}

quint32 numberAt(const QByteArray& data, int offset)
{
    return qFromLittleEndian<quint32>(data.constData() + offset);
}

QByteArray bytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

QByteArray shellPacket(char stream, const QByteArray& data)
{
    return data.isEmpty() ? QByteArray() : stream + number(quint32(data.size())) + data;
}

} // namespace

// One connection, until either side ends it.
class DeviceEmulator::Session {
public:
    Session(DeviceEmulator& device, int socket)
        : m_device(device)
        , m_socket(socket)
    {
    }

    // Whether the device, not the computer, has ended it: for good.
    bool isGone() const { return m_gone; }

    // False when the connection is over.
    bool handlePacket();

private:
    struct Stream {
        quint32 remote = 0;
        QByteArray service;
        QByteArray pending;
        qint64 expected = -1;
        qint64 received = 0;
        QCryptographicHash hash{QCryptographicHash::Sha1};
    };

    bool read(char* data, qint64 size);
    bool send(quint32 command, quint32 first, quint32 second, const QByteArray& data = {});
    bool finish(quint32 local, const QByteArray& output);
    bool finishShell(quint32 local, const QByteArray& output, const QByteArray& error, int code);
    bool open(quint32 remote, const QByteArray& service);
    bool accept(quint32 local, const QByteArray& data);
    bool acceptSync(quint32 local, Stream& stream);
    bool take(Stream& stream, const QByteArray& data);
    bool vanish();
    void keep(const Stream& stream);

    DeviceEmulator& m_device;
    const int m_socket;
    bool m_gone = false;
    quint32 m_lastLocal = 0;
    std::map<quint32, Stream> m_streams;
};

bool DeviceEmulator::Session::read(char* data, qint64 size)
{
    while (size > 0) {
        std::array<pollfd, 2> sources{{{m_socket, POLLIN, 0}, {m_device.m_wakeUp[0], POLLIN, 0}}};
        if (poll(sources.data(), sources.size(), -1) < 0 || sources[1].revents != 0)
            return false;
        const ssize_t got = recv(m_socket, data, std::size_t(size), 0);
        if (got <= 0)
            return false;
        data += got;
        size -= got;
    }
    return true;
}

bool DeviceEmulator::Session::send(quint32 command, quint32 first, quint32 second, const QByteArray& data)
{
    quint32 sum = 0;
    for (const char byte : data)
        sum += quint8(byte);
    const QByteArray packet = number(command) + number(first) + number(second) + number(quint32(data.size()))
        + number(sum) + number(~command) + data;
    qint64 sent = 0;
    while (sent < packet.size()) {
        const ssize_t count =
            ::send(m_socket, packet.constData() + sent, std::size_t(packet.size() - sent), MSG_NOSIGNAL);
        if (count < 0)
            return false;
        sent += count;
    }
    return true;
}

bool DeviceEmulator::Session::handlePacket()
{
    QByteArray header(24, Qt::Uninitialized);
    if (!read(header.data(), header.size()))
        return false;
    const quint32 command = numberAt(header, 0);
    const quint32 first = numberAt(header, 4);
    const quint32 second = numberAt(header, 8);
    QByteArray data(int(numberAt(header, 12)), Qt::Uninitialized);
    if (!read(data.data(), data.size()))
        return false;

    switch (command) {
    case connectCommand:
    case authCommand: {
        // A token to sign, again after each signature; then comes the public key, which nobody accepts.
        if (m_device.m_kind == Unauthorized)
            return (command == authCommand && first == 3) || send(authCommand, 1, 0, QByteArray(20, 't'));
        const QByteArray features = m_device.m_kind == Streaming ? "features=cmd,shell_v2;" : "";
        return send(connectCommand, protocolVersion, maximumData,
                    "device::ro.product.name=emulated;ro.product.model=Emulated;ro.product.device=emulated;"
                        + features);
    }
    case openCommand:
        return open(first, data.left(data.indexOf('\0')));
    case writeCommand:
        return accept(second, data);
    case closeCommand:
        m_streams.erase(second);
        return true;
    default:
        return true;
    }
}

bool DeviceEmulator::Session::finish(quint32 local, const QByteArray& output)
{
    const quint32 remote = m_streams[local].remote;
    m_streams.erase(local);
    return (output.isEmpty() || send(writeCommand, local, remote, output))
        && send(closeCommand, local, remote);
}

bool DeviceEmulator::Session::finishShell(quint32 local, const QByteArray& output, const QByteArray& error,
                                          int code)
{
    if (!m_streams[local].service.startsWith("shell,v2"))
        return finish(local, output + error);
    return finish(local,
                  shellPacket(1, output) + shellPacket(2, error) + shellPacket(3, QByteArray(1, char(code))));
}

bool DeviceEmulator::Session::open(quint32 remote, const QByteArray& service)
{
    const quint32 local = ++m_lastLocal;
    Stream& stream = m_streams[local];
    stream.remote = remote;
    stream.service = service;
    {
        const std::lock_guard<std::mutex> lock(m_device.m_mutex);
        m_device.m_services.push_back(service.toStdString());
    }
    const bool known =
        service.startsWith("sync:") || service.startsWith("shell") || service.startsWith("exec:");
    if (!known) {
        m_streams.erase(local);
        return send(closeCommand, 0, remote);
    }
    if (!send(okayCommand, local, remote))
        return false;
    const Answers answers = m_device.answers();
    if (service.startsWith("shell") && service.contains("uninstall") && answers.dropAtUninstall)
        return vanish();
    if (service.startsWith("exec:")) {
        stream.expected = service.mid(service.lastIndexOf(' ') + 1).toLongLong();
        return true;
    }
    if (!service.startsWith("shell"))
        return true;
    if (service.contains("uninstall"))
        return finishShell(local, bytes(answers.uninstall), bytes(answers.uninstallError),
                           answers.uninstallCode);
    if (service.contains("install"))
        return finishShell(local, bytes(answers.install), {}, 0);
    return finishShell(local, {}, {}, 0);
}

bool DeviceEmulator::Session::take(Stream& stream, const QByteArray& data)
{
    stream.hash.addData(data);
    stream.received += data.size();
    const qint64 limit = m_device.answers().dropAfter;
    return limit < 0 || stream.received < limit || vanish();
}

bool DeviceEmulator::Session::vanish()
{
    m_gone = true;
    return false;
}

void DeviceEmulator::Session::keep(const Stream& stream)
{
    const std::lock_guard<std::mutex> lock(m_device.m_mutex);
    m_device.m_receivedSize = stream.received;
    m_device.m_receivedHash = stream.hash.result().toStdString();
}

bool DeviceEmulator::Session::accept(quint32 local, const QByteArray& data)
{
    const auto found = m_streams.find(local);
    if (found == m_streams.end())
        return true;
    Stream& stream = found->second;
    if (!send(okayCommand, local, stream.remote))
        return false;
    if (stream.service.startsWith("sync:")) {
        stream.pending += data;
        return acceptSync(local, stream);
    }
    if (stream.expected < 0)
        return true;
    if (!take(stream, data))
        return false;
    if (stream.received < stream.expected)
        return true;
    keep(stream);
    return finish(local, bytes(m_device.answers().install));
}

bool DeviceEmulator::Session::acceptSync(quint32 local, Stream& stream)
{
    while (stream.pending.size() >= 8) {
        const QByteArray request = stream.pending.left(4);
        const quint32 argument = numberAt(stream.pending, 4);
        const int length = request == "DONE" ? 0 : int(argument);
        if (stream.pending.size() < 8 + length)
            return true;
        const QByteArray data = stream.pending.mid(8, length);
        stream.pending.remove(0, 8 + length);
        if (request == "QUIT")
            return finish(local, {});
        if (request == "STAT" && !send(writeCommand, local, stream.remote, "STAT" + QByteArray(12, '\0')))
            return false;
        if (request == "DATA" && !take(stream, data))
            return false;
        if (request != "DONE")
            continue;
        keep(stream);
        const QByteArray failure = bytes(m_device.answers().pushFailure);
        const QByteArray answer =
            (failure.isEmpty() ? "OKAY" : "FAIL") + number(quint32(failure.size())) + failure;
        if (!send(writeCommand, local, stream.remote, answer))
            return false;
    }
    return true;
}

DeviceEmulator::DeviceEmulator(Kind kind)
    : m_kind(kind)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listener < 0 || bind(m_listener, plain, length) != 0 || listen(m_listener, 4) != 0
        || getsockname(m_listener, plain, &length) != 0 || pipe2(m_wakeUp.data(), O_CLOEXEC) != 0)
        qFatal("the device emulator finds no port");
    m_port = ntohs(address.sin_port);

    maskChildSignal(SIG_BLOCK);
    m_thread = std::thread([this] { serve(); });
    maskChildSignal(SIG_UNBLOCK);
}

DeviceEmulator::~DeviceEmulator()
{
    drop();
    close(m_wakeUp[0]);
    close(m_wakeUp[1]);
}

void DeviceEmulator::drop()
{
    if (!m_thread.joinable())
        return;
    const char byte = 0;
    if (write(m_wakeUp[1], &byte, 1) != 1)
        qFatal("the device emulator cannot be stopped");
    m_thread.join();
    if (m_listener >= 0)
        close(m_listener);
}

void DeviceEmulator::serve()
{
    while (true) {
        std::array<pollfd, 2> sources{{{m_listener, POLLIN, 0}, {m_wakeUp[0], POLLIN, 0}}};
        if (poll(sources.data(), sources.size(), -1) < 0 || sources[1].revents != 0)
            return;
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        Session session(*this, socket);
        while (session.handlePacket()) { }
        close(socket);
        if (session.isGone()) {
            close(std::exchange(m_listener, -1));
            return;
        }
    }
}

QString DeviceEmulator::serial() const
{
    return QStringLiteral("127.0.0.1:%1").arg(m_port);
}

DeviceEmulator::Answers DeviceEmulator::answers() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_answers;
}

void DeviceEmulator::setAnswers(const Answers& answers)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_answers = answers;
}

QByteArrayList DeviceEmulator::services() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QByteArrayList list;
    for (const std::string& service : m_services)
        list.append(bytes(service));
    return list;
}

qint64 DeviceEmulator::receivedSize() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_receivedSize;
}

QByteArray DeviceEmulator::receivedHash() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return bytes(m_receivedHash);
}
