// SPDX-License-Identifier: MIT
#ifndef COMMANDTABLE_H
#define COMMANDTABLE_H

#include "command.h"

/** Every command of the program, in the order in which its help and its manual show them. */
QVector<Command> allCommands();

/** The options that every command has. */
QList<QCommandLineOption> commonOptions();

/** How an argument stands in a line of usage. */
QString syntaxOf(const Argument& argument);

/** One name that people look up, and what is behind it. */
struct Explained {
    QString name;
    QString meaning;
};

QVector<Explained> exitCodes();
QVector<Explained> environmentVariables();
QVector<Explained> usedFiles();

#endif
