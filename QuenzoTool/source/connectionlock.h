// SPDX-License-Identifier: MIT
#ifndef CONNECTIONLOCK_H
#define CONNECTIONLOCK_H

#include <mutex>

/**
 * Holds the one connection for the scope of a statement: the driver opens it without locks of its own, and
 * keeps a list of its results that each query changes.
 *
 * Re-entrant. Never held while a signal is emitted or a message is written, since their receivers may wait
 * for another thread's statement.
 */
class ConnectionLock {
public:
    ConnectionLock();

private:
    std::unique_lock<std::recursive_mutex> m_lock;
};

#endif
