// SPDX-License-Identifier: MIT
#ifndef WORKER_H
#define WORKER_H

#include <qglobal.h>

#include <functional>

class Console;
struct Progress;
QT_BEGIN_NAMESPACE
class QThread;
QT_END_NAMESPACE

/**
 * Starts a worker and lets the event loop run until it has finished, as a desktop host would.
 *
 * @param progress asked several times a second for what is shown meanwhile, if anything is
 * @param interrupted called before a signal of a person ends the program
 * @return false, with the error reported, when the system had no thread to give; nothing was done then
 */
bool runWorker(QThread& worker, Console& console, const std::function<Progress()>& progress,
               const std::function<void()>& interrupted = {});

#endif
