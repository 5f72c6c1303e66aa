// SPDX-License-Identifier: MIT
#ifndef DEVICELISTER_H
#define DEVICELISTER_H

#include "window/devices/devicelist.h"

#include <QProcess>
#include <QTimer>

/**
 * Asks adb for the devices in every state, beside the event loop.
 *
 * CInstallApk::getDeviceLs() knows only those that are ready, and cannot tell a person what is wrong with the
 * others.
 */
class DeviceLister : public QObject {
    Q_OBJECT

public:
    explicit DeviceLister(QObject* parent = nullptr);
    ~DeviceLister() override;

    /** Does nothing while a question is under way. */
    void ask();

    bool isAsking() const { return m_adb.state() != QProcess::NotRunning; }

Q_SIGNALS:
    void listed(const QVector<Device>& devices);
    void failed(const QString& sentence);

private:
    void finish(int code, QProcess::ExitStatus status);

    QProcess m_adb;
    QTimer m_patience;
};

#endif
