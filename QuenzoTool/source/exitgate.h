// SPDX-License-Identifier: MIT
#ifndef EXITGATE_H
#define EXITGATE_H

#include <chrono>

/**
 * Keeps threads that are still at work away from what the process destroys when it leaves main: Qt's message
 * formatter, text codecs, connections.
 *
 * Its life:
 * 1. It is open from the beginning, and whoever passes it is counted.
 * 2. Each kind of work arms it, once. What is destroyed at exit goes in the reverse order of its making, and
 *    handlers take part in that order: the kind arms the gate when what its work uses has been made, so that
 *    the gate closes before the first of it goes. Kinds begin at different times, hence the several handlers.
 * 3. The process ends, and the latest handler closes the gate. It waits, but not for ever, until those within
 *    have left; meanwhile they may pass once more, as does a script call in a slot of the database worker.
 * 4. It is left. What a kind does lastly is done when its own handler's turn comes. Whoever comes to the gate
 *    from now on, or leaves it, is held: what is destroyed by then may be what comes next. A hold is limited,
 *    too, for the sake of exit handlers that wait for a thread, and what is at work is held once. The thread
 *    that ends the process is never held.
 */
namespace ExitGate {

enum Work {
    Scripts, ///< calls into the interpreter
    Queue, ///< the database worker, which may begin before there is a connection
    Connection, ///< statements on one that is open
    WorkCount
};

/**
 * To be called when what a kind of work uses has been made; the first call for a kind counts.
 *
 * @param lastly done behind the closed gate, by the thread that ends the process
 */
void arm(Work work, void (*lastly)() = nullptr);

/** Has threads held by @p hold, which waits as long as it is told, instead of a mere sleep. */
void setHold(void (*hold)(std::chrono::seconds));

/** One call of a host, on the thread that makes it. To be looked at before anything is done. */
class Call {
public:
    Call();
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /** False when the process is ending: the call is to do nothing. */
    bool mayGoOn() const { return m_entered; }

private:
    bool m_entered;
};

/**
 * A stretch within the calls of this thread that touches nothing of what is destroyed, such as the run of a
 * script: the process does not wait for it, and holds the thread at its end. In a worker's step, which is
 * waited for as a whole, and on a thread without calls it does nothing.
 */
class Outside {
public:
    Outside();
    ~Outside();
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

private:
    int m_calls;
};

/** One step of a worker that has no end of its own, on the thread that makes it. */
class Step {
public:
    /** Does not return once the process is ending. */
    Step();
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
};

} // namespace ExitGate

#endif
