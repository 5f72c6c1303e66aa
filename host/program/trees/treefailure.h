// SPDX-License-Identifier: MIT
#ifndef TREEFAILURE_H
#define TREEFAILURE_H

#include "trees/treewalk.h"

#include <QString>

class TreeArrival;

/** Finds out, and says, why a tree was not copied or moved as a whole. */
namespace TreeFailure {

/** An entry and its copy, by paths in the file system's own bytes; both are empty when nothing was found. */
struct Entry {
    QByteArray source;
    QByteArray target;
};

/** The first entry, in the order of the operation, that has not arrived: the one that ended it. */
Entry firstMissing(const TreeScope& scope, const QByteArray& target, const TreeArrival& arrival);

/**
 * A link in the tree to the target, or to a folder that holds the target: what comes to the target then
 * belongs to the tree, too, without an end.
 */
Entry linkToTarget(TreeScope scope, const QByteArray& target);

/** Says that an entry could not be copied, and why, as far as that can be seen now. */
QString sentence(const Entry& entry);

} // namespace TreeFailure

#endif
