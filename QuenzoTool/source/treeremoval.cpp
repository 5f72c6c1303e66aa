// SPDX-License-Identifier: MIT
#include "treeremoval.h"

#include "treefolder.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

// One folder on the way down. The way may be longer than a path, or the stack, can be.
struct Level {
    Level(TreeFolder opened, FolderChain& chain)
        : folder(std::move(opened))
        , visit(chain, folder)
    {
        folder.list(entries, TreeFolder::LinksKept); // one that cannot be read may be empty for all that
    }

    TreeFolder folder;
    const FolderChain::Visit visit;
    QVector<TreeEntry> entries;
    int next = 0;
};

// Removes files up to the next folder; whether there is one.
bool removeFiles(Level& level)
{
    for (; level.next < level.entries.size(); ++level.next) {
        const TreeEntry& entry = level.entries.at(level.next);
        if (entry.kind == TreeEntry::Folder)
            return true;
        level.folder.removeFile(entry.name);
    }
    return false;
}

void removeContent(TreeFolder top)
{
    FolderChain chain;
    std::vector<std::unique_ptr<Level>> levels;
    levels.push_back(std::make_unique<Level>(std::move(top), chain));
    while (true) {
        Level& level = *levels.back();
        if (removeFiles(level)) {
            TreeFolder child = level.folder.openChild(level.entries.at(level.next).name, TreeFolder::Listing,
                                                      TreeFolder::LinksKept);
            levels.push_back(std::make_unique<Level>(std::move(child), chain));
            continue;
        }
        levels.pop_back();
        if (levels.empty())
            return;
        Level& parent = *levels.back();
        parent.folder.removeFolder(parent.entries.at(parent.next++).name);
    }
}

} // namespace

bool removeTree(const QByteArray& path)
{
    if (!TreeFolder::open(path, TreeFolder::Writing).isOpen())
        return true;
    removeContent(TreeFolder::open(path, TreeFolder::Listing));
    const TreeFolder parent = TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing);
    return parent.removeFolder(TreeFolder::lastName(path));
}
