// SPDX-License-Identifier: MIT
#ifndef COMMANDTABLE_H
#define COMMANDTABLE_H

#include "command.h"

/** Every command of the program, in the order in which its help and its manual show them. */
QVector<Command> allCommands();

/** The options that every command has. */
QList<QCommandLineOption> commonOptions();

/** Those, and its own that people are told of. */
QList<QCommandLineOption> shownOptions(const Command& command);

/** The option that stands in the place of a command. */
QCommandLineOption versionOption();

/** How an argument stands in a line of usage. */
QString syntaxOf(const Argument& argument);

/** One name that people look up, and what is behind it. */
struct Explained {
    QString name;
    QString meaning;
};

/** What the program does without a command of the table. */
QVector<Explained> ownCommands();

QVector<Explained> exitCodes();
QVector<Explained> environmentVariables();
QVector<Explained> usedFiles();

#endif
