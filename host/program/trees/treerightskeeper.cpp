// SPDX-License-Identifier: MIT
#include "trees/treerightskeeper.h"

namespace {

constexpr mode_t allBits = 07777;

bool isLocked(const QByteArray& folder)
{
    struct stat status { };
    return stat(folder.constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && (status.st_mode & allBits) == S_IWOTH;
}

} // namespace

TreeRightsKeeper::TreeRightsKeeper(const QByteArray& path)
{
    TreeScope scope{path};
    scope.filesToo = false;
    scope.walk([&](const WalkedEntry& entry) {
        if (entry.isFolder())
            m_folders.append({path + '/' + entry.path, entry.status.st_mode & allBits});
        return TreeScope::GoOn;
    });
}

void TreeRightsKeeper::restore() const
{
    for (const Folder& folder : m_folders) {
        if (isLocked(folder.path))
            chmod(folder.path.constData(), folder.mode);
    }
}
