// SPDX-License-Identifier: MIT
#ifndef INSTALLAPK_H
#define INSTALLAPK_H

#include "quenzotool_export.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

/**
 * Installs an APK on an Android device, or removes its package, through the programs `adb` and `aapt` of the
 * tool folder.
 *
 * An install always removes the installed package with its data first, and then installs the file. There is
 * no way back: when the device refuses the file, the earlier package and its data are gone.
 *
 * @code
 * auto* installer = CInstallApk::getInstance();
 * connect(installer, &CInstallApk::onResult, this, &Window::showOutcome, Qt::QueuedConnection);
 * connect(installer, &CInstallApk::onGetMulitDevices, this, &Window::askForDevice, Qt::QueuedConnection);
 * installer->startTask(apkPath, true);
 * // askForDevice ends in: CInstallApk::getInstance()->onSelectDeviceFinish(serial);
 * @endcode
 *
 * Threads: everything happens on the thread that first asks for the instance, which needs an event loop.
 * startTask() blocks it while the devices are listed and the package name is read, for up to 30 seconds each;
 * the rest runs beside the event loop, without a time limit of its own.
 *
 * What a host must know:
 * - Connect queued. A slot that is connected directly runs before the child process is released, so a task
 * begun in it finds a child present and does nothing.
 * - Not every end is reported. An install that fails without a code in brackets, and a child that cannot be
 * started, report nothing: a host needs a time limit of its own. After a child that could not be started,
 * removals and uninstalls do nothing until a subclass calls Install().
 * - A task begun while a child runs is not refused: nothing is started and nothing is reported, but an
 * install whose removal is still at work goes on with the new task's file.
 * - Command lines are one text that is split into words: a path must hold no quotation mark, and a serial
 * with a blank is to be handed over within quotation marks.
 * - A child that prints more than 64 MiB is ended, which counts as a crash.
 * - The package name is not checked: for a file that aapt cannot read, the removal is run without a name.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT CInstallApk : public QObject {
    Q_OBJECT

public:
    /**
     * The one instance of the process, made at the first call and never destroyed. The first call must not
     * come from two threads at once.
     */
    static CInstallApk* getInstance();

    CInstallApk(QObject* parent = nullptr);

    /** Does not stop a running child. */
    ~CInstallApk() override;

    /**
     * Begins a task on the only device; with several devices it asks through onGetMulitDevices() first.
     *
     * Reports through onResult() at once, before it returns, when the file does not exist or there is no
     * device.
     *
     * @param apkPath the APK file, on whose content the package name depends in both cases
     * @param isInstall true to install, false to uninstall
     */
    void startTask(QString apkPath, bool isInstall);

    /**
     * The serials of the attached devices that are ready, in adb's order; empty on every failure. Blocks the
     * calling thread for up to 30 seconds.
     *
     * A line is taken for a ready device by the word "device" in it, so a device that the user may not access
     * is listed when adb's explanation holds that word: its "serial" then holds a tab.
     */
    static QStringList getDeviceLs();

    /**
     * The package name that an APK declares; empty on failure. Blocks the calling thread for up to 30
     * seconds.
     *
     * @param apkPath the APK file
     */
    static QString getApkPackageName(QString apkPath);

Q_SIGNALS:
    /**
     * The outcome of a task.
     *
     * @param bSuccess whether the task succeeded. An uninstall counts as successful when adb printed no
     * failure, whatever else happened to it.
     * @param information what to tell the user, translated; or, when adb crashed, its own error text
     * @param errorKey the device's code for a refused install, INSTALL_FAILED_OLDER_SDK for example, or
     * empty. A device may add an explanation behind a colon.
     */
    void onResult(bool bSuccess, QString information, QString errorKey = tr(""));

    /**
     * Several devices are attached: the host lets the user choose one and calls onSelectDeviceFinish(). The
     * spelling is kept: hosts connect by it.
     *
     * @param isInstall whether the task is an install
     * @param lsDevice the serials, in adb's order
     */
    void onGetMulitDevices(bool isInstall, QStringList lsDevice);

public Q_SLOTS:
    /**
     * The answer to onGetMulitDevices(): continues the last task that startTask() began, whether it asked or
     * not.
     *
     * @param str the chosen serial, in quotation marks when it holds a blank; when empty, the task ends with
     * a report
     */
    void onSelectDeviceFinish(QString str);

    /** Reports how adb's install ended; called by the child. */
    void onInstallFinish(int exitCode, QProcess::ExitStatus exitStatus);

    /** Reports how adb's uninstall ended; called by the child. */
    void onUnInstallFinish(int exitCode, QProcess::ExitStatus exitStatus);

    /** Goes on to the install, whether there was a package to remove or not; called by the child. */
    void onInstallReplaceFinish(int exitCode, QProcess::ExitStatus exitStatus);

protected:
    /**
     * Installs the task's APK, in the place of a child that still runs.
     *
     * @param device the serial, or empty for the only device; the same for the next two
     */
    void Install(QString device);

    /** Removes the package and goes on to Install(). Does nothing while there is a child. */
    void InstallReplace(QString device);

    /** Removes the package. Does nothing while there is a child. */
    void UnInstall(QString device);

private:
    using FinishedSlot = void (CInstallApk::*)(int, QProcess::ExitStatus);

    void startChild(const QString& arguments, const QString& device, FinishedSlot slot);
    void releaseChild();

    static CInstallApk* singleInstance;

    QString m_apkPath;
    bool m_isInstall = false;
    QProcess* m_process = nullptr;
    QString m_device;
};

#endif
