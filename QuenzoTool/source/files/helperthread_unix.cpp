// SPDX-License-Identifier: MIT
#include "files/helperthread.h"

#include <csignal>
#include <system_error>

namespace {

// A new thread begins with the signals blocked that its maker has blocked.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all{};
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

std::thread startHelperThread(const std::function<void()>& work)
{
    const SignalsBlocked blocked;
    try {
        return std::thread(work);
    } catch (const std::system_error&) {
        return {};
    }
}
