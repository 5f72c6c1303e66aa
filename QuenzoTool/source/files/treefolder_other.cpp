// SPDX-License-Identifier: MIT
// Qt's portable means: paths as UTF-8, folders told apart by their canonical path.
#include "files/treefolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

namespace {

constexpr int opened = 0;

int errorOfFolder(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return ENOENT;
    return info.isDir() ? EACCES : ENOTDIR;
}

FileIdentity idAt(const QString& path)
{
    return QFileInfo(path).canonicalFilePath().toUtf8();
}

QString entryPath(const TreeFolder& folder, const QByteArray& name)
{
    return TreeFolder::text(folder.pathOf(name));
}

TreeEntry::Kind kindFrom(const QFileInfo& info)
{
    if (info.isDir())
        return TreeEntry::Folder;
    return info.isFile() || info.isSymLink() ? TreeEntry::File : TreeEntry::Special;
}

} // namespace

QByteArray TreeFolder::nativePath(const QString& path)
{
    return path.toUtf8();
}

QString TreeFolder::text(const QByteArray& native)
{
    return QString::fromUtf8(native);
}

TreeFolder::TreeFolder(int handle, const QByteArray& path, Purpose purpose)
    : m_handle(handle)
    , m_path(path)
    , m_purpose(purpose)
    , m_error(handle >= 0 ? 0 : errorOfFolder(text(path)))
    , m_id(handle >= 0 ? idAt(text(path)) : FileIdentity())
{
}

TreeFolder TreeFolder::open(const QByteArray& path, Purpose purpose)
{
    const QFileInfo info(text(path));
    const bool serves = info.isDir() && (purpose == Writing || info.isReadable());
    return {serves ? opened : -1, path, purpose};
}

TreeFolder TreeFolder::openChild(const QByteArray& name, Purpose purpose, Links links) const
{
    if (!isOpen() || (links == LinksKept && QFileInfo(entryPath(*this, name)).isSymLink()))
        return {-1, pathOf(name), purpose};
    return open(pathOf(name), purpose);
}

bool TreeFolder::canHold(const QByteArray& name) const
{
    // Above what any platform takes; below it the system itself refuses.
    constexpr int longest = 32767;
    return m_path.size() + 1 + name.size() < longest;
}

FileIdentity TreeFolder::idOf(const QByteArray& name, Links links) const
{
    const QString path = entryPath(*this, name);
    return links == LinksKept && QFileInfo(path).isSymLink() ? path.toUtf8() : idAt(path);
}

FileState TreeFolder::stateOf(const QByteArray& name) const
{
    const QFileInfo info(entryPath(*this, name));
    if (info.isSymLink())
        return {idOf(name, LinksKept), 0, 0};
    return {info.canonicalFilePath().toUtf8(), info.size(), info.lastModified().toMSecsSinceEpoch()};
}

QVector<FileIdentity> TreeFolder::lineage() const
{
    QVector<FileIdentity> ids{m_id};
    QString path = QString::fromUtf8(m_id);
    while (!QDir(path).isRoot() && !path.isEmpty()) {
        path = QFileInfo(path).path();
        ids.append(path.toUtf8());
    }
    return ids;
}

bool TreeFolder::list(QVector<TreeEntry>& entries) const
{
    const QDir::Filters all = QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QFileInfoList infos = QDir(text(m_path)).entryInfoList(all, QDir::Unsorted);
    for (const QFileInfo& info : infos) {
        const bool isLink = info.isSymLink();
        entries.append({info.fileName().toUtf8(), isLink ? TreeEntry::File : kindFrom(info), isLink});
    }
    return isOpen();
}

TreeEntry::Kind TreeFolder::kindOf(const TreeEntry& entry) const
{
    return entry.isLink ? kindFrom(QFileInfo(entryPath(*this, entry.name))) : entry.kind;
}

TreeFolder::Way TreeFolder::wayTo(const QByteArray& name) const
{
    return QFileInfo(entryPath(*this, name)).isSymLink() ? ByLink : AsEntry;
}

TreeFolder::Made TreeFolder::makeFolder(const QByteArray& name) const
{
    if (!isOpen() || !canHold(name))
        return NotMade;
    const QString path = entryPath(*this, name);
    if (QFileInfo(path).isDir())
        return WasThere;
    return QDir().mkdir(path) ? MadeNew : NotMade;
}

bool TreeFolder::removeFile(const QByteArray& name) const
{
    const QFileInfo info(entryPath(*this, name));
    return isOpen() && ((!info.exists() && !info.isSymLink()) || QFile::remove(info.filePath()));
}

bool TreeFolder::removeExisting(const QByteArray& name) const
{
    const QString path = entryPath(*this, name);
    const QFileInfo info(path);
    errno = EEXIST;
    if (!info.exists())
        return !info.isSymLink();
    if (QFile::remove(path))
        return true;
    if (info.isSymLink() || !info.isFile())
        return false;
    const int error = errno;
    const QFileDevice::Permissions ofCaller =
        QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
    const QFileDevice::Permissions before = info.permissions() & ~ofCaller;
    if (QFile::setPermissions(path, QFileDevice::WriteOther) && QFile::remove(path))
        return true;
    QFile::setPermissions(path, before);
    errno = error;
    return false;
}

bool TreeFolder::removeFolder(const QByteArray& name) const
{
    return isOpen() && QDir().rmdir(entryPath(*this, name));
}

bool TreeFolder::forceWriteOther(const QByteArray& name) const
{
    return isOpen() && QFile::setPermissions(entryPath(*this, name), QFileDevice::WriteOther);
}

bool TreeFolder::forceFolder(const QByteArray& name, const FileIdentity& id) const
{
    return idOf(name, LinksFollowed) == id && forceWriteOther(name);
}

bool TreeFolder::isWritable(const QByteArray& name) const
{
    return QFileInfo(entryPath(*this, name)).isWritable();
}

void TreeFolder::suspend()
{
    m_handle = -1;
}

bool TreeFolder::resume(const TreeFolder& /*child*/)
{
    m_handle = opened;
    return true;
}
