// SPDX-License-Identifier: MIT
#ifndef TREEPROGRESS_H
#define TREEPROGRESS_H

#include "trees/treecount.h"

#include <QVector>

#include <ctime>
#include <functional>

/**
 * Tells from outside how far an operation on a tree has come, whatever its order: some of the files, evenly
 * spread, are looked at, and each stands for its neighbours.
 */
class TreeProgress {
public:
    /** Counts the tree, as it is before the operation. */
    explicit TreeProgress(const TreeScope& scope);

    const TreeCount& all() const { return m_all; }

    /** @param isDone whether the file of this path in the tree is done; never asked again once it is */
    TreeCount done(const std::function<bool(const QByteArray& path)>& isDone);

private:
    struct Sample {
        QByteArray path;
        TreeCount share; // the file itself and those before it, back to the sample before
    };
    void thinOut();

    TreeCount m_all;
    TreeCount m_done;
    int m_stride = 1; // how many files a sample stands for
    QVector<Sample> m_samples; // those that are not done
};

/** What has arrived in a target since this object was made. */
class TreeArrival {
public:
    /** @param targets where a file of the tree may come to stand: paths of folders, existing or not */
    explicit TreeArrival(const QVector<QByteArray>& targets);

    /** Whether a file stands in one of the targets that did not stand there before. */
    bool has(const QByteArray& path) const;

    /** The bytes of files that have no name yet, because they are not complete. */
    qint64 unnamedBytes() const;

private:
    qint64 bytesOfNameless() const;

    const QVector<QByteArray> m_targets;
    struct timespec m_since = {}; // zero when nothing was there before
    const qint64 m_namelessBefore;
};

#endif
