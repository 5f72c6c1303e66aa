// SPDX-License-Identifier: MIT
#ifndef PYTHONPLATFORM_H
#define PYTHONPLATFORM_H

#include <memory>
#include <string>

/**
 * Makes the symbols of the loaded Python runtime visible to the extension modules it loads later. They are
 * not when the host has loaded this library at run time with local symbols, as QLibrary does.
 */
void makePythonSymbolsGlobal();

/**
 * The folder with the standard library of the linked runtime, like "/usr": the one that the runtime's own
 * file was installed in or, where that has none, the one that was built with.
 *
 * @return empty when there is none in either
 */
std::string pythonHome();

/** Whether the process was given a folder as its standard input. */
bool isStandardInputAFolder();

/** Puts the process's handling of those signals that the interpreter's start takes over back when it goes. */
class SignalKeeper {
public:
    SignalKeeper();
    ~SignalKeeper();
    SignalKeeper(const SignalKeeper&) = delete;
    SignalKeeper& operator=(const SignalKeeper&) = delete;

private:
    struct Actions;
    std::unique_ptr<Actions> m_actions;
};

#endif
