// SPDX-License-Identifier: MIT
#include "trees/treetransfer.h"

#include "trees/treefailure.h"

#include <algorithm>
#include <cerrno>

TransferTarget TransferTarget::reach(const QByteArray& path)
{
    TransferTarget target;
    target.folder = TreeFolder::open(path, TreeFolder::Writing);
    if (target.folder.isOpen())
        return target;
    const TreeFolder parent = TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing);
    const QByteArray name = TreeFolder::lastName(path);
    const TreeFolder::Made made = parent.makeFolder(name);
    if (made == TreeFolder::NotMade) {
        logSystemFailure(path, QStringLiteral("made"));
        return target;
    }
    target.namesKnown = made == TreeFolder::MadeNew;
    target.folder = parent.openChild(name, TreeFolder::Writing);
    if (!target.folder.isOpen())
        logUnreadable(target.folder);
    return target;
}

void TransferTarget::learnNames(int files)
{
    constexpr int worthReading = 8;
    if (namesKnown || files < worthReading)
        return;
    const TreeFolder reader = TreeFolder::open(folder.path(), TreeFolder::Listing);
    QVector<TreeEntry> entries;
    if (reader.id() != folder.id() || !reader.list(entries))
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
    if (folder.isMissing())
        return true;
    if (!folder.isOpen())
        logUnreadable(folder);
    else if (folder.list(entries))
        return true;
    else
        logSystemFailure(folder.path(), QStringLiteral("read"));
    return false;
}

int TreeTransfer::filesFrom(const QVector<TreeEntry>& entries, int first)
{
    const auto isOther = [](const TreeEntry& entry) {
        return entry.isLink || entry.kind == TreeEntry::Folder;
    };
    const auto begin = entries.cbegin() + first;
    return static_cast<int>(std::find_if(begin, entries.cend(), isOther) - begin);
}

TreeEntry TreeTransfer::atItsTurn(const TreeFolder& folder, const TreeEntry& entry)
{
    if (!entry.isLink)
        return entry;
    settle(); // what it leads to may be due to go
    return {entry.name, folder.kindOf(entry), true};
}

bool TreeTransfer::canHold(const TreeFolder& from, const QByteArray& name, const TreeFolder& to)
{
    if (from.canHold(name) && to.canHold(name))
        return true;
    logFailedCopy(from.pathOf(name), to.pathOf(name), errorText(ENAMETOOLONG));
    return false;
}

TransferTarget TreeTransfer::makeFolder(TransferTarget& parent, const QByteArray& name)
{
    settleBefore(parent.folder);
    TransferTarget made;
    const TreeFolder::Made result = parent.folder.makeFolder(name);
    if (result == TreeFolder::NotMade) {
        logSystemFailure(parent.folder.pathOf(name), QStringLiteral("made"));
        return made;
    }
    parent.names.insert(name);
    made.folder = parent.folder.openChild(name, TreeFolder::Writing);
    if (!made.folder.isOpen())
        logUnreadable(made.folder);
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
        if (!canHold(from, file.name, to.folder))
            break;
        if (m_options.testFlag(SparingItself) && isItself(from, file, to.folder)) {
            logFailedCopy(from.pathOf(file.name), to.folder.pathOf(file.name),
                          QStringLiteral("it is the same file"));
            break;
        }
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
        if (outcome.trouble == FileCopier::NoTrouble || roomComes)
            continue;
        const QByteArray& name = files[done].name;
        logFailedCopy(from.pathOf(name), to.folder.pathOf(name), outcome.reason);
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
        const QString reason = errorText(errno);
        m_flushFailed = true;
        m_unflushed = m_removal.firstFile();
        logFailure(m_unflushed.target, QStringLiteral("brought to the disk"), reason);
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
    const TreeEntry* const end = files + qMin(count, longest);
    const auto stands = [&](const TreeEntry& file) {
        return !from.canHold(file.name) || !to.folder.canHold(file.name)
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
