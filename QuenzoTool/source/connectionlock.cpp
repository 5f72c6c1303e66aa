// SPDX-License-Identifier: MIT
#include "connectionlock.h"

namespace {

// Never destroyed: the worker may still be at a statement while the process leaves main.
std::recursive_mutex& connectionMutex()
{
    static auto& mutex = *new std::recursive_mutex;
    return mutex;
}

} // namespace

ConnectionLock::ConnectionLock()
    : m_lock(connectionMutex())
{
}
