// SPDX-License-Identifier: MIT
#include "console/worker.h"

#include "console/console.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace {

struct Worker {
    Q_DECLARE_TR_FUNCTIONS(Worker)
};

} // namespace

bool runWorker(QThread& worker, Console& console, const std::function<QString()>& progress)
{
    constexpr int intervalMs = 120;
    const QString signs = QStringLiteral("|/-\\");
    int turn = 0;

    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        console.showProgress(signs.at(turn++ % signs.size()) + QLatin1Char(' ') + progress());
    });
    QObject::connect(&worker, &QThread::finished, &loop, &QEventLoop::quit);
    if (Console::showsProgress())
        timer.start(intervalMs);
    worker.start();
    // One that could not be started tells so by a warning only, and never finishes.
    if (!worker.isRunning() && !worker.isFinished()) {
        console.error(Worker::tr("no thread could be started for the work; nothing was done"));
        return false;
    }
    loop.exec();
    worker.wait();
    console.clearProgress();
    return true;
}
