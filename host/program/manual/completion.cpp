// SPDX-License-Identifier: MIT
#include "manual/completion.h"

#include "commandtable.h"
#include "manual/valuekind.h"

#include <QRegularExpression>

namespace {

QString dashed(const QString& name)
{
    return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
}

QStringList dashedNames(const QList<QCommandLineOption>& options)
{
    QStringList names;
    for (const QCommandLineOption& option : options) {
        for (const QString& name : option.names())
            names += dashed(name);
    }
    return names;
}

QString shellWord(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) + QLatin1Char('\'');
}

QString withCommands(const QByteArray& fixedPart, const QString& commands)
{
    return QString::fromUtf8(fixedPart).replace(QLatin1String("@COMMANDS@\n"), commands);
}

// ---- bash: one word says what a value is

QString bashKind(const ValueKind& kind)
{
    switch (kind.type) {
    case ValueKind::File:
        return QLatin1String("file:") + kind.list.join(QLatin1Char('|'));
    case ValueKind::Folder:
        return QStringLiteral("folder");
    case ValueKind::Serial:
        return QStringLiteral("serial");
    case ValueKind::Channel:
        return QStringLiteral("channel");
    case ValueKind::Words:
        return QLatin1String("words:") + kind.list.join(QLatin1Char('|'));
    case ValueKind::Text:
    case ValueKind::Unknown:
        break;
    }
    return QStringLiteral("text");
}

QString bashCase(const Command& command)
{
    const QList<QCommandLineOption> options = shownOptions(command);
    QString valued;
    for (const QCommandLineOption& option : options) {
        if (option.valueName().isEmpty())
            continue;
        for (const QString& name : option.names())
            valued +=
                QStringLiteral(" [%1]=%2").arg(dashed(name), shellWord(bashKind(kindOf(command, option))));
    }
    QStringList arguments;
    QString further;
    for (const Argument& argument : command.arguments) {
        const QString kind = shellWord(bashKind(kindOf(command, argument)));
        if (argument.count == Argument::AnyNumber)
            further = kind;
        else
            arguments += kind;
    }
    return QStringLiteral("    %1)\n        options='%2'\n        valued=(%3)\n        arguments=(%4)\n"
                          "        further=%5\n        ;;\n")
        .arg(command.name, dashedNames(options).join(QLatin1Char(' ')), valued.trimmed(),
             arguments.join(QLatin1Char(' ')), further.isEmpty() ? QStringLiteral("none") : further);
}

// ---- zsh: the words of _arguments

// What fits beside a name: the first clause.
QString shortened(const QString& description)
{
    static const QRegularExpression end(QStringLiteral("[.;:]( |$)"));
    const int length = description.indexOf(end);
    return length < 0 ? description : description.left(length);
}

QString escaped(const QString& text, const QString& letters)
{
    QString result;
    for (const QChar letter : text) {
        if (letters.contains(letter))
            result += QLatin1Char('\\');
        result += letter;
    }
    return result;
}

QString zshAction(const ValueKind& kind)
{
    switch (kind.type) {
    case ValueKind::File:
        if (kind.list.isEmpty())
            return QStringLiteral("_files");
        // One ending alone in brackets would be taken for a condition.
        return QStringLiteral("_files -g \"*.%1\"")
            .arg(kind.list.size() == 1 ? kind.list.first()
                                       : QStringLiteral("(%1)").arg(kind.list.join(QLatin1Char('|'))));
    case ValueKind::Folder:
        return QStringLiteral("_path_files -/");
    case ValueKind::Serial:
        return QStringLiteral("_quenzo_serials");
    case ValueKind::Channel:
        return QStringLiteral("_quenzo_channels");
    case ValueKind::Words:
        return QStringLiteral("(%1)").arg(kind.list.join(QLatin1Char(' ')));
    case ValueKind::Text:
    case ValueKind::Unknown:
        break;
    }
    return QStringLiteral(" ");
}

QString zshOptions(const Command& command, const QCommandLineOption& option)
{
    const QString about =
        QStringLiteral("[%1]").arg(escaped(shortened(option.description()), QStringLiteral("[]\\")));
    QString text;
    for (const QString& name : option.names()) {
        QString word = dashed(name);
        if (option.valueName().isEmpty()) {
            QStringList others;
            for (const QString& other : option.names())
                others += dashed(other);
            word = QStringLiteral("(%1)%2%3").arg(others.join(QLatin1Char(' ')), word, about);
        } else {
            const QString colons = QStringLiteral(":\\");
            word = QStringLiteral("*%1%2%3:%4:%5")
                       .arg(word, name.size() == 1 ? QStringLiteral("+") : QStringLiteral("="), about,
                            escaped(option.valueName(), colons), zshAction(kindOf(command, option)));
        }
        text += QStringLiteral(" \\\n            ") + shellWord(word);
    }
    return text;
}

QString zshCase(const Command& command)
{
    QString text = QStringLiteral("    (%1)\n        _arguments -S :").arg(command.name);
    for (const QCommandLineOption& option : shownOptions(command))
        text += zshOptions(command, option);
    int number = 0;
    for (const Argument& argument : command.arguments) {
        const QString place =
            argument.count == Argument::AnyNumber ? QStringLiteral("*") : QString::number(++number);
        const QString sign =
            argument.count == Argument::Optional ? QStringLiteral("::") : QStringLiteral(":");
        text += QStringLiteral(" \\\n            ")
            + shellWord(place + sign + escaped(argument.name, QStringLiteral(":\\")) + QLatin1Char(':')
                        + zshAction(kindOf(command, argument)));
    }
    return text + QStringLiteral("\n        ;;\n");
}

} // namespace

QByteArray Completion::bash(const QVector<Command>& commands, const QByteArray& fixedPart)
{
    QStringList names;
    QString cases;
    for (const Command& command : commands) {
        names += command.name;
        cases += bashCase(command);
    }
    QString text = withCommands(fixedPart, cases);
    return text.replace(QLatin1String("@NAMES@"), names.join(QLatin1Char(' '))).toUtf8();
}

QByteArray Completion::zsh(const QVector<Command>& commands, const QByteArray& fixedPart)
{
    QString names;
    QString cases;
    for (const Command& command : commands) {
        names += QStringLiteral("        %1\n")
                     .arg(shellWord(escaped(command.name, QStringLiteral(":\\")) + QLatin1Char(':')
                                    + command.summary));
        cases += zshCase(command);
    }
    QString text = withCommands(fixedPart, cases);
    return text.replace(QLatin1String("        @NAMES@\n"), names).toUtf8();
}
