// SPDX-License-Identifier: MIT
#ifndef TREELOOK_H
#define TREELOOK_H

#include "trees/treecount.h"

#include <threadcommon.h>

#include <QVector>

/** What a person wants done with a folder tree. */
struct TreeWish {
    THREAD_OPERATE operate = OPERATE_COPY;
    QString source;
    QString target;
    QStringList left; ///< names directly in the source that a cut for output leaves behind

    bool operator==(const TreeWish& other) const;
};

/** A dry look at it: what would go where, and what would stay. Nothing is touched. */
struct TreeLook {
    enum Fate { Goes, Replaces, Stays };
    struct Entry {
        QString path; ///< in the source
        Fate fate;
    };

    TreeWish wish;
    QString objection; ///< what speaks against it; the rest is empty then
    QVector<Entry> entries; ///< files, and the names that stay
    TreeCount goes;
    int replaced = 0;

    /** Takes as long as reading the folders does. */
    static TreeLook at(const TreeWish& wish);
};

#endif
