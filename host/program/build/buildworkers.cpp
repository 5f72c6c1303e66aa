// SPDX-License-Identifier: MIT
#include "build/buildworkers.h"

#include "build/buildreport.h"
#include "build/job.h"
#include "build/outcomejson.h"
#include "build/slice.h"
#include "console/standardstreams.h"
#include "scripts/toolchild.h"
#include "wholesave.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>
#include <csignal>

namespace {

struct Workers {
    Q_DECLARE_TR_FUNCTIONS(BuildWorkers)
};

QString listOf(const BuildPlaces& places)
{
    return places.work + QStringLiteral("/pending.json");
}

const QString baseKey = QStringLiteral("base");
const QString foldersKey = QStringLiteral("channels");

// Of what a process tells.
const QString folderKey = QStringLiteral("folder");
const QString beginKey = QStringLiteral("begin");
const QString endKey = QStringLiteral("end");
const QString doneKey = QStringLiteral("done");

QJsonObject pendingOf(const BuildPlaces& places)
{
    QFile list(listOf(places));
    return list.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(list.readAll()).object() : QJsonObject();
}

void tell(const QJsonObject& object)
{
    StandardStreams::writeResult(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace

struct BuildWorkers::Worker {
    ToolChild process;
    int read = 0; ///< bytes of its output that have been taken
    QStringList left; ///< folders of the channels that it has not brought to an end

    bool isAtWork() const { return process.state() != QProcess::NotRunning; }
};

BuildWorkers::BuildWorkers(const Job& job, const Slice& slice, const BuildPlaces& places, const QString& base)
    : m_job(job)
    , m_slice(slice)
    , m_places(places)
    , m_base(base)
{
}

BuildWorkers::~BuildWorkers() = default;

void BuildWorkers::run(const QVector<JobChannel>& channels, int processes,
                       const std::function<bool()>& isInterrupted)
{
    QStringList folders;
    for (const JobChannel& channel : channels)
        folders.append(channel.folder);
    const QJsonObject pending{{baseKey, m_base}, {foldersKey, QJsonArray::fromStringList(folders)}};
    const QString unwritten = saveWhole(listOf(m_places), QJsonDocument(pending).toJson());
    if (!unwritten.isEmpty()) {
        for (const QString& folder : qAsConst(folders))
            onLost(folder, Workers::tr("'%1' cannot be written: %2").arg(listOf(m_places), unwritten));
        return;
    }
    const int shares = std::min(processes, channels.size());
    for (int share = 0; share < shares; ++share)
        start(share, shares);
    wait(isInterrupted);
    if (isInterrupted())
        return;
    for (const std::unique_ptr<Worker>& worker : m_workers) {
        for (const QString& folder : qAsConst(worker->left))
            onLost(folder, faultOf(*worker));
    }
}

// Until all of them have ended.
void BuildWorkers::wait(const std::function<bool()>& isInterrupted)
{
    const auto anyIsAtWork = [this] {
        return std::any_of(m_workers.cbegin(), m_workers.cend(),
                           [](const std::unique_ptr<Worker>& worker) { return worker->isAtWork(); });
    };
    QEventLoop loop;
    for (const std::unique_ptr<Worker>& worker : m_workers) {
        QObject::connect(&worker->process, &QProcess::stateChanged, &loop, [&] {
            if (!anyIsAtWork())
                loop.quit();
        });
    }
    QTimer timer;
    constexpr int intervalMs = 50;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (!isInterrupted())
            return;
        timer.stop();
        for (const std::unique_ptr<Worker>& worker : m_workers)
            worker->process.terminate();
    });
    timer.start(intervalMs);
    if (anyIsAtWork())
        loop.exec();
}

// Why a process has ended without having done its share.
QString BuildWorkers::faultOf(const Worker& worker)
{
    const QString said = QString::fromUtf8(worker.process.error()).trimmed();
    if (!said.isEmpty())
        return Workers::tr("a process of the build ended early: %1").arg(said.section(QLatin1Char('\n'), -1));
    if (worker.process.exitStatus() == QProcess::NormalExit)
        return Workers::tr("a process of the build ended early");
    return Workers::tr("a process of the build was killed");
}

void BuildWorkers::start(int share, int shares)
{
    m_workers.push_back(std::make_unique<Worker>());
    Worker* worker = m_workers.back().get();
    worker->left = shareOf(m_places, share, shares);
    QObject::connect(&worker->process, &QProcess::readyReadStandardOutput, &worker->process,
                     [this, worker] { read(*worker); });
    QStringList words{QStringLiteral("build"), QStringLiteral("--share"),
                      QStringLiteral("%1/%2").arg(share + 1).arg(shares)};
    if (!m_slice.isWhole())
        words +=
            {QStringLiteral("--slice"), QStringLiteral("%1/%2").arg(m_slice.index + 1).arg(m_slice.count)};
    worker->process.start(QCoreApplication::applicationFilePath(),
                          words << QStringLiteral("--") << m_job.path);
    worker->process.waitForStarted(-1);
}

void BuildWorkers::read(Worker& worker)
{
    const QByteArray output = worker.process.output();
    for (int end = output.indexOf('\n', worker.read); end >= 0; end = output.indexOf('\n', worker.read)) {
        take(output.mid(worker.read, end - worker.read), worker);
        worker.read = end + 1;
    }
}

void BuildWorkers::take(const QByteArray& line, Worker& worker)
{
    const QJsonObject told = QJsonDocument::fromJson(line).object();
    const QString folder = told.value(folderKey).toString();
    if (told.contains(beginKey))
        onBegin(folder, told.value(beginKey).toString());
    bool isStep = told.contains(endKey);
    const BuildStep step = OutcomeJson::step(told.value(endKey), isStep);
    if (isStep)
        onEnd(folder, step);
    BuildOutcome build;
    build.output = m_job.output;
    if (!BuildReport::fromJson(told.value(doneKey).toObject(), build))
        return;
    for (const ChannelOutcome& channel : qAsConst(build.channels)) {
        worker.left.removeAll(channel.folder);
        onDone(channel);
    }
}

QString BuildWorkers::baseOf(const BuildPlaces& places)
{
    return pendingOf(places).value(baseKey).toString();
}

QStringList BuildWorkers::shareOf(const BuildPlaces& places, int share, int shares)
{
    QStringList folders;
    const QJsonArray all = pendingOf(places).value(foldersKey).toArray();
    for (int i = share; i < all.size(); i += shares)
        folders.append(all.at(i).toString());
    return folders;
}

void BuildWorkers::tellBegin(const QString& folder, const QString& step)
{
    tell({{folderKey, folder}, {beginKey, step}});
}

void BuildWorkers::tellEnd(const QString& folder, const BuildStep& step)
{
    tell({{folderKey, folder}, {endKey, OutcomeJson::object(step)}});
}

void BuildWorkers::tellDone(const Job& job, const ChannelOutcome& channel)
{
    BuildOutcome build;
    build.job = job.path;
    build.game = job.game;
    build.output = job.output;
    build.channels = {channel};
    tell({{doneKey, BuildReport::toJson(build)}});
}
