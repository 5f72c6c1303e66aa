// SPDX-License-Identifier: MIT
#ifndef ZIPDIRECTORY_H
#define ZIPDIRECTORY_H

#include "build/zipentry.h"

class ArchiveFile;

/**
 * The directory of an archive that nobody vouches for: every place in it lies in the archive, no two entries
 * share bytes, and the local headers tell the same story.
 */
struct ZipDirectory {
    QVector<ZipEntry> entries; ///< in the order of the directory
    bool isSigned = false;

    /** Reads it, once. @return what the archive lacks, in one sentence; empty when it is sound */
    QString read(const ArchiveFile& archive);
};

#endif
