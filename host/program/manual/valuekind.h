// SPDX-License-Identifier: MIT
#ifndef VALUEKIND_H
#define VALUEKIND_H

#include "command.h"

#include <QStringList>

/** What a word on the command line is, as far as a shell can offer some. */
struct ValueKind {
    enum Type { Unknown, Text, File, Folder, Serial, Channel, Words };
    Type type = Unknown;
    /** The endings of the files, without the dot, or the words that there are. */
    QStringList list = {};
};

/** By the name that the value has in the help: FILE, DIR, FILE.png; Unknown where nobody has said. */
ValueKind kindOf(const QString& valueName);

/** The same with the command's own lists of words, by the option's or the argument's name. */
ValueKind kindOf(const Command& command, const QCommandLineOption& option);
ValueKind kindOf(const Command& command, const Argument& argument);

#endif
