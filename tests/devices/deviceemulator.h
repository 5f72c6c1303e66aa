// SPDX-License-Identifier: MIT
#ifndef DEVICEEMULATOR_H
#define DEVICEEMULATOR_H

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <array>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/**
 * A device on a loopback port that speaks enough of adb's device protocol to take an APK, with or without
 * streaming, and to remove a package. It keeps no packages: it answers as told. Works on a thread of its own.
 */
class DeviceEmulator {
public:
    enum Kind {
        Streaming, ///< Android 7 and later: `cmd package`, exit codes of the shell
        Pushing, ///< before: the file is pushed, `pm` prints into one stream and its exit code is lost
        Unauthorized ///< never accepts the computer's key
    };

    // Plain texts: shared ones would pass between threads through counters that the thread sanitizer cannot
    // see.
    struct Answers {
        std::string install = "Success\n";
        std::string uninstall = "Success\n";
        std::string uninstallError; ///< on the shell's error stream, where there is one
        int uninstallCode = 0;
        std::string pushFailure; ///< refuses a pushed file with this text
        qint64 dropAfter = -1; ///< bytes of the file, after which the device is gone
        bool dropAtUninstall = false; ///< gone once the shell is open
    };

    explicit DeviceEmulator(Kind kind);
    ~DeviceEmulator();
    DeviceEmulator(const DeviceEmulator&) = delete;
    DeviceEmulator& operator=(const DeviceEmulator&) = delete;

    /** What `adb connect` takes and `adb devices` shows. */
    QString serial() const;

    void setAnswers(const Answers& answers);

    /** Ends the connection and takes no further one. */
    void drop();

    /** The services that were opened, but for those that adb opens on its own account. */
    QByteArrayList services() const;

    /** Size and SHA-1 of the last file that arrived. */
    qint64 receivedSize() const;
    QByteArray receivedHash() const;

private:
    class Session;

    void serve();
    Answers answers() const;

    const Kind m_kind;
    int m_listener = -1;
    std::array<int, 2> m_wakeUp{-1, -1};
    quint16 m_port = 0;
    mutable std::mutex m_mutex;
    Answers m_answers;
    std::vector<std::string> m_services;
    qint64 m_receivedSize = 0;
    std::string m_receivedHash;
    std::thread m_thread;
};

#endif
