// SPDX-License-Identifier: MIT
// Stands for a Python of another version that runs in the process already: the same names, other ways.
#include <cstdlib>

#pragma GCC visibility push(default)

extern "C" {

int Py_IsInitialized()
{
    return 1;
}

const char* Py_GetVersion()
{
    return "3.99.1 (stand-in)";
}

// What a foreign caller would bring down.
void Py_Initialize()
{
    std::abort();
}

int PyGILState_Ensure()
{
    std::abort();
}

void* PyGILState_GetThisThreadState()
{
    std::abort();
}
}

#pragma GCC visibility pop
