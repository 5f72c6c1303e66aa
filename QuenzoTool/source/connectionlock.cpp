// SPDX-License-Identifier: MIT
#include "connectionlock.h"

#include <mutex>

namespace {

struct Mutexes {
    std::mutex turn; // held by the thread that is next
    std::mutex connection;
};

// Never destroyed: the worker may still be at a statement while the process leaves main.
Mutexes& mutexes()
{
    static auto& instance = *new Mutexes;
    return instance;
}

thread_local int ownLocks = 0;

} // namespace

ConnectionLock::ConnectionLock()
{
    if (ownLocks++ > 0)
        return;
    const std::lock_guard<std::mutex> turn(mutexes().turn);
    mutexes().connection.lock();
}

ConnectionLock::~ConnectionLock()
{
    if (--ownLocks == 0)
        mutexes().connection.unlock();
}
