// SPDX-License-Identifier: MIT
#ifndef INTERRUPTGUARD_H
#define INTERRUPTGUARD_H

#include <QTimer>
#include <QVector>

#include <csignal>
#include <functional>

/**
 * While it lives, a signal that would end the program is held back until something has been put in order;
 * then the program ends by it. Held back is every signal that can wait: no fault of the program's own, and
 * none that merely stops it. To be made before the threads that shall not receive the signal, and with a
 * running event loop. Of several the youngest puts in order first. The programs that are started meanwhile
 * get every signal.
 */
class InterruptGuard {
public:
    explicit InterruptGuard(std::function<void()> putInOrder, const QVector<int>& numbers = endings());
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /** Every signal that ends a program and can wait. */
    static QVector<int> endings();

private:
    void look();

    const std::function<void()> m_putInOrder;
    const QVector<int> m_numbers;
    sigset_t m_signals{};
    sigset_t m_before{};
    QTimer m_timer;
};

/**
 * While it lives, an InterruptGuard made after it keeps its signals waiting: work of several steps ends
 * behind the one at hand. Whoever has made it asks between the steps, and lets it go.
 */
class InterruptHold {
public:
    InterruptHold();
    ~InterruptHold();
    InterruptHold(const InterruptHold&) = delete;
    InterruptHold& operator=(const InterruptHold&) = delete;

    /** Whether a signal of a person, or of the system that ends its programs, is waiting. */
    bool isInterrupted() const;

private:
    sigset_t m_before{};
};

#endif
