// SPDX-License-Identifier: MIT
#include "scripts/pythonplatform.h"

#include <csignal>

struct SignalKeeper::Actions {
    void (*interrupt)(int) = SIG_DFL;
};

SignalKeeper::SignalKeeper()
    : m_actions(std::make_unique<Actions>())
{
    m_actions->interrupt = std::signal(SIGINT, SIG_DFL);
    std::signal(SIGINT, m_actions->interrupt);
}

SignalKeeper::~SignalKeeper()
{
    std::signal(SIGINT, m_actions->interrupt);
}

// Symbols of a loaded library are visible to every other one.
void makePythonSymbolsGlobal() { }

std::string pythonHome()
{
    return QUENZO_PYTHON_HOME;
}

bool isStandardInputAFolder()
{
    return false;
}
