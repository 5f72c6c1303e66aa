// SPDX-License-Identifier: MIT
#ifndef OUTPUTCUT_H
#define OUTPUTCUT_H

#include "trees/treetransfer.h"

#include <QHash>
#include <QStringList>

/**
 * The two walks that move a project into an output folder, which may lie inside the project.
 *
 * 1. The outer walk, cut(), comes to a folder of the project. If the folder's target begins with its path,
 * the inner walk, cutExcept(), first moves what the target holds one level further down: later it could not
 *    tell that from what the outer walk itself has brought there. It may well fail, since nobody makes a
 * folder for it; that is not asked.
 * 2. The entries move in the order listed: files in runs, links when their turn comes.
 * 3. A subfolder begins at 1, but for those directly in the output folder, which stay.
 * 4. A subfolder that is Emptied, and that nothing can have come into since it was listed, is noted and goes
 *    after its files. Any other is tried at once and gets its new rights if it Stays: they bear on what comes
 *    next.
 * 5. finish() has the rest removed, and names a file whose copy could not be brought to the disk.
 *
 * When sources go is TreeTransfer's business. Which folders stay is decided by comparing paths as texts, odd
 * as that is for folders whose names merely begin alike.
 */
class OutputCut {
public:
    /**
     * @param outputDir the output folder as the host named it: folders directly inside stay
     * @param[in,out] exceptDir the folder whose folders the inner walk leaves alone; set for each target
     * below its source
     */
    OutputCut(const QString& outputDir, QString& exceptDir);

    /**
     * Moves the content of one folder into another, but for the names in @p leftBehind, if not null. The
     * source's own name filters hold directly in it.
     */
    bool cut(const QDir& source, const QDir& target, const QStringList* leftBehind);

    /** Moves the content of one folder into another, which is not made, but for the folders in exceptDir. */
    bool cutExcept(const QDir& source, const QDir& target);

    /** Removes what remains to be removed from the source; false when copies could not be brought to the
     * disk. */
    bool finish();

private:
    enum Result {
        Failed,
        Stays, ///< the folder still holds, or may hold, something
        Emptied ///< everything in it is moved, and is removed from it sooner or later
    };
    using FolderStep = Result (OutputCut::*)(TreeFolder& source, const TreeEntry& entry,
                                             TransferTarget& target);

    bool cutExcept(const QByteArray& source, const QByteArray& target);
    static bool cutResources(const QDir& source, TransferTarget& target, const QStringList* leftBehind,
                             bool makesFolders);
    Result cutFolder(TreeFolder& source, TransferTarget& target, const QStringList& nameFilters,
                     const QStringList* leftBehind);
    static bool isAlias(const TreeFolder& source, const TreeFolder& target);
    bool isOutputElsewhere(const TreeFolder& folder) const;
    Result cutSubfolder(TreeFolder& source, const TreeEntry& entry, TransferTarget& target);
    Result exceptFolder(TreeFolder& source, TransferTarget& target);
    Result exceptSubfolder(TreeFolder& source, const TreeEntry& entry, TransferTarget& target);
    Result moveEntries(TreeFolder& source, const QVector<TreeEntry>& entries, TransferTarget& target,
                       FolderStep folderStep);
    bool moveFiles(const TreeFolder& source, const TreeEntry* files, int count, TransferTarget& target);
    bool wasTargetSince(int visit, const TreeFolder& folder) const;
    Result removeMoved(const TreeFolder& parent, const TreeEntry& entry, const TreeFolder& moved,
                       Result result, bool mayHoldMore);

    const QByteArray m_outputPath;
    QString& m_exceptDir;
    TreeTransfer m_transfer;
    FolderChain m_sources;
    FolderChain m_targets;
    QHash<FileIdentity, int> m_targetVisits; // the last one of each
    int m_visits = 0;
};

#endif
