// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "console/figures.h"
#include "console/standardstreams.h"
#include "scripts/archivestream.h"
#include "scripts/scripttask.h"

#include <pythonforqt.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <optional>

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
const QLatin1String standardStream("-");
constexpr int imported = 1;

ExitCode failWords(Console& console, const QString& text)
{
    console.error({Failure::Usage, text});
    return ExitUsage;
}

/** An archive to be read, which may come from the standard input. */
struct GivenArchive {
    QString path;
    QString name; ///< for people
    std::optional<ArchiveStream> stream;
};

// What ends the command if the archive cannot be read, which has been reported; nothing else.
std::optional<ExitCode> failureToOpen(GivenArchive& archive, Console& console)
{
    archive.name = archive.path;
    if (archive.path != standardStream)
        return pathExists(console, archive.path) ? std::nullopt : std::optional<ExitCode>(ExitFailed);
    if (StandardStreams::inputIsTerminal())
        return failWords(console,
                         ArchiveCommands::tr("no archive can be typed: lead one to the standard input"));
    archive.name = ArchiveCommands::tr("the standard input");
    archive.stream.emplace(console);
    if (!archive.stream->isReady() || !archive.stream->takeInput())
        return ExitFailed;
    archive.path = archive.stream->path();
    return std::nullopt;
}

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
        const QString line = replaces ? ArchiveCommands::tr("would import '%1' to '%2', which is replaced")
                                      : ArchiveCommands::tr("would import '%1' to '%2'");
        console.print(line.arg(Console::shown(name), Console::shown(target)));
        entries.append(QJsonObject{{QStringLiteral("source"), name},
                                   {QStringLiteral("target"), target},
                                   {QStringLiteral("replaces"), replaces}});
    }
    console.say(ArchiveCommands::tr("would import files: %1").arg(words.size()));
    console.set(QStringLiteral("dest"), dest);
    console.set(QStringLiteral("dryRun"), true);
    console.set(QStringLiteral("entries"), entries);
    return ExitDone;
}

ExitCode importPackage(const QCommandLineParser& parser, Console& console)
{
    GivenArchive package{parser.positionalArguments().at(1), {}, {}};
    const QString dest = parser.positionalArguments().at(2);
    QVariantMap parameters{{QStringLiteral("dest"), dest}};
    if (parser.isSet(sdkOption)) {
        bool isNumber = false;
        const int id = parser.value(sdkOption).toInt(&isNumber);
        // One below 0 would switch the check off.
        if (!isNumber || id < 0) {
            return failWords(console,
                             ArchiveCommands::tr("--sdk-id takes a whole number that is not negative"));
        }
        parameters.insert(QStringLiteral("idSDK"), id);
    }
    if (const auto failure = failureToOpen(package, console))
        return *failure;
    parameters.insert(QStringLiteral("src"), package.path);
    if (parser.isSet(dryRunOption))
        return planImport(console, parameters);
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_IMPORT_SDK, parameters, ArchiveCommands::tr("importing"));
    if (!outcome.succeeded)
        return failImport(console, outcome.values.value(QStringLiteral("error_code"), -1).toInt(),
                          outcome.values.value(QStringLiteral("error_str")).toString(), outcome);
    console.say(ArchiveCommands::tr("imported %1 into %2").arg(package.name, dest));
    console.set(QStringLiteral("dest"), dest);
    return ExitDone;
}

/** Packs after the model of a base, for which the library has no task. */
ScriptOutcome packWithBase(const QCommandLineParser& parser, const QString& archive, Console& console)
{
    const QString option = parser.isSet(likeOption) ? likeOption : ontoOption;
    const ScriptCall call{
        archiveScript,
        option == likeOption ? QStringLiteral("zipLike") : QStringLiteral("zipOnto"),
        {parser.positionalArguments().at(1), archive, parser.value(apkOption), parser.value(option)}};
    return runCall(console, call, ArchiveCommands::tr("packing"),
                   [](PythonForQt& python, ScriptOutcome& outcome) {
                       outcome.succeeded = python.getResultAsInt() == 0;
                   });
}

/** Packs a folder; the library's task reports nothing, but a script that failed has left a message. */
ScriptOutcome packAlone(const QCommandLineParser& parser, const QString& archive, Console& console)
{
    ScriptOutcome outcome = runTask(console, PYTHON_TOOL_ZIP,
                                    {{QStringLiteral("src"), parser.positionalArguments().at(1)},
                                     {QStringLiteral("dest"), archive},
                                     {QStringLiteral("apkfile"), parser.value(apkOption)}},
                                    ArchiveCommands::tr("packing"));
    outcome.succeeded = outcome.diagnostics.isEmpty();
    return outcome;
}

// What is wrong with the words, if anything.
QString objectionToPack(const QCommandLineParser& parser)
{
    if (parser.isSet(likeOption) && parser.isSet(ontoOption))
        return ArchiveCommands::tr("--like and --onto exclude each other");
    if (parser.positionalArguments().at(2) != standardStream)
        return {};
    if (parser.isSet(QStringLiteral("json")))
        return ArchiveCommands::tr("the standard output is either for --json or for the archive");
    if (Console::outputIsTerminal())
        return ArchiveCommands::tr(
            "an archive is nothing for a terminal: lead the standard output elsewhere");
    return {};
}

ExitCode packInto(const QCommandLineParser& parser, const QString& archive, Console& console)
{
    const bool hasBase = parser.isSet(likeOption) || parser.isSet(ontoOption);
    const ScriptOutcome outcome =
        hasBase ? packWithBase(parser, archive, console) : packAlone(parser, archive, console);
    if (!outcome.succeeded || !QFileInfo(archive).isFile())
        return failTask(console, ArchiveCommands::tr("packing failed"), outcome);
    return ExitDone;
}

void tellPacked(const QString& folder, const QString& archive, qint64 bytes, Console& console)
{
    console.say(ArchiveCommands::tr("packed %1 into %2, %3").arg(folder, archive, sizeText(bytes)));
    console.set(QStringLiteral("archive"), archive);
    console.set(QStringLiteral("bytes"), bytes);
}

ExitCode packFolder(const QCommandLineParser& parser, Console& console)
{
    const QString objection = objectionToPack(parser);
    if (!objection.isEmpty())
        return failWords(console, objection);
    const QString folder = parser.positionalArguments().at(1);
    const QString archive = parser.positionalArguments().at(2);
    if (!pathExists(console, folder))
        return ExitFailed;
    for (const QString& option : {apkOption, likeOption, ontoOption}) {
        if (!parser.value(option).isEmpty() && !pathExists(console, parser.value(option)))
            return ExitFailed;
    }
    if (archive != standardStream) {
        const ExitCode code = packInto(parser, archive, console);
        if (code == ExitDone)
            tellPacked(folder, archive, QFileInfo(archive).size(), console);
        return code;
    }
    console.leaveOutputFree();
    ArchiveStream stream(console);
    if (!stream.isReady() || packInto(parser, stream.path(), console) != ExitDone || !stream.giveOutput())
        return ExitFailed;
    if (StandardStreams::outputError().isEmpty())
        tellPacked(folder, ArchiveCommands::tr("the standard output"), QFileInfo(stream.path()).size(),
                   console);
    return ExitDone;
}

ExitCode unpackArchive(const QCommandLineParser& parser, Console& console)
{
    GivenArchive archive{parser.positionalArguments().at(1), {}, {}};
    const QString folder = parser.positionalArguments().at(2);
    if (const auto failure = failureToOpen(archive, console))
        return *failure;
    const QVariantMap parameters{{QStringLiteral("src"), archive.path}, {QStringLiteral("dest"), folder}};
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_UNZIP, parameters, ArchiveCommands::tr("unpacking"));
    if (!outcome.diagnostics.isEmpty() || !QFileInfo(folder).isDir())
        return failTask(console, ArchiveCommands::tr("unpacking failed"), outcome);
    console.say(ArchiveCommands::tr("unpacked %1 into %2").arg(archive.name, folder));
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
         {{QStringLiteral("PACKAGE"), ArchiveCommands::tr("the package file; - is the standard input")},
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
             "sign the result. As ARCHIVE - is the standard output; a file of this name is ./-.")},
        {QStringLiteral("unpack"),
         ArchiveCommands::tr("unpacks an archive into a folder"),
         {archive, folder},
         {},
         unpackArchive,
         ArchiveCommands::tr("As ARCHIVE - is the standard input; a file of this name is ./-.")},
    };
}
