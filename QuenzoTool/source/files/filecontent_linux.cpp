// SPDX-License-Identifier: MIT
#include "files/filecontent_linux.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr off_t smallSize = off_t{64} << 10U;
constexpr std::size_t chunk = 1U << 30U;

bool meansUnsupported(int error)
{
    return error == EINVAL || error == EXDEV || error == ENOSYS || error == EOPNOTSUPP || error == EPERM
        || error == EBADF || error == ETXTBSY;
}

bool writeAll(int target, const char* data, std::size_t length)
{
    while (length > 0) {
        const ssize_t written = write(target, data, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

// Both files go on from where they stand, to the source's end or for so many bytes; how many there were, or
// -1.
off_t readAndWrite(int source, int target, off_t most = std::numeric_limits<off_t>::max())
{
    constexpr off_t size = off_t{256} << 10U;
    const std::unique_ptr<char[]> buffer(new char[size]); // NOLINT(modernize-avoid-c-arrays)
    off_t done = 0;
    while (done < most) {
        const ssize_t length =
            read(source, buffer.get(), static_cast<std::size_t>(std::min(size, most - done)));
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0 || !writeAll(target, buffer.get(), static_cast<std::size_t>(length)))
            return -1;
        if (length == 0)
            break;
        done += length;
    }
    return done;
}

// To the end that the source itself tells, since a file may grow meanwhile.
bool copyDense(int source, int target)
{
    while (true) {
        const ssize_t length = copy_file_range(source, nullptr, target, nullptr, chunk, 0);
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0 && !meansUnsupported(errno))
            return false;
        // Files that the kernel makes up as they are read may seem to end at once.
        if (length <= 0)
            return readAndWrite(source, target) >= 0;
    }
}

bool copySmall(int source, int target, off_t size)
{
    const ssize_t length = size > 0 ? sendfile(target, source, nullptr, static_cast<std::size_t>(size)) : 0;
    if (length == size && size > 0)
        return true;
    if (length < 0 && !meansUnsupported(errno) && errno != EINTR)
        return false;
    return readAndWrite(source, target) >= 0;
}

// Zeros would take the place of what is missing.
bool refuseAsCutShort()
{
    errno = EIO;
    return false;
}

bool copyRange(int source, int target, off_t from, off_t to)
{
    while (from < to) {
        off_t in = from;
        off_t out = from;
        const ssize_t length =
            copy_file_range(source, &in, target, &out, static_cast<std::size_t>(to - from), 0);
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0 && !meansUnsupported(errno))
            return false;
        if (length <= 0) {
            if (lseek(source, from, SEEK_SET) < 0 || lseek(target, from, SEEK_SET) < 0)
                return false;
            const off_t read = readAndWrite(source, target, to - from);
            return read == to - from || (read >= 0 && refuseAsCutShort());
        }
        from += length;
    }
    return true;
}

bool copySparse(int source, int target, off_t size)
{
    off_t from = 0;
    while (from < size) {
        const off_t data = lseek(source, from, SEEK_DATA);
        if (data < 0 && errno == ENXIO)
            break;
        const off_t end = data < 0 ? -1 : lseek(source, data, SEEK_HOLE);
        if (end < 0 || !copyRange(source, target, data, end))
            return false;
        from = end;
    }
    struct stat status { };
    if (fstat(source, &status) != 0)
        return false;
    return status.st_size < size ? refuseAsCutShort() : ftruncate(target, size) == 0;
}

} // namespace

bool copyContent(int source, int target, const struct stat& status)
{
    if (status.st_size <= smallSize)
        return copySmall(source, target, status.st_size);
    if (ioctl(target, FICLONE, source) == 0)
        return true;
    constexpr off_t blockUnit = 512;
    const bool hasHoles = status.st_blocks < status.st_size / blockUnit;
    const off_t firstHole = hasHoles ? lseek(source, 0, SEEK_HOLE) : -1;
    if (firstHole >= 0 && firstHole < status.st_size)
        return copySparse(source, target, status.st_size);
    if (hasHoles && lseek(source, 0, SEEK_SET) < 0)
        return false;
    posix_fadvise(source, 0, 0, POSIX_FADV_SEQUENTIAL);
    return copyDense(source, target);
}
