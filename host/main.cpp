// SPDX-License-Identifier: MIT
#include "command.h"
#include "console.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {

struct Program {
    Q_DECLARE_TR_FUNCTIONS(Program)
};

// Under any other encoding the interpreter cannot import from folders with names beyond ASCII, nor can Qt open them.
void ensureUtf8Locale()
{
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
}

QVector<Command> allCommands()
{
    QVector<Command> commands;
    for (const auto& group : {scriptCommands, treeCommands})
        commands += group();
    return commands;
}

void writeLine(std::FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", qUtf8Printable(text));
}

QString overview(const QVector<Command>& commands)
{
    int width = 0;
    for (const Command& command : commands)
        width = std::max(width, command.name.size());
    QString text = Program::tr("Usage: quenzo COMMAND [options] [arguments]\n\nCommands:\n");
    for (const Command& command : commands)
        text += QStringLiteral("  %1  %2\n").arg(command.name, -width).arg(command.summary);
    return text + Program::tr("\nquenzo COMMAND --help tells more; quenzo --version prints the version.");
}

ExitCode usageError(const QString& text, const QString& command = {})
{
    writeLine(stderr, QStringLiteral("quenzo: ") + text);
    const QString help = command.isEmpty() ? QStringLiteral("--help") : command + QStringLiteral(" --help");
    writeLine(stderr, Program::tr("Try: quenzo %1").arg(help));
    return ExitUsage;
}

QString syntaxOf(const Argument& argument)
{
    switch (argument.count) {
    case Argument::Optional:
        return QStringLiteral("[%1]").arg(argument.name);
    case Argument::AnyNumber:
        return QStringLiteral("[%1...]").arg(argument.name);
    case Argument::Once:
        break;
    }
    return argument.name;
}

bool isComplete(const Command& command, int given)
{
    int least = 0;
    bool open = false;
    for (const Argument& argument : command.arguments) {
        least += argument.count == Argument::Once ? 1 : 0;
        open = open || argument.count == Argument::AnyNumber;
    }
    return given >= least && (open || given <= command.arguments.size());
}

ExitCode runCommand(const Command& command, QStringList words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, Program::tr("Shows this help."));
    const QCommandLineOption json(QStringLiteral("json"), Program::tr("Prints one JSON object as the result."));
    parser.addOptions({help, json});
    parser.addOptions(command.options);
    parser.addPositionalArgument(command.name, command.summary, command.name);
    for (const Argument& argument : command.arguments)
        parser.addPositionalArgument(argument.name, argument.description, syntaxOf(argument));

    words.prepend(QStringLiteral("quenzo"));
    if (!parser.parse(words))
        return usageError(parser.errorText(), command.name);
    if (parser.isSet(help)) {
        writeLine(stdout, parser.helpText().trimmed());
        return ExitDone;
    }
    // The command's own name is the first positional argument.
    if (!isComplete(command, parser.positionalArguments().size() - 1))
        return usageError(Program::tr("%1: wrong number of arguments").arg(command.name), command.name);

    Console console(parser.isSet(json));
    const ExitCode code = command.run(parser, console);
    if (code != ExitUsage)
        console.finish(command.name, code == ExitDone);
    return code;
}

} // namespace

int main(int argc, char* argv[])
{
    ensureUtf8Locale();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quenzo"));
    const QVector<Command> commands = allCommands();
    const QStringList words = QCoreApplication::arguments().mid(1);

    if (words.isEmpty())
        return usageError(Program::tr("no command given"));
    const QString& name = words.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        writeLine(stdout, overview(commands));
        return ExitDone;
    }
    if (name == QLatin1String("--version")) {
        writeLine(stdout, QStringLiteral("quenzo " QUENZO_VERSION));
        return ExitDone;
    }
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
                                      [&name](const Command& candidate) { return candidate.name == name; });
    if (command == commands.cend())
        return usageError(Program::tr("unknown command '%1'").arg(name));
    return runCommand(*command, words);
}
