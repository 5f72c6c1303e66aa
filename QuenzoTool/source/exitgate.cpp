// SPDX-License-Identifier: MIT
#include "exitgate.h"

#include "messages.h"

#include <QtGlobal>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

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
// Those of them that are calls.
thread_local int ownCalls = 0;
// Whether what is at work on this thread was held.
thread_local bool wasHeld = false;

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

void sleepFor(std::chrono::seconds duration)
{
    std::this_thread::sleep_for(duration);
}

std::atomic<void (*)(std::chrono::seconds)> currentHold{sleepFor};

// Once for all that is at work on the thread: it is to end soon when an exit handler waits for it.
void hold()
{
    if (!std::exchange(wasHeld, ownSteps > 0))
        currentHold.load()(exitPatience);
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
    hold();
    return false;
}

void leave()
{
    bool held = false;
    {
        const std::lock_guard<std::mutex> guard(gate().mutex);
        --ownSteps;
        --gate().steps;
        gate().stepEnded.notify_all();
        held = isHeld(ownSteps);
    }
    if (held)
        hold();
    else if (ownSteps == 0)
        wasHeld = false;
}

// With the gate's mutex held.
void countCalls(int calls)
{
    gate().steps += calls;
    ownSteps += calls;
    ownCalls += calls;
    gate().stepEnded.notify_all();
}

} // namespace

void ExitGate::arm(Work work, void (*lastly)())
{
    static std::array<std::once_flag, WorkCount> armed;
    std::call_once(armed.at(work), [lastly] {
        // Makes what Qt keeps for messages and texts, which every kind of work uses.
        Q_UNUSED(qFormatLogMessage(QtDebugMsg, QMessageLogContext(), QString()).toLocal8Bit())
        Q_UNUSED(QLoggingCategory::defaultCategory())
        gate();
        if (lastly != nullptr)
            std::atexit(lastly);
        std::atexit(closeGate);
    });
}

void ExitGate::setHold(void (*hold)(std::chrono::seconds))
{
    currentHold = hold;
}

ExitGate::Call::Call()
    : m_entered(enter())
{
    if (m_entered)
        ++ownCalls;
}

ExitGate::Call::~Call()
{
    if (!m_entered)
        return;
    --ownCalls;
    leave();
}

ExitGate::Outside::Outside()
    : m_calls(ownSteps == ownCalls ? ownCalls : 0)
{
    if (m_calls == 0)
        return;
    const std::lock_guard<std::mutex> guard(gate().mutex);
    countCalls(-m_calls);
}

ExitGate::Outside::~Outside()
{
    if (m_calls == 0)
        return;
    std::unique_lock<std::mutex> lock(gate().mutex);
    if (isHeld(ownSteps)) {
        lock.unlock();
        hold();
        wasHeld = true;
        lock.lock();
    }
    countCalls(m_calls);
}

ExitGate::Step::Step()
{
    while (!enter()) { }
}

ExitGate::Step::~Step()
{
    leave();
}
