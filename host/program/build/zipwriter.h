// SPDX-License-Identifier: MIT
#ifndef ZIPWRITER_H
#define ZIPWRITER_H

#include "build/zipentry.h"

class ArchiveFile;
class DeflatedContents;
class PackageFile;
class QIODevice;

/** Writes entries one after the other; after a failure, which error() or the file's tells, nothing counts. */
class ZipWriter {
public:
    /** Both have to outlive the object. */
    ZipWriter(PackageFile& out, DeflatedContents& contents)
        : m_out(out)
        , m_contents(contents)
    {
    }

    /** An entry of another archive, as it was packed. */
    void takeOver(const ArchiveFile& archive, const ZipEntry& entry);

    /** An entry with a name, method, time and rights of its own; content is open for reading. */
    bool add(const ZipEntry& entry, QIODevice& content);

    /** Writes the directory, unless the archive became one that could not be unpacked again. */
    bool finish();

    qint64 takenOver() const { return m_takenOver; } ///< packed bytes

    const QString& error() const { return m_error; }

private:
    ZipEntry begun(const ZipEntry& entry) const;
    bool packWhole(ZipEntry& entry, QIODevice& content);
    bool pack(ZipEntry& entry, QIODevice& content);
    bool complain(const ZipEntry& entry, const QIODevice& content, bool isRead);

    PackageFile& m_out;
    DeflatedContents& m_contents;
    QVector<ZipEntry> m_entries;
    qint64 m_content = 0;
    qint64 m_takenOver = 0;
    QString m_error;
};

#endif
