// SPDX-License-Identifier: MIT
#ifndef TREECOPY_H
#define TREECOPY_H

#include "trees/treetransfer.h"

#include <QSet>

/** One copy or move of a folder's content into another folder. */
class TreeCopy {
public:
    /** Of folders of the file system; the source's own name filters hold directly in it. */
    TreeCopy(const QDir& source, const QDir& target, bool overwrite, bool deleteSource);

    /** False as soon as something could not be copied; what was copied by then stays. */
    bool perform();

private:
    bool targetIsInside(const TreeFolder& source, const TreeFolder& target, const TreeFolder& above);
    bool copyEntries(TreeFolder& source, TransferTarget& target, const QStringList& nameFilters);
    bool copyFolder(TreeFolder& source, const TreeEntry& entry, TransferTarget& target);

    const QByteArray m_sourcePath;
    const QStringList m_nameFilters;
    const QByteArray m_targetPath;
    const bool m_deleteSource;
    TreeTransfer m_transfer;
    FolderChain m_sources;
    FolderChain m_targets;
    // The target and the folders above it: a walk that came into one of them, or through a link into one of
    // m_targets, would copy what it writes, for ever.
    QSet<FileIdentity> m_targetLineage;
};

#endif
