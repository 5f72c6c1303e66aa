// SPDX-License-Identifier: MIT
#ifndef TREEPROGRESS_H
#define TREEPROGRESS_H

#include "treecount.h"

#include <QVector>

#include <ctime>
#include <functional>

/**
 * Tells from outside how far an operation has come that goes through a tree in order: some of its files,
 * evenly spread, are remembered, and the last of them that is done is searched for by halves.
 */
class TreeProgress {
public:
    /** Counts the tree, as it is before the operation. */
    explicit TreeProgress(const TreeScope& scope);

    const TreeCount& all() const { return m_all; }

    /** @param isDone whether the file of this path in the tree is done; asked of a few files */
    TreeCount done(const std::function<bool(const QByteArray& path)>& isDone);

private:
    struct Waypoint {
        QByteArray path;
        TreeCount passed;
    };
    void remember(const WalkedEntry& entry);

    TreeCount m_all;
    qint64 m_stride = 1; // how many files lie between two waypoints
    QVector<Waypoint> m_waypoints;
    int m_reached = 0;
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
