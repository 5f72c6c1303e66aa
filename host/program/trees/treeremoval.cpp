// SPDX-License-Identifier: MIT
#include "trees/treeremoval.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

struct Removal {
    Q_DECLARE_TR_FUNCTIONS(TreeRemoval)
};

constexpr int mostHandles = 200; // trees can be deeper than a process may have files open

int openFolder(int parent, const char* name)
{
    return openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

FileIdentity identityOf(int handle)
{
    struct stat status { };
    return fstat(handle, &status) == 0 ? FileIdentity(status) : FileIdentity();
}

} // namespace

TreeRemoval::TreeRemoval(const QByteArray& folder)
    : m_folder(folder)
{
}

TreeRemoval::~TreeRemoval()
{
    closeAll();
}

void TreeRemoval::closeAll()
{
    for (const Level& level : qAsConst(m_levels)) {
        if (level.handle >= 0)
            close(level.handle);
    }
    m_levels.clear();
}

bool TreeRemoval::run()
{
    if (!openTop())
        return false;
    while (!m_levels.isEmpty()) {
        Level& level = m_levels.last();
        if (level.names.isEmpty()) {
            leave();
            continue;
        }
        const QByteArray name = level.names.takeLast();
        if (enter(name))
            continue;
        const int reason = errno;
        if (reason == ENOTDIR || reason == ELOOP)
            removeFile(level, name);
        // One that may not be read goes if it is empty.
        else if (unlinkat(level.handle, name.constData(), AT_REMOVEDIR) != 0 && errno != ENOENT)
            fail(name, reason);
    }
    return m_error.isEmpty();
}

// Step by step: a link that has come into the path since it was looked at is not followed either.
bool TreeRemoval::openTop()
{
    const QList<QByteArray> parts = m_folder.split('/');
    int handle = open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (int i = 1; i < parts.size() - 1 && handle >= 0; ++i) {
        const int next =
            openat(handle, parts.at(i).constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        const int error = errno;
        close(handle);
        errno = error;
        handle = next;
    }
    if (handle < 0) {
        m_error = Removal::tr("'%1' could not be removed: %2")
                      .arg(QFile::decodeName(m_folder), qt_error_string(errno));
        return false;
    }
    m_levels.append({QByteArray(), identityOf(handle), handle, {parts.last()}});
    return true;
}

// With the reason in errno when it is no folder that can be listed.
bool TreeRemoval::enter(const QByteArray& name)
{
    const int handle = openFolder(m_levels.last().handle, name.constData());
    if (handle < 0)
        return false;
    Level level{name, identityOf(handle), handle, {}};
    if (!list(level)) {
        const int error = errno;
        close(handle);
        errno = error;
        return false;
    }
    m_levels.append(level);
    const int far = m_levels.size() - mostHandles;
    if (far > 0)
        close(std::exchange(m_levels[far].handle, -1));
    return true;
}

// At once: what comes and goes meanwhile puts no listing in disorder.
bool TreeRemoval::list(Level& level) const
{
    const int handle = openFolder(level.handle, ".");
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(handle < 0 ? nullptr : fdopendir(handle), closedir);
    if (!folder)
        return false;
    while (const dirent* const entry = readdir(folder.get())) {
        const QByteArray name = entry->d_name;
        if (name != "." && name != "..")
            level.names.append(name);
    }
    return true;
}

void TreeRemoval::removeFile(const Level& level, const QByteArray& name)
{
    WalkedEntry entry;
    const bool isKnown = fstatat(level.handle, name.constData(), &entry.status, AT_SYMLINK_NOFOLLOW) == 0;
    if (unlinkat(level.handle, name.constData(), 0) != 0) {
        if (errno != ENOENT)
            fail(name, errno);
        return;
    }
    if (isKnown)
        m_gone.add(entry);
    m_filesGone = m_gone.files;
}

// An empty level: its folder goes, too.
void TreeRemoval::leave()
{
    const Level level = m_levels.takeLast();
    const bool goesOn = !m_levels.isEmpty() && reopen(m_levels.last(), level.handle);
    close(level.handle);
    if (!goesOn)
        return closeAll();
    if (unlinkat(m_levels.last().handle, level.name.constData(), AT_REMOVEDIR) == 0) {
        if (onFolderGone)
            onFolderGone(pathOf(level.name));
    } else if (errno != ENOENT) {
        fail(level.name, errno);
    }
}

// By the way up from a folder in it, which must lead to the same folder as before.
bool TreeRemoval::reopen(Level& level, int below)
{
    if (level.handle >= 0)
        return true;
    level.handle = openFolder(below, "..");
    const bool isSame = level.handle >= 0 && identityOf(level.handle) == level.id;
    if (!isSame)
        fail({}, level.handle < 0 ? errno : ENOENT);
    return isSame;
}

void TreeRemoval::fail(const QByteArray& name, int error)
{
    if (m_error.isEmpty())
        m_error = Removal::tr("'%1' could not be removed: %2").arg(pathOf(name), qt_error_string(error));
}

// Of a name in the level at work, or of that level itself.
QString TreeRemoval::pathOf(const QByteArray& name) const
{
    QByteArray path = m_folder.left(m_folder.lastIndexOf('/'));
    for (int i = 1; i < m_levels.size(); ++i)
        path += '/' + m_levels.at(i).name;
    if (!name.isEmpty())
        path += '/' + name;
    return QFile::decodeName(path);
}
