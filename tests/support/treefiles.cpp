// SPDX-License-Identifier: MIT
#include "treefiles.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void require(bool done, const char* what, const QByteArray& path)
{
    if (!done)
        qFatal("cannot %s %s: %s", what, path.constData(), std::strerror(errno));
}

void collect(const QByteArray& root, const QByteArray& prefix, QMap<QByteArray, QByteArray>& found)
{
    const QByteArray listed =
        QByteArray(root + '/' + prefix).chopped(1); // the longest path has no room for a final slash
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(listed.constData()), closedir);
    require(folder != nullptr, "list", listed);
    while (const dirent* const entry = readdir(folder.get())) {
        const QByteArray name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const QByteArray relative = prefix + name;
        const QByteArray path = root + '/' + relative;
        struct stat status { };
        require(lstat(path.constData(), &status) == 0, "look at", path);
        if (S_ISDIR(status.st_mode)) {
            found.insert(relative, "folder");
            collect(root, relative + '/', found);
        } else if (S_ISLNK(status.st_mode)) {
            std::array<char, 4096> target{};
            const ssize_t length = readlink(path.constData(), target.data(), target.size());
            found.insert(relative, "link " + QByteArray(target.data(), static_cast<int>(length)));
        } else {
            found.insert(relative,
                         S_ISREG(status.st_mode) ? "file " + TreeFiles::read(path) : QByteArray("special"));
        }
    }
}

} // namespace

void TreeFiles::write(const QByteArray& path, const QByteArray& content)
{
    makeFolder(path.left(path.lastIndexOf('/')));
    const int handle = open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(handle >= 0, "make", path);
    require(::write(handle, content.constData(), static_cast<std::size_t>(content.size())) == content.size(),
            "write", path);
    close(handle);
}

void TreeFiles::writeMany(const QByteArray& beginning, int count, const QByteArray& content)
{
    for (int i = 0; i < count; ++i)
        write(beginning + QByteArray::number(i), content);
}

void TreeFiles::writeManySizes(const QByteArray& beginning, int count)
{
    for (int i = 0; i < count; ++i)
        write(beginning + QByteArray::number(i), QByteArray(i * 50, 'x'));
}

void TreeFiles::writeAt(const QByteArray& path, qint64 offset, const QByteArray& content)
{
    const int handle = open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    require(handle >= 0, "make", path);
    require(pwrite64(handle, content.constData(), static_cast<std::size_t>(content.size()), offset)
                == content.size(),
            "write", path);
    close(handle);
}

void TreeFiles::writeSparse(const QByteArray& path)
{
    writeAt(path, 0, QByteArray(100000, 'b'));
    writeAt(path, 400000, QByteArray(100000, 'e'));
}

void TreeFiles::makeFolder(const QByteArray& path)
{
    if (exists(path))
        return;
    makeFolder(path.left(path.lastIndexOf('/')));
    require(mkdir(path.constData(), 0755) == 0, "make", path);
}

void TreeFiles::makeLink(const QByteArray& target, const QByteArray& path)
{
    require(symlink(target.constData(), path.constData()) == 0, "make", path);
}

void TreeFiles::setMode(const QByteArray& path, int mode)
{
    require(chmod(path.constData(), static_cast<mode_t>(mode)) == 0, "change the mode of", path);
}

QVector<QPair<QByteArray, QByteArray>> TreeFiles::hardNames()
{
    QVector<QPair<QByteArray, QByteArray>> names{{"longest", QByteArray(255, 'n')},
                                                 {"place marker", "%2%1"},
                                                 {"quotation mark", "it's"},
                                                 {"drive", "C:"},
                                                 {"three dots", "..."},
                                                 {"blank", " "},
                                                 {"resource", ":x"},
                                                 {"composed", "\xc3\xa9\xe2\x82\xac"},
                                                 {"cut short", "\xe2\x82"}};
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/')
            names.append(
                {"byte " + QByteArray::number(byte), "a" + QByteArray(1, static_cast<char>(byte)) + "b"});
    }
    return names;
}

QDir TreeFiles::folder(const QByteArray& path)
{
    return {QFile::decodeName(path)};
}

QByteArray TreeFiles::read(const QByteArray& path)
{
    QByteArray content;
    std::array<char, 65536> buffer{};
    const int handle = open(path.constData(), O_RDONLY | O_CLOEXEC);
    require(handle >= 0, "open", path);
    ssize_t length = 0;
    while ((length = ::read(handle, buffer.data(), buffer.size())) > 0)
        content.append(buffer.data(), static_cast<int>(length));
    close(handle);
    return content;
}

bool TreeFiles::exists(const QByteArray& path)
{
    struct stat status { };
    return path.isEmpty() || lstat(path.constData(), &status) == 0;
}

int TreeFiles::mode(const QByteArray& path)
{
    struct stat status { };
    require(stat(path.constData(), &status) == 0, "look at", path);
    return static_cast<int>(status.st_mode & 07777);
}

QMap<QByteArray, QByteArray> TreeFiles::content(const QByteArray& path)
{
    QMap<QByteArray, QByteArray> found;
    collect(path, {}, found);
    return found;
}

QString TreeFiles::quickFolder()
{
    const bool hasMemory = access("/dev/shm", W_OK) == 0;
    return (hasMemory ? QStringLiteral("/dev/shm") : QDir::tempPath()) + QStringLiteral("/trees.XXXXXX");
}

QString TreeFiles::diskFolder()
{
    return QDir::tempPath() + QStringLiteral("/trees.XXXXXX");
}

bool TreeFiles::asPlainUser(const std::function<bool()>& work)
{
    constexpr uid_t nobody = 65534;
    const pid_t child = fork();
    if (child == 0) {
        const bool plain =
            geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        std::_Exit(plain && work() ? 0 : 1);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}
