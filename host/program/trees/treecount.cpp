// SPDX-License-Identifier: MIT
#include "trees/treecount.h"

TreeCount TreeCount::of(const TreeScope& scope)
{
    TreeCount count;
    scope.walk([&count](const WalkedEntry& entry) {
        count.add(entry);
        return TreeScope::GoOn;
    });
    return count;
}

void TreeCount::add(const WalkedEntry& entry)
{
    files += entry.isFolder() ? 0 : 1;
    bytes += S_ISREG(entry.status.st_mode) ? entry.status.st_size : 0;
}

TreeCount& TreeCount::operator+=(const TreeCount& other)
{
    files += other.files;
    bytes += other.bytes;
    return *this;
}

TreeCount& TreeCount::operator-=(const TreeCount& other)
{
    files = qMax<qint64>(files - other.files, 0);
    bytes = qMax<qint64>(bytes - other.bytes, 0);
    return *this;
}
