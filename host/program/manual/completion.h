// SPDX-License-Identifier: MIT
#ifndef COMPLETION_H
#define COMPLETION_H

#include "command.h"

#include <QByteArray>

/**
 * What a shell loads to complete the program's words.
 *
 * Each takes the fixed part of the file, in which one line with nothing but "@COMMANDS@" stands for what the
 * table of commands says.
 */
namespace Completion {

QByteArray bash(const QVector<Command>& commands, const QByteArray& fixedPart);
QByteArray zsh(const QVector<Command>& commands, const QByteArray& fixedPart);

} // namespace Completion

#endif
