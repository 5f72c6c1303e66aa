// SPDX-License-Identifier: MIT
#ifndef TREECOUNT_H
#define TREECOUNT_H

#include "trees/treewalk.h"

/** How many files a folder tree holds, and how large they are together. */
struct TreeCount {
    qint64 files = 0;
    qint64 bytes = 0;

    static TreeCount of(const TreeScope& scope);

    /** Counts everything but folders; only what is, or leads to, a regular file has bytes. */
    void add(const WalkedEntry& entry);

    TreeCount& operator+=(const TreeCount& other);

    /** What is more than in another count, at least nothing. */
    TreeCount& operator-=(const TreeCount& other);
};

#endif
