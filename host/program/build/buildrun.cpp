// SPDX-License-Identifier: MIT
#include "build/buildrun.h"

#include "build/buildinputs.h"
#include "build/buildpreparation.h"
#include "build/buildrecords.h"
#include "build/buildreport.h"
#include "build/buildworkers.h"
#include "build/channelbuild.h"
#include "build/filedigest.h"
#include "build/jobtools.h"
#include "build/outcomejson.h"
#include "build/sheets.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "console/figures.h"
#include "console/progress.h"
#include "console/spinner.h"
#include "console/standardstreams.h"
#include "icons/iconset.h"
#include "scripts/assetencryption.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <future>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

struct Run {
    Q_DECLARE_TR_FUNCTIONS(BuildRun)
};

// Which file it is, and in which state.
QString identityOf(const QString& path)
{
    struct stat found { };
    if (stat(QFile::encodeName(path).constData(), &found) != 0)
        return {};
    return QStringLiteral("%1:%2:%3:%4.%5")
        .arg(found.st_dev)
        .arg(found.st_ino)
        .arg(found.st_size)
        .arg(found.st_mtim.tv_sec)
        .arg(found.st_mtim.tv_nsec);
}

QString failureOf(const ChannelOutcome& channel)
{
    return Run::tr("channel '%1' failed: %2").arg(channel.folder, channel.message);
}

} // namespace

BuildPlaces BuildRun::placesOf(const Job& job, const Slice& slice)
{
    BuildPlaces places{job.work, job.output, job.output};
    if (slice.isWhole())
        return places;
    const QString part = QStringLiteral("/slices/%1-of-%2").arg(slice.index + 1).arg(slice.count);
    places.work += part;
    places.reports += part;
    return places;
}

BuildRun::BuildRun(const Job& job, const BuildWishes& wishes, Console& console)
    : m_job(job)
    , m_wishes(wishes)
    , m_places(placesOf(job, wishes.slice))
    , m_console(console)
    , m_stage(Run::tr("preparing"))
    , m_pace(console)
{
}

BuildRun::~BuildRun() = default;

ExitCode BuildRun::fail(const QString& message)
{
    m_console.error(message);
    return ExitFailed;
}

ExitCode BuildRun::run()
{
    Diagnostics::followSteps({}); // a run's steps are its channels'; every file's would bury them
    if (!begin())
        return ExitFailed;
    QFile lock(m_places.work + QStringLiteral("/.lock"));
    if (!takeLock(lock))
        return ExitFailed;
    BuildRecords records;
    if (!records.open(m_places.records()))
        return fail(records.error());
    if (!readBase())
        return ExitFailed;
    const Spinner spinner(m_console, [this] { return progress(); });
    findWork(records);
    records.begin(m_job, m_outcome);
    for (const ChannelOutcome& channel : qAsConst(m_outcome.channels)) {
        if (channel.outcome == ChannelOutcome::Unchanged)
            records.finish(channel);
    }
    prepareAndBuild(records);
    m_outcome.interrupted = m_hold.isInterrupted();
    m_outcome.end = QDateTime::currentDateTimeUtc();
    return report(records);
}

Progress BuildRun::progress() const
{
    if (m_pending.isEmpty()) // nothing is known to be built, so far or at all
        return Progress{m_stage};
    QStringList atWork;
    for (auto step = m_atWork.cbegin(); step != m_atWork.cend(); ++step)
        atWork.append(QStringLiteral("%1: %2").arg(step.key(), step.value()));
    return Progress{m_stage, Progress::Channels, m_finished, m_pending.size(), {}, atWork};
}

void BuildRun::enter(const QString& stage)
{
    m_stage = stage;
    m_console.showProgress(progress());
}

void BuildRun::beginStep(const QString& folder, const QString& step)
{
    m_atWork.insert(folder, step);
    m_console.step(QStringLiteral("%1: %2").arg(folder, step));
    m_console.event(QStringLiteral("channel"),
                    {{QStringLiteral("folder"), folder}, {QStringLiteral("step"), step}});
    m_pace.show(progress());
}

// Sees to it that the run can begin at all; false with the error told.
bool BuildRun::begin()
{
    m_outcome.job = m_job.path;
    m_outcome.game = m_job.game;
    m_outcome.output = m_job.output;
    m_outcome.slice = m_wishes.slice.index;
    m_outcome.slices = m_wishes.slice.count;
    m_outcome.start = QDateTime::currentDateTimeUtc();
    const std::optional<Failure> missing = JobTools(m_job).missing(m_wishes.channelsOf(m_job));
    if (missing) {
        m_console.error(*missing);
        return false;
    }
    for (const QString& folder : {m_places.work, m_places.output, m_places.reports}) {
        if (!QDir().mkpath(folder)) {
            m_console.error(Run::tr("the folder '%1' cannot be made").arg(folder));
            return false;
        }
    }
    if (!m_job.key.isEmpty())
        useKey(m_job.key);
    return true;
}

// Keeps other runs out of the work folder. The kernel's lock ends with its process, on whatever machine that
// was; a file that names the process would outlive a machine, and a container whose process is always
// number 1.
bool BuildRun::takeLock(QFile& file)
{
    if (!file.open(QIODevice::ReadWrite)) {
        m_console.error(Run::tr("'%1' cannot be opened: %2").arg(file.fileName(), file.errorString()));
        return false;
    }
    // What a run that was killed had just started may hold its lock a moment longer.
    constexpr int patienceMs = 1000;
    constexpr int intervalMs = 20;
    QElapsedTimer waiting;
    waiting.start();
    while (flock(file.handle(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK
           && !waiting.hasExpired(patienceMs))
        QThread::msleep(intervalMs);
    if (flock(file.handle(), LOCK_EX | LOCK_NB) == 0)
        return true;
    if (errno == EWOULDBLOCK) {
        m_console.error(Run::tr("another run of this job is at work in '%1'").arg(m_places.work));
        return false;
    }
    m_console.warn(Run::tr("'%1' cannot be locked (%2): see to it that one run alone is at work there")
                       .arg(m_places.work, qt_error_string(errno)));
    return true;
}

bool BuildRun::readBase()
{
    QString fault;
    Console mute = muteConsole();
    m_baseFile = identityOf(m_job.base); // before it is opened: whatever comes later differs
    // Both read all of it, and each keeps a core busy.
    QString unreadable;
    std::future<QByteArray> digest = std::async([&] { return digestOfFile(m_job.base, unreadable); });
    if (!m_editor.open(m_job.base))
        fault = m_editor.error();
    else
        fault = m_editor.objectionToContents();
    if (fault.isEmpty() && !PackageFacts::read(m_job.base, mute, m_base, fault))
        Q_ASSERT(!fault.isEmpty());
    m_baseDigest = digest.get();
    if (fault.isEmpty() && !unreadable.isEmpty())
        fault = Run::tr("'%1' cannot be read: %2").arg(m_job.base, unreadable);
    if (!fault.isEmpty())
        m_console.error({Failure::BadInput, fault});
    else if (!m_job.icon.isEmpty() && m_job.platforms.contains(IconSet::Android))
        tellIconsThatStay();
    return fault.isEmpty();
}

// Whether what an earlier run has built from the same inputs still stands.
bool BuildRun::stands(const EarlierBuild& earlier, const QString& package)
{
    if (earlier.digest.isEmpty() || digestOfPackage(package) != earlier.digest)
        return false;
    // Of a run without an end, which a power cut may have been, not every content may have reached the disk.
    return earlier.isFlushed || ApkEditor::objectionTo(package).isEmpty();
}

// The drawn icons replace PNG files alone; a person who sees the old one on a device should know why.
void BuildRun::tellIconsThatStay()
{
    for (const QString& other : qAsConst(m_base.icons.others))
        m_console.warn(Run::tr("the base's icon '%1' is no PNG file and stays as it is").arg(other));
    if (m_base.icons.pictures.isEmpty() && m_base.icons.others.isEmpty())
        m_console.warn(Run::tr("the base shows no icon, and the packages do not show one either"));
}

// Finds the channels of the slice that are wanted, and which of them have to be built.
void BuildRun::findWork(BuildRecords& records)
{
    Console mute = muteConsole();
    BuildInputs inputs(m_job, m_baseDigest, mute);
    const QHash<QString, EarlierBuild> earlier = records.earlier(m_job.game);
    for (int i = 0; i < m_job.channels.size(); ++i) {
        const JobChannel& channel = m_job.channels.at(i);
        if (!m_wishes.takes(i, channel))
            continue;
        const QString digest = inputs.digestOf(channel);
        m_inputs.insert(channel.folder, digest);
        ChannelOutcome outcome;
        const auto known = earlier.constFind(channel.folder);
        if (!m_wishes.force && known != earlier.cend() && !digest.isEmpty() && known->inputs == digest
            && stands(*known, m_places.finishedPackage(channel.folder))) {
            outcome = known->outcome;
            outcome.outcome = ChannelOutcome::Unchanged;
            outcome.steps.clear();
            tell(outcome);
        } else {
            outcome.folder = channel.folder;
            outcome.name = channel.name;
            m_pending.append(channel);
        }
        outcome.index = i;
        outcome.inputs = digest;
        m_outcome.channels.append(outcome);
    }
}

void BuildRun::prepareAndBuild(BuildRecords& records)
{
    if (m_pending.isEmpty() || m_hold.isInterrupted())
        return;
    BuildPreparation preparation(m_job, m_places, m_base);
    enter(Run::tr("importing SDKs"));
    preparation.importSdks(m_pending);
    QString commonFault;
    enter(Run::tr("decoding the base"));
    if (m_hold.isInterrupted())
        return;
    const bool decoded = preparation.decodeBase(m_pending, commonFault);
    enter(Run::tr("drawing icons"));
    if (m_hold.isInterrupted())
        return;
    if (decoded && !m_job.icon.isEmpty())
        preparation.makeIcons(m_pending, commonFault);
    QVector<JobChannel> possible;
    for (const JobChannel& channel : qAsConst(m_pending)) {
        const QString fault = commonFault.isEmpty() ? preparation.faultOf(channel) : commonFault;
        if (fault.isEmpty())
            possible.append(channel);
        else
            failChannel(channel.folder, fault, records);
    }
    m_pending = possible;
    m_finished = 0;
    enter(Run::tr("building"));
    if (m_wishes.processes > 1 && m_pending.size() > 1)
        buildInProcesses(records);
    else
        buildHere(records);
}

void BuildRun::buildHere(BuildRecords& records)
{
    ChannelBuild build(m_job, m_places, m_editor, m_base, [this] { return m_hold.isInterrupted(); });
    QString folder;
    build.onBegin = [&](const QString& step) { beginStep(folder, step); };
    build.onEnd = [&](const BuildStep& step) { endStep(folder, step, records); };
    for (const JobChannel& channel : qAsConst(m_pending)) {
        if (m_hold.isInterrupted())
            return;
        folder = channel.folder;
        finish(build.run(channel), records);
    }
}

void BuildRun::buildInProcesses(BuildRecords& records)
{
    BuildWorkers workers(m_job, m_wishes.slice, m_places, m_baseFile);
    workers.onBegin = [this](const QString& folder, const QString& step) { beginStep(folder, step); };
    workers.onEnd = [&](const QString& folder, const BuildStep& step) { endStep(folder, step, records); };
    workers.onDone = [&](const ChannelOutcome& outcome) { finish(outcome, records); };
    workers.onLost = [&](const QString& folder, const QString& fault) {
        failChannel(folder, fault, records);
    };
    workers.run(m_pending, m_wishes.processes, [this] { return m_hold.isInterrupted(); });
}

ChannelOutcome& BuildRun::outcomeOf(const QString& folder)
{
    return *std::find_if(m_outcome.channels.begin(), m_outcome.channels.end(),
                         [&folder](const ChannelOutcome& channel) { return channel.folder == folder; });
}

// Recorded at once: a run may be killed before its channel is done.
void BuildRun::endStep(const QString& folder, const BuildStep& step, BuildRecords& records)
{
    outcomeOf(folder).steps.append(step);
    records.add(folder, step);
}

// A channel has come to an end that it cannot tell of itself.
void BuildRun::failChannel(const QString& folder, const QString& message, BuildRecords& records)
{
    ChannelOutcome outcome = outcomeOf(folder);
    outcome.outcome = ChannelOutcome::Failed;
    outcome.message = message;
    const QString fault = clearFinished(m_places, folder); // it came from other inputs
    if (!fault.isEmpty())
        outcome.message += QStringLiteral("; ") + fault;
    finish(outcome, records);
}

// A channel has come to its end.
void BuildRun::finish(ChannelOutcome outcome, BuildRecords& records)
{
    outcome.inputs = m_inputs.value(outcome.folder);
    ChannelOutcome& place = outcomeOf(outcome.folder);
    outcome.index = place.index;
    place = outcome;
    records.finish(outcome);
    ++m_finished;
    m_atWork.remove(outcome.folder);
    tell(outcome);
    m_console.showProgress(progress());
}

// A line a channel, where no line of a terminal shows how far the run is.
void BuildRun::tell(const ChannelOutcome& channel)
{
    m_console.event(QStringLiteral("channel"),
                    {{QStringLiteral("folder"), channel.folder},
                     {QStringLiteral("outcome"), OutcomeJson::word(channel.outcome)},
                     {QStringLiteral("message"), channel.message}});
    switch (channel.outcome) {
    case ChannelOutcome::Failed:
        m_console.warn(failureOf(channel));
        break;
    case ChannelOutcome::Built:
        m_console.stage(Run::tr("%1: built, %2").arg(channel.folder, sizeText(channel.size)));
        break;
    case ChannelOutcome::Unchanged:
        m_console.stage(Run::tr("%1: unchanged").arg(channel.folder));
        break;
    case ChannelOutcome::NotReached:
        break;
    }
}

// Once for all packages; a run whose output may not be on the disk has no end in the records.
bool BuildRun::flushOutput()
{
    const QString reason = flushFolder(m_places.output);
    if (!reason.isEmpty())
        m_console.error(
            Run::tr("the output '%1' cannot be brought to the disk: %2").arg(m_places.output, reason));
    return reason.isEmpty();
}

ExitCode BuildRun::report(BuildRecords& records)
{
    enter(Run::tr("writing the report"));
    bool good = flushOutput();
    if (good)
        records.end(m_outcome); // which is written up to a second later, while the report is
    drawSheets(m_job, m_outcome, m_places.reports, m_console);
    const QString fault = BuildReport::write(m_outcome, m_places.reports);
    if (!fault.isEmpty()) {
        m_console.error(fault);
        good = false;
    }
    if (!records.flush()) {
        m_console.error(records.error());
        good = false;
    }
    good &= tellBuild(m_outcome, m_console);
    if (m_outcome.interrupted)
        m_console.finish(false); // the signal takes its course behind this
    return good ? ExitDone : ExitFailed;
}

bool tellBuild(const BuildOutcome& build, Console& console)
{
    for (const QString& line : BuildReport::toTable(build, Console::outputColumns()))
        console.say(line);
    if (console.json())
        console.set(QStringLiteral("report"), BuildReport::toJson(build));
    QStringList failed;
    for (const ChannelOutcome& channel : build.channels) {
        if (channel.outcome == ChannelOutcome::Failed)
            failed.append(failureOf(channel));
    }
    const QStringList causes = console.isQuiet() ? failed : QStringList(); // the others have read them
    if (build.interrupted)
        console.error(
            {Failure::Interrupted, Run::tr("interrupted; the same command goes on with the rest"), causes});
    else if (!failed.isEmpty())
        console.error(Run::tr("failed: %1 of %2 channels").arg(failed.size()).arg(build.channels.size()),
                      causes);
    else if (!build.succeeded())
        console.error(Run::tr("not every channel was reached"));
    return build.succeeded();
}

ExitCode BuildRun::serve(const Job& job, const Slice& slice, int share, int shares)
{
    const InterruptHold hold;
    const BuildPlaces places = placesOf(job, slice);
    if (!job.key.isEmpty())
        useKey(job.key);
    Console mute = muteConsole();
    ApkEditor editor;
    PackageFacts base;
    QString fault;
    if (!editor.open(job.base) || !PackageFacts::read(job.base, mute, base, fault)
        || BuildWorkers::baseOf(places) != identityOf(job.base)) {
        if (fault.isEmpty() && editor.error().isEmpty())
            fault = Run::tr("'%1' changed during the run").arg(job.base);
        StandardStreams::writeDiagnostic((fault.isEmpty() ? editor.error() : fault) + QLatin1Char('\n'));
        return ExitFailed;
    }
    ChannelBuild build(job, places, editor, base, [&hold] { return hold.isInterrupted(); });
    QString folder;
    build.onBegin = [&folder](const QString& step) { BuildWorkers::tellBegin(folder, step); };
    build.onEnd = [&folder](const BuildStep& step) { BuildWorkers::tellEnd(folder, step); };
    for (const QString& name : BuildWorkers::shareOf(places, share, shares)) {
        const auto channel = std::find_if(job.channels.cbegin(), job.channels.cend(),
                                          [&name](const JobChannel& one) { return one.folder == name; });
        if (channel == job.channels.cend() || hold.isInterrupted())
            continue;
        folder = name;
        BuildWorkers::tellDone(job, build.run(*channel));
    }
    return ExitDone;
}
