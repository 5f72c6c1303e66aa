// SPDX-License-Identifier: MIT
#include "commandtable.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "console/standardstreams.h"
#include "suggestion.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QGuiApplication>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <langinfo.h>
#include <memory>

namespace {

struct Program {
    Q_DECLARE_TR_FUNCTIONS(Program)
};

// Under another encoding the interpreter cannot import from folders with names beyond ASCII, nor can Qt open
// them.
void ensureUtf8Locale()
{
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0)
        return;
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "");
}

void writeLine(std::FILE* stream, const QString& text)
{
    StandardStreams::write(stream, text + QLatin1Char('\n'));
}

QString overview(const QVector<Command>& commands)
{
    int width = 0;
    for (const Command& command : commands)
        width = std::max(width, command.name.size());
    QString text = Program::tr("Usage: quenzo COMMAND [options] [arguments]\n\nCommands:\n");
    for (const Command& command : commands)
        text += QStringLiteral("  %1  %2\n").arg(command.name, -width).arg(command.summary);
    text += Program::tr(
        "\nquenzo help COMMAND tells more; quenzo version prints the version. Words behind -- are no "
        "options.\nExit codes:");
    for (const Explained& code : exitCodes())
        text += QStringLiteral("\n  %1  %2").arg(code.name, -3).arg(code.meaning);
    return text;
}

ExitCode usageError(const QString& text, const QString& command = {})
{
    writeLine(stderr, QStringLiteral("quenzo: ") + Console::shown(text));
    const QString help = command.isEmpty() ? QStringLiteral("--help") : command + QStringLiteral(" --help");
    writeLine(stderr, Program::tr("Try: quenzo %1").arg(help));
    return ExitUsage;
}

QString withSuggestion(const QString& error, const QString& word, const QStringList& names)
{
    const QString meant = likelyMeant(word, names);
    return meant.isEmpty() ? error : Program::tr("%1; did you mean '%2'?").arg(error, meant);
}

// What is wrong with the number of the words; empty if nothing is.
QString objectionToNumber(const Command& command, const QStringList& given)
{
    QStringList needed;
    bool open = false;
    for (const Argument& argument : command.arguments) {
        if (argument.count == Argument::Once)
            needed.append(argument.name);
        open = open || argument.count == Argument::AnyNumber;
    }
    if (given.size() < needed.size())
        return Program::tr("%1: missing: %2")
            .arg(command.name, needed.mid(given.size()).join(QLatin1Char(' ')));
    if (!open && given.size() > command.arguments.size())
        return Program::tr("%1: '%2' is one word too many")
            .arg(command.name, given.at(command.arguments.size()));
    return {};
}

QString objectionToOptions(const Command& command, const QCommandLineParser& parser)
{
    QStringList names;
    for (const QCommandLineOption& option : commonOptions() + command.options)
        names += option.names();
    const QString unknown = parser.unknownOptionNames().value(0);
    if (unknown.isEmpty())
        return QStringLiteral("%1: %2").arg(command.name, parser.errorText());
    return withSuggestion(Program::tr("%1: unknown option '%2'").arg(command.name, unknown), unknown, names);
}

// The parser knows of no commands: its usage line is replaced.
QString helpText(const Command& command, const QCommandLineParser& parser)
{
    QString usage = Program::tr("Usage: quenzo %1 [options]").arg(command.name);
    for (const Argument& argument : command.arguments)
        usage += QLatin1Char(' ') + syntaxOf(argument);
    const QString text = parser.helpText().trimmed();
    const QString details = command.details.isEmpty() ? QString() : QStringLiteral("\n\n") + command.details;
    return usage + text.mid(text.indexOf(QLatin1Char('\n'))) + details;
}

ExitCode runCommand(const Command& command, QStringList words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary);
    parser.addOptions(commonOptions());
    parser.addOptions(command.options);
    for (const Argument& argument : command.arguments)
        parser.addPositionalArgument(argument.name, argument.description, syntaxOf(argument));

    words.prepend(QStringLiteral("quenzo"));
    if (!parser.parse(words))
        return usageError(objectionToOptions(command, parser), command.name);
    if (parser.isSet(QStringLiteral("help"))) {
        writeLine(stdout, helpText(command, parser));
        return ExitDone;
    }
    // The command's own name is the first positional argument.
    const QString objection = objectionToNumber(command, parser.positionalArguments().mid(1));
    if (!objection.isEmpty())
        return usageError(objection, command.name);

    Console console(parser.isSet(QStringLiteral("json")));
    const ExitCode code = command.run(parser, console);
    if (code != ExitUsage)
        console.finish(command.name, code == ExitDone);
    return code;
}

// Texts on a picture take Qt's fonts, and these the larger application. It is told to look for no display,
// and gets none of the words: some of ours, like --platform, are options of its own.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, const QStringList& words)
{
    if (words.value(0) != QLatin1String("icons"))
        return std::make_unique<QCoreApplication>(argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    argc = 1;
    return std::make_unique<QGuiApplication>(argc, argv);
}

ExitCode showText(const QString& text)
{
    writeLine(stdout, text);
    return ExitDone;
}

QStringList namesOf(const QVector<Command>& commands)
{
    QStringList names{QStringLiteral("help"), QStringLiteral("version")};
    for (const Command& command : commands)
        names.append(command.name);
    return names;
}

ExitCode run(QStringList words)
{
    const QVector<Command> commands = allCommands();
    // "help copy" and "copy --help" are the same.
    if (words.size() > 1 && words.first() == QLatin1String("help"))
        words = QStringList{words.at(1), QStringLiteral("--help")};

    if (words.isEmpty())
        return usageError(Program::tr("no command given"));
    const QString& name = words.first();
    if (name == QLatin1String("help") || name == QLatin1String("--help") || name == QLatin1String("-h"))
        return showText(overview(commands));
    if (name == QLatin1String("version") || name == QLatin1String("--version") || name == QLatin1String("-V"))
        return showText(QStringLiteral("quenzo " QUENZO_VERSION));
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
                                      [&name](const Command& candidate) { return candidate.name == name; });
    if (command != commands.cend())
        return runCommand(*command, words);
    return usageError(withSuggestion(Program::tr("unknown command '%1'").arg(name), name, namesOf(commands)));
}

// A word that is no text would become the name of something else. Returns which one it is, or 0.
int firstNoText(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (QString::fromLocal8Bit(argv[i]).toLocal8Bit() != argv[i])
            return i;
    }
    return 0;
}

// What a command has done is of no use to a caller that gets only half of the answer.
ExitCode checkedForOutput(ExitCode code)
{
    const QString error = StandardStreams::outputError();
    if (error.isEmpty())
        return code;
    writeLine(stderr, Program::tr("quenzo: the standard output cannot be written: %1").arg(error));
    return code == ExitDone ? ExitFailed : code;
}

} // namespace

int main(int argc, char* argv[])
{
    StandardStreams::ensureOpen();
    ensureUtf8Locale();
    Diagnostics::install();
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    const int noText = firstNoText(argc, argv);
    if (noText > 0)
        return usageError(
            Program::tr("word %1, '%2', is not UTF-8 text").arg(noText).arg(words.at(noText - 1)));
    if (words.value(0) == QLatin1String("--"))
        words.removeFirst();
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv, words);
    QCoreApplication::setApplicationName(QStringLiteral("quenzo"));
    return checkedForOutput(run(words));
}
