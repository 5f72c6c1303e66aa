// SPDX-License-Identifier: MIT
#include "records/connectionlock.h"

#include <atomic>
#include <mutex>

namespace {

struct Mutexes {
    std::atomic<int> waiting{0};
    std::mutex turn; // held by the one that is next among those who wait
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
    if (shared.waiting.load(std::memory_order_relaxed) == 0 && shared.connection.try_lock())
        return;
    shared.waiting.fetch_add(1, std::memory_order_relaxed);
    const std::lock_guard<std::mutex> turn(shared.turn);
    shared.connection.lock();
    shared.waiting.fetch_sub(1, std::memory_order_relaxed);
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
    return ownLocks == 1 && mutexes().waiting.load(std::memory_order_relaxed) > 0;
}

void ConnectionLock::giveWay()
{
    mutexes().connection.unlock();
    lockInTurn(mutexes());
}
