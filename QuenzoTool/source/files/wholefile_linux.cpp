// SPDX-License-Identifier: MIT
#include "files/wholefile.h"

#include "files/filenamer_linux.h"
#include "files/treefolder.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t modeOfNewFiles = 0666;
constexpr mode_t modeBits = 07777;
constexpr int noRegularFile = -1;
constexpr int undressed = -2; // the new file could not be given the rights of the old one
constexpr int mostLinks = 40; // as many as the kernel follows

int openUnnamed(const TreeFolder& folder)
{
    return openat(folder.handle(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, modeOfNewFiles);
}

// An error number, or 0; as each of the following.
int fill(int file, const QByteArray& content)
{
    for (int at = 0; at < content.size();) {
        const ssize_t written =
            write(file, content.constData() + at, static_cast<std::size_t>(content.size() - at));
        if (written < 0 && errno != EINTR)
            return errno;
        if (written == 0)
            return ENOSPC;
        at += written > 0 ? static_cast<int>(written) : 0;
    }
    return 0;
}

int closed(int file, int error)
{
    const bool flushed = close(file) == 0;
    return error != 0 || flushed ? error : errno;
}

// Of a new file, which the kernel has given its mode, or like the one that it replaces.
int dress(int file, const struct stat* replaced)
{
    if (replaced == nullptr)
        return 0;
    struct stat own { };
    if (fstat(file, &own) != 0)
        return errno;
    const bool owned = (own.st_uid == replaced->st_uid && own.st_gid == replaced->st_gid)
        || fchown(file, replaced->st_uid, replaced->st_gid) == 0;
    return owned && fchmod(file, replaced->st_mode & modeBits) == 0 ? 0 : errno;
}

int complete(int file, const QByteArray& content, const struct stat* replaced)
{
    if (const int error = fill(file, content))
        return error;
    return dress(file, replaced) == 0 ? 0 : undressed;
}

// Not every file system has unnamed files; without the folder /proc or a privilege they get no name on
// others.
bool isForWantOfUnnamedFiles(int error)
{
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOENT || error == EPERM;
}

// The n-th name that an unfinished file may have beside its own.
QByteArray partName(const QByteArray& name, int number)
{
    return name + ".part" + (number == 0 ? QByteArray() : QByteArray::number(number));
}

// Makes a whole file beside the name, of a name that nothing has.
int writeNamedBeside(const TreeFolder& folder, const QByteArray& name, const QByteArray& content,
                     const struct stat* replaced, QByteArray& beside)
{
    int file = -1;
    for (int number = 0; file < 0; ++number) {
        beside = partName(name, number);
        file = openat(folder.handle(), beside.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC,
                      modeOfNewFiles);
        if (file < 0 && errno != EEXIST)
            return errno;
    }
    const int error = closed(file, complete(file, content, replaced));
    if (error != 0)
        unlinkat(folder.handle(), beside.constData(), 0);
    return error;
}

// The same, named as late as can be: a process that dies while it writes leaves nothing behind.
int writeBeside(const TreeFolder& folder, const QByteArray& name, const QByteArray& content,
                const struct stat* replaced, QByteArray& beside)
{
    const int file = openUnnamed(folder);
    if (file < 0 && isForWantOfUnnamedFiles(errno))
        return writeNamedBeside(folder, name, content, replaced, beside);
    if (file < 0)
        return errno;
    int error = complete(file, content, replaced);
    struct stat own { };
    if (error == 0 && fstat(file, &own) != 0)
        error = errno;
    if (error != 0)
        return closed(file, error);
    int number = 0;
    do {
        beside = partName(name, number++);
        error = giveName(file, {own.st_mode & modeBits, folder.handle(), beside.constData()});
    } while (error == EEXIST);
    error = closed(file, error);
    return isForWantOfUnnamedFiles(error) ? writeNamedBeside(folder, name, content, replaced, beside) : error;
}

int replace(const TreeFolder& folder, const QByteArray& name, const QByteArray& content,
            const struct stat* replaced)
{
    QByteArray beside;
    if (const int error = writeBeside(folder, name, content, replaced, beside))
        return error;
    if (renameat(folder.handle(), beside.constData(), folder.handle(), name.constData()) == 0)
        return 0;
    const int error = errno;
    unlinkat(folder.handle(), beside.constData(), 0);
    return error;
}

// Leaves nothing behind when the process dies, which a named file beside the name would be.
int makeUnnamed(const TreeFolder& folder, const QByteArray& name, const QByteArray& content)
{
    const int file = openUnnamed(folder);
    if (file < 0)
        return errno;
    struct stat own { };
    int error = fstat(file, &own) == 0 ? fill(file, content) : errno;
    if (error == 0)
        error = giveName(file, {own.st_mode & modeBits, folder.handle(), name.constData()});
    return closed(file, error);
}

int makeNew(const TreeFolder& folder, const QByteArray& name, const QByteArray& content)
{
    const int error = makeUnnamed(folder, name, content);
    return isForWantOfUnnamedFiles(error) || error == EEXIST ? replace(folder, name, content, nullptr)
                                                             : error;
}

int overwrite(const TreeFolder& folder, const QByteArray& name, const QByteArray& content)
{
    // Not to wait for a reader, should the file have become a pipe.
    const int file = openat(folder.handle(), name.constData(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return errno;
    const int error = fill(file, content);
    if (error != 0 && ftruncate(file, 0) != 0)
        unlinkat(folder.handle(), name.constData(), 0);
    return closed(file, error);
}

int writeOver(const TreeFolder& folder, const QByteArray& name, const QByteArray& content,
              const struct stat& present)
{
    // Opening a pipe would wait for someone to read it.
    if (!S_ISREG(present.st_mode))
        return noRegularFile;
    if (faccessat(folder.handle(), name.constData(), W_OK, AT_EACCESS) != 0)
        return errno;
    if (present.st_nlink > 1)
        return overwrite(folder, name, content);
    const int error = replace(folder, name, content, &present);
    return error == EACCES || error == EPERM || error == undressed ? overwrite(folder, name, content) : error;
}

// Where the path leads through links, of the file as of its folders; also where nothing is yet.
QByteArray placeOf(QByteArray path)
{
    for (int links = 0; links < mostLinks; ++links) {
        const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.constData(), nullptr),
                                                               &std::free);
        if (real != nullptr)
            return real.get();
        std::array<char, PATH_MAX> text{};
        const ssize_t size = readlink(path.constData(), text.data(), text.size());
        if (size <= 0)
            return path;
        const QByteArray target(text.data(), static_cast<int>(size));
        path = target.startsWith('/') ? target : TreeFolder::parentPath(path) + '/' + target;
    }
    return path;
}

int writeTo(const QByteArray& path, const QByteArray& content)
{
    const QByteArray place = placeOf(path);
    const TreeFolder folder = TreeFolder::open(TreeFolder::parentPath(place), TreeFolder::Writing);
    const QByteArray name = TreeFolder::lastName(place);
    if (!folder.isOpen())
        return errno;
    struct stat present { };
    if (fstatat(folder.handle(), name.constData(), &present, AT_SYMLINK_NOFOLLOW) == 0)
        return S_ISLNK(present.st_mode) ? ELOOP : writeOver(folder, name, content, present);
    return errno == ENOENT ? makeNew(folder, name, content) : errno;
}

} // namespace

QString writeWholeFile(const QString& path, const QByteArray& content)
{
    const int error = writeTo(QFile::encodeName(path), content);
    if (error == noRegularFile)
        return QStringLiteral("What is there is no regular file");
    return error == 0 ? QString() : qt_error_string(error);
}
