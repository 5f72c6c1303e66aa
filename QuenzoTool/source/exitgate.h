// SPDX-License-Identifier: MIT
#ifndef EXITGATE_H
#define EXITGATE_H

/**
 * Keeps a worker that never ends away from what the process destroys when it leaves main: at exit the step at
 * work is waited for, and no other one begins.
 */
namespace ExitGate {

/**
 * Registers with the process's exit. What is destroyed at exit is destroyed in the reverse order of its
 * making, so this comes after whatever the steps use was made; it may be called again when there is more of
 * it.
 */
void arm();

/** One step of a worker, on the thread that makes it. */
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
