// SPDX-License-Identifier: MIT
#include "trees/treerightskeeper.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr mode_t allBits = 07777;

// Gives the mode to a folder that is locked still, and not to what has taken its place meanwhile.
void unlock(const char* folder, const FileIdentity& id, mode_t mode)
{
    const int handle = open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
    struct stat status { };
    if (handle < 0)
        return;
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(handle);
    if (fstat(handle, &status) == 0 && FileIdentity(status) == id && (status.st_mode & allBits) == S_IWOTH)
        chmod(path.constData(), mode);
    close(handle);
}

} // namespace

TreeRightsKeeper::TreeRightsKeeper(const QByteArray& path)
{
    TreeScope scope{path};
    scope.filesToo = false;
    scope.walk([&](const WalkedEntry& entry) {
        if (entry.isFolder())
            m_folders.append(
                {path + '/' + entry.path, FileIdentity(entry.status), entry.status.st_mode & allBits});
        return TreeScope::GoOn;
    });
}

void TreeRightsKeeper::restore() const
{
    for (const Folder& folder : m_folders)
        unlock(folder.path.constData(), folder.id, folder.mode);
}
