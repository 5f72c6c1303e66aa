// SPDX-License-Identifier: MIT
#ifndef CHILDSIGNAL_H
#define CHILDSIGNAL_H

#include <csignal>

/**
 * Blocks or admits, on this thread and those that it begins, the signal by which Qt takes ended children
 * away. Where only the thread of a test admits it, none vanishes between two looks of the test before Qt can
 * tell of it.
 */
inline void maskChildSignal(int how)
{
    sigset_t childSignal{};
    sigemptyset(&childSignal);
    sigaddset(&childSignal, SIGCHLD);
    pthread_sigmask(how, &childSignal, nullptr);
}

#endif
