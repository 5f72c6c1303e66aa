// SPDX-License-Identifier: MIT
#ifndef PYTHONPROBE_H
#define PYTHONPROBE_H

// To be included before Qt's headers: the interpreter's define feature macros of the C library.
#include <Python.h>

#include <pythonforqt.h>

/** A bridge whose protected members a test can reach. */
class OpenBridge : public PythonForQt {
public:
    using PythonForQt::bEnvReady;
    using PythonForQt::BuildValue;
    using PythonForQt::pResult;
    using PythonForQt::releaseObj;
};

/** The repr() of an expression evaluated in the module `__main__`, or the error's type. Takes the interpreter
 * lock. */
QString pythonValue(const QString& expression);

/** How often a folder is in `sys.path`. */
int countInPath(const QString& folder);

/** Whether a module is loaded. */
bool isLoaded(const QString& module);

/** The folder of the scripts in the root of the running test. */
QString scriptFolder();

/** Writes a script below the root, under a name that none before it had, and returns its path. */
QString writeScript(const QByteArray& content, const QString& folder = QStringLiteral("Script"));

/** The name of the module that a script makes. */
QString moduleOf(const QString& scriptPath);

#endif
