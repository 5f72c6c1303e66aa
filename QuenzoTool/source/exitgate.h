// SPDX-License-Identifier: MIT
#ifndef EXITGATE_H
#define EXITGATE_H

/**
 * Keeps threads that are still at work away from what the process destroys when it leaves main: Qt's message
 * formatter, text codecs, connections.
 *
 * The gate is open until the process ends, and whoever passes it is counted. At exit it closes and waits, but
 * not for ever, until those within have left; meanwhile they may pass it once more, as does a script call in
 * a slot of the database worker. Whoever else comes to a closed gate, or leaves it, is held: what is
 * destroyed by then may be what comes next. A hold is limited, too, for the sake of exit handlers that wait
 * for a thread. The thread that ends the process is never held.
 */
namespace ExitGate {

/**
 * Registers with the process's exit. What is destroyed at exit is destroyed in the reverse order of its
 * making, so this comes after whatever the steps use was made; it may be called again when there is more of
 * it.
 */
void arm();

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
