// SPDX-License-Identifier: MIT
#ifndef MANPAGE_H
#define MANPAGE_H

#include "command.h"

#include <QByteArray>
#include <QDate>

/** Pages of the manual, for section 1, in the language of man(7). */
namespace ManPage {

/** quenzo(1): all commands, and what they have in common. */
QByteArray overview(const QVector<Command>& commands, const QDate& date);

/** quenzo-NAME(1). */
QByteArray of(const Command& command, const QDate& date);

} // namespace ManPage

#endif
