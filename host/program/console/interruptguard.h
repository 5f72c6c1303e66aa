// SPDX-License-Identifier: MIT
#ifndef INTERRUPTGUARD_H
#define INTERRUPTGUARD_H

#include <QTimer>

#include <csignal>
#include <functional>

/**
 * While it lives, a signal that would end the program is held back until something has been put in order;
 * then the program ends by it. To be made before the threads that shall not receive the signal, and with a
 * running event loop.
 */
class InterruptGuard {
public:
    explicit InterruptGuard(std::function<void()> putInOrder);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void look();

    const std::function<void()> m_putInOrder;
    sigset_t m_signals{};
    sigset_t m_before{};
    QTimer m_timer;
};

#endif
