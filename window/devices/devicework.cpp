// SPDX-License-Identifier: MIT
#include "window/devices/devicework.h"

#include "devices/devicewords.h"
#include "devices/installerrors.h"
#include "devices/toolcheck.h"

#include <installapk.h>

#include <QEventLoop>
#include <QTimer>

namespace {

// Two commands of adb, a removal and an install, have each about half of it.
constexpr int limitSeconds = 600;
constexpr int commandSeconds = 280;

struct Package {
    QString name;
    QString fault;
};

struct Outcome {
    bool isReported = false;
    bool success = false;
    QString information;
    QString errorKey;
};

Package packageOf(const QString& apk)
{
    const QString problem = toolProblem(QStringLiteral("aapt"));
    if (!problem.isEmpty())
        return {{}, problem};
    const QString name = CInstallApk::getApkPackageName(apk);
    if (name.isEmpty())
        return {{}, DeviceWork::tr("No package name is found in %1. Choose an APK that is whole.").arg(apk)};
    if (!DeviceWords::isPackageName(name))
        return {{}, DeviceWork::tr("\"%1\" cannot be the name of a package. Choose another APK.").arg(name)};
    return {name, {}};
}

Outcome outcomeOf(const DeviceWork::Task& task)
{
    Outcome outcome;
    CInstallApk installer;
    QEventLoop loop;
    QObject::connect(
        &installer, &CInstallApk::onResult, &loop,
        [&](bool success, const QString& information, const QString& errorKey) {
            outcome = {true, success, information, errorKey};
            loop.quit();
        },
        Qt::QueuedConnection);
    // Asked when several are ready; with one alone adb is led to it by the environment.
    QObject::connect(
        &installer, &CInstallApk::onGetMulitDevices, &loop,
        [&] { installer.onSelectDeviceFinish(DeviceWords::asOneWord(task.serial)); }, Qt::QueuedConnection);
    QTimer::singleShot(limitSeconds * 1000, &loop, &QEventLoop::quit);
    installer.startTask(task.apk, task.install);
    loop.exec();
    return outcome;
}

QString textOf(const Outcome& outcome)
{
    if (!outcome.isReported)
        return DeviceWork::tr(
                   "adb has reported nothing within %1 minutes. Look at the device, and plug it in again.")
            .arg(limitSeconds / 60);
    QString text = outcome.information.trimmed();
    if (!outcome.errorKey.isEmpty())
        text += QStringLiteral(" %1 (%2)")
                    .arg(InstallErrors::sentence(outcome.errorKey), InstallErrors::code(outcome.errorKey));
    return text.isEmpty() ? DeviceWork::tr("adb crashed without a word. Plug the device in again and repeat.")
                          : text;
}

} // namespace

DeviceWork::~DeviceWork()
{
    if (!m_thread)
        return;
    m_thread->disconnect(this);
    m_thread->wait();
}

void DeviceWork::run(const std::function<void()>& work, const std::function<void()>& finished)
{
    m_thread.reset(QThread::create(work));
    connect(m_thread.get(), &QThread::finished, this, [this, finished] {
        m_thread->wait();
        m_thread.reset();
        finished();
    });
    m_thread->start();
}

void DeviceWork::readPackage(const QString& apk)
{
    auto package = std::make_shared<Package>();
    run([package, apk] { *package = packageOf(apk); },
        [this, package] { Q_EMIT packageRead(package->name, package->fault); });
}

void DeviceWork::begin(const Task& task)
{
    // Set here, where all other programs are started, too: environments are not for several threads at once.
    qputenv("ANDROID_SERIAL", task.serial.toUtf8());
    qputenv("QUENZO_ADB_TIMEOUT", QByteArray::number(commandSeconds));
    auto outcome = std::make_shared<Outcome>();
    run([outcome, task] { *outcome = outcomeOf(task); },
        [this, outcome] {
            qunsetenv("ANDROID_SERIAL");
            Q_EMIT ended(outcome->success, textOf(*outcome));
        });
}
