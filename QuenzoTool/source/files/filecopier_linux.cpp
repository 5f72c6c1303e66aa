// SPDX-License-Identifier: MIT
#include "files/filecopier.h"

#include "files/filecontent_linux.h"
#include "files/filenamer_linux.h"
#include "files/treefolder_linux.h"

#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

// The bits that Qt's copy sets: the owner's are joined with what the process itself may do with the source.
mode_t modeOfCopy(const TreeFolder& from, const char* name, mode_t mode)
{
    const auto may = [&](int access) { return faccessat(from.handle(), name, access, 0) == 0; };
    mode &= S_IRWXU | S_IRWXG | S_IRWXO;
    if ((mode & S_IRUSR) == 0 && may(R_OK))
        mode |= S_IRUSR;
    if ((mode & S_IWUSR) == 0 && may(W_OK))
        mode |= S_IWUSR;
    if ((mode & S_IXUSR) == 0 && (mode & (S_IXGRP | S_IXOTH)) != 0 && may(X_OK))
        mode |= S_IXUSR;
    return mode;
}

FileCopier::Trouble troubleFrom(int error)
{
    switch (error) {
    case 0:
        return FileCopier::NoTrouble;
    case EEXIST:
        return FileCopier::NameTaken;
    case ENOSPC:
    case EDQUOT:
        return FileCopier::NoRoom;
    default:
        return FileCopier::NotCopied;
    }
}

// What is no system's error.
enum OwnError { NeitherFileNorFolder = -1, LinkLeadsNowhere = -2, LinkLeadsBack = -3 };

QString reasonFor(int error)
{
    switch (error) {
    case NeitherFileNorFolder:
        return FileCopier::neitherFileNorFolder();
    case LinkLeadsNowhere:
        return FileCopier::linkLeadsNowhere();
    case LinkLeadsBack:
        return FileCopier::linkLeadsBack();
    default:
        return errorText(error);
    }
}

// Opens what is to be copied; an error number, or 0.
int openSource(const TreeFolder& from, const TreeEntry& entry, const TreeFolder& to, struct stat& status,
               UnnamedFile& file)
{
    if (entry.kind != TreeEntry::File)
        return NeitherFileNorFolder;
    if (!to.isOpen())
        return to.error();
    const char* const name = entry.name.constData();
    // Not to wait for a writer, should the entry have become a pipe since it was listed.
    file.source = openat(from.handle(), name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file.source < 0)
        return entry.isLink && errno == ENOENT ? LinkLeadsNowhere : errno;
    if (fstat(file.source, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(file.source);
        return entry.isLink && S_ISDIR(status.st_mode) ? LinkLeadsBack : NeitherFileNorFolder;
    }
    file.mode = modeOfCopy(from, name, status.st_mode);
    file.size = status.st_size;
    file.folder = to.handle();
    file.name = name;
    return 0;
}

int openUnnamed(UnnamedFile& file)
{
    file.target = openat(file.folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    return file.target >= 0 ? 0 : errno;
}

// Renames only if there is nothing of the new name, by whatever the file system knows for it.
int renameIfFree(int folder, const char* from, const char* to)
{
    if (syscall(SYS_renameat2, folder, from, folder, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    if (linkat(folder, from, folder, to, 0) == 0) {
        unlinkat(folder, from, 0);
        return 0;
    }
    if (errno == EEXIST)
        return errno;
    struct stat status { };
    if (fstatat(folder, to, &status, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return renameat(folder, from, folder, to) == 0 ? 0 : errno;
}

} // namespace

class FileCopier::Private {
public:
    explicit Private(Durability durability)
        : m_durability(durability)
    {
    }
    ~Private() { closeFlushHandles(); }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    int copyOne(const TreeFolder& from, const TreeEntry& file, const TreeFolder& to);
    int copyMany(const TreeFolder& from, const TreeEntry* files, int count, const TreeFolder& to);
    bool isProven() const { return m_proven; }
    bool flush();

    qint64 unflushed = 0;
    QVector<FileState> sources;

private:
    int copyUnnamed(UnnamedFile& file, const struct stat& status, const TreeFolder& to);
    int copyThroughTemporary(const UnnamedFile& file, const struct stat& status, const TreeFolder& to);
    void rememberSource(const struct stat& status);
    void remember(int target, const TreeFolder& to);
    void closeFlushHandles();

    const Durability m_durability;
    bool m_unnamedFilesWork = true;
    bool m_proven = false; // one unnamed file got its name
    std::unique_ptr<FileNamer> m_namer;
    // One file on each file system, as old as the first write since the last flush: it hears of every error
    // since.
    struct FlushHandle {
        FileIdentity device;
        int handle;
    };
    std::vector<FlushHandle> m_flushHandles;
};

int FileCopier::Private::copyOne(const TreeFolder& from, const TreeEntry& file, const TreeFolder& to)
{
    struct stat status { };
    UnnamedFile opened{};
    if (const int error = openSource(from, file, to, status, opened))
        return error;
    int error = EOPNOTSUPP;
    if (m_unnamedFilesWork)
        error = copyUnnamed(opened, status, to);
    if (!m_unnamedFilesWork)
        error = copyThroughTemporary(opened, status, to);
    close(opened.source);
    if (error != 0)
        return error;
    unflushed += opened.size;
    rememberSource(status);
    return 0;
}

int FileCopier::Private::copyUnnamed(UnnamedFile& file, const struct stat& status, const TreeFolder& to)
{
    int error = openUnnamed(file);
    m_unnamedFilesWork = error != EOPNOTSUPP && error != EISDIR && error != EINVAL;
    if (error != 0)
        return error;
    error = copyContent(file.source, file.target, status) ? giveName(file) : errno;
    if (error == 0)
        remember(file.target, to);
    close(file.target);
    // No file has a name without the privilege, or the folder /proc, that giving one needs.
    if (error == ENOENT || error == EPERM) {
        m_unnamedFilesWork = false;
        lseek(file.source, 0, SEEK_SET);
    }
    m_proven = m_proven || error == 0;
    return error;
}

int FileCopier::Private::copyThroughTemporary(const UnnamedFile& file, const struct stat& status,
                                              const TreeFolder& to)
{
    QByteArray name;
    int target = -1;
    do {
        name = ".quenzo-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        target =
            openat(file.folder, name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    } while (target < 0 && errno == EEXIST);
    if (target < 0)
        return errno;
    int error = copyContent(file.source, target, status) ? 0 : errno;
    fchmod(target, file.mode); // which file systems without modes refuse
    if (error == 0)
        error = renameIfFree(file.folder, name.constData(), file.name);
    if (error == 0)
        remember(target, to);
    else
        unlinkat(file.folder, name.constData(), 0);
    close(target);
    return error;
}

// Copies on this thread and gives names on another one. What meets trouble is left to copyOne().
int FileCopier::Private::copyMany(const TreeFolder& from, const TreeEntry* files, int count,
                                  const TreeFolder& to)
{
    if (!m_namer)
        m_namer = std::make_unique<FileNamer>();
    const int before = sources.size();
    for (int i = 0; i < count; ++i) {
        struct stat status { };
        UnnamedFile file{};
        if (openSource(from, files[i], to, status, file) != 0)
            break;
        const bool opened = openUnnamed(file) == 0;
        if (opened)
            remember(file.target, to);
        const bool filled = opened && copyContent(file.source, file.target, status);
        if (opened && !filled)
            close(file.target);
        if (!filled) {
            close(file.source);
            break;
        }
        rememberSource(status);
        if (!m_namer->add(file))
            break;
    }
    const FileNamer::Outcome outcome = m_namer->drain();
    unflushed += outcome.bytes;
    if (m_durability == Flushable)
        sources.resize(before + outcome.named);
    return outcome.named;
}

void FileCopier::Private::rememberSource(const struct stat& status)
{
    if (m_durability == Flushable)
        sources.append(stateFrom(status));
}

void FileCopier::Private::remember(int target, const TreeFolder& to)
{
    if (m_durability == LeftToSystem)
        return;
    const FileIdentity device = to.id().left(sizeof(dev_t));
    for (const FlushHandle& flush : m_flushHandles) {
        if (flush.device == device)
            return;
    }
    m_flushHandles.push_back({device, fcntl(target, F_DUPFD_CLOEXEC, 0)});
}

bool FileCopier::Private::flush()
{
    bool flushed = true;
    for (const FlushHandle& flush : m_flushHandles)
        flushed = syncfs(flush.handle) == 0 && flushed;
    closeFlushHandles();
    unflushed = 0;
    return flushed;
}

void FileCopier::Private::closeFlushHandles()
{
    for (const FlushHandle& flush : m_flushHandles)
        close(flush.handle);
    m_flushHandles.clear();
}

FileCopier::FileCopier(Durability durability)
    : d(std::make_unique<Private>(durability))
{
}

FileCopier::~FileCopier() = default;

FileCopier::Outcome FileCopier::copy(const TreeFolder& from, const TreeEntry* files, int count,
                                     const TreeFolder& to)
{
    constexpr int worthAThread = 24;
    int copied = 0;
    d->sources.clear();
    while (copied < count) {
        if (count - copied >= worthAThread && d->isProven())
            copied += d->copyMany(from, files + copied, count - copied, to);
        if (copied == count)
            break;
        if (const int error = d->copyOne(from, files[copied], to))
            return {copied, troubleFrom(error), reasonFor(error)};
        ++copied;
    }
    return {copied, NoTrouble, {}};
}

const QVector<FileState>& FileCopier::sources() const
{
    return d->sources;
}

qint64 FileCopier::unflushedBytes() const
{
    return d->unflushed;
}

bool FileCopier::flush()
{
    return d->flush();
}
