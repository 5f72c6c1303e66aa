// SPDX-License-Identifier: MIT
#include "build/buildworkers.h"

#include "build/buildreport.h"
#include "build/job.h"
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
};

BuildWorkers::BuildWorkers(const Job& job, const Slice& slice, const BuildPlaces& places, const QString& base)
    : m_job(job)
    , m_slice(slice)
    , m_places(places)
    , m_base(base)
{
}

BuildWorkers::~BuildWorkers() = default;

QString BuildWorkers::run(const QVector<JobChannel>& channels, int processes,
                          const std::function<bool()>& isInterrupted)
{
    QJsonArray folders;
    for (const JobChannel& channel : channels)
        folders.append(channel.folder);
    const QJsonObject pending{{baseKey, m_base}, {foldersKey, folders}};
    const QString fault = saveWhole(listOf(m_places), QJsonDocument(pending).toJson());
    if (!fault.isEmpty())
        return Workers::tr("'%1' cannot be written: %2").arg(listOf(m_places), fault);

    const int shares = std::min(processes, channels.size());
    QEventLoop loop;
    for (int share = 0; share < shares; ++share) {
        start(share, shares);
        QObject::connect(&m_workers.back()->process, &QProcess::stateChanged, &loop, [this, &loop] {
            if (std::all_of(m_workers.cbegin(), m_workers.cend(), [](const std::unique_ptr<Worker>& worker) {
                    return worker->process.state() == QProcess::NotRunning;
                }))
                loop.quit();
        });
    }
    QTimer timer;
    constexpr int intervalMs = 50;
    bool told = false;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (told || !isInterrupted())
            return;
        told = true;
        for (const std::unique_ptr<Worker>& worker : m_workers)
            worker->process.terminate();
    });
    timer.start(intervalMs);
    if (std::any_of(m_workers.cbegin(), m_workers.cend(), [](const std::unique_ptr<Worker>& worker) {
            return worker->process.state() != QProcess::NotRunning;
        }))
        loop.exec();
    for (const std::unique_ptr<Worker>& worker : m_workers) {
        const ToolChild& process = worker->process;
        if (!told && (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0))
            return Workers::tr("a process of the build ended early: %1")
                .arg(QString::fromUtf8(process.error()).trimmed());
    }
    return {};
}

void BuildWorkers::start(int share, int shares)
{
    m_workers.push_back(std::make_unique<Worker>());
    Worker* worker = m_workers.back().get();
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
        take(output.mid(worker.read, end - worker.read));
        worker.read = end + 1;
    }
}

void BuildWorkers::take(const QByteArray& line)
{
    const QJsonObject told = QJsonDocument::fromJson(line).object();
    const QString folder = told.value(QStringLiteral("folder")).toString();
    if (!folder.isEmpty())
        onBegin(folder, told.value(QStringLiteral("begin")).toString());
    BuildOutcome build;
    build.output = m_job.output;
    if (BuildReport::fromJson(told.value(QStringLiteral("done")).toObject(), build)) {
        for (const ChannelOutcome& channel : qAsConst(build.channels))
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
    tell({{QStringLiteral("folder"), folder}, {QStringLiteral("begin"), step}});
}

void BuildWorkers::tellDone(const Job& job, const ChannelOutcome& channel)
{
    BuildOutcome build;
    build.job = job.path;
    build.game = job.game;
    build.output = job.output;
    build.channels = {channel};
    tell({{QStringLiteral("done"), BuildReport::toJson(build)}});
}
