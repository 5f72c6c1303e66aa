// SPDX-License-Identifier: MIT
#include "files/helperthread.h"

#include <system_error>

std::thread startHelperThread(const std::function<void()>& work)
{
    try {
        return std::thread(work);
    } catch (const std::system_error&) {
        return {};
    }
}
