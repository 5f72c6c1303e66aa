// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "scripts/scripttask.h"

#include <pythonforqt.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

struct ScriptCommands {
    Q_DECLARE_TR_FUNCTIONS(ScriptCommands)
};

/** A whole number in its usual form becomes an int; "007" and what does not fit stay texts. */
QVariant scriptArgument(const QString& word, bool asText)
{
    static const QRegularExpression wholeNumber(QStringLiteral("^(0|-?[1-9][0-9]*)$"));
    bool fits = false;
    const int number = word.toInt(&fits);
    return fits && !asText && wholeNumber.match(word).hasMatch() ? QVariant(number) : QVariant(word);
}

// For its answer, whatever that is.
ExitCode runForAnswer(Console& console, const QString& function, const QVariantList& arguments)
{
    QJsonObject answer;
    const ScriptOutcome outcome =
        runCall(console, {QStringLiteral("quenzo_call.py"), QStringLiteral("answer"), arguments},
                ScriptCommands::tr("running"), [&answer](PythonForQt& python, ScriptOutcome&) {
                    answer = QJsonDocument::fromJson(python.getResultAsString().toUtf8()).object();
                });
    if (!outcome.began)
        return failTask(console, {}, outcome);
    if (!answer.contains(QLatin1String("value"))) {
        const QString error = answer.value(QLatin1String("error")).toString();
        console.error(ScriptCommands::tr("%1 gave no answer").arg(function),
                      error.isEmpty() ? outcome.diagnostics : QStringList(error));
        return ExitFailed;
    }
    console.printText(answer.value(QLatin1String("shown")).toString());
    console.set(QStringLiteral("value"), answer.value(QLatin1String("value")));
    return ExitDone;
}

ExitCode runScript(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments();
    const bool asText = parser.isSet(QStringLiteral("text"));
    const QString objection = objectionToStream(words.at(1));
    if (!objection.isEmpty()) {
        console.error({Failure::Usage, QStringLiteral("run: ") + objection});
        return ExitUsage;
    }
    if (!pathExists(console, words.at(1)))
        return ExitFailed;
    QVariantList arguments;
    for (const QString& word : words.mid(3))
        arguments.append(scriptArgument(word, asText));
    if (parser.isSet(QStringLiteral("any")))
        return runForAnswer(console, words.at(2), QVariantList{words.at(1), words.at(2)} + arguments);
    const QVariantMap parameters{{QStringLiteral("toolPath"), words.at(1)},
                                 {QStringLiteral("main"), words.at(2)},
                                 {QStringLiteral("list"), arguments}};
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_RUN_SCRIPT, parameters, ScriptCommands::tr("running"));
    if (!outcome.succeeded) {
        ScriptOutcome told = outcome;
        if (told.diagnostics.isEmpty())
            told.failure.hint = ScriptCommands::tr("--any takes whatever a function answers");
        return failTask(console, ScriptCommands::tr("%1 did not answer \"param\"").arg(words.at(2)), told);
    }
    console.say(ScriptCommands::tr("%1 succeeded").arg(words.at(2)));
    return ExitDone;
}

ExitCode exportChannel(const QCommandLineParser& parser, Console& console)
{
    bool isNumber = false;
    const int channel = parser.positionalArguments().at(1).toInt(&isNumber);
    const QString dest = parser.positionalArguments().at(2);
    if (!isNumber) {
        console.error({Failure::Usage, ScriptCommands::tr("CHANNEL-ID is a whole number")});
        return ExitUsage;
    }
    const QVariantMap parameters{{QStringLiteral("idChannel"), channel}, {QStringLiteral("dest"), dest}};
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_EXPORT_DEVELOP_INFO, parameters, ScriptCommands::tr("exporting"));
    if (!outcome.succeeded) {
        const int answer = outcome.values.value(QStringLiteral("result"), -1).toInt();
        console.set(QStringLiteral("answer"), answer);
        return failTask(console, ScriptCommands::tr("export failed with answer %1").arg(answer), outcome);
    }
    console.say(ScriptCommands::tr("exported channel %1 to %2").arg(QString::number(channel), dest));
    console.set(QStringLiteral("dest"), dest);
    return ExitDone;
}

} // namespace

QVector<Command> scriptCommands()
{
    return {
        {QStringLiteral("run"),
         ScriptCommands::tr("calls a function of a script, which answers \"param\" when all went well"),
         {{QStringLiteral("SCRIPT"), ScriptCommands::tr("the script file")},
          {QStringLiteral("FUNCTION"), ScriptCommands::tr("the function's name")},
          {QStringLiteral("ARG"),
           ScriptCommands::tr("its arguments; whole numbers go as int; negative ones behind a --"),
           Argument::AnyNumber}},
         {{QStringLiteral("text"), ScriptCommands::tr("Passes whole numbers as text, too.")},
          {QStringLiteral("any"),
           ScriptCommands::tr(
               "Prints what the function returns, a text as it is and numbers, lists and maps as JSON.")}},
         runScript},
        {QStringLiteral("export"),
         ScriptCommands::tr("exports a channel's developer information"),
         {{QStringLiteral("CHANNEL-ID"), ScriptCommands::tr("the channel's number")},
          {QStringLiteral("DEST"), ScriptCommands::tr("the folder to fill")}},
         {},
         exportChannel},
    };
}
