// SPDX-License-Identifier: MIT
#ifndef SCRIPTEDTOOLS_H
#define SCRIPTEDTOOLS_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * Programs `adb` and `aapt` in the tool folder of the test's root that record their calls and answer as told.
 *
 * An answer is a piece of shell script. It finds the tool folder in $dir, its own arguments in "$@", and may
 * wait at the gate: `read line <"$dir/gate"` returns when the test opens it.
 */
namespace ScriptedTools {

/** Writes both programs, forgets the calls and answers: no device, package org.example.game, both steps
 * succeed. */
void write();

/** What a subcommand of adb (devices, uninstall, install, ...) or aapt (d) does from now on. */
void answer(const QString& subcommand, const QByteArray& script);

/** Lists devices in state device; an entry with a tab is taken as a whole line. */
void attach(const QStringList& serials);

/** The calls so far: the program's name, then each argument in angle brackets. */
QStringList calls();
void forgetCalls();

/** Lets a program go on that waits at the gate; blocks until one does. */
void openGate();

} // namespace ScriptedTools

#endif
