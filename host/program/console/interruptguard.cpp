// SPDX-License-Identifier: MIT
#include "console/interruptguard.h"

#include <atomic>
#include <pthread.h>
#include <utility>

namespace {

// One that is ignored, as under nohup, is to stay ignored, but would be seen once it is held back.
bool isIgnored(int signal)
{
    struct sigaction action { };
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Those alive, the oldest first.
QVector<InterruptGuard*>& guards()
{
    static QVector<InterruptGuard*> all;
    return all;
}

sigset_t outside; // what was blocked before the oldest
std::atomic<bool> guarded{false}; // whether there is any
int holds = 0; // of those signals that a step under way must not see

void setMaskFromOutside()
{
    pthread_sigmask(SIG_SETMASK, &outside, nullptr);
}

// What a worker starts would inherit what is held back, and be deaf to it for ever.
void freeChildren()
{
    static const int registered = pthread_atfork(nullptr, nullptr, [] {
        if (guarded)
            setMaskFromOutside();
    });
    Q_UNUSED(registered)
}

} // namespace

QVector<int> InterruptGuard::endings()
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

InterruptGuard::InterruptGuard(std::function<void()> putInOrder, const QVector<int>& numbers)
    : m_putInOrder(std::move(putInOrder))
    , m_numbers(numbers)
{
    freeChildren();
    sigemptyset(&m_signals);
    for (const int signal : m_numbers) {
        if (!isIgnored(signal))
            sigaddset(&m_signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    if (guards().isEmpty() && holds == 0)
        outside = m_before;
    guards().append(this);
    guarded = true;
    constexpr int intervalMs = 50;
    QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
    m_timer.start(intervalMs);
}

InterruptGuard::~InterruptGuard()
{
    look();
    guards().removeLast();
    guarded = holds > 0 || !guards().isEmpty();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void InterruptGuard::look()
{
    if (holds > 0)
        return;
    sigset_t pending{};
    sigpending(&pending);
    for (const int signal : m_numbers) {
        if (sigismember(&m_signals, signal) != 1 || sigismember(&pending, signal) != 1)
            continue;
        for (auto guard = guards().crbegin(); guard != guards().crend(); ++guard)
            (*guard)->m_putInOrder();
        // The signal waits, and takes its course.
        setMaskFromOutside();
    }
}

InterruptHold::InterruptHold()
{
    freeChildren();
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal))
            sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    if (guards().isEmpty())
        outside = m_before;
    guarded = true;
    ++holds;
}

InterruptHold::~InterruptHold()
{
    --holds;
    guarded = holds > 0 || !guards().isEmpty();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

bool InterruptHold::isInterrupted() const
{
    sigset_t pending{};
    sigpending(&pending);
    return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1
        || sigismember(&pending, SIGHUP) == 1;
}
