// SPDX-License-Identifier: MIT
#ifndef TREEWORK_H
#define TREEWORK_H

#include "window/trees/treelook.h"

#include <QObject>
#include <QTimer>

#include <memory>

class TreeArrival;
class TreeProgress;
class TreeRightsKeeper;

/** Does what a person has looked at, on the library's worker. */
class TreeWork : public QObject {
    Q_OBJECT

public:
    explicit TreeWork(QObject* parent = nullptr);
    ~TreeWork() override;

    /** Begins. Not while isRunning(). */
    void start(const TreeWish& wish);

    /** Asks it to end between two files. */
    void stop();

    bool isRunning() const { return m_isRunning; }
    bool isStopping() const { return m_isStopping; }

Q_SIGNALS:
    void progressed(qint64 done, qint64 all); ///< bytes; all is -1 as long as it is not known
    void ended(bool done); ///< false also when it was stopped

private:
    struct Watch; // what tells from outside how far the worker is
    void run(const std::shared_ptr<Watch>& watch);
    void look();
    void finish();

    TreeWish m_wish;
    std::unique_ptr<ThreadCommon> m_worker;
    std::shared_ptr<Watch> m_watch;
    QTimer m_timer;
    bool m_isRunning = false;
    bool m_isStopping = false;
    bool m_isLooking = false;
};

#endif
