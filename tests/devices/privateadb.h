// SPDX-License-Identifier: MIT
#ifndef PRIVATEADB_H
#define PRIVATEADB_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class DeviceEmulator;

/**
 * The system's adb with a server, keys and logs of its own, while the object lives: the environment of this
 * process leads every adb that it starts there. The server of the machine, on the usual port, is never
 * touched.
 */
class PrivateAdb {
public:
    PrivateAdb();
    ~PrivateAdb();
    PrivateAdb(const PrivateAdb&) = delete;
    PrivateAdb& operator=(const PrivateAdb&) = delete;

    /** The program's path; empty when there is none. */
    static QString program();

    /** Starts the server; false when it does not start. It ends with this process, whatever that ends by. */
    bool start();
    void stop();

    /** Runs the program; the text is what it printed on both streams. */
    QByteArray run(const QStringList& arguments) const;

    /** The lines of the device list. */
    QStringList devices() const;

    /** Connects to an emulator and waits until the list shows it in the state. */
    bool connectTo(const DeviceEmulator& device, const QString& state = QStringLiteral("device")) const;
    bool waitFor(const DeviceEmulator& device, const QString& state) const;
    void disconnectAll() const;

private:
    class Server : public QProcess {
    protected:
        void setupChildProcess() override;
    };

    QTemporaryDir m_home;
    quint16 m_port;
    Server m_server;
};

#endif
