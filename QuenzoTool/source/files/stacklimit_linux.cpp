// SPDX-License-Identifier: MIT
#include "files/stacklimit.h"

#include <algorithm>
#include <cstdint>
#include <pthread.h>

namespace {

// The lowest address that a walk may come to: the stack grows downwards, and messages take some of it.
std::uintptr_t lowestAddress()
{
    constexpr std::size_t reserve = 64U << 10U;
    pthread_attr_t attributes{};
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return 0;
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<std::uintptr_t>(lowest) + std::min(reserve, size / 2);
}

} // namespace

bool isStackNearlyUsedUp()
{
    thread_local const std::uintptr_t lowest = lowestAddress();
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) < lowest;
}
