// SPDX-License-Identifier: MIT
#ifndef ZIPENTRY_H
#define ZIPENTRY_H

#include "build/apkeditor.h"

/** What the headers of an archive say about one entry. */
struct ZipEntry : ApkEntry {
    enum Method : quint16 { Stored = 0, Deflated = 8 };

    quint16 flags = 0;
    quint16 time = 0; ///< as the format has it
    quint16 date = (1 << 5) | 1; ///< 1980-01-01, its first day
    quint8 system = 3; ///< whose rights the attributes are: Unix's
    quint32 attributes = 0100644U << 16;
    qint64 header = 0; ///< where the local header is
    qint64 data = 0; ///< where the packed bytes are
    int padding = 0; ///< length of the field that aligns the data; -1 for a header that is not as we write it
    bool isLong = false; ///< sizes are in the form for 4 GiB and more

    bool isFolder() const { return name.endsWith('/'); }
};

#endif
