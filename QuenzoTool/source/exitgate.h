// SPDX-License-Identifier: MIT
#ifndef EXITGATE_H
#define EXITGATE_H

#include <chrono>

/**
 * Keeps threads that are still at work away from what the process destroys when it leaves main: Qt's message
 * formatter, text codecs, connections.
 *
 * The gate is open until the process ends, and whoever passes it is counted. At exit it closes and waits, but
 * not for ever, until those within have left; meanwhile they may pass it once more, as does a script call in
 * a slot of the database worker. Whoever else comes to a closed gate, or leaves it, is held: what is
 * destroyed by then may be what comes next. A hold is limited, too, for the sake of exit handlers that wait
 * for a thread, and what is at work is held once. The thread that ends the process is never held.
 */
namespace ExitGate {

/**
 * Registers with the process's exit. What is destroyed at exit is destroyed in the reverse order of its
 * making, so this comes after whatever the steps use was made; it may be called again when there is more of
 * it.
 */
void arm();

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
