// SPDX-License-Identifier: MIT
#include "scripts/pythonapi.h"

#include "scripts/pythonplatform.h"

#include <array>
#include <csignal>
#include <dlfcn.h>

namespace {

constexpr std::array<int, 3> takenOver{SIGINT, SIGPIPE, SIGXFSZ};

}

struct SignalKeeper::Actions {
    std::array<struct sigaction, takenOver.size()> saved{};
};

SignalKeeper::SignalKeeper()
    : m_actions(std::make_unique<Actions>())
{
    for (std::size_t i = 0; i < takenOver.size(); ++i)
        sigaction(takenOver.at(i), nullptr, &m_actions->saved.at(i));
}

SignalKeeper::~SignalKeeper()
{
    for (std::size_t i = 0; i < takenOver.size(); ++i)
        sigaction(takenOver.at(i), &m_actions->saved.at(i), nullptr);
}

void makePythonSymbolsGlobal()
{
    Dl_info runtime{};
    if (dladdr(reinterpret_cast<const void*>(&Py_Initialize), &runtime) != 0)
        dlopen(runtime.dli_fname, RTLD_NOLOAD | RTLD_GLOBAL | RTLD_LAZY);
}
