// SPDX-License-Identifier: MIT
#ifndef PYTHONSTATEMENT_H
#define PYTHONSTATEMENT_H

#include <QString>

#include <string>

/**
 * Runs a statement in the module `__main__`, as PyRun_SimpleString does: an error is printed to the standard
 * error, SystemExit too, which does not end the process. A text that was run before is not compiled again.
 * The interpreter lock must be held, with no exception pending.
 */
void runPythonStatement(const std::string& text);

/**
 * Takes the pending exception off, as "type: text (file:line)" with the place that raised it.
 *
 * @return empty when none was pending. The interpreter lock must be held.
 */
QString takePythonError();

#endif
