// SPDX-License-Identifier: MIT
#include "console/interruptguard.h"

#include <pthread.h>
#include <utility>

namespace {

// One that is ignored, as under nohup, is to stay ignored, but would be seen once it is held back.
bool isIgnored(int signal)
{
    struct sigaction action { };
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

QVector<int> endings()
{
    QVector<int> all{SIGINT,  SIGTERM, SIGHUP,  SIGQUIT,   SIGALRM, SIGUSR1,
                     SIGUSR2, SIGPIPE, SIGPROF, SIGVTALRM, SIGXCPU, SIGXFSZ};
#ifdef __linux__
    all += {SIGIO, SIGPWR, SIGSTKFLT};
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal)
        all.append(signal);
#endif
    return all;
}

} // namespace

InterruptGuard::InterruptGuard(std::function<void()> putInOrder)
    : m_putInOrder(std::move(putInOrder))
    , m_numbers(endings())
{
    sigemptyset(&m_signals);
    for (const int signal : m_numbers) {
        if (!isIgnored(signal))
            sigaddset(&m_signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    constexpr int intervalMs = 50;
    QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
    m_timer.start(intervalMs);
}

InterruptGuard::~InterruptGuard()
{
    look();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void InterruptGuard::look()
{
    sigset_t pending{};
    sigpending(&pending);
    for (const int signal : m_numbers) {
        if (sigismember(&m_signals, signal) != 1 || sigismember(&pending, signal) != 1)
            continue;
        m_putInOrder();
        // The signal waits, and takes its course.
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
}
