// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "console/progress.h"
#include "console/worker.h"

#include <pythonforqt.h>
#include <pythontoolthread.h>
#include <quenzobase.h>
#include <quenzotool.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <functional>
#include <memory>

namespace {

struct ScriptCommands {
    Q_DECLARE_TR_FUNCTIONS(ScriptCommands)
};

const QString keyOption = QStringLiteral("key");

struct Outcome {
    bool began = true; // what kept it from beginning has been reported
    bool reported = false;
    bool succeeded = false;
    QVariantMap values;
    QStringList diagnostics;
};

/** Runs one task on the worker thread, under a running event loop. */
Outcome runTask(Console& console, PYTHON_TOOL_OPERATE operate, const QVariantMap& parameters,
                const QString& doing)
{
    Outcome outcome;
    if (!QuenzoTool::initPythonEnv()) {
        outcome.diagnostics = Diagnostics::takeAll();
        return outcome;
    }
    PythonToolThread thread;
    QObject::connect(&thread, &PythonToolThread::onTaskFinsih, &thread,
                     [&outcome](int, const QVariantMap* values, bool succeeded) {
                         outcome.reported = true;
                         outcome.succeeded = succeeded;
                         if (values != nullptr)
                             outcome.values = *values;
                     });
    thread.StartOperate(operate, parameters);
    outcome.began = runWorker(thread, console, [&doing] { return Progress{doing}; });
    // The signal was queued before the thread's end was.
    outcome.diagnostics = Diagnostics::takeAll();
    return outcome;
}

ExitCode fail(Console& console, const QString& what, const Outcome& outcome)
{
    if (!outcome.began)
        return ExitFailed;
    console.error(what, outcome.diagnostics);
    return ExitFailed;
}

bool exists(Console& console, const QString& path)
{
    if (QFileInfo::exists(path))
        return true;
    console.error({Failure::NotFound, ScriptCommands::tr("'%1' does not exist").arg(path)});
    return false;
}

ExitCode importPackage(const QCommandLineParser& parser, Console& console)
{
    const QString package = parser.positionalArguments().at(1);
    const QString dest = parser.positionalArguments().at(2);
    QVariantMap parameters{{QStringLiteral("src"), package}, {QStringLiteral("dest"), dest}};
    const QString sdkOption = QStringLiteral("sdk-id");
    if (parser.isSet(sdkOption)) {
        bool isNumber = false;
        const int id = parser.value(sdkOption).toInt(&isNumber);
        // One below 0 would switch the check off.
        if (!isNumber || id < 0) {
            console.error(
                {Failure::Usage, ScriptCommands::tr("--sdk-id takes a whole number that is not negative")});
            return ExitUsage;
        }
        parameters.insert(QStringLiteral("idSDK"), id);
    }
    if (!exists(console, package))
        return ExitFailed;
    const Outcome outcome =
        runTask(console, PYTHON_TOOL_IMPORT_SDK, parameters, ScriptCommands::tr("importing"));
    if (outcome.succeeded) {
        console.say(ScriptCommands::tr("imported %1 into %2").arg(package, dest));
        console.set(QStringLiteral("dest"), dest);
        return ExitDone;
    }
    const int code = outcome.values.value(QStringLiteral("error_code"), -1).toInt();
    const QString text = outcome.values.value(QStringLiteral("error_str")).toString();
    console.set(QStringLiteral("answer"), code);
    return fail(
        console,
        ScriptCommands::tr("import failed with answer %1: %2")
            .arg(QString::number(code), text.isEmpty() ? ScriptCommands::tr("no further word") : text),
        outcome);
}

/** Decrypts on a thread of its own: the library has a task for the way there only. */
Outcome runDecryption(Console& console, const QString& apk)
{
    Outcome outcome;
    if (!QuenzoTool::initPythonEnv()) {
        outcome.diagnostics = Diagnostics::takeAll();
        return outcome;
    }
    int answer = -1;
    const std::unique_ptr<QThread> worker(QThread::create([&answer, &apk] {
        const QString runPath = QuenzoBase::getRunPath();
        PythonForQt python;
        python.callScript(runPath + QStringLiteral("/../Script/encrypt.py"), QStringLiteral("decryptApk"),
                          {runPath, apk}, true);
        answer = python.getResultAsInt();
    }));
    outcome.began = runWorker(*worker, console, [] { return Progress{ScriptCommands::tr("decrypting")}; });
    outcome.diagnostics = Diagnostics::takeAll();
    outcome.succeeded = answer == 0;
    outcome.values.insert(QStringLiteral("result"), answer);
    return outcome;
}

/** Calls what works on the assets of the APK, after the key's file has been named to the script. */
ExitCode workOnAssets(const QCommandLineParser& parser, Console& console,
                      const std::function<Outcome(const QString& apk)>& work, const QString& doneText,
                      const QString& failedText)
{
    const QString apk = parser.positionalArguments().at(1);
    if (parser.isSet(keyOption)) {
        const QString key = parser.value(keyOption);
        // An empty name would mean the person's own key.
        if (key.isEmpty()) {
            console.error({Failure::Usage, ScriptCommands::tr("--key takes the name of a file")});
            return ExitUsage;
        }
        qputenv("QUENZO_KEY", QFile::encodeName(key)); // the interpreter reads it when it starts
    }
    if (!exists(console, apk))
        return ExitFailed;
    const Outcome outcome = work(apk);
    const int answer = outcome.values.value(QStringLiteral("result"), -1).toInt();
    console.set(QStringLiteral("answer"), answer);
    if (!outcome.succeeded)
        return fail(console, failedText.arg(answer), outcome);
    console.say(doneText.arg(apk));
    return ExitDone;
}

ExitCode encryptApk(const QCommandLineParser& parser, Console& console)
{
    const auto work = [&console](const QString& apk) {
        return runTask(console, PYTHON_TOOL_ENCRYPT, {{QStringLiteral("apkfile"), apk}},
                       ScriptCommands::tr("encrypting"));
    };
    return workOnAssets(parser, console, work, ScriptCommands::tr("encrypted %1"),
                        ScriptCommands::tr("encryption failed with answer %1"));
}

ExitCode decryptApk(const QCommandLineParser& parser, Console& console)
{
    const auto work = [&console](const QString& apk) { return runDecryption(console, apk); };
    return workOnAssets(parser, console, work, ScriptCommands::tr("decrypted %1"),
                        ScriptCommands::tr("decryption failed with answer %1"));
}

ExitCode packFolder(const QCommandLineParser& parser, Console& console)
{
    const QString folder = parser.positionalArguments().at(1);
    const QString archive = parser.positionalArguments().at(2);
    const QString apk = parser.value(QStringLiteral("apk"));
    if (!exists(console, folder) || (!apk.isEmpty() && !exists(console, apk)))
        return ExitFailed;
    const QVariantMap parameters{
        {QStringLiteral("src"), folder}, {QStringLiteral("dest"), archive}, {QStringLiteral("apkfile"), apk}};
    const Outcome outcome = runTask(console, PYTHON_TOOL_ZIP, parameters, ScriptCommands::tr("packing"));
    // The task reports nothing; a script that failed has left a message.
    const QFileInfo result(archive);
    if (!outcome.diagnostics.isEmpty() || !result.isFile())
        return fail(console, ScriptCommands::tr("packing failed"), outcome);
    console.say(ScriptCommands::tr("packed %1 into %2, %3 bytes").arg(folder, archive).arg(result.size()));
    console.set(QStringLiteral("archive"), archive);
    console.set(QStringLiteral("bytes"), result.size());
    return ExitDone;
}

ExitCode unpackArchive(const QCommandLineParser& parser, Console& console)
{
    const QString archive = parser.positionalArguments().at(1);
    const QString folder = parser.positionalArguments().at(2);
    if (!exists(console, archive))
        return ExitFailed;
    const QVariantMap parameters{{QStringLiteral("src"), archive}, {QStringLiteral("dest"), folder}};
    const Outcome outcome = runTask(console, PYTHON_TOOL_UNZIP, parameters, ScriptCommands::tr("unpacking"));
    if (!outcome.diagnostics.isEmpty() || !QFileInfo(folder).isDir())
        return fail(console, ScriptCommands::tr("unpacking failed"), outcome);
    console.say(ScriptCommands::tr("unpacked %1 into %2").arg(archive, folder));
    console.set(QStringLiteral("folder"), folder);
    return ExitDone;
}

/** A whole number in its usual form becomes an int; "007" and what does not fit stay texts. */
QVariant scriptArgument(const QString& word, bool asText)
{
    static const QRegularExpression wholeNumber(QStringLiteral("^(0|-?[1-9][0-9]*)$"));
    bool fits = false;
    const int number = word.toInt(&fits);
    return fits && !asText && wholeNumber.match(word).hasMatch() ? QVariant(number) : QVariant(word);
}

ExitCode runScript(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments();
    const bool asText = parser.isSet(QStringLiteral("text"));
    if (!exists(console, words.at(1)))
        return ExitFailed;
    QVariantList arguments;
    for (const QString& word : words.mid(3))
        arguments.append(scriptArgument(word, asText));
    const QVariantMap parameters{{QStringLiteral("toolPath"), words.at(1)},
                                 {QStringLiteral("main"), words.at(2)},
                                 {QStringLiteral("list"), arguments}};
    const Outcome outcome =
        runTask(console, PYTHON_TOOL_RUN_SCRIPT, parameters, ScriptCommands::tr("running"));
    if (!outcome.succeeded)
        return fail(console, ScriptCommands::tr("%1 did not answer \"param\"").arg(words.at(2)), outcome);
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
    const Outcome outcome =
        runTask(console, PYTHON_TOOL_EXPORT_DEVELOP_INFO, parameters, ScriptCommands::tr("exporting"));
    if (!outcome.succeeded) {
        const int answer = outcome.values.value(QStringLiteral("result"), -1).toInt();
        console.set(QStringLiteral("answer"), answer);
        return fail(console, ScriptCommands::tr("export failed with answer %1").arg(answer), outcome);
    }
    console.say(ScriptCommands::tr("exported channel %1 to %2").arg(QString::number(channel), dest));
    console.set(QStringLiteral("dest"), dest);
    return ExitDone;
}

} // namespace

QVector<Command> scriptCommands()
{
    using C = ScriptCommands;
    const auto option = [](const char* name, const QString& description, const QString& value = {}) {
        return QCommandLineOption(QLatin1String(name), description, value);
    };
    const QCommandLineOption key =
        option("key", C::tr("The key's file, instead of QUENZO_KEY or your own."), QStringLiteral("FILE"));
    const Argument apk{QStringLiteral("APK"), C::tr("the APK file")};
    const Argument folder{QStringLiteral("FOLDER"), C::tr("the folder")};
    const Argument archive{QStringLiteral("ARCHIVE"), C::tr("the archive file")};
    const Argument dest{QStringLiteral("DEST"), C::tr("the folder to fill")};
    return {
        {QStringLiteral("import"),
         C::tr("imports a channel SDK package"),
         {{QStringLiteral("PACKAGE"), C::tr("the package file")}, dest},
         {option("sdk-id", C::tr("Refuses a package of another SDK number."), QStringLiteral("N"))},
         importPackage},
        {QStringLiteral("encrypt"),
         C::tr("encrypts the assets of an APK in place"),
         {apk},
         {key},
         encryptApk},
        {QStringLiteral("decrypt"),
         C::tr("gives the assets of an encrypted APK their bytes back"),
         {apk},
         {key},
         decryptApk},
        {QStringLiteral("pack"),
         C::tr("packs a folder into an archive"),
         {folder, archive},
         {option("apk", C::tr("Adds this file beside the folder's contents."), QStringLiteral("APK"))},
         packFolder},
        {QStringLiteral("unpack"),
         C::tr("unpacks an archive into a folder"),
         {archive, folder},
         {},
         unpackArchive},
        {QStringLiteral("run"),
         C::tr("calls a function of a script, which answers \"param\" when all went well"),
         {{QStringLiteral("SCRIPT"), C::tr("the script file")},
          {QStringLiteral("FUNCTION"), C::tr("the function's name")},
          {QStringLiteral("ARG"), C::tr("its arguments; whole numbers go as int; negative ones behind a --"),
           Argument::AnyNumber}},
         {option("text", C::tr("Passes whole numbers as text, too."))},
         runScript},
        {QStringLiteral("export"),
         C::tr("exports a channel's developer information"),
         {{QStringLiteral("CHANNEL-ID"), C::tr("the channel's number")}, dest},
         {},
         exportChannel},
    };
}
