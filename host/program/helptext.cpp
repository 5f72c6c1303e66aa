// SPDX-License-Identifier: MIT
#include "helptext.h"

#include "commandtable.h"
#include "console/figures.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

struct Help {
    Q_DECLARE_TR_FUNCTIONS(HelpText)
};

constexpr int lineColumns = 79; // some terminals wrap behind the last of 80

// Whether a line may end between these letters: at a blank, and at wide letters but where punctuation holds
// them together.
bool mayBreakBetween(QChar before, QChar after)
{
    if (before.isSpace())
        return true;
    const bool wide = columnsOf(QString(before)) > 1 || columnsOf(QString(after)) > 1;
    return wide && before != QChar(u'（') && !QStringLiteral("，。；：！？、）").contains(after);
}

// The lines of one paragraph.
QStringList linesOf(const QString& paragraph, int columns)
{
    QStringList lines;
    QString line;
    int lastBreak = 0;
    for (const QChar letter : paragraph) {
        if (!line.isEmpty() && mayBreakBetween(line.back(), letter))
            lastBreak = line.size();
        line += letter;
        if (!letter.isSpace() && lastBreak > 0 && columnsOf(line) > columns) {
            lines.append(line.left(lastBreak).trimmed());
            line.remove(0, lastBreak);
            lastBreak = 0;
        }
    }
    return lines + QStringList(line);
}

// A text of paragraphs, a line each; one that begins with a blank is laid out already.
QString filled(const QString& text, int indent = 0)
{
    QStringList lines;
    const QStringList paragraphs = text.split(QLatin1Char('\n'));
    for (const QString& paragraph : paragraphs) {
        lines += paragraph.startsWith(QLatin1Char(' ')) ? QStringList(paragraph)
                                                        : linesOf(paragraph, lineColumns - indent);
    }
    return lines.join(QLatin1Char('\n') + QString(indent, QLatin1Char(' ')));
}

// Two columns, the first as wide as its longest word.
QString tableOf(const QVector<Explained>& entries, int width)
{
    constexpr int margin = 2;
    QString text;
    for (const Explained& entry : entries) {
        text += QStringLiteral("\n  ") + entry.name.leftJustified(width + margin)
            + filled(entry.meaning, margin + width + margin);
    }
    return text;
}

int widthOf(const QVector<Explained>& entries)
{
    int width = 0;
    for (const Explained& entry : entries)
        width = std::max(width, entry.name.size());
    return width;
}

QVector<Explained> optionsOf(const Command& command)
{
    QVector<Explained> options;
    for (const QCommandLineOption& option : shownOptions(command)) {
        if ((option.flags() & QCommandLineOption::HiddenFromHelp) != 0)
            continue;
        QStringList names;
        for (const QString& name : option.names())
            names += (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
        const QString value = option.valueName();
        options.append(
            {names.join(QStringLiteral(", ")) + (value.isEmpty() ? QString() : QLatin1Char(' ') + value),
             option.description()});
    }
    return options;
}

} // namespace

QString HelpText::overview(const QVector<Command>& commands)
{
    QVector<Explained> all;
    for (const Command& command : commands)
        all.append({command.name, command.summary});
    all += ownCommands();
    return Help::tr("Usage: quenzo COMMAND [options] [arguments]") + QStringLiteral("\n\n")
        + Help::tr("Commands:") + tableOf(all, widthOf(all)) + QStringLiteral("\n\n")
        + filled(Help::tr("-h and -V are help and version, too. Words behind -- are no options."))
        + QStringLiteral("\n\n") + Help::tr("Exit codes:") + tableOf(exitCodes(), widthOf(exitCodes()));
}

QString HelpText::of(const Command& command)
{
    QString text = Help::tr("Usage: quenzo %1 [options]").arg(command.name);
    QVector<Explained> arguments;
    for (const Argument& argument : command.arguments) {
        text += QLatin1Char(' ') + syntaxOf(argument);
        arguments.append({argument.name, argument.description});
    }
    const QVector<Explained> options = optionsOf(command);
    const int width = widthOf(options + arguments);
    text += QLatin1Char('\n') + filled(command.summary) + QStringLiteral("\n\n") + Help::tr("Options:")
        + tableOf(options, width);
    if (!arguments.isEmpty())
        text += QStringLiteral("\n\n") + Help::tr("Arguments:") + tableOf(arguments, width);
    return command.details.isEmpty() ? text : text + QStringLiteral("\n\n") + filled(command.details);
}
