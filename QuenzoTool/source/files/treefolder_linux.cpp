// SPDX-License-Identifier: MIT
#include "files/treefolder_linux.h"

#include "files/filehandle_linux.h"

#include <QFile>

#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int upwards = O_PATH | O_DIRECTORY | O_CLOEXEC;

// A folder that is only written to may be one that cannot be read.
int flagsFor(TreeFolder::Purpose purpose)
{
    return purpose == TreeFolder::Listing ? O_RDONLY | O_DIRECTORY | O_CLOEXEC : upwards;
}

FileIdentity idFrom(const struct stat& status)
{
    FileIdentity id(static_cast<int>(sizeof status.st_dev + sizeof status.st_ino), Qt::Uninitialized);
    std::memcpy(id.data(), &status.st_dev, sizeof status.st_dev);
    std::memcpy(id.data() + sizeof status.st_dev, &status.st_ino, sizeof status.st_ino);
    return id;
}

FileIdentity idOfHandle(int handle)
{
    struct stat status { };
    return fstat(handle, &status) == 0 ? idFrom(status) : FileIdentity();
}

TreeEntry::Kind kindFrom(mode_t mode)
{
    if (S_ISDIR(mode))
        return TreeEntry::Folder;
    return S_ISREG(mode) || S_ISLNK(mode) ? TreeEntry::File : TreeEntry::Special;
}

// Changes the mode of the very file that was looked at, and not of what a link in its place leads to.
bool changeMode(int folder, const QByteArray& name, const struct stat& wanted, mode_t mode)
{
    const FileHandle file(openat(folder, name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat found { };
    if (!file.isOpen() || fstat(file.number(), &found) != 0)
        return false;
    if (!S_ISREG(found.st_mode) || idFrom(found) != idFrom(wanted)) {
        errno = ESTALE;
        return false;
    }
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(file.number());
    return chmod(path.constData(), mode) == 0;
}

} // namespace

FileState stateFrom(const struct stat& status)
{
    constexpr qint64 nanoseconds = 1000000000;
    return {idFrom(status), status.st_size, status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec};
}

QByteArray TreeFolder::nativePath(const QString& path)
{
    return QFile::encodeName(path);
}

QString TreeFolder::text(const QByteArray& native)
{
    return QFile::decodeName(native);
}

TreeFolder::TreeFolder(int handle, const QByteArray& path, Purpose purpose)
    : m_handle(handle)
    , m_path(path)
    , m_purpose(purpose)
    , m_error(handle >= 0 ? 0 : errno)
    , m_id(handle >= 0 ? idOfHandle(handle) : FileIdentity())
{
}

TreeFolder TreeFolder::open(const QByteArray& path, Purpose purpose)
{
    return {::open(path.constData(), flagsFor(purpose)), path, purpose};
}

TreeFolder TreeFolder::openChild(const QByteArray& name, Purpose purpose, Links links) const
{
    const int flags = flagsFor(purpose) | (links == LinksKept ? O_NOFOLLOW : 0);
    errno = m_error; // in case there is nothing to open it in
    return {isOpen() ? openat(m_handle, name.constData(), flags) : -1, pathOf(name), purpose};
}

bool TreeFolder::canHold(const QByteArray& name) const
{
    return m_path.size() + 1 + name.size() < PATH_MAX;
}

FileIdentity TreeFolder::idOf(const QByteArray& name, Links links) const
{
    const int flags = links == LinksKept ? AT_SYMLINK_NOFOLLOW : 0;
    struct stat status { };
    return fstatat(m_handle, name.constData(), &status, flags) == 0 ? idFrom(status) : FileIdentity();
}

FileState TreeFolder::stateOf(const QByteArray& name) const
{
    struct stat status { };
    const int error = fstatat(m_handle, name.constData(), &status, AT_SYMLINK_NOFOLLOW);
    return error == 0 ? stateFrom(status) : FileState();
}

QVector<FileIdentity> TreeFolder::lineage() const
{
    QVector<FileIdentity> ids{m_id};
    int folder = openat(m_handle, ".", upwards);
    while (folder >= 0) {
        const int parent = openat(folder, "..", upwards);
        close(folder);
        const FileIdentity id = parent >= 0 ? idOfHandle(parent) : ids.last();
        if (id == ids.last()) { // the root is its own parent
            if (parent >= 0)
                close(parent);
            break;
        }
        ids.append(id);
        folder = parent;
    }
    return ids;
}

bool TreeFolder::list(QVector<TreeEntry>& entries) const
{
    const auto lookedAt = [this](TreeEntry& entry) {
        struct stat status { };
        if (fstatat(m_handle, entry.name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return;
        entry.kind = kindFrom(status.st_mode);
        entry.isLink = S_ISLNK(status.st_mode);
    };
    constexpr std::size_t size = 64U << 10U;
    const std::unique_ptr<char[]> buffer(new char[size]); // NOLINT(modernize-avoid-c-arrays)
    ssize_t length = 0;
    while ((length = getdents64(m_handle, buffer.get(), size)) > 0) {
        for (ssize_t at = 0; at < length;) {
            const auto* const record = reinterpret_cast<const dirent64*>(buffer.get() + at);
            at += record->d_reclen;
            TreeEntry entry{record->d_name, TreeEntry::File, record->d_type == DT_LNK};
            if (entry.name == "." || entry.name == "..")
                continue;
            if (record->d_type == DT_UNKNOWN)
                lookedAt(entry);
            else
                entry.kind = kindFrom(static_cast<mode_t>(DTTOIF(record->d_type)));
            entries.append(std::move(entry));
        }
    }
    return length == 0;
}

TreeEntry::Kind TreeFolder::kindOf(const TreeEntry& entry) const
{
    if (!entry.isLink)
        return entry.kind;
    // The path, and not the folder's handle, so that a link to a parent comes to an end as every path does.
    struct stat status { };
    return stat(pathOf(entry.name).constData(), &status) == 0 ? kindFrom(status.st_mode) : TreeEntry::File;
}

TreeFolder::Way TreeFolder::wayTo(const QByteArray& name) const
{
    struct statx status { };
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
    if (statx(m_handle, name.constData(), flags, STATX_TYPE, &status) != 0)
        return ByMount; // the way that is looked into most closely
    if (!S_ISDIR(status.stx_mode))
        return ByLink;
    return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 ? ByMount : AsEntry;
}

TreeFolder::Made TreeFolder::makeFolder(const QByteArray& name) const
{
    errno = isOpen() ? ENAMETOOLONG : m_error;
    if (!isOpen() || !canHold(name))
        return NotMade;
    if (mkdirat(m_handle, name.constData(), 0777) == 0)
        return MadeNew;
    struct stat status { };
    const int error = errno;
    const bool isThere = fstatat(m_handle, name.constData(), &status, 0) == 0 && S_ISDIR(status.st_mode);
    errno = error;
    return isThere ? WasThere : NotMade;
}

bool TreeFolder::removeFile(const QByteArray& name) const
{
    return unlinkat(m_handle, name.constData(), 0) == 0 || errno == ENOENT;
}

bool TreeFolder::removeExisting(const QByteArray& name) const
{
    struct stat status { };
    if (fstatat(m_handle, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (S_ISLNK(status.st_mode) && idOf(name, LinksFollowed).isEmpty()) {
        errno = EEXIST;
        return false;
    }
    if (removeFile(name))
        return true;
    if (!S_ISREG(status.st_mode)) // the rights of folders, and of what links lead to, are not ours to change
        return false;
    if (changeMode(m_handle, name, status, S_IWOTH) && removeFile(name))
        return true;
    const int error = errno;
    // Nothing more can be done for one that keeps them.
    changeMode(m_handle, name, status, status.st_mode & ~static_cast<mode_t>(S_IFMT));
    errno = error;
    return false;
}

bool TreeFolder::removeFolder(const QByteArray& name) const
{
    return unlinkat(m_handle, name.constData(), AT_REMOVEDIR) == 0;
}

bool TreeFolder::forceWriteOther(const QByteArray& name) const
{
    return fchmodat(m_handle, name.constData(), S_IWOTH, 0) == 0;
}

bool TreeFolder::forceFolder(const QByteArray& name, const FileIdentity& id) const
{
    const TreeFolder folder = openChild(name, Listing);
    if (folder.isOpen() && folder.id() != id)
        errno = ESTALE;
    return folder.isOpen() && folder.id() == id && fchmod(folder.handle(), S_IWOTH) == 0;
}

bool TreeFolder::isWritable(const QByteArray& name) const
{
    return faccessat(m_handle, name.constData(), W_OK, 0) == 0;
}

void TreeFolder::suspend()
{
    if (m_handle >= 0)
        close(m_handle);
    m_handle = -1;
}

bool TreeFolder::resume(const TreeFolder& child)
{
    suspend();
    const int flags = flagsFor(m_purpose);
    m_handle = child.isOpen() ? openat(child.m_handle, "..", flags) : -1;
    // A child that was reached through a link has another parent.
    if (m_handle < 0 || idOfHandle(m_handle) != m_id) {
        suspend();
        m_handle = ::open(m_path.constData(), flags);
        m_error = m_handle >= 0 ? ESTALE : errno;
        if (m_handle >= 0 && idOfHandle(m_handle) != m_id)
            suspend();
    }
    return isOpen();
}
