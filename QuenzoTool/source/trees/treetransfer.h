// SPDX-License-Identifier: MIT
#ifndef TREETRANSFER_H
#define TREETRANSFER_H

#include "files/filecopier.h"
#include "files/treefolder.h"
#include "trees/sourceremoval.h"

#include <QSet>
#include <QVector>

/** A folder that files are copied to, and what is known of the names in it. */
struct TransferTarget {
    /** The folder at an absolute path, made if its parent is there; not open when neither succeeds. */
    static TransferTarget reach(const QByteArray& path);
    static TransferTarget make(const TreeFolder& parent, const QByteArray& name);

    TreeFolder folder;
    bool isElsewhere = false; ///< whether a link or a mount in the target has led to it
    bool isMount = false;
    bool namesKnown = false; ///< whether no other names are in use
    QSet<QByteArray> names;

    bool mayHold(const QByteArray& name) const { return !namesKnown || names.contains(name); }
    /** Reads the names in use, when so many files are to come that this costs less than asking for each of
     * them. */
    void learnNames(int files);
};

/**
 * Copies or moves files and folders one after the other, as a walk through a tree comes upon them.
 *
 * A file that is moved goes through three states, so that one flush serves many:
 * 1. Copied: its copy stands in the target, whole. The source is noted, with what it was like.
 * 2. Flushed: the data of the copy are on the disk.
 * 3. Removed: the source is gone. It stays when it was written to since it was noted, or resists.
 * A folder of the source is noted when the walk leaves it, behind its files, and goes when their turn is
 * over. If the flush fails, all that is noted stays, and the move has failed.
 *
 * settle() alone leads from the first state to the third. Until it is called the tree differs from one in
 * which each source goes at once; so it is called wherever the walk could see that, and nowhere else:
 * - before a folder of the source is listed, or one of the target written to, from which something is due to
 *   go: settleBefore();
 * - before a link is looked at, which may lead to something that is due to go: atItsTurn();
 * - before a folder that stays gets its new rights, which lock others out of it: removeFolderAtOnce();
 * - when there is no room, which the sources would make, and when much is due: transfer();
 * - at the end, by whoever made this.
 */
class TreeTransfer {
public:
    enum Option {
        Replacing = 1, ///< existing files go first
        Moving = 2,
        SparingItself = 4 ///< a file is not copied onto itself, not even with Replacing
    };
    Q_DECLARE_FLAGS(Options, Option)

    explicit TreeTransfer(Options options);

    /**
     * Lists a folder of the source, after what is due to be removed from it is gone; a missing one is empty.
     *
     * @param nameFilters the folder's own, as a QDir has them
     */
    bool list(const TreeFolder& folder, QVector<TreeEntry>& entries, const QStringList& nameFilters);

    /** How many files that are no links, and so what they seemed to be, stand in a row from an entry on. */
    static int filesFrom(const QVector<TreeEntry>& entries, int first);

    /** An entry as it is when its turn comes: what a link leads to may have been moved away meanwhile. */
    TreeEntry atItsTurn(const TreeFolder& folder, const TreeEntry& entry);

    /** Whether both can hold an entry of the source by its name. */
    static bool canHold(const TreeFolder& from, const QByteArray& name, const TreeFolder& to);

    /** The same of a folder, which the thread must also have the stack to walk through. */
    static bool canEnter(const TreeFolder& from, const QByteArray& name, const TreeFolder& to);

    /** Makes a folder in the target and opens it; an object that is not open when that fails. */
    TransferTarget makeFolder(TransferTarget& parent, const QByteArray& name);

    /** The same with one that has to be there. */
    static TransferTarget openFolder(const TransferTarget& parent, const QByteArray& name);

    /**
     * Whether a folder of the target is one of the source, or inside one, by a link or a mount in the target:
     * what is written to it would be read again, or be lost as the file to be replaced.
     *
     * @param source the folder whose content is to go there
     */
    static bool leadsIntoSource(const TransferTarget& to, const TreeFolder& source,
                                const FolderChain& sources, const FolderChain& targets);

    /** Copies or moves files in order and up to the first that fails; returns how many succeeded. */
    int transfer(const TreeFolder& from, const TreeEntry* files, int count, TransferTarget& to);

    /**
     * Removes a folder of the source when its turn comes, if it is empty by then.
     *
     * @param forced which folder gets other rights if it resists; empty for none
     */
    void removeFolder(const TreeFolder& parent, const QByteArray& name, const FileIdentity& forced = {});

    /** The same at once, of one that may stay: with the rights that are forced upon it then. */
    void removeFolderAtOnce(const TreeFolder& parent, const QByteArray& name, const FileIdentity& forced);

    /**
     * Brings the source up to date, at the end at the latest.
     *
     * @return false when this time, or earlier, copies could not be brought to the disk: their sources stay
     */
    bool settle();

    /** The same only if something is due to go from this folder. */
    bool settleBefore(const TreeFolder& folder) { return !m_removal.concerns(folder) || settle(); }

    /** One of the files whose copies could not be brought to the disk; empty as long as there is none. */
    const SourceRemoval::Copied& unflushed() const { return m_unflushed; }

private:
    void settleIfMuchIsDue();
    int runLength(const TreeFolder& from, const TreeEntry* files, int count, const TransferTarget& to) const;
    static bool isItself(const TreeFolder& from, const TreeEntry& file, const TreeFolder& to);

    const Options m_options;
    FileCopier m_copier;
    SourceRemoval m_removal;
    bool m_flushFailed = false;
    SourceRemoval::Copied m_unflushed;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TreeTransfer::Options)

#endif
