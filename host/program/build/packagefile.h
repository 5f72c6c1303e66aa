// SPDX-License-Identifier: MIT
#ifndef PACKAGEFILE_H
#define PACKAGEFILE_H

#include <QByteArray>
#include <QString>

class ArchiveFile;

/**
 * A file in the making: it gets its name when it is complete, in the place of a file that has it, and leaves
 * nothing behind otherwise.
 *
 * After a failure, which error() tells, everything else fails too.
 */
class PackageFile {
public:
    explicit PackageFile(const QString& path);
    ~PackageFile();
    PackageFile(const PackageFile&) = delete;
    PackageFile& operator=(const PackageFile&) = delete;

    bool open();

    /** How many bytes there are so far. */
    qint64 size() const { return m_written + m_buffer.size() + m_length; }

    void append(const QByteArray& bytes) { append(bytes.constData(), bytes.size()); }
    void append(const char* bytes, qint64 length);

    /** Appends what another file has at a place; neighbours become one copy. */
    void append(const ArchiveFile& source, qint64 place, qint64 length);

    /** Puts bytes in the place of others that are there. */
    void replace(qint64 place, const QByteArray& bytes);

    /** Writes what has not been written yet. */
    bool flush();

    /** Gives the file its name; what it holds may reach the disk later. */
    bool finish();

    const QString& error() const { return m_error; }

private:
    bool openNamed();
    void copyPending();
    bool copyInKernel(qint64& length);
    void copyThroughBuffer(qint64 length);
    void writeBuffer();
    bool takeRights();
    bool name();
    bool fail(int number);

    QString m_path;
    QByteArray
        m_target; // the path, and another name in its folder for the time before, as the system has them
    QByteArray m_scratch;
    int m_handle = -1;
    bool m_isNamed = false; // has the scratch name
    qint64 m_written = 0;
    QByteArray m_buffer; // what comes next
    const ArchiveFile* m_source = nullptr; // and behind that so much of this file, from a place on
    qint64 m_place = 0;
    qint64 m_length = 0;
    QString m_error;
};

#endif
