// SPDX-License-Identifier: MIT
#ifndef CONNECTIONLOCK_H
#define CONNECTIONLOCK_H

/**
 * Holds the one connection for the scope of a statement: the driver opens it without locks of its own, and
 * keeps a list of its results that each query changes.
 *
 * Re-entrant and fair: a thread that waits is the next one, so that a direct statement waits for one row of a
 * long list at most. Never held while a signal is emitted or a message is written, since their receivers may
 * wait for another thread's statement.
 */
class ConnectionLock {
public:
    ConnectionLock();
    ~ConnectionLock();
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;
};

#endif
