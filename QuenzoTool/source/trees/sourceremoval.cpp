// SPDX-License-Identifier: MIT
#include "trees/sourceremoval.h"

#include "trees/treefailure.h"

#include <cerrno>

namespace {

void removeFile(const TreeFolder& folder, const QByteArray& name, const FileState& whenCopied)
{
    const FileState now = folder.stateOf(name);
    const QByteArray path = folder.pathOf(name);
    if (now.id.isEmpty())
        return; // somebody else has removed it
    if (!(now == whenCopied))
        logLeftBehind(path, QStringLiteral("removed"),
                      QStringLiteral("it was written to since it was copied"));
    else if (!folder.removeFile(name))
        logLeftBehind(path, QStringLiteral("removed"), errorText(errno));
}

} // namespace

void SourceRemoval::addFiles(const TreeFolder& folder, const TreeEntry* files,
                             const QVector<FileState>& states, const TreeFolder& target)
{
    if (states.isEmpty())
        return;
    Group& group = groupOf(folder, target.path());
    for (int i = 0; i < states.size(); ++i) {
        // What a link leads to stays, and may be written to: by the move itself, if it is in the target.
        const FileState state = files[i].isLink ? folder.stateOf(files[i].name) : states.at(i);
        group.items.append({files[i].name, false, {}, state});
    }
    m_count += states.size();
}

void SourceRemoval::addFolder(const TreeFolder& folder, const QByteArray& name, const FileIdentity& forced)
{
    groupOf(folder, {}).items.append({name, true, forced, {}});
    ++m_count;
}

SourceRemoval::Copied SourceRemoval::firstFile() const
{
    for (const Group& group : m_groups) {
        for (const Item& item : group.items) {
            if (!item.isFolder)
                return {group.path + '/' + item.name, group.targetPath + '/' + item.name};
        }
    }
    return {};
}

void SourceRemoval::perform()
{
    for (const Group& group : qAsConst(m_groups)) {
        const TreeFolder folder = TreeFolder::open(group.path, TreeFolder::Writing);
        if (!folder.isOpen()) {
            logLeftBehind(group.path, QStringLiteral("emptied"), errorText(folder.error()));
            continue;
        }
        if (folder.id() != group.id) {
            logLeftBehind(group.path, QStringLiteral("emptied"),
                          QStringLiteral("it is no longer the folder that was copied"));
            continue;
        }
        for (const Item& item : group.items) {
            if (item.isFolder)
                removeFolder(folder, item.name, item.forced);
            else
                removeFile(folder, item.name, item.state);
        }
    }
    m_groups.clear();
    m_folders.clear();
    m_count = 0;
}

void SourceRemoval::removeFolder(const TreeFolder& parent, const QByteArray& name, const FileIdentity& forced)
{
    const bool removed = parent.removeFolder(name)
        || (!forced.isEmpty() && parent.forceFolder(name, forced) && parent.removeFolder(name));
    if (removed)
        logStep("removed the folder", parent.pathOf(name));
    // What a folder still holds is known, or meant to stay; one that is gone cannot be emptied, which was
    // told.
    if (!removed && errno != ENOTEMPTY && errno != ENOENT)
        logLeftBehind(parent.pathOf(name), QStringLiteral("removed"), reasonOfStaying());
}

SourceRemoval::Group& SourceRemoval::groupOf(const TreeFolder& folder, const QByteArray& targetPath)
{
    const auto isLast = [&](const Group& last) {
        return last.id == folder.id() && (targetPath.isEmpty() || last.targetPath == targetPath);
    };
    if (m_groups.isEmpty() || !isLast(m_groups.last())) {
        m_groups.append({folder.path(), folder.id(), {}, targetPath});
        m_folders.insert(folder.id());
    }
    return m_groups.last();
}
