// SPDX-License-Identifier: MIT
#ifndef QUENZOBASE_H
#define QUENZOBASE_H

#include "quenzobase_export.h"

#include <QString>

/**
 * The companion library: where the host runs, and the tool's own log.
 *
 * A host may put a library of its own in the place of this one (same header, same library name); `QuenzoTool`
 * is not rebuilt for it.
 *
 * Both functions may be called from every thread.
 *
 * @since 1.0
 */
class QUENZOBASE_EXPORT QuenzoBase {
public:
    /**
     * The folder of the running executable, links resolved.
     *
     * @return absolute path, forward slashes, no trailing separator; the same on every call
     */
    static QString getRunPath();

    /**
     * Appends one entry to `<run path>/../log/quenzotool.log`, whose folder is made when it is missing: the
     * local time in ISO 8601 with milliseconds, a blank, @p text as it stands but for a blank in front of
     * each line within it that looks like the beginning of an entry (such a time and a blank), a line feed.
     *
     * Entries of several threads, and of several processes, never mix. The entry is handed to the system
     * before the function returns. A log that cannot be written is dropped in silence.
     *
     * @param text the entry, written as UTF-8
     */
    static void Log(QString text);
};

#endif
