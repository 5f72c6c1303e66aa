// SPDX-License-Identifier: MIT
#ifndef RESOURCECOPY_H
#define RESOURCECOPY_H

#include "trees/treetransfer.h"

#include <QDir>

#include <functional>

/**
 * Copies the content of a folder of Qt's resource system, by Qt's own means. Nothing can be removed from it,
 * so that a move comes to the same: what cannot be removed stays, and is no failure.
 */
struct ResourceCopy {
    bool overwrite = true;
    bool makesFolders = true; ///< or they have to be there
    std::function<bool(const TreeEntry&)>
        staysBehind; ///< asked of the entries directly in the folder, if set
    /** Told of the file that ends the copy, if set. */
    std::function<void(const QByteArray& source, const QByteArray& target)> failed;

    bool perform(const QDir& source, TransferTarget& target) const;

private:
    bool copyFile(const QFileInfo& source, const TreeFolder& target, const QByteArray& name) const;
};

#endif
