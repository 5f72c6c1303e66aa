// SPDX-License-Identifier: MIT
#include "trees/outputcut.h"

#include "trees/resourcecopy.h"
#include "trees/treefailure.h"

#include <quenzobase.h>

#include <QDir>

#include <algorithm>

namespace {

bool isNamed(const TreeEntry& entry, const QStringList& names)
{
    const QString lowered = TreeFolder::text(entry.name).toLower();
    return std::any_of(names.cbegin(), names.cend(),
                       [&lowered](const QString& name) { return name.toLower() == lowered; });
}

void writeFailedCopy(const QByteArray& source, const QByteArray& target)
{
    QuenzoBase::Log(QStringLiteral("Copy Fail:\r\nSrc:%1\r\nDest:%2\r\n")
                        .arg(TreeFolder::text(source), TreeFolder::text(target)));
}

} // namespace

OutputCut::OutputCut(const QString& outputDir, QString& exceptDir)
    : m_outputPath(TreeFolder::nativePath(outputDir))
    , m_exceptDir(exceptDir)
    , m_transfer(TreeTransfer::Replacing | TreeTransfer::Moving)
{
}

bool OutputCut::cut(const QDir& source, const QDir& target, const QStringList* leftBehind)
{
    TransferTarget to = TransferTarget::reach(TreeFolder::nativePath(target));
    if (TreeFolder::isResource(source))
        return to.folder.isOpen() && cutResources(source, to, leftBehind, true);
    TreeFolder from = TreeFolder::open(TreeFolder::nativePath(source), TreeFolder::Listing);
    return to.folder.isOpen() && !isAlias(from, to.folder)
        && cutFolder(from, to, source.nameFilters(), leftBehind) != Failed;
}

bool OutputCut::cutExcept(const QDir& source, const QDir& target)
{
    if (!TreeFolder::isResource(source))
        return cutExcept(TreeFolder::nativePath(source), TreeFolder::nativePath(target));
    TransferTarget to;
    to.folder = TreeFolder::open(TreeFolder::nativePath(target), TreeFolder::Writing);
    return cutResources(source, to, nullptr, false);
}

bool OutputCut::cutResources(const QDir& source, TransferTarget& target, const QStringList* leftBehind,
                             bool makesFolders)
{
    ResourceCopy copy;
    copy.makesFolders = makesFolders;
    copy.failed = writeFailedCopy;
    if (leftBehind != nullptr)
        copy.staysBehind = [leftBehind](const TreeEntry& entry) { return isNamed(entry, *leftBehind); };
    return copy.perform(source, target);
}

bool OutputCut::cutExcept(const QByteArray& source, const QByteArray& target)
{
    TransferTarget to;
    to.folder = TreeFolder::open(target, TreeFolder::Writing);
    TreeFolder from = TreeFolder::open(source, TreeFolder::Listing);
    return !isAlias(from, to.folder) && exceptFolder(from, to) != Failed;
}

// A target in the source is known by its path. One that only another name leads to would be moved into
// itself.
bool OutputCut::isAlias(const TreeFolder& source, const TreeFolder& target)
{
    if (!source.isOpen() || !target.isOpen() || target.path().startsWith(source.path())
        || !target.lineage().contains(source.id()))
        return false;
    logFailedCopy(source.path(), target.path(), QStringLiteral("the target leads into the source"));
    return true;
}

// A folder of the source that is mounted as the target in another place would be moved into itself without
// end.
bool OutputCut::isOutputElsewhere(const TreeFolder& folder) const
{
    const TreeFolder& output = m_targets.outermost();
    return folder.id() == output.id() && !output.path().startsWith(m_sources.outermost().path());
}

bool OutputCut::finish()
{
    const bool flushed = m_transfer.settle();
    const SourceRemoval::Copied& lost = m_transfer.unflushed();
    if (!lost.source.isEmpty())
        writeFailedCopy(lost.source, lost.target);
    return flushed;
}

OutputCut::Result OutputCut::cutFolder(TreeFolder& source, TransferTarget& target,
                                       const QStringList& nameFilters, const QStringList* leftBehind)
{
    const FolderChain::Visit sourceVisit(m_sources, source);
    const FolderChain::Visit targetVisit(m_targets, target.folder);
    m_targetVisits.insert(target.folder.id(), ++m_visits);
    if (target.folder.path().startsWith(source.path())) {
        const QByteArray relative = target.folder.path().mid(source.path().size());
        const QByteArray inner = target.folder.path() + relative;
        m_exceptDir = TreeFolder::text(inner);
        m_transfer.settleBefore(TreeFolder::open(TreeFolder::parentPath(inner), TreeFolder::Writing));
        cutExcept(target.folder.path(), inner);
        target.namesKnown = false;
    }

    QVector<TreeEntry> entries;
    if (!m_transfer.list(source, entries, nameFilters))
        return Failed;
    bool allMoved = true;
    if (leftBehind != nullptr) {
        const auto stays = [leftBehind](const TreeEntry& entry) { return isNamed(entry, *leftBehind); };
        const auto end = std::remove_if(entries.begin(), entries.end(), stays);
        allMoved = end == entries.end();
        entries.erase(end, entries.end());
    }
    const Result result = moveEntries(source, entries, target, &OutputCut::cutSubfolder);
    return result == Emptied && !allMoved ? Stays : result;
}

OutputCut::Result OutputCut::cutSubfolder(TreeFolder& source, const TreeEntry& entry, TransferTarget& target)
{
    // The folder that holds the entry is compared, and not the entry: all folders of the output folder stay.
    if (source.path() == m_outputPath)
        return Stays;
    if (!TreeTransfer::canEnter(source, entry.name, target.folder))
        return Failed;
    TreeFolder child = source.openChild(entry.name, TreeFolder::Listing);
    if (!entry.isLink && isOutputElsewhere(child)) {
        logFailedCopy(child.path(), target.folder.pathOf(entry.name),
                      QStringLiteral("it leads into the target"));
        return Failed;
    }
    TransferTarget made = m_transfer.makeFolder(target, entry.name);
    if (!made.folder.isOpen() || TreeTransfer::leadsIntoSource(made, child, m_sources, m_targets))
        return Failed;
    const int before = m_visits;
    const Result result = cutFolder(child, made, {}, nullptr);
    return removeMoved(source, entry, child, result, wasTargetSince(before, child));
}

OutputCut::Result OutputCut::exceptFolder(TreeFolder& source, TransferTarget& target)
{
    const FolderChain::Visit sourceVisit(m_sources, source);
    const FolderChain::Visit targetVisit(m_targets, target.folder);
    m_targetVisits.insert(target.folder.id(), ++m_visits);
    QVector<TreeEntry> entries;
    if (!m_transfer.list(source, entries, {}))
        return Failed;
    return moveEntries(source, entries, target, &OutputCut::exceptSubfolder);
}

OutputCut::Result OutputCut::exceptSubfolder(TreeFolder& source, const TreeEntry& entry,
                                             TransferTarget& target)
{
    if (source.path() == TreeFolder::nativePath(m_exceptDir))
        return Stays;
    if (!TreeTransfer::canEnter(source, entry.name, target.folder))
        return Failed;
    TreeFolder child = source.openChild(entry.name, TreeFolder::Listing);
    TransferTarget within = TreeTransfer::openFolder(target, entry.name);
    if (TreeTransfer::leadsIntoSource(within, child, m_sources, m_targets))
        return Failed;
    const int before = m_visits;
    const Result result = exceptFolder(child, within);
    return removeMoved(source, entry, child, result, wasTargetSince(before, child));
}

OutputCut::Result OutputCut::moveEntries(TreeFolder& source, const QVector<TreeEntry>& entries,
                                         TransferTarget& target, FolderStep folderStep)
{
    bool allMoved = true;
    for (int i = 0; i < entries.size();) {
        const int files = TreeTransfer::filesFrom(entries, i);
        if (!moveFiles(source, entries.constData() + i, files, target))
            return Failed;
        i += files;
        if (i == entries.size())
            break;
        const TreeEntry entry = m_transfer.atItsTurn(source, entries.at(i++));
        if (entry.kind != TreeEntry::Folder) {
            if (!moveFiles(source, &entry, 1, target))
                return Failed;
            continue;
        }
        const Result result = (this->*folderStep)(source, entry, target);
        if (result == Failed)
            return Failed;
        // The new rights of a folder that stays may bar the way to a target in it.
        if (result == Stays
            && TreeFolder::open(target.folder.path(), TreeFolder::Writing).id() != target.folder.id())
            target.folder.suspend();
        allMoved = allMoved && result == Emptied;
    }
    return allMoved ? Emptied : Stays;
}

bool OutputCut::moveFiles(const TreeFolder& source, const TreeEntry* files, int count, TransferTarget& target)
{
    const int moved = m_transfer.transfer(source, files, count, target);
    if (moved == count)
        return true;
    const QByteArray& name = files[moved].name;
    if (m_transfer.unflushed().source.isEmpty()) // else finish() names another file, for there was none tried
        writeFailedCopy(source.pathOf(name), target.folder.pathOf(name));
    return false;
}

// Whether a folder may have got something since its entries were read.
bool OutputCut::wasTargetSince(int visit, const TreeFolder& folder) const
{
    return m_targets.contains(folder.id()) || m_targetVisits.value(folder.id()) > visit;
}

// A folder that stays gets its new rights now, since they bear on what comes next; one that goes can go
// later.
OutputCut::Result OutputCut::removeMoved(const TreeFolder& parent, const TreeEntry& entry,
                                         const TreeFolder& moved, Result result, bool mayHoldMore)
{
    if (result == Failed)
        return Failed;
    if (result == Emptied && !entry.isLink && !mayHoldMore) {
        m_transfer.removeFolder(parent, entry.name, moved.id());
        return Emptied;
    }
    m_transfer.removeFolderAtOnce(parent, entry.name, moved.id());
    return Stays;
}
