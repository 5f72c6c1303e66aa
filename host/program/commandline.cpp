// SPDX-License-Identifier: MIT
#include "commandline.h"

#include "commandtable.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "helptext.h"
#include "suggestion.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

namespace {

struct Line {
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

const QLatin1String helpCommand("help");
const QLatin1String versionCommand("version");

// What Qt's parser says itself: Qt's own translation is a package that need not be there.
const std::initializer_list<const char*> parserTexts{
    QT_TRANSLATE_NOOP("QCommandLineParser", "Missing value after '%1'."),
    QT_TRANSLATE_NOOP("QCommandLineParser", "Unexpected value after '%1'."),
};

// The first word that is none of those that its argument takes; empty when there is none.
QString objectionToChoice(const Command& command, const QStringList& given)
{
    for (int i = 0; i < qMin(command.arguments.size(), given.size()); ++i) {
        const QStringList names = command.words.value(command.arguments.at(i).name);
        if (!names.isEmpty() && !names.contains(given.at(i)))
            return noneOf(command.name, given.at(i), names);
    }
    return {};
}

// What is wrong with the words, options' values left alone; empty if nothing is.
QString objectionToWords(const Command& command, const QCommandLineParser& parser)
{
    // The command's own name is the first positional argument.
    const QStringList given = parser.positionalArguments().mid(1);
    QString choice = objectionToChoice(command, given);
    if (!choice.isEmpty())
        return choice;
    QStringList needed;
    bool open = false;
    for (const Argument& argument : command.arguments) {
        if (argument.count == Argument::Once)
            needed.append(argument.name);
        open = open || argument.count == Argument::AnyNumber;
    }
    const QStringList missing =
        needed.mid(given.size()) + (command.missing ? command.missing(parser) : QStringList());
    if (!missing.isEmpty())
        return Line::tr("%1: missing: %2").arg(command.name, missing.join(QStringLiteral(", ")));
    if (!open && given.size() > command.arguments.size())
        return Line::tr("%1: '%2' is one word too many")
            .arg(command.name, given.at(command.arguments.size()));
    return {};
}

QString withDashes(const QString& option)
{
    return (option.size() > 1 ? QStringLiteral("--") : QStringLiteral("-")) + option;
}

// What the parser says as a sentence of its own, in our form.
QString asObjection(QString sentence)
{
    if (sentence.endsWith(QLatin1Char('.')) || sentence.endsWith(QChar(u'。')))
        sentence.chop(1);
    return sentence.left(1).toLower() + sentence.mid(1);
}

QString objectionToOptions(const Command& command, const QCommandLineParser& parser)
{
    QStringList names;
    for (const QCommandLineOption& option : commonOptions() + command.options)
        names += option.names().last();
    const QString unknown = parser.unknownOptionNames().value(0);
    if (unknown.isEmpty())
        return QStringLiteral("%1: %2").arg(command.name, asObjection(parser.errorText()));
    const QString error = Line::tr("%1: unknown option '%2'").arg(command.name, withDashes(unknown));
    const QString meant = likelyMeant(unknown, names);
    return withSuggestion(error, meant.isEmpty() ? meant : withDashes(meant));
}

// Before the words are understood: those who want JSON get their objection in it.
bool asksForJson(const QStringList& words)
{
    const int end = words.indexOf(QStringLiteral("--"));
    return words.mid(0, end).contains(QStringLiteral("--json"));
}

// How many words an option takes that may stand before the command; 0 when it is none. Behind no command,
// help is what the program's own is asked for by.
int commonWords(const QString& word)
{
    const QString name =
        word.mid(word.startsWith(QLatin1String("--")) ? 2 : 1).section(QLatin1Char('='), 0, 0);
    if (!word.startsWith(QLatin1Char('-')) || name.isEmpty() || name == QLatin1String("help"))
        return 0;
    const bool isLong = word.startsWith(QLatin1String("--"));
    QString letters;
    for (const QCommandLineOption& option : commonOptions()) {
        if (isLong && option.names().contains(name) && name.size() > 1)
            return option.valueName().isEmpty() || word.contains(QLatin1Char('=')) ? 1 : 2;
        letters += option.names().first().size() == 1 ? option.names().first() : QString();
    }
    letters.remove(QLatin1Char('h'));
    const auto isKnown = [&letters](QChar letter) { return letters.contains(letter); };
    return !isLong && std::all_of(name.cbegin(), name.cend(), isKnown) ? 1 : 0;
}

ExitCode objectTo(const QStringList& words, const QString& text, const QString& command = {})
{
    Console console({asksForJson(words)}, command);
    console.error({Failure::Usage, text});
    console.finish(false);
    return ExitUsage;
}

// A word behind those that help or version takes; empty when there is none.
QString wordTooMany(const QStringList& words)
{
    const bool isHelp = words.value(0) == helpCommand;
    if (!isHelp && words.value(0) != versionCommand)
        return {};
    const QStringList further = words.mid(isHelp ? 2 : 1);
    const auto extra = std::find_if(further.cbegin(), further.cend(),
                                    [](const QString& word) { return !word.startsWith(QLatin1Char('-')); });
    return extra == further.cend() ? QString()
                                   : Line::tr("%1: '%2' is one word too many").arg(words.first(), *extra);
}

ExitCode showText(const QStringList& words, const QString& command, const QString& key, const QString& text,
                  const QString& value)
{
    Console console({asksForJson(words)}, command);
    console.printText(text);
    console.set(key, value);
    console.finish(true);
    return ExitDone;
}

ConsoleStyle styleOf(const QCommandLineParser& parser, QString& objection)
{
    ConsoleStyle style;
    style.json = parser.isSet(QStringLiteral("json"));
    style.quiet = parser.isSet(QStringLiteral("quiet"));
    style.verbose = parser.isSet(QStringLiteral("verbose"));
    const QString progress = parser.value(QStringLiteral("progress"));
    if (progress == QLatin1String("json"))
        style.progress = ConsoleStyle::JsonLines;
    else if (progress != QLatin1String("terminal"))
        objection = noneOf(QStringLiteral("--progress"), progress,
                           {QStringLiteral("terminal"), QStringLiteral("json")});
    if (style.quiet && style.verbose)
        objection = Line::tr("--quiet and --verbose exclude each other");
    return style;
}

ExitCode runCommand(const Command& command, QStringList words)
{
    QCommandLineParser parser;
    parser.addOptions(commonOptions() + command.options);
    if (command.prepare)
        words = command.prepare(words);
    words.prepend(QStringLiteral("quenzo"));
    if (!parser.parse(words))
        return objectTo(words, objectionToOptions(command, parser), command.name);
    if (parser.isSet(QStringLiteral("help"))) {
        const QString text = HelpText::of(command);
        return showText(words, helpCommand, QStringLiteral("text"), text, text);
    }
    QString objection = objectionToWords(command, parser);
    const ConsoleStyle style = styleOf(parser, objection);
    if (!objection.isEmpty())
        return objectTo(words, objection, command.name);

    Console console(style, command.name);
    if (style.verbose)
        Diagnostics::followSteps([&console](const QString& step) { console.step(step); });
    const ExitCode code = command.run(parser, console);
    Diagnostics::followSteps({});
    console.finish(code == ExitDone);
    return code;
}

QStringList namesOf(const QVector<Command>& commands)
{
    QStringList names{helpCommand, versionCommand};
    for (const Command& command : commands)
        names.append(command.name);
    return names;
}

} // namespace

QStringList CommandLine::withCommandFirst(const QStringList& words)
{
    int count = 0;
    while (count < words.size() && commonWords(words.at(count)) > 0)
        count += commonWords(words.at(count));
    QStringList rest = words.mid(count);
    if (rest.value(0) == QLatin1String("--"))
        rest.removeFirst();
    QStringList options = words.mid(0, count);
    if (rest.isEmpty())
        return options;
    // The command whose help is wanted comes right behind it.
    if (rest.first() == helpCommand)
        return asksForJson(options) ? rest + QStringList(QStringLiteral("--json")) : rest;
    return rest.mid(0, 1) + options + rest.mid(1);
}

ExitCode CommandLine::run(const QStringList& given)
{
    const QVector<Command> commands = allCommands();
    QStringList words = given;
    if (words.value(0) == helpCommand) {
        words.removeAll(QStringLiteral("--json"));
        words.removeAll(QStringLiteral("--"));
    }
    if (words.isEmpty() || commonWords(words.first()) > 0)
        return objectTo(given, Line::tr("no command given"));
    const QString excess = wordTooMany(words);
    if (!excess.isEmpty())
        return objectTo(given, excess);
    // "help copy" and "copy --help" are the same.
    if (words.size() > 1 && words.first() == helpCommand) {
        words = QStringList{words.at(1), QStringLiteral("--help")};
        if (asksForJson(given))
            words.append(QStringLiteral("--json"));
    }

    const QString name = words.first();
    if (name == helpCommand || name == QLatin1String("--help") || name == QLatin1String("-h")) {
        const QString text = HelpText::overview(commands);
        return showText(given, helpCommand, QStringLiteral("text"), text, text);
    }
    if (name == versionCommand || name == QLatin1String("--version") || name == QLatin1String("-V")) {
        return showText(given, versionCommand, QStringLiteral("version"),
                        QStringLiteral("quenzo " QUENZO_VERSION), QStringLiteral(QUENZO_VERSION));
    }
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
                                      [&name](const Command& candidate) { return candidate.name == name; });
    if (command != commands.cend())
        return runCommand(*command, words);
    return objectTo(
        given,
        withSuggestion(Line::tr("unknown command '%1'").arg(name), likelyMeant(name, namesOf(commands))));
}

ExitCode CommandLine::refuse(const QStringList& words, const QString& objection)
{
    return objectTo(words, objection);
}
