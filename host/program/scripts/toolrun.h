// SPDX-License-Identifier: MIT
#ifndef TOOLRUN_H
#define TOOLRUN_H

#include <QString>
#include <QStringList>

#include <functional>

class Console;

/** How a program that was run beside the event loop ended. */
struct ToolRun {
    bool ended = false; ///< it was run, and ended by itself
    bool succeeded = false; ///< with 0
    QString output;
    QString error; ///< what it wrote to its error stream, or why it could not be run or was ended
};

/**
 * Runs a program to its end, however long it takes. It reads nothing and has no shell.
 *
 * @param doing what a person reads meanwhile
 * @param tidy called before a signal ends this program, which ends the other one as well
 */
ToolRun runTool(
    Console& console, const QString& program, const QStringList& words, const QString& doing,
    const std::function<void()>& tidy = [] {});

#endif
