// SPDX-License-Identifier: MIT
#ifndef BACKGROUND_H
#define BACKGROUND_H

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>

/**
 * Does work on another thread, and hands what comes of it to the receiver on this one.
 *
 * @param receiver lives on the calling thread; when it is gone by then, nothing is handed over
 * @param work takes nothing of a widget's; its result is what is handed over
 */
template <typename Work, typename Done> void inBackground(QObject* receiver, Work work, Done done)
{
    const QPointer<QObject> guarded(receiver);
    // Outlives the work, which the receiver need not; the application waits for the work before it ends.
    auto* const handOver = new QObject(QCoreApplication::instance());
    QThreadPool::globalInstance()->start([work, done, guarded, handOver] {
        const auto result = work();
        QMetaObject::invokeMethod(
            handOver,
            [result, done, guarded, handOver] {
                if (guarded)
                    done(result);
                delete handOver;
            },
            Qt::QueuedConnection);
    });
}

#endif
