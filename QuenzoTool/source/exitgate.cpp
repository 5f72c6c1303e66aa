// SPDX-License-Identifier: MIT
#include "exitgate.h"

#include <QString>
#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace {

// Twice what the driver waits for a file that another process holds.
constexpr std::chrono::seconds exitPatience(10);

struct Gate {
    std::mutex mutex;
    std::condition_variable stepEnded;
    int steps = 0;
    bool ending = false;
};

// Never destroyed: workers look at it until the process is gone.
Gate& gate()
{
    static auto& instance = *new Gate;
    return instance;
}

// A slot that ends the process in the middle of a step must not wait for itself.
thread_local int ownSteps = 0;

void closeGate()
{
    std::unique_lock<std::mutex> lock(gate().mutex);
    gate().ending = true;
    gate().stepEnded.wait_for(lock, exitPatience, [] { return gate().steps == ownSteps; });
}

} // namespace

void ExitGate::arm()
{
    // Makes what Qt keeps for messages, so that it outlives the registration.
    Q_UNUSED(qFormatLogMessage(QtDebugMsg, QMessageLogContext(), QString()).toLocal8Bit())
    gate();
    std::atexit(closeGate);
}

ExitGate::Step::Step()
{
    std::unique_lock<std::mutex> lock(gate().mutex);
    while (gate().ending) {
        lock.unlock();
        std::this_thread::sleep_for(std::chrono::hours(1));
        lock.lock();
    }
    ++gate().steps;
    ++ownSteps;
}

ExitGate::Step::~Step()
{
    const std::lock_guard<std::mutex> guard(gate().mutex);
    --ownSteps;
    --gate().steps;
    gate().stepEnded.notify_all();
}
