// SPDX-License-Identifier: MIT
#include "trees/treetransfer.h"

#include <algorithm>

TransferTarget TransferTarget::reach(const QByteArray& path)
{
    TransferTarget target;
    target.folder = TreeFolder::open(path, TreeFolder::Writing);
    if (target.folder.isOpen())
        return target;
    const TreeFolder parent = TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing);
    const QByteArray name = TreeFolder::lastName(path);
    target.namesKnown = parent.makeFolder(name) == TreeFolder::MadeNew;
    target.folder = parent.openChild(name, TreeFolder::Writing);
    return target;
}

void TransferTarget::learnNames(int files)
{
    constexpr int worthReading = 8;
    if (namesKnown || files < worthReading)
        return;
    const TreeFolder reader = TreeFolder::open(folder.path(), TreeFolder::Listing);
    QVector<TreeEntry> entries;
    if (reader.id() != folder.id() || !reader.list(entries, TreeFolder::LinksKept))
        return;
    for (const TreeEntry& entry : qAsConst(entries))
        names.insert(entry.name);
    namesKnown = true;
}

TreeTransfer::TreeTransfer(Options options)
    : m_options(options)
    , m_copier(options.testFlag(Moving) ? FileCopier::Flushable : FileCopier::LeftToSystem)
{
}

bool TreeTransfer::list(const TreeFolder& folder, QVector<TreeEntry>& entries)
{
    settleBefore(folder);
    return folder.list(entries, TreeFolder::LinksFollowed);
}

TransferTarget TreeTransfer::makeFolder(TransferTarget& parent, const QByteArray& name)
{
    settleBefore(parent.folder);
    TransferTarget made;
    const TreeFolder::Made result = parent.folder.makeFolder(name);
    if (result == TreeFolder::NotMade)
        return made;
    parent.names.insert(name);
    made.folder = parent.folder.openChild(name, TreeFolder::Writing);
    made.namesKnown = result == TreeFolder::MadeNew;
    return made;
}

int TreeTransfer::transfer(const TreeFolder& from, const TreeEntry* files, int count, TransferTarget& to)
{
    settleBefore(to.folder);
    if (m_options.testFlag(Replacing))
        to.learnNames(count);
    int done = 0;
    int replaced = -1;
    while (done < count && !m_flushFailed) {
        const TreeEntry& file = files[done];
        if (!from.canHold(file.name) || !to.folder.canHold(file.name))
            break;
        if (file.isLink) // what it leads to may be due to go
            settle();
        if (m_options.testFlag(SparingItself) && isItself(from, file, to.folder))
            break;
        if (m_options.testFlag(Replacing) && replaced != done && to.mayHold(file.name)) {
            removeExisting(to.folder, file.name);
            replaced = done;
        }
        const int run = runLength(from, files + done, count - done, to);
        const FileCopier::Outcome outcome = m_copier.copy(from, files + done, run, to.folder);
        note(from, files + done, to.folder);
        done += outcome.copied;
        // A name can be taken by one that differs in case only, or that somebody else made meanwhile.
        const bool taken = outcome.trouble == FileCopier::NameTaken && m_options.testFlag(Replacing);
        if (taken && replaced != done) {
            removeExisting(to.folder, files[done].name);
            replaced = done;
            continue;
        }
        // There would be room, had the sources gone at once.
        const bool roomComes = outcome.trouble == FileCopier::NoRoom && m_removal.count() > 0 && settle();
        if (outcome.trouble != FileCopier::NoTrouble && !roomComes)
            break;
    }
    return done;
}

void TreeTransfer::removeFolder(const TreeFolder& parent, const QByteArray& name,
                                SourceRemoval::Manner manner)
{
    m_removal.addFolder(parent, name, manner);
}

bool TreeTransfer::settle()
{
    if (m_removal.count() == 0)
        return !m_flushFailed;
    if (m_copier.flush()) {
        m_removal.perform();
    } else {
        m_flushFailed = true;
        m_unflushed = m_removal.firstFile();
        m_removal = {};
    }
    return !m_flushFailed;
}

// Neither the sources nor the data that await their flush are to become too many.
void TreeTransfer::note(const TreeFolder& from, const TreeEntry* files, const TreeFolder& to)
{
    constexpr int mostSources = 32 * 1024;
    constexpr qint64 mostBytes = 1 << 30;
    if (!m_options.testFlag(Moving))
        return;
    m_removal.addFiles(from, files, m_copier.sources(), to);
    if (m_removal.count() >= mostSources || m_copier.unflushedBytes() >= mostBytes)
        settle();
}

// How many files can be handed to the copier at once: there is nothing to be looked at before each of them.
int TreeTransfer::runLength(const TreeFolder& from, const TreeEntry* files, int count,
                            const TransferTarget& to) const
{
    constexpr int longest = 4096;
    if (files[0].isLink)
        return 1;
    const TreeEntry* const end = files + qMin(count, longest);
    const auto stands = [&](const TreeEntry& file) {
        return file.isLink || !from.canHold(file.name) || !to.folder.canHold(file.name)
            || (m_options.testFlag(Replacing) && to.mayHold(file.name));
    };
    return static_cast<int>(std::find_if(files + 1, end, stands) - files);
}

bool TreeTransfer::isItself(const TreeFolder& from, const TreeEntry& file, const TreeFolder& to)
{
    if (!file.isLink)
        return from.id() == to.id();
    const FileIdentity source = from.idOf(file.name, TreeFolder::LinksFollowed);
    return !source.isEmpty() && source == to.idOf(file.name, TreeFolder::LinksKept);
}

void TreeTransfer::removeExisting(const TreeFolder& folder, const QByteArray& name)
{
    if (!folder.removeFile(name) && folder.forceWriteOther(name))
        folder.removeFile(name);
}
