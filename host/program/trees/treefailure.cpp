// SPDX-License-Identifier: MIT
#include "trees/treefailure.h"

#include "trees/treeprogress.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

struct TreeFailures {
    Q_DECLARE_TR_FUNCTIONS(TreeFailures)
};

QByteArray parentOf(const QByteArray& path)
{
    return path.left(qMax(path.lastIndexOf('/'), 1));
}

// Whether something is a folder, or one of those above it.
bool isLineOf(const struct stat& status, const QByteArray& path)
{
    struct stat above { };
    for (QByteArray folder = path; folder.size() > 1; folder = parentOf(folder)) {
        if (stat(folder.constData(), &above) == 0 && FileIdentity(above) == FileIdentity(status))
            return true;
    }
    return false;
}

QString causeBehindLink(const TreeFailure::Entry& entry, const struct stat& status)
{
    if (!S_ISDIR(status.st_mode))
        return {};
    if (isLineOf(status, parentOf(entry.source)))
        return TreeFailures::tr("the link leads back to a folder that holds it");
    if (isLineOf(status, parentOf(entry.target)))
        return TreeFailures::tr("the link leads to the target, or to a folder that holds it");
    return {};
}

QString causeInSource(const TreeFailure::Entry& entry, struct stat& status)
{
    struct stat itself { };
    const QByteArray& path = entry.source;
    const bool isLink = lstat(path.constData(), &itself) == 0 && S_ISLNK(itself.st_mode);
    if (stat(path.constData(), &status) != 0) {
        if (errno == EACCES)
            return TreeFailures::tr("there is no right to read it");
        return isLink ? TreeFailures::tr("the link leads nowhere") : QString();
    }
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
        return TreeFailures::tr("it is neither a file nor a folder");
    if (access(path.constData(), S_ISDIR(status.st_mode) ? R_OK | X_OK : R_OK) != 0)
        return TreeFailures::tr("there is no right to read it");
    return isLink ? causeBehindLink(entry, status) : QString();
}

// What keeps everything from being made in a folder.
QString causeInFolder(const QByteArray& folder)
{
    if (access(folder.constData(), W_OK | X_OK) == 0)
        return {};
    const QString name = QFile::decodeName(folder);
    if (errno == EROFS)
        return TreeFailures::tr("the folder '%1' is on a read-only file system").arg(name);
    if (errno == EACCES)
        return TreeFailures::tr("there is no right to write to the folder '%1'").arg(name);
    return {};
}

QString causeOfNoRoom(const QByteArray& folder, const struct stat& status)
{
    struct statvfs room { };
    if (statvfs(folder.constData(), &room) != 0)
        return {};
    constexpr double blockUnit = 512; // holes take no room
    const double needed = std::min(double(status.st_size), double(status.st_blocks) * blockUnit);
    if (needed > double(room.f_bavail) * double(room.f_frsize))
        return TreeFailures::tr("there is no room for it on the target's disk");
    if (room.f_files > 0 && room.f_favail == 0)
        return TreeFailures::tr("there is no room for another file on the target's disk");
    return {};
}

QString causeInTarget(const QByteArray& path, const struct stat& source)
{
    struct stat there { };
    const bool exists = lstat(path.constData(), &there) == 0;
    if (!exists && errno == ENAMETOOLONG)
        return TreeFailures::tr("its path would be too long");
    if (exists && S_ISDIR(source.st_mode)) {
        const bool isFolder = stat(path.constData(), &there) == 0 && S_ISDIR(there.st_mode);
        return isFolder ? QString() : TreeFailures::tr("something that is no folder stands in its place");
    }
    if (exists && S_ISDIR(there.st_mode))
        return TreeFailures::tr("a folder stands in its place");
    const QString cause = causeInFolder(parentOf(path));
    return cause.isEmpty() ? causeOfNoRoom(parentOf(path), source) : cause;
}

} // namespace

TreeFailure::Entry TreeFailure::firstMissing(const TreeScope& scope, const QByteArray& target,
                                             const TreeArrival& arrival)
{
    Entry missing;
    scope.walk([&](const WalkedEntry& entry) {
        const Entry candidate{scope.top + '/' + entry.path, target + '/' + entry.path};
        if (FileIdentity(entry.status) == scope.apart)
            return TreeScope::GoOn;
        struct stat there { };
        const bool arrived = entry.isFolder()
            ? stat(candidate.target.constData(), &there) == 0 && S_ISDIR(there.st_mode) && !entry.leadsBack
                && access(candidate.source.constData(), R_OK | X_OK) == 0
            : arrival.has(entry.path);
        if (arrived)
            return TreeScope::GoOn;
        missing = candidate;
        return TreeScope::Stop;
    });
    return missing;
}

TreeFailure::Entry TreeFailure::linkToTarget(TreeScope scope, const QByteArray& target)
{
    Entry found;
    scope.filesToo = false;
    scope.walk([&](const WalkedEntry& entry) {
        if (!entry.isLink || !entry.isFolder() || !isLineOf(entry.status, target))
            return TreeScope::GoOn;
        found = {scope.top + '/' + entry.path, target + '/' + entry.path};
        return TreeScope::Stop;
    });
    return found;
}

QString TreeFailure::sentence(const Entry& entry)
{
    struct stat status { };
    QString cause = causeInSource(entry, status);
    if (cause.isEmpty() && status.st_nlink > 0)
        cause = causeInTarget(entry.target, status);
    if (cause.isEmpty())
        cause = TreeFailures::tr("the cause is not known");
    return TreeFailures::tr("'%1' could not be copied to '%2': %3")
        .arg(QFile::decodeName(entry.source), QFile::decodeName(entry.target), cause);
}
