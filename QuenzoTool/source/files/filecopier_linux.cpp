// SPDX-License-Identifier: MIT
#include "files/filecopier.h"

#include "files/filecontent_linux.h"
#include "files/filehandle_linux.h"
#include "files/filenamer_linux.h"
#include "files/treefolder_linux.h"

#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
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
    case ENOSPC:
    case EDQUOT:
        return FileCopier::NoRoom;
    default:
        return FileCopier::NotCopied;
    }
}

// What is no system's error.
enum OwnError { NeitherFileNorFolder = -1, LinkLeadsNowhere = -2, LinkLeadsBack = -3, ReplacedItself = -4 };

QString reasonFor(int error)
{
    switch (error) {
    case NeitherFileNorFolder:
        return FileCopier::neitherFileNorFolder();
    case LinkLeadsNowhere:
        return FileCopier::linkLeadsNowhere();
    case LinkLeadsBack:
        return FileCopier::linkLeadsBack();
    case ReplacedItself:
        return FileCopier::replacedItself();
    default:
        return errorText(error);
    }
}

/** One file and where it goes. */
struct Job {
    const TreeFolder& from;
    const TreeEntry& entry;
    const TreeFolder& to;

    const char* name() const { return entry.name.constData(); }
};

struct OpenedSource {
    FileHandle file;
    struct stat status { };
};

// An error number, or 0.
int openSource(const Job& job, OpenedSource& source)
{
    if (job.entry.kind != TreeEntry::File)
        return NeitherFileNorFolder;
    if (!job.to.isOpen())
        return job.to.error();
    // Not to wait for a writer, should the entry have become a pipe since it was listed.
    source.file =
        FileHandle(openat(job.from.handle(), job.name(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!source.file.isOpen())
        return job.entry.isLink && errno == ENOENT ? LinkLeadsNowhere : errno;
    if (fstat(source.file.number(), &source.status) != 0)
        return errno;
    if (S_ISREG(source.status.st_mode))
        return 0;
    return job.entry.isLink && S_ISDIR(source.status.st_mode) ? LinkLeadsBack : NeitherFileNorFolder;
}

// Not open, with errno set, when that fails.
NamelessFile openNameless(const Job& job, const OpenedSource& source)
{
    const int flags = O_TMPFILE | O_WRONLY | O_CLOEXEC;
    const mode_t mode = modeOfCopy(job.from, job.name(), source.status.st_mode);
    FileHandle file(openat(job.to.handle(), ".", flags, S_IRUSR | S_IWUSR));
    return {std::move(file), {mode, job.to.handle(), job.name()}, source.status.st_size};
}

// Removes the existing file, now that what takes its place is at hand; an error number, or 0.
int makeWay(const Job& job, const OpenedSource& source)
{
    const auto isSourceThere = [&job] {
        return !job.from.idOf(job.entry.name, TreeFolder::LinksFollowed).isEmpty();
    };
    const bool isItself = stateFrom(source.status).id == job.to.idOf(job.entry.name, TreeFolder::LinksKept);
    if (isItself && !isSourceThere())
        return ENOENT; // somebody else has just moved it there
    if (!job.to.removeExisting(job.entry.name))
        return errno;
    // Hosts know that a file put in its own place is lost, and that there is nothing to be copied then.
    return isItself && !isSourceThere() ? ReplacedItself : 0;
}

// Renames only if there is nothing of the new name, by whatever the file system knows for it.
int renameIfFree(int folder, const char* from, const char* to)
{
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0)
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
    Private(Durability durability, Existing existing)
        : m_durability(durability)
        , m_existing(existing)
    {
    }

    int copyOne(const Job& job);
    int copyMany(const TreeFolder& from, const TreeEntry* files, int count, const TreeFolder& to);
    bool isProven() const { return m_proven; }
    bool flush();

    qint64 unflushed = 0;
    QVector<FileState> sources;

private:
    int copyOpened(const Job& job, const OpenedSource& source);
    int copyNameless(const Job& job, const OpenedSource& source);
    int copyThroughTemporary(const Job& job, const OpenedSource& source);
    template <typename Naming>
    int nameIt(const Job& job, const OpenedSource& source, const Naming& naming) const;
    void rememberSource(const struct stat& status);
    void remember(const FileHandle& target, const TreeFolder& to);

    const Durability m_durability;
    const Existing m_existing;
    bool m_namelessFilesWork = true;
    bool m_proven = false; // one nameless file got its name
    std::unique_ptr<FileNamer> m_namer;
    // One file on each file system, as old as the first write since the last flush: it hears of every error
    // since.
    struct FlushHandle {
        FileIdentity device;
        FileHandle file;
    };
    std::vector<FlushHandle> m_flushHandles;
};

int FileCopier::Private::copyOne(const Job& job)
{
    OpenedSource source;
    if (const int error = openSource(job, source))
        return error;
    int error = copyOpened(job, source);
    const bool mayMakeRoom = troubleFrom(error) == NoRoom && m_existing == Replaced
        && !job.to.idOf(job.entry.name, TreeFolder::LinksKept).isEmpty();
    if (mayMakeRoom) {
        error = makeWay(job, source);
        if (error == 0 && lseek(source.file.number(), 0, SEEK_SET) == 0)
            error = copyOpened(job, source);
    }
    if (error != 0)
        return error;
    unflushed += source.status.st_size;
    rememberSource(source.status);
    return 0;
}

int FileCopier::Private::copyOpened(const Job& job, const OpenedSource& source)
{
    int error = EOPNOTSUPP;
    if (m_namelessFilesWork)
        error = copyNameless(job, source);
    if (!m_namelessFilesWork)
        error = copyThroughTemporary(job, source);
    return error;
}

// Names a complete copy, in the place of another file if there is one.
template <typename Naming>
int FileCopier::Private::nameIt(const Job& job, const OpenedSource& source, const Naming& naming) const
{
    constexpr int mostTries = 8; // somebody else may copy a file of that name at the same time
    int error = naming();
    for (int i = 0; i < mostTries && error == EEXIST && m_existing == Replaced; ++i) {
        error = makeWay(job, source);
        if (error != 0)
            return error;
        error = naming();
    }
    return error;
}

int FileCopier::Private::copyNameless(const Job& job, const OpenedSource& source)
{
    const NamelessFile copy = openNameless(job, source);
    if (!copy.file.isOpen()) {
        const int error = errno;
        m_namelessFilesWork = error != EOPNOTSUPP && error != EISDIR && error != EINVAL;
        return error;
    }
    if (!copyContent(source.file.number(), copy.file.number(), source.status))
        return errno;
    const int error = nameIt(job, source, [&copy] { return giveName(copy.file.number(), copy.becomes); });
    if (error == 0)
        remember(copy.file, job.to);
    // No file has a name without the privilege, or the folder /proc, that giving one needs.
    if (!m_proven && (error == ENOENT || error == EPERM)) {
        m_namelessFilesWork = false;
        lseek(source.file.number(), 0, SEEK_SET);
    }
    m_proven = m_proven || error == 0;
    return error;
}

int FileCopier::Private::copyThroughTemporary(const Job& job, const OpenedSource& source)
{
    const int folder = job.to.handle();
    QByteArray name;
    FileHandle target;
    do {
        name = ".quenzo-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        const int flags = O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC;
        target = FileHandle(openat(folder, name.constData(), flags, S_IRUSR | S_IWUSR));
    } while (!target.isOpen() && errno == EEXIST);
    if (!target.isOpen())
        return errno;
    int error = copyContent(source.file.number(), target.number(), source.status) ? 0 : errno;
    // Which file systems without modes refuse.
    fchmod(target.number(), modeOfCopy(job.from, job.name(), source.status.st_mode));
    if (error == 0)
        error = nameIt(job, source, [&] { return renameIfFree(folder, name.constData(), job.name()); });
    if (error == 0)
        remember(target, job.to);
    else
        unlinkat(folder, name.constData(), 0);
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
        const Job job{from, files[i], to};
        OpenedSource source;
        if (openSource(job, source) != 0)
            break;
        NamelessFile copy = openNameless(job, source);
        if (!copy.file.isOpen())
            break;
        remember(copy.file, to);
        if (!copyContent(source.file.number(), copy.file.number(), source.status))
            break;
        rememberSource(source.status);
        if (!m_namer->add(std::move(copy)))
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

void FileCopier::Private::remember(const FileHandle& target, const TreeFolder& to)
{
    if (m_durability == LeftToSystem)
        return;
    const FileIdentity device = to.id().left(sizeof(dev_t));
    for (const FlushHandle& flush : m_flushHandles) {
        if (flush.device == device)
            return;
    }
    m_flushHandles.push_back({device, FileHandle(fcntl(target.number(), F_DUPFD_CLOEXEC, 0))});
}

bool FileCopier::Private::flush()
{
    int error = 0;
    for (const FlushHandle& flush : m_flushHandles) {
        if (syncfs(flush.file.number()) != 0)
            error = errno;
    }
    m_flushHandles.clear();
    unflushed = 0;
    errno = error;
    return error == 0;
}

FileCopier::FileCopier(Durability durability, Existing existing)
    : d(std::make_unique<Private>(durability, existing))
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
        if (const int error = d->copyOne({from, files[copied], to}))
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
