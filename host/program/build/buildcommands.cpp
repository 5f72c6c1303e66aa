// SPDX-License-Identifier: MIT
#include "command.h"

#include "build/buildreport.h"
#include "build/buildrun.h"
#include "build/jobplan.h"
#include "build/sheets.h"
#include "console/console.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QSet>

namespace {

struct BuildCommands {
    Q_DECLARE_TR_FUNCTIONS(BuildCommands)
};

const QString checkOption = QStringLiteral("check");
const QString forceOption = QStringLiteral("force");
const QString onlyOption = QStringLiteral("only");
const QString jobsOption = QStringLiteral("jobs");
const QString sliceOption = QStringLiteral("slice");
const QString slicesOption = QStringLiteral("slices");
const QString collectOption = QStringLiteral("collect");
const QString installOption = QStringLiteral("install");
const QString deviceOption = QStringLiteral("device");
const QString yesOption = QStringLiteral("yes");
const QString shareOption = QStringLiteral("share");

ExitCode failWords(Console& console, const QString& text)
{
    console.error({Failure::Usage, text});
    return ExitUsage;
}

// "2/4": the second of four.
bool readShare(const QString& words, int& share, int& shares)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,4})/([0-9]{1,4})$"));
    const QRegularExpressionMatch match = form.match(words);
    share = match.captured(1).toInt() - 1;
    shares = match.captured(2).toInt();
    return match.hasMatch() && share >= 0 && share < shares;
}

bool readJob(const QString& path, Job& job, Console& console)
{
    QVector<JobFault> faults;
    job = JobFile::read(path, faults);
    if (!faults.isEmpty())
        JobPlan::report(path, faults, console);
    return faults.isEmpty();
}

// The job's channels that no slice tells of.
QVector<ChannelOutcome> neverReached(const Job& job, const BuildOutcome& build)
{
    QSet<QString> told;
    for (const ChannelOutcome& channel : build.channels)
        told.insert(channel.folder);
    QVector<ChannelOutcome> rest;
    for (int i = 0; i < job.channels.size(); ++i) {
        ChannelOutcome channel;
        channel.index = i;
        channel.folder = job.channels.at(i).folder;
        channel.name = job.channels.at(i).name;
        if (!told.contains(channel.folder))
            rest.append(channel);
    }
    return rest;
}

ExitCode collectSlices(const Job& job, Console& console)
{
    QStringList files;
    const QDir slices(job.output + QStringLiteral("/slices"));
    for (const QString& slice : slices.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString file = slices.filePath(slice) + QStringLiteral("/report.json");
        if (QFileInfo::exists(file))
            files.append(file);
    }
    BuildOutcome build;
    QString fault;
    const bool complete = BuildReport::collect(files, build, fault);
    if (!complete)
        console.error({files.isEmpty() ? Failure::NotFound : Failure::Failed, fault});
    if (files.isEmpty())
        return ExitFailed;
    build.channels += neverReached(job, build);
    drawSheets(job, build, job.output, console);
    const QString unwritten = BuildReport::write(build, job.output);
    if (!unwritten.isEmpty())
        console.error(unwritten);
    return tellBuild(build, console) && complete && unwritten.isEmpty() ? ExitDone : ExitFailed;
}

// Goes on as "quenzo install" does.
ExitCode install(const QCommandLineParser& parser, const QString& package, Console& console)
{
    QStringList words{QStringLiteral("quenzo"), QStringLiteral("install"), package};
    if (parser.isSet(yesOption))
        words.append(QStringLiteral("--yes"));
    if (parser.isSet(deviceOption))
        words += {QStringLiteral("--device"), parser.value(deviceOption)};
    for (const Command& command : deviceCommands()) {
        QCommandLineParser own;
        own.addOptions(command.options);
        if (command.name == words.at(1) && own.parse(words))
            return command.run(own, console);
    }
    return ExitUsage;
}

// The first of the folders that no channel has; empty when each is one's.
QString unknownChannel(const QStringList& folders, const Job& job)
{
    QStringList unknown = folders;
    for (const JobChannel& channel : job.channels)
        unknown.removeAll(channel.folder);
    return unknown.value(0);
}

// What speaks against installing a channel's package after the build; empty when nothing does.
QString objectionToInstall(const QCommandLineParser& parser, const Job& job, const BuildWishes& wishes)
{
    const QString wanted = parser.value(installOption);
    for (int i = 0; i < job.channels.size(); ++i) {
        if (job.channels.at(i).folder == wanted && wishes.takes(i, job.channels.at(i)))
            return parser.isSet(yesOption) || Console::isInteractive()
                ? QString()
                : BuildCommands::tr(
                    "--install removes a package and its data: --yes is needed where nobody can be asked");
    }
    return BuildCommands::tr("--install: there is no channel '%1' to be built").arg(wanted);
}

// What is wrong with the words themselves; empty when nothing is.
QString readWishes(const QCommandLineParser& parser, BuildWishes& wishes)
{
    QString fault;
    wishes.slice = Slice::of(parser.value(sliceOption), parser.value(slicesOption),
                             QProcessEnvironment::systemEnvironment(), fault);
    if (!fault.isEmpty())
        return fault;
    bool isNumber = true;
    wishes.processes = parser.isSet(jobsOption) ? parser.value(jobsOption).toInt(&isNumber) : 1;
    constexpr int mostProcesses = 256;
    if (!isNumber || wishes.processes < 1 || wishes.processes > mostProcesses)
        return BuildCommands::tr("--jobs takes a number from 1 to %1").arg(mostProcesses);
    wishes.force = parser.isSet(forceOption);
    wishes.only = parser.values(onlyOption);
    return {};
}

ExitCode buildJob(const QCommandLineParser& parser, Console& console)
{
    const QString path = parser.positionalArguments().at(1);
    const bool isCheck = parser.isSet(checkOption);
    Job job;
    if (parser.isSet(collectOption) && !isCheck) // of whatever slices there are, even in one of them
        return readJob(path, job, console) ? collectSlices(job, console) : ExitFailed;
    BuildWishes wishes;
    QString fault = readWishes(parser, wishes);
    if (!fault.isEmpty())
        return failWords(console, fault);
    if (!readJob(path, job, console))
        return ExitFailed;
    const QString unknown = unknownChannel(wishes.only, job);
    if (!unknown.isEmpty())
        return failWords(console, BuildCommands::tr("--only: there is no channel '%1'").arg(unknown));
    if (isCheck) {
        job.channels = wishes.channelsOf(job);
        return checkJob(job, console);
    }
    if (parser.isSet(shareOption)) {
        int share = 0;
        int shares = 1;
        if (!readShare(parser.value(shareOption), share, shares))
            return failWords(console, BuildCommands::tr("--share takes words like 1/4"));
        return BuildRun::serve(job, wishes.slice, share, shares);
    }
    if (!parser.isSet(installOption))
        return BuildRun(job, wishes, console).run();
    fault = objectionToInstall(parser, job, wishes);
    if (!fault.isEmpty())
        return failWords(console, fault);
    const ExitCode built = BuildRun(job, wishes, console).run();
    const QString package =
        BuildRun::placesOf(job, wishes.slice).finishedPackage(parser.value(installOption));
    // Another channel's failure is no reason to leave this one out.
    if (!QFileInfo::exists(package))
        return built;
    const ExitCode installed = install(parser, package, console);
    return built == ExitDone ? installed : built;
}

} // namespace

QVector<Command> buildCommands()
{
    Command build;
    build.name = QStringLiteral("build");
    build.summary = BuildCommands::tr("makes every channel's package of a job");
    build.arguments = {{QStringLiteral("JOB"), BuildCommands::tr("The job's file, JSON.")}};
    QCommandLineOption share(shareOption, {}, QStringLiteral("I/N"));
    share.setFlags(QCommandLineOption::HiddenFromHelp); // for the processes of --jobs
    build.options = {
        {{QStringLiteral("n"), checkOption},
         BuildCommands::tr("Reads and checks the job, prints what would be done, and does nothing.")},
        {forceOption, BuildCommands::tr("Builds the channels whose inputs have not changed, too.")},
        {onlyOption,
         BuildCommands::tr("Builds this channel, and others named likewise; the rest stay as they are."),
         QStringLiteral("CHANNEL")},
        {{QStringLiteral("j"), jobsOption},
         BuildCommands::tr("How many processes build channels at once."),
         QStringLiteral("N"),
         QStringLiteral("1")},
        {sliceOption, BuildCommands::tr("Builds one of N parts of the channels, the first of which is 1."),
         QStringLiteral("I/N")},
        {slicesOption, BuildCommands::tr("How many parts there are, where the environment tells which one."),
         QStringLiteral("N")},
        {collectOption, BuildCommands::tr("Makes one report of those of all parts.")},
        {installOption, BuildCommands::tr("Installs this channel's package on a device afterwards."),
         QStringLiteral("CHANNEL")},
        {{QStringLiteral("s"), deviceOption},
         BuildCommands::tr("The device of --install, by its serial."),
         QStringLiteral("SERIAL")},
        {{QStringLiteral("y"), yesOption},
         BuildCommands::tr("Does not ask before --install removes the installed package.")},
        share};
    build.run = buildJob;
    build.details = BuildCommands::tr("Each channel's package comes from the job's base: with the channel's "
                                      "icons, its SDKs, its own files and a "
                                      "description of it, encrypted and signed where the job says so. "
                                      "Everything finished is in the job's output "
                                      "folder, with report.html and report.json. What has not changed since "
                                      "the last run is not built again, and "
                                      "a run that was interrupted goes on where it stood.");
    return {build};
}
