// SPDX-License-Identifier: MIT
#ifndef HELPERTHREAD_H
#define HELPERTHREAD_H

#include <functional>
#include <thread>

/**
 * Starts a thread that takes none of the host's signals: these are handled on the host's threads.
 *
 * @return one that is not joinable when the system has no further thread to give
 */
std::thread startHelperThread(const std::function<void()>& work);

#endif
