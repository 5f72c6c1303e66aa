// SPDX-License-Identifier: MIT
#include "exitgate.h"

#include "messages.h"

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
    enum { Open, Closing, Left } state = Open;
    std::thread::id endingThread;
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
    if (gate().state != Gate::Open)
        return;
    gate().state = Gate::Closing;
    gate().endingThread = std::this_thread::get_id();
    gate().stepEnded.wait_for(lock, exitPatience, [] { return gate().steps == ownSteps; });
    gate().state = Gate::Left;
}

bool isHeld(int stepsWithin)
{
    if (gate().state == Gate::Open || gate().endingThread == std::this_thread::get_id())
        return false;
    return gate().state == Gate::Left || stepsWithin == 0;
}

bool enter()
{
    {
        const std::lock_guard<std::mutex> guard(gate().mutex);
        if (!isHeld(ownSteps)) {
            ++gate().steps;
            ++ownSteps;
            return true;
        }
    }
    std::this_thread::sleep_for(exitPatience);
    return false;
}

void leave()
{
    {
        const std::lock_guard<std::mutex> guard(gate().mutex);
        --ownSteps;
        --gate().steps;
        gate().stepEnded.notify_all();
        if (!isHeld(ownSteps))
            return;
    }
    std::this_thread::sleep_for(exitPatience);
}

} // namespace

void ExitGate::arm()
{
    // Makes what Qt keeps for messages and texts, so that it outlives the registration.
    Q_UNUSED(qFormatLogMessage(QtDebugMsg, QMessageLogContext(), QString()).toLocal8Bit())
    Q_UNUSED(QLoggingCategory::defaultCategory())
    gate();
    std::atexit(closeGate);
}

ExitGate::Call::Call()
    : m_entered(enter())
{
}

ExitGate::Call::~Call()
{
    if (m_entered)
        leave();
}

ExitGate::Step::Step()
{
    while (!enter()) { }
}

ExitGate::Step::~Step()
{
    leave();
}
