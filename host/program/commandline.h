// SPDX-License-Identifier: MIT
#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "command.h"

#include <QStringList>

/** Makes of the program's words a command, or an objection, and sees it to its end. */
namespace CommandLine {

/** Moves common options that stand before the command behind it, and leaves out a first "--". */
QStringList withCommandFirst(const QStringList& words);

/** @param given the words without the program's name, under a running application, the command first */
ExitCode run(const QStringList& given);

/** Objects to words that make no sense, as far as they are known. */
ExitCode refuse(const QStringList& words, const QString& objection);

} // namespace CommandLine

#endif
