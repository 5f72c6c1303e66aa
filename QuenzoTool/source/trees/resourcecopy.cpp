// SPDX-License-Identifier: MIT
#include "trees/resourcecopy.h"

#include "trees/treefailure.h"

#include <QFile>

#include <cerrno>

bool ResourceCopy::perform(const QDir& source, TransferTarget& target) const
{
    const QDir::Filters all = QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QFileInfoList infos = source.entryInfoList(all, QDir::Unsorted);
    TreeTransfer transfer({});
    ResourceCopy inner = *this;
    inner.staysBehind = nullptr;
    for (const QFileInfo& info : infos) {
        const QByteArray name = TreeFolder::nativePath(info.fileName());
        if (staysBehind && staysBehind({name, TreeEntry::File, false}))
            continue;
        if (!info.isDir()) {
            if (!copyFile(info, target.folder, name))
                return false;
            continue;
        }
        TransferTarget made =
            makesFolders ? transfer.makeFolder(target, name) : TreeTransfer::openFolder(target, name);
        const bool serves = made.folder.isOpen() || !makesFolders;
        if (!serves || !inner.perform(QDir(info.absoluteFilePath()), made))
            return false;
    }
    return true;
}

bool ResourceCopy::copyFile(const QFileInfo& source, const TreeFolder& target, const QByteArray& name) const
{
    QFile file(source.absoluteFilePath());
    const QByteArray path = target.pathOf(name);
    QString reason;
    if (!target.isOpen())
        reason = errorText(target.error());
    else if (overwrite && !target.removeExisting(name))
        reason = errorText(errno);
    else if (!file.copy(TreeFolder::text(path)))
        reason = file.errorString();
    if (reason.isNull())
        return true;
    const QByteArray from = TreeFolder::nativePath(file.fileName());
    logFailedCopy(from, path, reason);
    if (failed)
        failed(from, path);
    return false;
}
