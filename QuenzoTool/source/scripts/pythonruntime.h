// SPDX-License-Identifier: MIT
#ifndef PYTHONRUNTIME_H
#define PYTHONRUNTIME_H

#include <QString>

/**
 * The Python runtime that this library is linked to. It runs with the standard library that it was installed
 * with: left to itself it would take the one it finds beside a program called "python" on the search path, in
 * the working folder or any folder above it, or where the environment says, and run whatever lies there.
 */
namespace PythonRuntime {

/** Whether the interpreter runs. False, too, when what runs is another version of Python. */
bool isRunning();

/**
 * Starts the interpreter, whose lock the calling thread holds afterwards. The process's handling of signals
 * stays as it was.
 *
 * @return the cause why it could not be started; empty when it runs
 */
QString start();

} // namespace PythonRuntime

#endif
