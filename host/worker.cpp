// SPDX-License-Identifier: MIT
#include "worker.h"

#include "console.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

void runWorker(QThread& worker, Console& console, const std::function<QString()>& progress)
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
    timer.start(intervalMs);
    worker.start();
    loop.exec();
    worker.wait();
    console.clearProgress();
}
