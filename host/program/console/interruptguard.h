// SPDX-License-Identifier: MIT
#ifndef INTERRUPTGUARD_H
#define INTERRUPTGUARD_H

#include <QTimer>
#include <QVector>

#include <csignal>
#include <functional>

/**
 * While it lives, a signal that would end the program is held back until something has been put in order;
 * then the program ends by it. To be made before the threads that shall not receive the signal, and with a
 * running event loop.
 */
class InterruptGuard {
public:
    /** Requests are what a person or a system sends; programs that are started meanwhile hold them back, too.
     */
    enum Signals { Requests, Endings };

    explicit InterruptGuard(std::function<void()> putInOrder, Signals held = Requests);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void look();

    const std::function<void()> m_putInOrder;
    const QVector<int> m_numbers;
    sigset_t m_signals{};
    sigset_t m_before{};
    QTimer m_timer;
};

#endif
