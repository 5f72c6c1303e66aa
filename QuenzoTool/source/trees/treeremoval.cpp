// SPDX-License-Identifier: MIT
#include "trees/treeremoval.h"

#include "files/helperthread.h"
#include "files/treefolder.h"
#include "trees/treefailure.h"

#include <QDir>

#include <atomic>
#include <cerrno>
#include <memory>
#include <utility>
#include <vector>

namespace {

// Most of the cost is the system's work on each file, which goes on well on two cores.
bool removeFiles(const TreeFolder& folder, const QVector<QByteArray>& names)
{
    constexpr int worthAThread = 64;
    std::atomic<bool> removed{true};
    const auto remove = [&folder, &names, &removed](int from, int to) {
        for (int i = from; i < to; ++i) {
            if (folder.removeFile(names.at(i)))
                continue;
            logSystemFailure(folder.pathOf(names.at(i)), QStringLiteral("removed"));
            removed = false;
        }
    };
    const int half = names.size() / 2;
    std::thread other;
    if (names.size() >= worthAThread)
        other = startHelperThread([&remove, half] { remove(0, half); });
    remove(other.joinable() ? half : 0, names.size());
    if (other.joinable())
        other.join();
    return removed;
}

// What may be left in a folder.
struct Rest {
    int readError = 0; // of a folder that could not be read
    bool isTold = false; // something stays in it, and the log knows what
};

// One folder on the way down, without its files. The way may be longer than a path, or the stack, can be.
struct Level {
    Level(TreeFolder opened, FolderChain& chain)
        : folder(std::move(opened))
        , visit(chain, folder)
    {
        QVector<TreeEntry> entries;
        if (!folder.list(entries)) // one that cannot be read may be empty for all that
            rest.readError = folder.isOpen() ? errno : folder.error();
        QVector<QByteArray> files;
        for (const TreeEntry& entry : qAsConst(entries))
            (entry.kind == TreeEntry::Folder ? folders : files).append(entry.name);
        rest.isTold = !removeFiles(folder, files);
    }

    TreeFolder folder;
    const FolderChain::Visit visit;
    QVector<QByteArray> folders;
    Rest rest;
};

bool removeEmptied(const TreeFolder& parent, const QByteArray& name, const Rest& rest)
{
    if (parent.removeFolder(name))
        return true;
    const QByteArray path = parent.pathOf(name);
    if (rest.readError != 0)
        logFailure(path, QStringLiteral("read"), errorText(rest.readError));
    else if (errno != ENOTEMPTY || !rest.isTold)
        logFolderThatStays(path);
    return false;
}

Rest removeContent(TreeFolder top)
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
        const Rest rest = level.rest;
        levels.pop_back();
        if (levels.empty())
            return rest;
        Level& parent = *levels.back();
        if (!removeEmptied(parent.folder, parent.folders.takeLast(), rest))
            parent.rest.isTold = true;
    }
}

} // namespace

bool removeTree(const QByteArray& path)
{
    // One that is there may not open for want of handles.
    const TreeFolder folder = TreeFolder::open(path, TreeFolder::Writing);
    if (!folder.isOpen()) {
        const bool isGone = !QDir(TreeFolder::text(path)).exists();
        if (!isGone)
            logUnreadable(folder);
        return isGone;
    }
    const Rest rest = removeContent(TreeFolder::open(path, TreeFolder::Listing));
    const TreeFolder parent = TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing);
    return removeEmptied(parent, TreeFolder::lastName(path), rest);
}
