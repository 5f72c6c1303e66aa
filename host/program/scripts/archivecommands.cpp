// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "console/figures.h"
#include "scripts/scripttask.h"

#include <pythonforqt.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace {

struct ArchiveCommands {
    Q_DECLARE_TR_FUNCTIONS(ArchiveCommands)
};

const QString sdkOption = QStringLiteral("sdk-id");
const QString dryRunOption = QStringLiteral("dry-run");
const QString apkOption = QStringLiteral("apk");
const QString likeOption = QStringLiteral("like");
const QString ontoOption = QStringLiteral("onto");
const QString archiveScript = QStringLiteral("pytoolForQt.py");
constexpr int imported = 1;

// What the library's task would report of the answer.
QString importText(int answer)
{
    switch (answer) {
    case 100:
        return ArchiveCommands::tr("The imported file is not this SDK");
    case 101:
        return ArchiveCommands::tr("Import file was damaged!");
    case 102:
        return ArchiveCommands::tr("Import file is wrong(config.xml was not found!)");
    case 103:
        return ArchiveCommands::tr("Import file is wrong(Failed to parse config.xml!)");
    case 104:
        return ArchiveCommands::tr("Failed to unzip!");
    default:
        return {};
    }
}

ExitCode failImport(Console& console, int answer, const QString& text, const ScriptOutcome& outcome)
{
    console.set(QStringLiteral("answer"), answer);
    return failTask(
        console,
        ArchiveCommands::tr("import failed with answer %1: %2")
            .arg(QString::number(answer), text.isEmpty() ? ArchiveCommands::tr("no further word") : text),
        outcome);
}

/** Tells file by file what an import would bring. */
ExitCode planImport(Console& console, const QVariantMap& parameters)
{
    const QString dest = parameters.value(QStringLiteral("dest")).toString();
    ScriptCall call{
        archiveScript, QStringLiteral("planImport"), {parameters.value(QStringLiteral("src")), dest}};
    if (parameters.contains(QStringLiteral("idSDK")))
        call.arguments.append(parameters.value(QStringLiteral("idSDK")));
    QStringList words;
    const ScriptOutcome outcome =
        runCall(console, call, ArchiveCommands::tr("reading the package"),
                [&words](PythonForQt& python, ScriptOutcome&) { words = python.getResultAsStrList(); });
    const int answer = words.isEmpty() ? -1 : words.takeFirst().toInt();
    if (answer != imported)
        return failImport(console, answer, importText(answer), outcome);
    QJsonArray entries;
    for (const QString& name : qAsConst(words)) {
        const QString target = dest + QLatin1Char('/') + name;
        const bool replaces = QFileInfo::exists(target);
        const QString line =
            replaces ? ArchiveCommands::tr("%1 -> %2, which is replaced") : ArchiveCommands::tr("%1 -> %2");
        console.print(line.arg(Console::shown(name), Console::shown(target)));
        entries.append(QJsonObject{{QStringLiteral("source"), name},
                                   {QStringLiteral("target"), target},
                                   {QStringLiteral("replaces"), replaces}});
    }
    console.print(ArchiveCommands::tr("would import files: %1").arg(words.size()));
    console.set(QStringLiteral("dest"), dest);
    console.set(QStringLiteral("dryRun"), true);
    console.set(QStringLiteral("entries"), entries);
    return ExitDone;
}

ExitCode importPackage(const QCommandLineParser& parser, Console& console)
{
    const QString package = parser.positionalArguments().at(1);
    const QString dest = parser.positionalArguments().at(2);
    QVariantMap parameters{{QStringLiteral("src"), package}, {QStringLiteral("dest"), dest}};
    if (parser.isSet(sdkOption)) {
        bool isNumber = false;
        const int id = parser.value(sdkOption).toInt(&isNumber);
        // One below 0 would switch the check off.
        if (!isNumber || id < 0) {
            console.error(
                {Failure::Usage, ArchiveCommands::tr("--sdk-id takes a whole number that is not negative")});
            return ExitUsage;
        }
        parameters.insert(QStringLiteral("idSDK"), id);
    }
    if (!pathExists(console, package))
        return ExitFailed;
    if (parser.isSet(dryRunOption))
        return planImport(console, parameters);
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_IMPORT_SDK, parameters, ArchiveCommands::tr("importing"));
    if (!outcome.succeeded)
        return failImport(console, outcome.values.value(QStringLiteral("error_code"), -1).toInt(),
                          outcome.values.value(QStringLiteral("error_str")).toString(), outcome);
    console.say(ArchiveCommands::tr("imported %1 into %2").arg(package, dest));
    console.set(QStringLiteral("dest"), dest);
    return ExitDone;
}

/** Packs after the model of a base, for which the library has no task. */
ScriptOutcome packWithBase(const QCommandLineParser& parser, Console& console, const QString& option)
{
    const QStringList words = parser.positionalArguments();
    const ScriptCall call{archiveScript,
                          option == likeOption ? QStringLiteral("zipLike") : QStringLiteral("zipOnto"),
                          {words.at(1), words.at(2), parser.value(apkOption), parser.value(option)}};
    return runCall(console, call, ArchiveCommands::tr("packing"),
                   [](PythonForQt& python, ScriptOutcome& outcome) {
                       outcome.succeeded = python.getResultAsInt() == 0;
                   });
}

/** Packs a folder; the library's task reports nothing, but a script that failed has left a message. */
ScriptOutcome packAlone(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments();
    ScriptOutcome outcome = runTask(console, PYTHON_TOOL_ZIP,
                                    {{QStringLiteral("src"), words.at(1)},
                                     {QStringLiteral("dest"), words.at(2)},
                                     {QStringLiteral("apkfile"), parser.value(apkOption)}},
                                    ArchiveCommands::tr("packing"));
    outcome.succeeded = outcome.diagnostics.isEmpty();
    return outcome;
}

ExitCode packFolder(const QCommandLineParser& parser, Console& console)
{
    if (parser.isSet(likeOption) && parser.isSet(ontoOption)) {
        console.error({Failure::Usage, ArchiveCommands::tr("--like and --onto exclude each other")});
        return ExitUsage;
    }
    const QString folder = parser.positionalArguments().at(1);
    const QString archive = parser.positionalArguments().at(2);
    if (!pathExists(console, folder))
        return ExitFailed;
    for (const QString& option : {apkOption, likeOption, ontoOption}) {
        if (!parser.value(option).isEmpty() && !pathExists(console, parser.value(option)))
            return ExitFailed;
    }
    ScriptOutcome outcome;
    if (parser.isSet(likeOption) || parser.isSet(ontoOption))
        outcome = packWithBase(parser, console, parser.isSet(likeOption) ? likeOption : ontoOption);
    else
        outcome = packAlone(parser, console);
    const QFileInfo result(archive);
    if (!outcome.succeeded || !result.isFile())
        return failTask(console, ArchiveCommands::tr("packing failed"), outcome);
    console.say(ArchiveCommands::tr("packed %1 into %2, %3").arg(folder, archive, sizeText(result.size())));
    console.set(QStringLiteral("archive"), archive);
    console.set(QStringLiteral("bytes"), result.size());
    return ExitDone;
}

ExitCode unpackArchive(const QCommandLineParser& parser, Console& console)
{
    const QString archive = parser.positionalArguments().at(1);
    const QString folder = parser.positionalArguments().at(2);
    if (!pathExists(console, archive))
        return ExitFailed;
    const QVariantMap parameters{{QStringLiteral("src"), archive}, {QStringLiteral("dest"), folder}};
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_UNZIP, parameters, ArchiveCommands::tr("unpacking"));
    if (!outcome.diagnostics.isEmpty() || !QFileInfo(folder).isDir())
        return failTask(console, ArchiveCommands::tr("unpacking failed"), outcome);
    console.say(ArchiveCommands::tr("unpacked %1 into %2").arg(archive, folder));
    console.set(QStringLiteral("folder"), folder);
    return ExitDone;
}

} // namespace

QVector<Command> archiveCommands()
{
    const QString base = QStringLiteral("BASE");
    const Argument folder{QStringLiteral("FOLDER"), ArchiveCommands::tr("the folder")};
    const Argument archive{QStringLiteral("ARCHIVE"), ArchiveCommands::tr("the archive file")};
    return {
        {QStringLiteral("import"),
         ArchiveCommands::tr("imports a channel SDK package"),
         {{QStringLiteral("PACKAGE"), ArchiveCommands::tr("the package file")},
          {QStringLiteral("DEST"), ArchiveCommands::tr("the folder to fill")}},
         {{sdkOption, ArchiveCommands::tr("Refuses a package of another SDK number."), QStringLiteral("N")},
          {{QStringLiteral("n"), dryRunOption},
           ArchiveCommands::tr("Tells file by file what would be done, and does nothing.")}},
         importPackage},
        {QStringLiteral("pack"),
         ArchiveCommands::tr("packs a folder into an archive"),
         {folder, archive},
         {{apkOption, ArchiveCommands::tr("Adds this file beside the folder's contents."),
           QStringLiteral("APK")},
          {likeOption,
           ArchiveCommands::tr(
               "Keeps the order of this archive, and takes over as it was packed what is equal there."),
           base},
          {ontoOption, ArchiveCommands::tr("Packs the folder over the entries of this archive."), base}},
         packFolder,
         ArchiveCommands::tr(
             "With --like or --onto what was stored in the base stays stored, and its signature is left out: "
             "sign the result.")},
        {QStringLiteral("unpack"),
         ArchiveCommands::tr("unpacks an archive into a folder"),
         {archive, folder},
         {},
         unpackArchive},
    };
}
