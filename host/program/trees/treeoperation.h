// SPDX-License-Identifier: MIT
#ifndef TREEOPERATION_H
#define TREEOPERATION_H

#include "trees/treecount.h"
#include "trees/treepaths.h"

#include <QSet>

#include <memory>

class Console;
class TreeArrival;
class TreeProgress;
class TreeRightsKeeper;

/** One copy, cut or cut for output by the library's worker: what it is about, and how it went. */
class TreeOperation {
public:
    /** @param left the names directly in the source that a cut for output leaves behind */
    TreeOperation(THREAD_OPERATE operate, const TreePaths& paths, const QStringList& left);
    ~TreeOperation();
    TreeOperation(const TreeOperation&) = delete;
    TreeOperation& operator=(const TreeOperation&) = delete;

    /** Does it, with its progress on the terminal; false when it failed, which has been reported. */
    bool run(Console& console);

    /** The files that were to be copied, or that are gone from the source. */
    TreeCount handled() const;

    /** After a move: the files that are still in the source, though they should not. */
    TreeCount left() const;

    /** What the library could not do, line by line, if anything; the first of it when there is much. */
    QStringList causes() const;

private:
    QByteArray findFolderLinks();
    bool start(Console& console, const QStringList& left);
    bool onlyLinksAreLeft() const;
    bool runOutput(Console& console);
    bool finishOutput(Console& console, const TreeRightsKeeper& rights);
    bool fail(Console& console) const;
    QVector<QByteArray> targets() const;

    const THREAD_OPERATE m_operate;
    const TreePaths m_paths;
    const QStringList m_left;
    const QByteArray m_target;
    TreeScope m_scope;
    QSet<QByteArray> m_folderLinks; // those in the source when the operation began
    std::unique_ptr<TreeProgress> m_progress;
    std::unique_ptr<TreeArrival> m_arrival;
    QStringList m_failures;
    QStringList m_leftBehind; // copied, and still in the source
    bool m_started = false;
    bool m_tellsAll = false; // not only the first causes
};

#endif
