// SPDX-License-Identifier: MIT
#include "build/jobinputs.h"
#include "build/jobtemplate.h"
#include "command.h"
#include "console/console.h"
#include "fileidentity.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

namespace {

struct JobCommands {
    Q_DECLARE_TR_FUNCTIONS(JobCommands)
};

const QString baseOption = QStringLiteral("base");
const QString iconOption = QStringLiteral("icon");
const QString marksOption = QStringLiteral("marks");

// Joined by hand: Qt takes a leading colon for the name of a built-in resource. Empty in a folder that is
// gone.
QString absolute(const QString& path)
{
    const QString current = QDir::currentPath();
    if (path.startsWith(QLatin1Char('/')) || path.isEmpty())
        return path;
    return current.startsWith(QLatin1Char('/')) ? current + QLatin1Char('/') + path : QString();
}

// The file that an option names; what is wrong with it is told.
QString ownFile(const QCommandLineParser& parser, const QString& option, QString (*check)(const QString&),
                bool& isSound, Console& console)
{
    if (!parser.isSet(option))
        return {};
    QString path = absolute(parser.value(option));
    QString fault = JobObject::faultOfText(path); // the job would be none
    if (fault.isEmpty())
        fault = check(path);
    if (fault.isEmpty())
        return path;
    isSound = false;
    console.error({Failure::BadInput, QStringLiteral("--%1 %2").arg(option, fault)});
    return {};
}

ExitCode makeJob(const QCommandLineParser& parser, Console& console)
{
    const QString word = parser.positionalArguments().at(1);
    const QString path = absolute(word);
    if (path.isEmpty()) {
        console.error({Failure::Usage, JobCommands::tr("'%1' is no folder that can be made").arg(word)});
        return ExitUsage;
    }
    bool isSound = true;
    JobTemplate::OwnFiles own;
    own.base = ownFile(parser, baseOption, JobInputs::faultOfArchive, isSound, console);
    own.icon = ownFile(parser, iconOption, JobInputs::faultOfPicture, isSound, console);
    own.marks = ownFile(parser, marksOption, JobInputs::faultOfFolder, isSound, console);
    if (!isSound)
        return ExitFailed;
    const QString folder = placeOf(path);
    const QString objection = JobTemplate::objectionTo(folder);
    if (!objection.isEmpty()) {
        console.error({Failure::Refused, objection});
        return ExitFailed;
    }
    const QString fault = JobTemplate::write(folder, own);
    if (!fault.isEmpty()) {
        console.error(fault);
        return ExitFailed;
    }
    const QString job = folder + QStringLiteral("/job.json");
    console.set(QStringLiteral("job"), job);
    console.say(JobCommands::tr("wrote %1; quenzo build %1 makes the packages").arg(job));
    return ExitDone;
}

} // namespace

QVector<Command> jobCommands()
{
    Command init;
    init.name = QStringLiteral("init");
    init.summary = JobCommands::tr("writes a job to begin with");
    init.arguments = {
        {QStringLiteral("FOLDER"), JobCommands::tr("where it is written; must be empty or missing")}};
    init.options = {
        {baseOption, JobCommands::tr("Your own game's APK, instead of the sample game."),
         QStringLiteral("APK")},
        {iconOption, JobCommands::tr("Your own icon, instead of the sample's."), QStringLiteral("FILE")},
        {marksOption,
         JobCommands::tr("Your own folder of marks, instead of the sample's: each becomes a channel."),
         QStringLiteral("DIR")},
    };
    init.details =
        JobCommands::tr("The job, FOLDER/job.json, can be built as it stands, and comments in it tell what "
                        "else it may say. Files of your own stay where they are: the job names them. The "
                        "sample's are copied.");
    init.run = makeJob;
    return {init};
}
