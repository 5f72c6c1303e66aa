// SPDX-License-Identifier: MIT
#include "quenzotool.h"

#include "trees/treecopy.h"
#include "trees/treeremoval.h"
#include "trees/treerights.h"

#include <QDir>

bool QuenzoTool::copyDirectory(const QDir& source, const QDir& target, bool overwrite, bool deleteSource)
{
    return TreeCopy(TreeFolder::nativePath(source), TreeFolder::nativePath(target), overwrite, deleteSource)
        .perform();
}

bool QuenzoTool::changePermessionRecursively(QDir& folder)
{
    forceTreeWriteOther(folder.path());
    return true;
}

bool QuenzoTool::removeRecursively(QDir& folder)
{
    const QByteArray path = TreeFolder::nativePath(folder);
    return changePermessionRecursively(folder) && (path.isEmpty() || removeTree(path));
}
