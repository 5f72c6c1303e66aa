// SPDX-License-Identifier: MIT
#ifndef TREEPLAN_H
#define TREEPLAN_H

#include "trees/treecount.h"

class Console;

/**
 * Reports, file by file, what an operation would do, and does nothing.
 *
 * @param target the folder that the files would come to; empty when they would be removed
 * @return what the operation would handle
 */
TreeCount reportPlan(const TreeScope& scope, const QByteArray& target, Console& console);

#endif
