// SPDX-License-Identifier: MIT
#include "window/devices/devicelister.h"

#include <quenzotool.h>

namespace {

constexpr int patienceMs = 30000;

} // namespace

DeviceLister::DeviceLister(QObject* parent)
    : QObject(parent)
{
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, &m_adb, &QProcess::kill);
    connect(&m_adb, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &DeviceLister::finish);
    connect(&m_adb, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        m_patience.stop();
        Q_EMIT failed(tr("The program adb cannot be started. Install it, and refresh the list.")
                      + QLatin1Char(' ') + m_adb.errorString());
    });
}

DeviceLister::~DeviceLister()
{
    disconnect(&m_adb, nullptr, this, nullptr);
    m_adb.kill();
    m_adb.waitForFinished(patienceMs);
}

void DeviceLister::ask()
{
    if (isAsking())
        return;
    m_patience.start(patienceMs);
    m_adb.start(QuenzoTool::getToolPath() + QStringLiteral("/adb"), {QStringLiteral("devices")},
                QIODevice::ReadOnly);
}

void DeviceLister::finish(int code, QProcess::ExitStatus status)
{
    const bool inTime = m_patience.isActive();
    m_patience.stop();
    const QString said = QString::fromUtf8(m_adb.readAllStandardError()).trimmed();
    if (status == QProcess::NormalExit && code == 0) {
        Q_EMIT listed(DeviceList::parse(QString::fromUtf8(m_adb.readAllStandardOutput())));
        return;
    }
    const QString failure = inTime ? tr("adb cannot list the devices.") : tr("adb does not answer.");
    Q_EMIT failed(failure + QLatin1Char(' ')
                  + (said.isEmpty() ? tr("Unplug the devices and refresh the list.") : said));
}
