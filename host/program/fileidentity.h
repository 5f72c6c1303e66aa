// SPDX-License-Identifier: MIT
#ifndef FILEIDENTITY_H
#define FILEIDENTITY_H

#include <QHash>
#include <QString>

#include <sys/stat.h>

/** Which file or folder something is, however it was reached: the names of one file, hard links too, have one
 * identity. */
struct FileIdentity {
    FileIdentity() = default;
    explicit FileIdentity(const struct stat& status)
        : device(status.st_dev)
        , node(status.st_ino)
    {
    }

    bool isKnown() const { return node != 0; } // none has the number 0
    bool operator==(const FileIdentity& other) const { return device == other.device && node == other.node; }

    dev_t device = 0;
    ino_t node = 0;
};

inline uint qHash(const FileIdentity& identity, uint seed = 0)
{
    return qHash(static_cast<quint64>(identity.node), seed);
}

/** The identity of what a path leads to; not known when it leads to nothing. */
FileIdentity identityOf(const QString& path);

/**
 * Where writing to a path would put a file: an absolute path without links.
 *
 * Neither the file nor the folders above it need exist; a link may lead to nothing.
 */
QString placeOf(const QString& path);

#endif
