// SPDX-License-Identifier: MIT
#ifndef ZIPCONTENT_H
#define ZIPCONTENT_H

#include "build/zipentry.h"

#include <QString>

#include <memory>

class ArchiveFile;

/** The content of one entry, unpacked block by block and held against its size and checksum. */
class ZipContent {
public:
    /** Both have to outlive the object. */
    ZipContent(const ArchiveFile& archive, const ZipEntry& entry);
    ~ZipContent();
    ZipContent(const ZipContent&) = delete;
    ZipContent& operator=(const ZipContent&) = delete;

    /** The next block, true to the next call; empty at the end, or where error() says why there is no more.
     */
    QByteArray next();

    const QString& error() const { return m_error; }

private:
    struct Inflater;

    QByteArray stored();
    QByteArray inflated();
    QByteArray fail(const QString& reason);

    const ArchiveFile& m_archive;
    const ZipEntry& m_entry;
    std::unique_ptr<Inflater> m_inflater;
    qint64 m_read = 0; // of the packed bytes
    qint64 m_size = 0; // of the content so far
    quint32 m_crc = 0;
    QString m_error;
};

/** The whole content of an entry that is read into memory, such as a manifest; empty with a fault in one
 * sentence where there is none, or one of more than 16 MiB. */
QByteArray contentOfEntry(const QString& archive, const QByteArray& name, QString& fault);

#endif
