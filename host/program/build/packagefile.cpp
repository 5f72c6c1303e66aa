// SPDX-License-Identifier: MIT
#include "build/packagefile.h"

#include "build/archivefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct PackageFileTexts {
    Q_DECLARE_TR_FUNCTIONS(PackageFileTexts)
};

constexpr qint64 bufferSize = 1 << 18;
constexpr qint64 smallCopy = 1 << 16; // costs less through the buffer than two calls
constexpr qint64 page = 4096;
constexpr mode_t modeOfNewFiles = 0666;
constexpr mode_t rights = 0777;

} // namespace

PackageFile::PackageFile(const QString& path)
    : m_path(path)
    , m_target(QFile::encodeName(path))
{
    const QString folder = QFileInfo(path).path();
    m_scratch = QFile::encodeName(folder) + "/.quenzo-"
        + QByteArray::number(QRandomGenerator::system()->generate64(), 16).rightJustified(16, '0') + ".tmp";
    m_buffer.reserve(bufferSize);
}

PackageFile::~PackageFile()
{
    if (m_isNamed)
        unlink(m_scratch.constData());
    if (m_handle >= 0)
        ::close(m_handle);
}

bool PackageFile::open()
{
    struct stat there { };
    if (lstat(m_target.constData(), &there) == 0 && !S_ISREG(there.st_mode))
        m_error = PackageFileTexts::tr("%1: a folder, link or device is in the way").arg(m_path);
    if (!m_error.isEmpty())
        return false;
    const QByteArray folder = m_scratch.left(m_scratch.lastIndexOf('/') + 1);
    m_handle = openat(AT_FDCWD, folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, modeOfNewFiles);
    // Not every file system has files without a name.
    if (m_handle < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOENT))
        return openNamed();
    return m_handle >= 0 || fail(errno);
}

bool PackageFile::openNamed()
{
    m_handle =
        openat(AT_FDCWD, m_scratch.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, modeOfNewFiles);
    m_isNamed = m_handle >= 0;
    return m_isNamed || fail(errno);
}

void PackageFile::append(const char* bytes, qint64 length)
{
    copyPending();
    while (length > 0) {
        const qint64 part = qMin(length, bufferSize - m_buffer.size());
        m_buffer.append(bytes, static_cast<int>(part));
        if (m_buffer.size() == bufferSize)
            writeBuffer();
        bytes += part;
        length -= part;
    }
}

void PackageFile::append(const ArchiveFile& source, qint64 place, qint64 length)
{
    if (m_source != &source || m_place + m_length != place)
        copyPending();
    if (m_length == 0) {
        m_source = &source;
        m_place = place;
    }
    m_length += length;
}

void PackageFile::replace(qint64 place, const QByteArray& bytes)
{
    if (place >= m_written && place + bytes.size() <= m_written + m_buffer.size()) {
        m_buffer.replace(static_cast<int>(place - m_written), bytes.size(), bytes);
        return;
    }
    if (!flush())
        return;
    const ssize_t done = pwrite(m_handle, bytes.constData(), static_cast<std::size_t>(bytes.size()), place);
    if (done != bytes.size())
        fail(done < 0 ? errno : ENOSPC);
}

bool PackageFile::flush()
{
    copyPending();
    writeBuffer();
    return m_error.isEmpty();
}

void PackageFile::copyPending()
{
    qint64 length = m_length;
    m_length = 0;
    // Pages that lie alike are copied faster by the kernel, or shared; all others are so by way of a buffer.
    if (length >= smallCopy && m_place % page == (m_written + m_buffer.size()) % page) {
        writeBuffer();
        if (!m_error.isEmpty() || copyInKernel(length))
            return;
    }
    copyThroughBuffer(length);
}

// Copies as much as the kernel can; false with what is left for other means.
bool PackageFile::copyInKernel(qint64& length)
{
    while (length > 0) {
        off64_t place = m_place;
        const ssize_t done = copy_file_range(m_source->handle(), &place, m_handle, nullptr,
                                             static_cast<std::size_t>(length), 0);
        if (done <= 0) {
            // What the disk says is said; whatever else there is may be an answer of this call alone.
            return done < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO)
                && !fail(errno);
        }
        m_place += done;
        m_written += done;
        length -= done;
    }
    return true;
}

void PackageFile::copyThroughBuffer(qint64 length)
{
    while (length > 0 && m_error.isEmpty()) {
        const int before = m_buffer.size();
        const qint64 part = qMin(length, bufferSize - before);
        m_buffer.resize(before + static_cast<int>(part));
        if (m_source->read(m_place, m_buffer.data() + before, part) != part) {
            const QString reason = m_source->error();
            m_error = PackageFileTexts::tr("cannot read %1: %2")
                          .arg(m_source->path(),
                               reason.isEmpty() ? PackageFileTexts::tr("it became shorter") : reason);
            return;
        }
        m_place += part;
        length -= part;
        if (m_buffer.size() == bufferSize)
            writeBuffer();
    }
}

void PackageFile::writeBuffer()
{
    qint64 done = 0;
    while (done < m_buffer.size() && m_error.isEmpty()) {
        const ssize_t part =
            ::write(m_handle, m_buffer.constData() + done, static_cast<std::size_t>(m_buffer.size() - done));
        if (part > 0)
            done += part;
        else if (part == 0 || errno != EINTR)
            fail(part == 0 ? ENOSPC : errno);
    }
    m_written += done;
    m_buffer.resize(0);
}

bool PackageFile::finish()
{
    if (!flush())
        return false;
    if (!takeRights())
        return fail(errno);
    return name();
}

// A file that replaces another one may be read and written by the same people.
bool PackageFile::takeRights()
{
    struct stat there { };
    return stat(m_target.constData(), &there) != 0 || fchmod(m_handle, there.st_mode & rights) == 0;
}

bool PackageFile::name()
{
    if (!m_isNamed) {
        const QByteArray own = "/proc/self/fd/" + QByteArray::number(m_handle);
        if (linkat(AT_FDCWD, own.constData(), AT_FDCWD, m_scratch.constData(), AT_SYMLINK_FOLLOW) != 0)
            return fail(errno);
        m_isNamed = true;
    }
    if (std::rename(m_scratch.constData(), m_target.constData()) != 0)
        return fail(errno);
    m_isNamed = false;
    return true;
}

bool PackageFile::fail(int number)
{
    if (m_error.isEmpty())
        m_error = PackageFileTexts::tr("cannot write %1: %2").arg(m_path, qt_error_string(number));
    return false;
}
