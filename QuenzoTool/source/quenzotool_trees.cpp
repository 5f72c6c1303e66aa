// SPDX-License-Identifier: MIT
#include "quenzotool.h"

#include "treecopy.h"
#include "treeremoval.h"
#include "treerights.h"

#include <QDir>

namespace {

QByteArray absolutePath(const QDir& folder)
{
    return TreeFolder::nativePath(folder.absolutePath());
}

} // namespace

bool QuenzoTool::copyDirectory(const QDir& source, const QDir& target, bool overwrite, bool deleteSource)
{
    return TreeCopy(absolutePath(source), absolutePath(target), overwrite, deleteSource).perform();
}

bool QuenzoTool::changePermessionRecursively(QDir& folder)
{
    forceTreeWriteOther(folder.path());
    return true;
}

bool QuenzoTool::removeRecursively(QDir& folder)
{
    return changePermessionRecursively(folder) && removeTree(absolutePath(folder));
}
