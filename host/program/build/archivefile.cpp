// SPDX-License-Identifier: MIT
#include "build/archivefile.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

struct ArchiveFileTexts {
    Q_DECLARE_TR_FUNCTIONS(ArchiveFileTexts)
};

bool isSame(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

bool isSame(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size
        && isSame(one.st_mtim, other.st_mtim);
}

} // namespace

ArchiveFile::~ArchiveFile()
{
    if (m_handle >= 0)
        ::close(m_handle);
}

bool ArchiveFile::open(const QString& path)
{
    m_path = path;
    // A pipe or a device must not make anybody wait.
    m_handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (m_handle < 0 || fstat(m_handle, &m_status) != 0)
        m_error = qt_error_string(errno);
    else if (!S_ISREG(m_status.st_mode))
        m_error = ArchiveFileTexts::tr("this is not a regular file");
    return m_error.isEmpty();
}

QByteArray ArchiveFile::read(qint64 place, qint64 length) const
{
    QByteArray bytes(static_cast<int>(length), Qt::Uninitialized);
    bytes.truncate(static_cast<int>(read(place, bytes.data(), length)));
    return bytes;
}

qint64 ArchiveFile::read(qint64 place, char* buffer, qint64 length) const
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t got =
            pread(m_handle, buffer + done, static_cast<std::size_t>(length - done), place + done);
        if (got == 0)
            break;
        if (got > 0)
            done += got;
        else if (errno != EINTR) {
            m_error = qt_error_string(errno);
            break;
        }
    }
    return done;
}

bool ArchiveFile::isUnchanged() const
{
    struct stat opened { };
    struct stat named { };
    return fstat(m_handle, &opened) == 0 && isSame(opened, m_status)
        && stat(QFile::encodeName(m_path).constData(), &named) == 0 && isSame(named, m_status);
}
