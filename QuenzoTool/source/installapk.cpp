// SPDX-License-Identifier: MIT
#include "installapk.h"

#include "devices/tooloutput.h"
#include "devices/toolprocess.h"
#include "messages.h"
#include "quenzotool.h"

#include <QFile>

#include <utility>

namespace {

QString quotedTool(const QString& name)
{
    return QLatin1Char('"') + QuenzoTool::getToolPath() + QLatin1Char('/') + name + QLatin1Char('"');
}

QString removal(const QString& apkPath)
{
    const QString package = CInstallApk::getApkPackageName(apkPath);
    qCInfo(devicesLog).noquote() << "removing the package" << package << "and its data";
    return QStringLiteral(" uninstall ") + package;
}

// A failure that reaches no host by a signal.
void tellUnclearEnd(const char* step, int exitCode, const QString& said)
{
    qCWarning(devicesLog).noquote().nospace() << "adb's " << step << " ended with code " << exitCode
                                              << ", without a code of the device: " << ToolOutput::gist(said);
}

} // namespace

CInstallApk* CInstallApk::singleInstance = nullptr;

CInstallApk* CInstallApk::getInstance()
{
    if (singleInstance == nullptr)
        singleInstance = new CInstallApk(nullptr);
    return singleInstance;
}

CInstallApk::CInstallApk(QObject* parent)
    : QObject(parent)
{
}

CInstallApk::~CInstallApk()
{
    if (m_process == nullptr)
        return;
    // A child that runs is left to its work and takes its own object along.
    if (m_process->state() == QProcess::NotRunning)
        m_process->deleteLater();
    else
        connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), m_process,
                &QObject::deleteLater);
}

void CInstallApk::startTask(QString apkPath, bool isInstall)
{
    if (!QFile::exists(apkPath)) {
        Q_EMIT onResult(false, tr("File not found!"), tr(""));
        return;
    }
    m_apkPath = apkPath;
    m_isInstall = isInstall;

    const QStringList serials = getDeviceLs();
    if (serials.isEmpty())
        Q_EMIT onResult(false, tr("Device unavailable!"), tr(""));
    else if (serials.size() > 1)
        Q_EMIT onGetMulitDevices(isInstall, serials);
    else if (isInstall)
        InstallReplace(QString());
    else
        UnInstall(QString());
}

QStringList CInstallApk::getDeviceLs()
{
    QString output;
    QString error;
    if (!QuenzoTool::runCmdWaitFinish(quotedTool(QStringLiteral("adb")) + QStringLiteral(" devices"), output,
                                      error))
        return {};
    if (!output.contains(QLatin1String("List of devices attached")))
        qCWarning(devicesLog).noquote() << "adb listed no devices:" << ToolOutput::gist(error + output);
    return ToolOutput::readySerials(output);
}

QString CInstallApk::getApkPackageName(QString apkPath)
{
    QString output;
    QString error;
    const QString command =
        quotedTool(QStringLiteral("aapt")) + QStringLiteral(" d badging \"") + apkPath + QLatin1Char('"');
    if (!QuenzoTool::runCmdWaitFinish(command, output, error))
        return {};
    QString name = ToolOutput::packageName(output);
    if (name.isEmpty())
        qCWarning(devicesLog).noquote()
            << "aapt named no package of" << apkPath + QLatin1Char(':') << ToolOutput::gist(error + output);
    return name;
}

void CInstallApk::onSelectDeviceFinish(QString str)
{
    if (str.isEmpty())
        Q_EMIT onResult(false, tr("Please select devices first!"), tr(""));
    else if (m_isInstall)
        InstallReplace(str);
    else
        UnInstall(str);
}

void CInstallApk::onInstallFinish(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (m_process == nullptr)
        return;
    const QString output = ToolOutput::text(m_process->readAll());
    const auto outcome = ToolOutput::installOutcome(output, exitStatus == QProcess::CrashExit);
    switch (outcome.kind) {
    case ToolOutput::InstallOutcome::Installed:
        Q_EMIT onResult(true, tr("Installation is complete!"), tr(""));
        break;
    case ToolOutput::InstallOutcome::Refused:
        Q_EMIT onResult(false, tr("Installation failed!"), outcome.code);
        break;
    case ToolOutput::InstallOutcome::Unclear:
        // Hosts hear nothing of a failure without a code, and rely on it.
        tellUnclearEnd("install", exitCode, ToolOutput::text(m_process->readAllStandardError()) + output);
        break;
    }
    if (m_process != nullptr)
        m_process->terminate();
    releaseChild();
}

void CInstallApk::onUnInstallFinish(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (m_process == nullptr)
        return;
    const QString error = ToolOutput::text(m_process->readAllStandardError());
    const QString output = ToolOutput::text(m_process->readAllStandardOutput());
    if (exitStatus == QProcess::CrashExit) {
        Q_EMIT onResult(false, error, tr(""));
    } else if (ToolOutput::uninstallFailed(output)) {
        Q_EMIT onResult(false, tr("Uninstallation failed (app may not exist)!"), tr(""));
    } else {
        // Hosts hear of a success, and rely on it.
        if (exitCode != 0)
            tellUnclearEnd("uninstall", exitCode, error + output);
        Q_EMIT onResult(true, tr("Uninstall successful!"), tr(""));
    }
    releaseChild();
}

void CInstallApk::onInstallReplaceFinish(int /*exitCode*/, QProcess::ExitStatus exitStatus)
{
    if (exitStatus == QProcess::CrashExit) {
        Q_EMIT onResult(
            false, m_process == nullptr ? QString() : ToolOutput::text(m_process->readAllStandardError()),
            tr(""));
        releaseChild();
        return;
    }
    releaseChild();
    Install(m_device);
}

void CInstallApk::Install(QString device)
{
    if (m_process != nullptr) {
        // Closing ends the child and would call the slot that releases it.
        m_process->disconnect(this);
        m_process->close();
        releaseChild();
    }
    qCInfo(devicesLog).noquote() << "installing" << m_apkPath;
    startChild(QStringLiteral(" install -r \"") + m_apkPath + QLatin1Char('"'), device,
               &CInstallApk::onInstallFinish);
}

void CInstallApk::InstallReplace(QString device)
{
    if (m_process != nullptr)
        return;
    m_device = device;
    startChild(removal(m_apkPath), device, &CInstallApk::onInstallReplaceFinish);
}

void CInstallApk::UnInstall(QString device)
{
    if (m_process != nullptr)
        return;
    startChild(removal(m_apkPath), device, &CInstallApk::onUnInstallFinish);
}

void CInstallApk::startChild(const QString& arguments, const QString& device, FinishedSlot slot)
{
    const QString serial = device.isEmpty() ? QString() : QStringLiteral(" -s ") + device;
    const QString command = quotedTool(QStringLiteral("adb")) + serial + arguments;

    auto* const child = new ToolProcess(ToolProcess::Shared);
    m_process = child;
    // Returns at once: the start is never waited for.
    child->waitForStarted(30000);
    child->begin(command);
    connect(child, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, slot);
}

// The child may be the sender of the slot at work, and ending a running one would call the slot again.
void CInstallApk::releaseChild()
{
    QProcess* const child = std::exchange(m_process, nullptr);
    if (child == nullptr)
        return;
    child->disconnect(this);
    if (child->state() != QProcess::NotRunning) {
        child->kill();
        child->waitForFinished();
    }
    child->deleteLater();
}
