// SPDX-License-Identifier: MIT
#ifndef TICKWATCH_H
#define TICKWATCH_H

#include <QtTest>

#include <ctime>

/**
 * How much the window's thread does between two ticks of a timer, at most, while the object lives.
 *
 * Work is what counts, and not the time that passes: a busy machine lets the thread wait, which is no fault
 * of the window's.
 */
class TickWatch : public QObject {
public:
    TickWatch()
        : m_last(workSoFar())
    {
        m_clock.start();
        startTimer(1, Qt::PreciseTimer);
    }

    int ticks() const { return m_ticks; }
    qint64 longestMs() const { return m_longest / nanosecondsInMs; }

    /** What a failure says. */
    QByteArray figures() const
    {
        return QStringLiteral("%1 ticks, at most %2 ms of work and %3 ms between two of them")
            .arg(m_ticks)
            .arg(longestMs())
            .arg(m_longestGap)
            .toUtf8();
    }

    static constexpr qint64 mostMs = 50;

    /** Not judged under a sanitizer, which climbs the whole stack at each allocation: that is work of its
     * own. */
    bool isWithin(qint64 most = mostMs) const
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        Q_UNUSED(most)
        return true;
#else
        return longestMs() <= most;
#endif
    }

private:
    static constexpr qint64 nanosecondsInMs = 1000000;

    static qint64 workSoFar()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return qint64(time.tv_sec) * 1000 * nanosecondsInMs + time.tv_nsec;
    }

    void timerEvent(QTimerEvent* /*event*/) override
    {
        const qint64 now = workSoFar();
        m_longest = qMax(m_longest, now - m_last);
        m_longestGap = qMax(m_longestGap, m_clock.restart());
        m_last = now;
        ++m_ticks;
    }

    qint64 m_last;
    qint64 m_longest = 0;
    qint64 m_longestGap = 0;
    QElapsedTimer m_clock;
    int m_ticks = 0;
};

#endif
