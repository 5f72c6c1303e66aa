// SPDX-License-Identifier: MIT
#include "console/worker.h"

#include "console/console.h"
#include "console/interruptguard.h"
#include "console/interruptreport.h"
#include "console/progress.h"
#include "console/spinner.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <optional>

namespace {

struct Worker {
    Q_DECLARE_TR_FUNCTIONS(Worker)
};

} // namespace

bool runWorker(QThread& worker, Console& console, const std::function<Progress()>& progress,
               const std::function<void()>& interrupted)
{
    const InterruptReport report(console);
    std::optional<InterruptGuard> guard;
    if (interrupted)
        guard.emplace(interrupted, QVector<int>{SIGINT, SIGTERM, SIGHUP});
    const Spinner spinner(console, progress);
    QEventLoop loop;
    QObject::connect(&worker, &QThread::finished, &loop, &QEventLoop::quit);
    worker.start();
    // One that could not be started tells so by a warning only, and never finishes.
    if (!worker.isRunning() && !worker.isFinished()) {
        console.error(Worker::tr("no thread could be started for the work; nothing was done"));
        return false;
    }
    loop.exec();
    worker.wait();
    return true;
}
