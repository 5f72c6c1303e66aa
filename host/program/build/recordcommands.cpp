// SPDX-License-Identifier: MIT
#include "build/job.h"
#include "build/jobplan.h"
#include "build/outcomejson.h"
#include "build/recordsfile.h"
#include "build/reporttext.h"
#include "command.h"
#include "console/console.h"
#include "console/figures.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <optional>

namespace {

struct RecordCommands {
    Q_DECLARE_TR_FUNCTIONS(RecordCommands)
};

const QString buildOption = QStringLiteral("build");

/** A run, and the file that knows it. */
struct FoundBuild {
    QString file;
    ListedBuild build;
};

// SQLite would take a leading colon for a name of its own.
QString absolute(const QString& path)
{
    return path.startsWith(QLatin1Char('/')) ? path : QDir::currentPath() + QLatin1Char('/') + path;
}

// By its name, too: damaged records are no job.
bool holdsRecords(const QString& file)
{
    const QByteArray mark("SQLite format 3\0", 16);
    QFile content(file);
    return file.endsWith(QLatin1String(".db"))
        || (content.open(QIODevice::ReadOnly) && content.read(mark.size()) == mark);
}

// Those of the whole job, and those of its slices.
QStringList recordsBelow(const QString& output)
{
    QStringList files{output + QStringLiteral("/records.db")};
    const QDir slices(output + QStringLiteral("/slices"));
    for (const QString& slice : slices.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        files.append(slices.filePath(slice) + QStringLiteral("/records.db"));
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const QString& file) { return !QFileInfo::exists(file); }),
                files.end());
    return files;
}

// The files that a word means; none when it means nothing, which has been told.
std::optional<QStringList> recordsOf(const QString& word, Console& console)
{
    const QString file = absolute(word);
    if (!QFileInfo(file).isFile()) {
        console.error({Failure::NotFound, RecordCommands::tr("there is no file '%1'").arg(word)});
        return {};
    }
    if (holdsRecords(file))
        return QStringList{file};
    QVector<JobFault> faults;
    const Job job = JobFile::read(word, faults);
    JobPlan::report(word, faults, console);
    if (!faults.isEmpty())
        return {};
    return recordsBelow(job.output);
}

// The latest first; what cannot be read is told.
QVector<FoundBuild> buildsOf(const QStringList& files, bool& isComplete, Console& console)
{
    QVector<FoundBuild> found;
    for (const QString& file : files) {
        QString error;
        for (const ListedBuild& build : RecordsFile::builds(file, error))
            found.append({file, build});
        if (error.isEmpty())
            continue;
        isComplete = false;
        console.error({Failure::BadInput, error});
    }
    // Within a file the numbers tell more than a clock.
    if (files.size() > 1) {
        std::stable_sort(found.begin(), found.end(), [](const FoundBuild& left, const FoundBuild& right) {
            return left.build.start > right.build.start;
        });
    }
    return found;
}

QString outcomeText(const QString& outcome)
{
    if (outcome == QLatin1String("done"))
        return RecordCommands::tr("done");
    if (outcome == QLatin1String("failed"))
        return RecordCommands::tr("failed");
    if (outcome == QLatin1String("interrupted"))
        return RecordCommands::tr("interrupted");
    if (outcome == QLatin1String("running or killed"))
        return RecordCommands::tr("running or killed");
    return ReportText::shown(outcome);
}

QString sliceText(const ListedBuild& build)
{
    return build.slices > 1 ? QStringLiteral("%1/%2").arg(build.slice + 1).arg(build.slices) : QString();
}

QString startText(const QDateTime& start)
{
    return start.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString stretchText(const QDateTime& start, const QDateTime& end)
{
    return end.isValid() ? ReportText::stretch(ReportText::duration(start, end)) : QString();
}

QStringList linesOf(const QVector<FoundBuild>& builds)
{
    QVector<QStringList> rows{{RecordCommands::tr("run"), RecordCommands::tr("start"),
                               RecordCommands::tr("time"), RecordCommands::tr("outcome"),
                               RecordCommands::tr("built"), RecordCommands::tr("unchanged"),
                               RecordCommands::tr("failed"), RecordCommands::tr("slice")}};
    const bool hasSlices = std::any_of(builds.cbegin(), builds.cend(),
                                       [](const FoundBuild& found) { return found.build.slices > 1; });
    if (!hasSlices)
        rows.first().last().clear();
    for (const FoundBuild& found : builds) {
        const ListedBuild& build = found.build;
        rows.append({QString::number(build.number), startText(build.start),
                     stretchText(build.start, build.end), outcomeText(build.outcome),
                     QString::number(build.built), QString::number(build.unchanged),
                     QString::number(build.failed), sliceText(build)});
    }
    return tabulated(rows);
}

QJsonObject objectOf(const FoundBuild& found)
{
    const ListedBuild& build = found.build;
    return {{QStringLiteral("records"), found.file},
            {QStringLiteral("number"), build.number},
            {QStringLiteral("game"), build.game},
            {QStringLiteral("slice"), build.slice},
            {QStringLiteral("slices"), build.slices},
            {QStringLiteral("start"), OutcomeJson::time(build.start)},
            {QStringLiteral("end"), OutcomeJson::time(build.end)},
            {QStringLiteral("outcome"), build.outcome},
            {QStringLiteral("built"), build.built},
            {QStringLiteral("unchanged"), build.unchanged},
            {QStringLiteral("failed"), build.failed}};
}

void tellBuilds(const QVector<FoundBuild>& builds, Console& console)
{
    QJsonArray list;
    for (const FoundBuild& found : builds)
        list.append(objectOf(found));
    console.set(QStringLiteral("builds"), list);
    if (builds.isEmpty())
        console.say(RecordCommands::tr("there was no run yet"));
    else
        console.printText(linesOf(builds).join(QLatin1Char('\n')));
}

QStringList linesOf(const ListedBuild& build, const QVector<ChannelOutcome>& channels)
{
    QVector<QStringList> rows;
    for (const ChannelOutcome& channel : channels) {
        const QString time =
            channel.steps.isEmpty() ? QString() : ReportText::stretch(ReportText::duration(channel));
        rows.append({ReportText::shown(channel.folder), ReportText::outcomeName(channel.outcome), time,
                     ReportText::shown(channel.message)});
        for (const BuildStep& step : channel.steps) {
            rows.append({QStringLiteral("  ") + ReportText::shown(ReportText::stepName(step.name)),
                         ReportText::stepOutcomeName(step.outcome), stretchText(step.start, step.end),
                         ReportText::shown(step.message)});
        }
    }
    const QString head = RecordCommands::tr("%1, run %2, %3: %4")
                             .arg(ReportText::shown(build.game), QString::number(build.number),
                                  startText(build.start), outcomeText(build.outcome));
    return QStringList{head} + tabulated(rows);
}

QJsonArray arrayOf(const QVector<ChannelOutcome>& channels)
{
    QJsonArray list;
    for (const ChannelOutcome& channel : channels) {
        QJsonArray steps;
        for (const BuildStep& step : channel.steps)
            steps.append(OutcomeJson::object(step));
        list.append(QJsonObject{{QStringLiteral("folder"), channel.folder},
                                {QStringLiteral("name"), channel.name},
                                {QStringLiteral("outcome"), OutcomeJson::word(channel.outcome)},
                                {QStringLiteral("message"), channel.message},
                                {QStringLiteral("steps"), steps}});
    }
    return list;
}

ExitCode tellBuild(const FoundBuild& found, Console& console)
{
    QString error;
    const QVector<ChannelOutcome> channels = RecordsFile::channels(found.file, found.build.number, error);
    if (!error.isEmpty()) {
        console.error({Failure::BadInput, error});
        return ExitFailed;
    }
    QJsonObject object = objectOf(found);
    object.insert(QStringLiteral("channels"), arrayOf(channels));
    console.set(QStringLiteral("build"), object);
    console.printText(linesOf(found.build, channels).join(QLatin1Char('\n')));
    return ExitDone;
}

ExitCode tellNumber(const QVector<FoundBuild>& builds, qint64 number, Console& console)
{
    QVector<FoundBuild> meant;
    QStringList causes;
    for (const FoundBuild& found : builds) {
        if (found.build.number != number)
            continue;
        meant.append(found);
        causes.append(found.file);
    }
    if (meant.size() == 1)
        return tellBuild(meant.first(), console);
    if (meant.isEmpty())
        console.error({Failure::NotFound, RecordCommands::tr("there is no run %1").arg(number)});
    else // slices count for themselves
        console.error({Failure::BadInput, RecordCommands::tr("several records have a run %1").arg(number),
                       causes, RecordCommands::tr("name one of these files instead of the job")});
    return ExitFailed;
}

ExitCode tellRecords(const QCommandLineParser& parser, Console& console)
{
    bool isNumber = true;
    const qint64 number = parser.isSet(buildOption) ? parser.value(buildOption).toLongLong(&isNumber) : 0;
    if (!isNumber) {
        console.error({Failure::Usage, RecordCommands::tr("--build takes a run's number")});
        return ExitUsage;
    }
    const std::optional<QStringList> files = recordsOf(parser.positionalArguments().at(1), console);
    if (!files)
        return ExitFailed;
    bool isComplete = true;
    const QVector<FoundBuild> builds = buildsOf(*files, isComplete, console);
    if (parser.isSet(buildOption))
        return isComplete ? tellNumber(builds, number, console) : ExitFailed;
    if (isComplete || !builds.isEmpty())
        tellBuilds(builds, console);
    return isComplete ? ExitDone : ExitFailed;
}

} // namespace

QVector<Command> buildRecordCommands()
{
    Command builds;
    builds.name = QStringLiteral("builds");
    builds.summary = RecordCommands::tr("lists the past runs of a job, the latest first");
    builds.arguments = {
        {QStringLiteral("FILE"), RecordCommands::tr("The job's file, or a file of build records.")}};
    builds.options = {{buildOption, RecordCommands::tr("Lists the channels of this run, and their steps."),
                       QStringLiteral("N")}};
    builds.details = RecordCommands::tr(
        "Of a job the runs of its slices are listed, too. A run without an end is still at work, or was "
        "killed; its channels are those that it has begun.");
    builds.run = tellRecords;
    return {builds};
}
