// SPDX-License-Identifier: MIT
#ifndef DEVICETASK_H
#define DEVICETASK_H

#include <QString>

class Console;

struct DeviceTask {
    QString apk; ///< absolute path
    bool install = true;
    QString serial;
    int timeoutSeconds = 0;
};

struct TaskOutcome {
    bool success = false;
    bool timedOut = false; ///< nothing was reported in time
    QString information;
    QString errorKey;
};

/** Runs the library's flow on exactly this device, with a turning sign on a terminal, until it reports. */
TaskOutcome runDeviceTask(const DeviceTask& task, Console& console);

#endif
