// SPDX-License-Identifier: MIT
#ifndef HELPTEXT_H
#define HELPTEXT_H

#include "command.h"

/** What the program says of itself, in lines that fit the narrowest usual terminal. */
namespace HelpText {

/** Of all commands. */
QString overview(const QVector<Command>& commands);

/** Of one command with all of its options. */
QString of(const Command& command);

} // namespace HelpText

#endif
