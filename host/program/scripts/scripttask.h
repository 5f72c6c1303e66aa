// SPDX-License-Identifier: MIT
#ifndef SCRIPTTASK_H
#define SCRIPTTASK_H

#include "command.h"
#include "console/failure.h"

#include <pythontoolthread.h>

#include <QStringList>
#include <QVariantMap>

#include <functional>

class PythonForQt;

/** What became of a script's work. */
struct ScriptOutcome {
    bool hasInterpreter = false;
    bool began = true; // what kept it from beginning has been reported
    bool succeeded = false;
    QVariantMap values;
    QStringList diagnostics; ///< the library's
    Failure failure; ///< what the shipped scripts said of it; without a message when they said nothing
};

/**
 * Runs one task of the library on its worker thread, under a running event loop.
 *
 * @param doing what a person reads meanwhile
 */
ScriptOutcome runTask(Console& console, PYTHON_TOOL_OPERATE operate, const QVariantMap& parameters,
                      const QString& doing);

/** One call of a function in the shipped script set. */
struct ScriptCall {
    QString script; ///< "encrypt.py"
    QString function;
    QList<QVariant> arguments;
};

/**
 * Calls what the library has no task for, on a thread of its own.
 *
 * @param read takes the result, on that thread
 */
ScriptOutcome runCall(Console& console, const ScriptCall& call, const QString& doing,
                      const std::function<void(PythonForQt&, ScriptOutcome&)>& read);

/** Reports a failure with what the scripts said of it. */
ExitCode failTask(Console& console, const QString& what, const ScriptOutcome& outcome);

/** What is wrong with the name of a file that cannot be a standard stream; empty if nothing is. */
QString objectionToStream(const QString& path);

/** Whether a path exists; reports it when it does not. */
bool pathExists(Console& console, const QString& path);

#endif
