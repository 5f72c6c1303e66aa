// SPDX-License-Identifier: MIT
#include "trees/treecopy.h"

#include "trees/treefailure.h"

#include <QDir>

namespace {

TreeTransfer::Options options(bool overwrite, bool deleteSource)
{
    TreeTransfer::Options chosen = TreeTransfer::SparingItself;
    chosen.setFlag(TreeTransfer::Replacing, overwrite);
    chosen.setFlag(TreeTransfer::Moving, deleteSource);
    return chosen;
}

} // namespace

TreeCopy::TreeCopy(const QDir& source, const QDir& target, bool overwrite, bool deleteSource)
    : m_sourcePath(TreeFolder::nativePath(source))
    , m_nameFilters(source.nameFilters())
    , m_targetPath(TreeFolder::nativePath(target))
    , m_deleteSource(deleteSource)
    , m_transfer(options(overwrite, deleteSource))
{
}

bool TreeCopy::perform()
{
    TreeFolder source = TreeFolder::open(m_sourcePath, TreeFolder::Listing);
    if (!source.isOpen() && !source.isMissing()) {
        logUnreadable(source);
        return false;
    }
    // What is written to is the very folder that was looked at, whatever others put in its place.
    TransferTarget target;
    target.folder = TreeFolder::open(m_targetPath, TreeFolder::Writing);
    const TreeFolder above = TreeFolder::open(TreeFolder::parentPath(m_targetPath), TreeFolder::Writing);
    if (targetIsInside(source, target.folder, above)) {
        logFailedCopy(m_sourcePath, m_targetPath, QStringLiteral("the target lies inside it"));
        return false;
    }
    if (!target.folder.isOpen())
        target = TransferTarget::make(above, TreeFolder::lastName(m_targetPath));
    const bool copied = target.folder.isOpen() && copyEntries(source, target, m_nameFilters);
    return m_transfer.settle() && copied;
}

bool TreeCopy::targetIsInside(const TreeFolder& source, const TreeFolder& target, const TreeFolder& above)
{
    const QVector<FileIdentity> lineage = target.isOpen() ? target.lineage() : above.lineage();
    m_targetLineage = QSet<FileIdentity>(lineage.cbegin(), lineage.cend());
    return m_targetLineage.contains(source.id()) && source.id() != target.id();
}

bool TreeCopy::copyEntries(TreeFolder& source, TransferTarget& target, const QStringList& nameFilters)
{
    const FolderChain::Visit sourceVisit(m_sources, source);
    const FolderChain::Visit targetVisit(m_targets, target.folder);
    QVector<TreeEntry> entries;
    if (!m_transfer.list(source, entries, nameFilters))
        return false;
    for (int i = 0; i < entries.size();) {
        const int files = TreeTransfer::filesFrom(entries, i);
        if (m_transfer.transfer(source, entries.constData() + i, files, target) < files)
            return false;
        i += files;
        if (i == entries.size())
            break;
        const TreeEntry entry = m_transfer.atItsTurn(source, entries.at(i++));
        const bool copied = entry.kind == TreeEntry::Folder
            ? copyFolder(source, entry, target)
            : m_transfer.transfer(source, &entry, 1, target) == 1;
        if (!copied)
            return false;
    }
    return true;
}

bool TreeCopy::copyFolder(TreeFolder& source, const TreeEntry& entry, TransferTarget& target)
{
    if (!TreeTransfer::canEnter(source, entry.name, target.folder))
        return false;
    TreeFolder child = source.openChild(entry.name, TreeFolder::Listing);
    const bool leadsToTarget = entry.isLink && m_targets.contains(child.id());
    if (leadsToTarget || m_targetLineage.contains(child.id())) {
        logFailedCopy(child.path(), target.folder.pathOf(entry.name),
                      QStringLiteral("it leads into the target"));
        return false;
    }
    TransferTarget made = m_transfer.makeFolder(target, entry.name);
    if (!made.folder.isOpen() || TreeTransfer::leadsIntoSource(made, child, m_sources, m_targets)
        || !copyEntries(child, made, {}))
        return false;
    if (m_deleteSource)
        m_transfer.removeFolder(source, entry.name);
    return true;
}
