// SPDX-License-Identifier: MIT
#include "records/connectionlock.h"

#include <atomic>
#include <mutex>

namespace {

struct Mutexes {
    std::mutex turn; // held by the one that is next among those who wait
    std::atomic<bool> awaited{false}; // by the one that has the turn
    std::mutex connection;
};

// Never destroyed: the worker may still be at a statement while the process leaves main.
Mutexes& mutexes()
{
    static auto& instance = *new Mutexes;
    return instance;
}

thread_local int ownLocks = 0;

void lockInTurn(Mutexes& shared)
{
    if (!shared.awaited.load(std::memory_order_relaxed) && shared.connection.try_lock())
        return;
    const std::lock_guard<std::mutex> turn(shared.turn);
    shared.awaited.store(true, std::memory_order_relaxed);
    shared.connection.lock();
    shared.awaited.store(false, std::memory_order_relaxed);
}

} // namespace

ConnectionLock::ConnectionLock()
{
    if (ownLocks++ == 0)
        lockInTurn(mutexes());
}

ConnectionLock::~ConnectionLock()
{
    if (--ownLocks == 0)
        mutexes().connection.unlock();
}

bool ConnectionLock::isAwaited() const
{
    return ownLocks == 1 && mutexes().awaited.load(std::memory_order_relaxed);
}

void ConnectionLock::giveWay()
{
    mutexes().connection.unlock();
    lockInTurn(mutexes());
}
