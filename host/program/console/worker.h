// SPDX-License-Identifier: MIT
#ifndef WORKER_H
#define WORKER_H

#include <QString>

#include <functional>

class Console;
class QThread;

/**
 * Starts a worker and lets the event loop run until it has finished, as a desktop host would.
 *
 * @param progress asked several times a second for what a terminal shows, if there is one; its result follows
 * a turning sign
 * @return false, with the error reported, when the system had no thread to give; nothing was done then
 */
bool runWorker(QThread& worker, Console& console, const std::function<QString()>& progress);

#endif
