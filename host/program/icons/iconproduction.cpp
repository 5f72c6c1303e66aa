// SPDX-License-Identifier: MIT
#include "icons/iconproduction.h"

#include "console/console.h"
#include "console/interruptguard.h"
#include "console/progress.h"
#include "console/worker.h"
#include "icons/filetally.h"
#include "icons/iconjob.h"
#include "icons/layoutproduction.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>

#include <memory>
#include <vector>

namespace {

struct IconProduction {
    Q_DECLARE_TR_FUNCTIONS(IconProduction)
};

bool runCounted(QThread& worker, FileTally& tally, Console& console, const QString& doing)
{
    return runWorker(worker, console, [&tally, doing] {
        return Progress{doing, Progress::Files, tally.seen(), tally.expected()};
    });
}

bool runLibrary(const IconJob& job, const QList<ST_CHANNEL_ICON>& icons, const QString& folder, bool clear,
                FileTally& tally, Console& console)
{
    ThreadGenerateIcon thread;
    // Every channel has a corner and a position of its own by now.
    thread.setGameInfo(job.icon, job.defaultCorner, 0, 0, job.layout.platform);
    thread.setInfo(job.marks, icons);
    thread.setOutputDir(folder + QLatin1Char('/'));
    thread.setClearDirFirst(clear);
    return runCounted(thread, tally, console, IconProduction::tr("drawing"));
}

bool producePlain(const IconJob& job, FileTally& tally, Console& console)
{
    QList<ST_CHANNEL_ICON> icons;
    for (const ListedChannel& channel : job.channels)
        icons.append(channel.icon);
    const bool isOwn = !job.keep && !job.isForeign();
    // Else the same words would be refused the next time.
    const InterruptGuard guard([&job, isOwn] {
        if (isOwn && QDir(job.out).exists())
            job.markAsOwn();
    });
    return runLibrary(job, icons, job.out, !job.keep, tally, console);
}

// Qt ends the process when a new thread gets no handle to be woken by.
bool systemGivesHandles(int count)
{
    std::vector<std::unique_ptr<QFile>> files;
    bool given = true;
    while (given && static_cast<int>(files.size()) < count) {
        files.push_back(std::make_unique<QFile>(QProcess::nullDevice()));
        given = files.back()->open(QIODevice::ReadOnly);
    }
    return given;
}

// Pools of Qt wait for ever for threads that the system does not give.
bool systemGivesThreads(int count)
{
    if (!systemGivesHandles(count))
        return false;
    QSemaphore gate;
    std::vector<std::unique_ptr<QThread>> threads;
    bool given = true;
    while (given && static_cast<int>(threads.size()) < count) {
        threads.emplace_back(QThread::create([&gate] { gate.acquire(); }));
        threads.back()->start();
        given = threads.back()->isRunning();
    }
    gate.release(count);
    for (const std::unique_ptr<QThread>& thread : threads)
        thread->wait();
    return given;
}

bool produceLayout(const IconJob& job, FileTally& tally, QStringList& causes, Console& console)
{
    // The worker, its pool, and the one in which Qt scales.
    if (!systemGivesThreads(1 + QThread::idealThreadCount()
                            + QThreadPool::globalInstance()->maxThreadCount())) {
        console.error(IconProduction::tr("no icon is made: the system gives no threads for it"));
        return false;
    }
    QTemporaryDir staged;
    if (!staged.isValid()) {
        console.error(
            IconProduction::tr("no folder for files on the way can be made: %1").arg(staged.errorString()));
        return false;
    }
    // Again while the library still puts files into it.
    const InterruptGuard guard([&staged] {
        for (int i = 0; i < 100 && !QDir(staged.path()).removeRecursively(); ++i)
            QThread::msleep(1);
    });
    LayoutProduction production(job, staged.path());
    FileTally stagedTally(production.stagedFiles());
    if (!runLibrary(job, production.decorations(), staged.path(), false, stagedTally, console))
        return false;
    if (stagedTally.seen() == 0)
        return true; // and every file will be missing, for causes that the library has told
    const std::unique_ptr<QThread> worker(QThread::create([&production] { production.run(); }));
    if (!runCounted(*worker, tally, console, IconProduction::tr("arranging")))
        return false;
    causes = production.causes();
    return true;
}

} // namespace

bool produceIcons(const IconJob& job, FileTally& tally, QStringList& causes, Console& console)
{
    return job.layout.arrangement == IconLayout::Plain ? producePlain(job, tally, console)
                                                       : produceLayout(job, tally, causes, console);
}
