// SPDX-License-Identifier: MIT
#include "trees/treeremoval.h"

#include "files/treefolder.h"

#include <QDir>

#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

// Most of the cost is the system's work on each file, which goes on well on two cores.
void removeFiles(const TreeFolder& folder, const QVector<QByteArray>& names)
{
    constexpr int worthAThread = 64;
    const auto remove = [&folder, &names](int from, int to) {
        for (int i = from; i < to; ++i)
            folder.removeFile(names.at(i));
    };
    const int half = names.size() / 2;
    std::thread other;
    try {
        if (names.size() >= worthAThread)
            other = std::thread(remove, 0, half);
    } catch (const std::system_error&) {
        // A system that gives no further thread leaves all of them to this one.
    }
    remove(other.joinable() ? half : 0, names.size());
    if (other.joinable())
        other.join();
}

// One folder on the way down, without its files. The way may be longer than a path, or the stack, can be.
struct Level {
    Level(TreeFolder opened, FolderChain& chain)
        : folder(std::move(opened))
        , visit(chain, folder)
    {
        QVector<TreeEntry> entries;
        folder.list(entries, TreeFolder::LinksKept); // one that cannot be read may be empty for all that
        QVector<QByteArray> files;
        for (const TreeEntry& entry : qAsConst(entries))
            (entry.kind == TreeEntry::Folder ? folders : files).append(entry.name);
        removeFiles(folder, files);
    }

    TreeFolder folder;
    const FolderChain::Visit visit;
    QVector<QByteArray> folders;
};

void removeContent(TreeFolder top)
{
    FolderChain chain;
    std::vector<std::unique_ptr<Level>> levels;
    levels.push_back(std::make_unique<Level>(std::move(top), chain));
    while (true) {
        Level& level = *levels.back();
        if (!level.folders.isEmpty()) {
            TreeFolder child =
                level.folder.openChild(level.folders.last(), TreeFolder::Listing, TreeFolder::LinksKept);
            levels.push_back(std::make_unique<Level>(std::move(child), chain));
            continue;
        }
        levels.pop_back();
        if (levels.empty())
            return;
        Level& parent = *levels.back();
        parent.folder.removeFolder(parent.folders.takeLast());
    }
}

} // namespace

bool removeTree(const QByteArray& path)
{
    // One that is there may not open for want of handles.
    if (!TreeFolder::open(path, TreeFolder::Writing).isOpen())
        return !QDir(TreeFolder::text(path)).exists();
    removeContent(TreeFolder::open(path, TreeFolder::Listing));
    const TreeFolder parent = TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing);
    return parent.removeFolder(TreeFolder::lastName(path));
}
