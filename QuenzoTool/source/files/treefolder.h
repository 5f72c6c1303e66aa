// SPDX-License-Identifier: MIT
#ifndef TREEFOLDER_H
#define TREEFOLDER_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <cerrno>

QT_BEGIN_NAMESPACE
class QDir;
QT_END_NAMESPACE

/** Which folder or file something is, however it was reached; empty when that is not known. */
using FileIdentity = QByteArray;

/** What a file was like at one time: two that are equal are the same file, not written to in between. */
struct FileState {
    FileIdentity id; ///< empty when there was no file to be found
    qint64 size = -1;
    qint64 modified = 0; ///< in the finest unit that the platform has

    bool operator==(const FileState& other) const
    {
        return !id.isEmpty() && id == other.id && size == other.size && modified == other.modified;
    }
};

/** What the system calls an error number, for people. */
QString errorText(int error);

/** One entry of a folder. */
struct TreeEntry {
    enum Kind : quint8 {
        File, ///< also a link, until TreeFolder::kindOf() is asked what it leads to
        Folder,
        Special ///< a pipe, a socket or a device
    };
    QByteArray name; ///< as the file system has it; TreeFolder::text() reads it
    Kind kind = File;
    bool isLink = false;
};

/** Leaves those entries that wildcards name, as a QDir's own name filters do; without wildcards all of them.
 */
void keepNamed(QVector<TreeEntry>& entries, const QStringList& nameFilters);

/**
 * A folder of the file system whose entries are reached by name, at the least cost that the platform offers.
 *
 * Paths and names are the file system's own bytes where it has such, so that every name it allows gets
 * through. Nothing is thrown; an object that is not open refuses everything. Right after one of them has
 * failed, errno tells why, where the system has that.
 */
class TreeFolder {
public:
    enum Purpose { Listing, Writing };
    enum Links { LinksFollowed, LinksKept };
    enum Way { AsEntry, ByLink, ByMount };
    enum Made { MadeNew, WasThere, NotMade };

    static QByteArray nativePath(const QString& path);
    /** The absolute path; none of a folder of Qt's resource system, which is no folder of the file system. */
    static QByteArray nativePath(const QDir& folder);
    static bool isResource(const QDir& folder);
    static QString text(const QByteArray& native);
    static QByteArray parentPath(const QByteArray& path);
    static QByteArray lastName(const QByteArray& path);

    TreeFolder() = default;
    ~TreeFolder() { suspend(); }
    TreeFolder(TreeFolder&& other) noexcept;
    TreeFolder& operator=(TreeFolder&& other) noexcept;
    TreeFolder(const TreeFolder&) = delete;
    TreeFolder& operator=(const TreeFolder&) = delete;

    /** Opens the folder at an absolute path, following links. */
    static TreeFolder open(const QByteArray& path, Purpose purpose);
    TreeFolder openChild(const QByteArray& name, Purpose purpose, Links links = LinksFollowed) const;

    bool isOpen() const { return m_handle >= 0; }

    /** Why it could not be opened: an error number of the system. */
    int error() const { return m_error; }

    /** Whether it could not be opened because there is no folder. */
    bool isMissing() const { return !isOpen() && (m_error == ENOENT || m_error == ENOTDIR); }

    int handle() const { return m_handle; }
    const QByteArray& path() const { return m_path; }
    QByteArray pathOf(const QByteArray& name) const;

    /** Whether the path of an entry of this name is within what the system can name. */
    bool canHold(const QByteArray& name) const;

    const FileIdentity& id() const { return m_id; }

    /** The file or folder that an entry is, or leads to. */
    FileIdentity idOf(const QByteArray& name, Links links) const;

    /** The file that an entry is; of a link, that of the link itself. */
    FileState stateOf(const QByteArray& name) const;

    /** This folder and those above it, up to the root. */
    QVector<FileIdentity> lineage() const;

    /**
     * Reads every entry but "." and "..", in the file system's order. Of a folder opened for listing, once.
     *
     * @return false when not all of them could be read
     */
    bool list(QVector<TreeEntry>& entries) const;

    /** What an entry is now; a link is what it leads to, and a File when it leads nowhere. */
    TreeEntry::Kind kindOf(const TreeEntry& entry) const;

    /** How a folder in this one is reached; one that is no entry of it alone may stand elsewhere, too. */
    Way wayTo(const QByteArray& name) const;

    /** Makes one folder; one that is there serves as well. */
    Made makeFolder(const QByteArray& name) const;

    /** Removes a file or link; true when there is none afterwards. */
    bool removeFile(const QByteArray& name) const;

    /**
     * Removes the file or link that stands where another file is to be; true when there is none afterwards. A
     * file that resists is given other rights for it, and its own again if it stays. A link that leads
     * nowhere does not count as existing, and stays.
     */
    bool removeExisting(const QByteArray& name) const;
    bool removeFolder(const QByteArray& name) const;

    /** Gives the file or folder behind an entry the permission QFileDevice::WriteOther and no other. */
    bool forceWriteOther(const QByteArray& name) const;

    /** The same of one folder alone, and not of what has come in its place. */
    bool forceFolder(const QByteArray& name, const FileIdentity& id) const;
    bool isWritable(const QByteArray& name) const;

    /** Gives the system's handle back; resume() opens the same folder anew. */
    void suspend();

    /** @param child a folder in this one that is still open, from where the way back is short */
    bool resume(const TreeFolder& child);

private:
    TreeFolder(int handle, const QByteArray& path, Purpose purpose);

    int m_handle = -1;
    QByteArray m_path;
    Purpose m_purpose = Writing;
    int m_error = ENOENT;
    FileIdentity m_id;
};

/** Keeps the handles of a deep walk few: of the folders it is in, only the innermost stay open. */
class FolderChain {
public:
    /** The stay in one folder of the chain, which must outlive it. */
    class Visit {
    public:
        Visit(FolderChain& chain, TreeFolder& folder);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        FolderChain& m_chain;
    };

    void enter(TreeFolder& folder);
    void leave();
    bool contains(const FileIdentity& id) const;
    const TreeFolder& outermost() const { return *m_folders.first(); }

private:
    QVector<TreeFolder*> m_folders;
};

#endif
