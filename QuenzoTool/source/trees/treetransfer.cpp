// SPDX-License-Identifier: MIT
#include "trees/treetransfer.h"

#include "files/stacklimit.h"
#include "trees/treefailure.h"

#include <QThread>

#include <algorithm>
#include <cerrno>

namespace {

// Whether a folder is the one at a path or somewhere in it, by its identity; links are not followed.
bool isWithin(const QByteArray& path, const FileIdentity& id)
{
    QVector<QByteArray> paths{path};
    while (!paths.isEmpty()) {
        const TreeFolder folder = TreeFolder::open(paths.takeLast(), TreeFolder::Listing);
        if (folder.id() == id)
            return true;
        QVector<TreeEntry> entries;
        folder.list(entries);
        for (const TreeEntry& entry : qAsConst(entries)) {
            if (entry.kind == TreeEntry::Folder)
                paths.append(folder.pathOf(entry.name));
        }
    }
    return false;
}

} // namespace

TransferTarget TransferTarget::reach(const QByteArray& path)
{
    TransferTarget target;
    target.folder = TreeFolder::open(path, TreeFolder::Writing);
    if (target.folder.isOpen())
        return target;
    return make(TreeFolder::open(TreeFolder::parentPath(path), TreeFolder::Writing),
                TreeFolder::lastName(path));
}

TransferTarget TransferTarget::make(const TreeFolder& parent, const QByteArray& name)
{
    TransferTarget target;
    const TreeFolder::Made made = parent.makeFolder(name);
    if (made == TreeFolder::NotMade) {
        logSystemFailure(parent.pathOf(name), QStringLiteral("made"));
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
    , m_copier(options.testFlag(Moving) ? FileCopier::Flushable : FileCopier::LeftToSystem,
               options.testFlag(Replacing) ? FileCopier::Replaced : FileCopier::Kept)
{
}

bool TreeTransfer::list(const TreeFolder& folder, QVector<TreeEntry>& entries, const QStringList& nameFilters)
{
    settleBefore(folder);
    if (folder.isOpen())
        logStep("in the folder", folder.path());
    const bool isListed = folder.isMissing() || (folder.isOpen() && folder.list(entries));
    if (!isListed)
        logFailure(folder.path(), QStringLiteral("read"),
                   errorText(folder.isOpen() ? errno : folder.error()));
    keepNamed(entries, nameFilters);
    return isListed;
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

bool TreeTransfer::canEnter(const TreeFolder& from, const QByteArray& name, const TreeFolder& to)
{
    if (!isStackNearlyUsedUp())
        return canHold(from, name, to);
    logFailedCopy(from.pathOf(name), to.pathOf(name),
                  QStringLiteral("it is too deep for the thread's stack"));
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
    if (result == TreeFolder::WasThere) {
        made = openFolder(parent, name);
    } else {
        made.folder = parent.folder.openChild(name, TreeFolder::Writing);
        made.namesKnown = true;
    }
    if (!made.folder.isOpen())
        logUnreadable(made.folder);
    return made;
}

TransferTarget TreeTransfer::openFolder(const TransferTarget& parent, const QByteArray& name)
{
    TransferTarget opened;
    opened.folder = parent.folder.openChild(name, TreeFolder::Writing);
    if (!opened.folder.isOpen())
        return opened;
    const TreeFolder::Way way = parent.folder.wayTo(name);
    opened.isElsewhere = parent.isElsewhere || way != TreeFolder::AsEntry;
    opened.isMount = way == TreeFolder::ByMount;
    return opened;
}

bool TreeTransfer::leadsIntoSource(const TransferTarget& to, const TreeFolder& source,
                                   const FolderChain& sources, const FolderChain& targets)
{
    if (!to.isElsewhere)
        return false;
    bool leadsThere = to.isMount && isWithin(sources.outermost().path(), to.folder.id());
    const QVector<FileIdentity> lineage = to.folder.lineage();
    for (const FileIdentity& id : lineage) {
        if (!leadsThere && id == targets.outermost().id())
            return false; // it leads on within the target, which may itself be in the source
        leadsThere = leadsThere || id == source.id() || sources.contains(id);
    }
    if (leadsThere)
        logFailedCopy(source.path(), to.folder.path(), QStringLiteral("the target leads into the source"));
    return leadsThere;
}

int TreeTransfer::transfer(const TreeFolder& from, const TreeEntry* files, int count, TransferTarget& to)
{
    settleBefore(to.folder);
    if (m_options.testFlag(Replacing))
        to.learnNames(count);
    int done = 0;
    while (done < count && !m_flushFailed) {
        const TreeEntry& file = files[done];
        if (!canHold(from, file.name, to.folder))
            break;
        if (QThread::currentThread()->isInterruptionRequested()) {
            logFailedCopy(from.pathOf(file.name), to.folder.pathOf(file.name),
                          QStringLiteral("the operation was to end"));
            break;
        }
        if (m_options.testFlag(SparingItself) && isItself(from, file, to.folder)) {
            logFailedCopy(from.pathOf(file.name), to.folder.pathOf(file.name),
                          QStringLiteral("it is the same file"));
            break;
        }
        const int run = runLength(from, files + done, count - done, to);
        const FileCopier::Outcome outcome = m_copier.copy(from, files + done, run, to.folder);
        if (m_options.testFlag(Moving)) {
            m_removal.addFiles(from, files + done, m_copier.sources(), to.folder);
            settleIfMuchIsDue();
        }
        done += outcome.copied;
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

void TreeTransfer::removeFolder(const TreeFolder& parent, const QByteArray& name, const FileIdentity& forced)
{
    m_removal.addFolder(parent, name, forced);
}

void TreeTransfer::removeFolderAtOnce(const TreeFolder& parent, const QByteArray& name,
                                      const FileIdentity& forced)
{
    settle();
    SourceRemoval::removeFolder(parent, name, forced);
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
void TreeTransfer::settleIfMuchIsDue()
{
    constexpr int mostSources = 32 * 1024;
    constexpr qint64 mostBytes = 1 << 30;
    if (m_removal.count() >= mostSources || m_copier.unflushedBytes() >= mostBytes)
        settle();
}

// How many files can be handed to the copier at once: there is nothing to be looked at before each of them.
int TreeTransfer::runLength(const TreeFolder& from, const TreeEntry* files, int count,
                            const TransferTarget& to) const
{
    constexpr int longest = 4096;
    if (m_options.testFlag(Replacing) && to.mayHold(files[0].name))
        return 1;
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
