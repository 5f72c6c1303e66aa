// SPDX-License-Identifier: MIT
#include "sourceremoval.h"

void SourceRemoval::addFiles(const TreeFolder& folder, const TreeEntry* files,
                             const QVector<FileState>& states)
{
    if (states.isEmpty())
        return;
    Group& group = groupOf(folder);
    for (int i = 0; i < states.size(); ++i)
        group.items.append({files[i].name, false, AsItIs, states.at(i)});
    m_count += states.size();
}

void SourceRemoval::addFolder(const TreeFolder& folder, const QByteArray& name, Manner manner)
{
    groupOf(folder).items.append({name, true, manner, {}});
    ++m_count;
}

void SourceRemoval::perform()
{
    for (const Group& group : qAsConst(m_groups)) {
        const TreeFolder folder = TreeFolder::open(group.path, TreeFolder::Writing);
        if (folder.id() != group.id)
            continue; // somebody put another folder in its place
        for (const Item& item : group.items) {
            if (item.isFolder)
                removeFolder(folder, item.name, item.manner);
            else if (folder.stateOf(item.name) == item.state)
                folder.removeFile(item.name);
        }
    }
    m_groups.clear();
    m_folders.clear();
    m_count = 0;
}

void SourceRemoval::removeFolder(const TreeFolder& parent, const QByteArray& name, Manner manner)
{
    if (!parent.removeFolder(name) && manner == Forced && parent.forceWriteOther(name))
        parent.removeFolder(name);
}

SourceRemoval::Group& SourceRemoval::groupOf(const TreeFolder& folder)
{
    if (m_groups.isEmpty() || m_groups.last().id != folder.id()) {
        m_groups.append({folder.path(), folder.id(), {}});
        m_folders.insert(folder.id());
    }
    return m_groups.last();
}
