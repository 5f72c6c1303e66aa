// SPDX-License-Identifier: MIT
#ifndef DEVICEWORK_H
#define DEVICEWORK_H

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

/**
 * Installs and uninstalls with a CInstallApk of its own, on a thread beside the window: what it asks the
 * tools blocks the thread that it lives on.
 */
class DeviceWork : public QObject {
    Q_OBJECT

public:
    struct Task {
        QString apk; ///< absolute path
        bool install = true;
        QString serial;
    };

    using QObject::QObject;
    /** Waits for the work at hand, which knows no other end. */
    ~DeviceWork() override;

    bool isAtWork() const { return m_thread != nullptr; }

    /** Reads the name of the package that an APK holds. */
    void readPackage(const QString& apk);

    /** Begins a task; the package's data on the device go with it. */
    void begin(const Task& task);

Q_SIGNALS:
    /** One of the two is empty. */
    void packageRead(const QString& package, const QString& fault);

    /** @param text sentences for the person */
    void ended(bool success, const QString& text);

private:
    void run(const std::function<void()>& work, const std::function<void()>& finished);

    std::unique_ptr<QThread> m_thread;
};

#endif
