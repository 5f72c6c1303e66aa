// SPDX-License-Identifier: MIT
#ifndef COMMAND_H
#define COMMAND_H

#include <QCommandLineOption>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QVector>

#include <functional>

class Console;
class QCommandLineParser;

enum ExitCode : int {
    ExitDone = 0,
    ExitFailed = 1,
    ExitUsage = 2,
};

/** One positional argument of a command, as its help shows it. */
struct Argument {
    enum Count { Once, Optional, AnyNumber };
    QString name;
    QString description;
    Count count = Once;
};

/** One command of the program; each group of commands has a file of its own that lists them. */
struct Command {
    QString name;
    QString summary;
    QVector<Argument> arguments;
    QList<QCommandLineOption> options;
    /** Called under a running application with arguments that are complete in number. */
    std::function<ExitCode(const QCommandLineParser&, Console&)> run;
    /** What the summary leaves out; the command's own help adds it. */
    QString details = {};
    /** The words that an option or an argument, by its name, takes. An argument takes no others; some options
     * do, which the command looks at. */
    QHash<QString, QStringList> words = {};
    /** Rewrites what the parser could not take as people write it; none for most. */
    std::function<QStringList(const QStringList& words)> prepare = {};
    /** What these words lack beyond the arguments that are always needed, as the usage shows it; none for
     * most. */
    std::function<QStringList(const QCommandLineParser&)> missing = {};
};

QVector<Command> jobCommands();
QVector<Command> buildCommands();
QVector<Command> buildRecordCommands();
QVector<Command> archiveCommands();
QVector<Command> assetCommands();
QVector<Command> apkCommands();
QVector<Command> scriptCommands();
QVector<Command> treeCommands();
QVector<Command> dbCommands();
QVector<Command> iconCommands();
QVector<Command> deviceCommands();

#endif
