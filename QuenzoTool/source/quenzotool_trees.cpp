// SPDX-License-Identifier: MIT
#include "quenzotool.h"

#include "trees/resourcecopy.h"
#include "trees/treecopy.h"
#include "trees/treefailure.h"
#include "trees/treeremoval.h"
#include "trees/treerights.h"

#include <QDir>

bool QuenzoTool::copyDirectory(const QDir& source, const QDir& target, bool overwrite, bool deleteSource)
{
    if (!TreeFolder::isResource(source))
        return TreeCopy(source, target, overwrite, deleteSource).perform();
    ResourceCopy copy;
    copy.overwrite = overwrite;
    TransferTarget to = TransferTarget::reach(TreeFolder::nativePath(target));
    return to.folder.isOpen() && copy.perform(source, to);
}

bool QuenzoTool::changePermessionRecursively(QDir& folder)
{
    forceTreeWriteOther(folder);
    return true;
}

bool QuenzoTool::removeRecursively(QDir& folder)
{
    if (!changePermessionRecursively(folder))
        return false;
    if (!TreeFolder::isResource(folder))
        return removeTree(TreeFolder::nativePath(folder));
    if (folder.exists())
        logFailure(TreeFolder::nativePath(folder.absolutePath()), QStringLiteral("removed"),
                   QStringLiteral("it is one of Qt's resources"));
    return !folder.exists();
}
