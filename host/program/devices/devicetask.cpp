// SPDX-License-Identifier: MIT
#include "devices/devicetask.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "console/interruptguard.h"
#include "console/progress.h"
#include "console/spinner.h"
#include "devices/devicewords.h"

#include <installapk.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace {

struct DeviceTaskText {
    Q_DECLARE_TR_FUNCTIONS(DeviceTask)
};

void tellInterruption(const DeviceTask& task, Console& console)
{
    console.clearProgress();
    const QStringList steps = Diagnostics::steps();
    if (steps.isEmpty())
        console.error({Failure::Interrupted,
                       DeviceTaskText::tr("interrupted; nothing was changed on %1").arg(task.serial)});
    else
        console.error(
            {Failure::Interrupted,
             DeviceTaskText::tr("interrupted on %1. The last of these may be done or not:").arg(task.serial),
             steps});
    // The end comes by the signal, without a way back.
    console.finish(false);
}

// The launcher gives its report before we stop listening, in the second step of an install as well.
void limitAdb(qint64 seconds)
{
    qputenv("QUENZO_ADB_TIMEOUT", QByteArray::number(qMax<qint64>(1, seconds)));
}

} // namespace

TaskOutcome runDeviceTask(const DeviceTask& task, Console& console)
{
    constexpr int intervalMs = 120;
    constexpr int graceMs = 3000;
    const QString text =
        task.install ? DeviceTaskText::tr("installing on %1") : DeviceTaskText::tr("uninstalling from %1");
    // With one device left the flow names none: then this keeps adb from another that has come in its place.
    qputenv("ANDROID_SERIAL", task.serial.toUtf8());

    TaskOutcome outcome;
    outcome.timedOut = true;
    QEventLoop loop;
    CInstallApk* const installer = CInstallApk::getInstance();
    QObject::connect(
        installer, &CInstallApk::onResult, &loop,
        [&](bool success, const QString& information, const QString& errorKey) {
            outcome = {success, false, information, errorKey};
            loop.quit();
        },
        Qt::QueuedConnection);
    QObject::connect(
        installer, &CInstallApk::onGetMulitDevices, &loop,
        [&] { installer->onSelectDeviceFinish(DeviceWords::asOneWord(task.serial)); }, Qt::QueuedConnection);

    QElapsedTimer elapsed;
    elapsed.start();
    QTimer ticker;
    const auto tick = [&] { limitAdb(task.timeoutSeconds - elapsed.elapsed() / 1000); };
    QObject::connect(&ticker, &QTimer::timeout, &loop, tick);
    ticker.start(intervalMs);
    tick();
    const Spinner spinner(console, [&] { return Progress{text.arg(task.serial)}; });

    installer->startTask(task.apk, task.install);
    // Not before: the start blocks on questions, at which an interruption is to end the program at once.
    const InterruptGuard guard([&] { tellInterruption(task, console); });
    const qint64 left = task.timeoutSeconds * qint64(1000) + graceMs - elapsed.elapsed();
    QTimer::singleShot(int(qMax<qint64>(0, left)), &loop, &QEventLoop::quit);
    loop.exec();
    return outcome;
}
