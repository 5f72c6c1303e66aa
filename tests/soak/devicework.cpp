// SPDX-License-Identifier: MIT
#include "work.h"

#include "deviceemulator.h"
#include "privateadb.h"
#include "runroot.h"

#include <installapk.h>

#include <QFile>
#include <QStandardPaths>
#include <QTimer>

namespace {

class DeviceWork : public Work {
public:
    DeviceWork();

protected:
    void begin() override;

private:
    PrivateAdb m_adb;
    DeviceEmulator m_device{DeviceEmulator::Streaming};
    bool m_installs = false;
};

DeviceWork::DeviceWork()
    : Work("installations and removals")
{
    for (const char* name : {"adb", "aapt"}) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(name));
        if (!QFile::link(program, RunRoot::path() + QLatin1String("/tool/mac/") + QLatin1String(name)))
            qFatal("cannot link %s", name);
    }
    if (!m_adb.start() || !m_adb.connectTo(m_device))
        qFatal("the emulated device is not listed");
    const auto judge = [this](bool success, const QString& information) {
        end(success ? QString() : QStringLiteral("a device's task fails: ") + information);
    };
    // A child is released behind the slots of the report.
    connect(CInstallApk::getInstance(), &CInstallApk::onResult, this, judge, Qt::QueuedConnection);
}

void DeviceWork::begin()
{
    constexpr int pause = 100; // each query of the library blocks its thread, which serves the others, too
    m_installs = !m_installs;
    QTimer::singleShot(pause, this, [this] {
        CInstallApk::getInstance()->startTask(QStringLiteral(SAMPLE "/skyharbour.apk"), m_installs);
    });
}

} // namespace

std::unique_ptr<Work> deviceWork()
{
    return std::make_unique<DeviceWork>();
}
