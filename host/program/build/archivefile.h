// SPDX-License-Identifier: MIT
#ifndef ARCHIVEFILE_H
#define ARCHIVEFILE_H

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

/** A file that is read by place, and that nobody should change meanwhile. */
class ArchiveFile {
public:
    ArchiveFile() = default;
    ~ArchiveFile();
    ArchiveFile(const ArchiveFile&) = delete;
    ArchiveFile& operator=(const ArchiveFile&) = delete;

    /** Opens a regular file; false with error(). */
    bool open(const QString& path);

    const QString& path() const { return m_path; }
    int handle() const { return m_handle; }
    qint64 size() const { return m_status.st_size; } ///< when it was opened

    /** The bytes from a place on: fewer where the file ends, or where error() says why they cannot be read.
     */
    QByteArray read(qint64 place, qint64 length) const;

    /** The same into a buffer; the number of bytes read. */
    qint64 read(qint64 place, char* buffer, qint64 length) const;

    /** Whether the file, and what its path leads to, still is what was opened. */
    bool isUnchanged() const;

    /** The system's reason of the last failure; empty for none. */
    const QString& error() const { return m_error; }

private:
    QString m_path;
    int m_handle = -1;
    struct stat m_status { };
    mutable QString m_error;
};

#endif
