// SPDX-License-Identifier: MIT
#ifndef CONNECTIONLOCK_H
#define CONNECTIONLOCK_H

/**
 * Holds the one connection for the scope of a statement: the driver opens it without locks of its own, and
 * keeps a list of its results that each query changes.
 *
 * Re-entrant and fair: a thread that waits is the next one, and a long list asks for such a thread before
 * each row, so that a direct statement waits for one row at most. Never held while a signal is emitted or a
 * message is written, since their receivers may wait for another thread's statement.
 */
class ConnectionLock {
public:
    ConnectionLock();
    ~ConnectionLock();
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

    /** Whether another thread waits that can have its turn now. */
    bool isAwaited() const;

    /** Lets the thread that waits have its turn. */
    void giveWay();
};

#endif
