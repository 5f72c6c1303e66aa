// SPDX-License-Identifier: MIT
#ifndef FILECOPIER_H
#define FILECOPIER_H

#include "files/treefolder.h"

#include <memory>

/**
 * Copies files from folder to folder: content and permission bits, through links.
 *
 * A file appears under its name when it is complete, or not at all, also when the process is killed
 * meanwhile.
 */
class FileCopier {
public:
    enum Durability {
        LeftToSystem,
        Flushable ///< remembers what flush() then has to wait for, and the sources
    };
    enum Existing {
        Kept, ///< the copy fails
        Replaced ///< it goes when what takes its place is at hand
    };
    enum Trouble {
        NoTrouble,
        NoRoom,
        NotCopied ///< for any other cause
    };
    struct Outcome {
        int copied; ///< how many of the files, from the first on, have arrived
        Trouble trouble; ///< what the one after them met
        QString reason; ///< the same for people
    };

    static QString neitherFileNorFolder() { return QStringLiteral("it is neither a file nor a folder"); }
    static QString linkLeadsNowhere() { return QStringLiteral("the link leads nowhere"); }
    static QString replacedItself() { return QStringLiteral("it was the file to be replaced"); }
    static QString linkLeadsBack() { return QStringLiteral("the link leads back to a folder that holds it"); }

    FileCopier(Durability durability, Existing existing);
    ~FileCopier();
    FileCopier(const FileCopier&) = delete;
    FileCopier& operator=(const FileCopier&) = delete;

    /**
     * Copies files in order, under their own names, up to the first that meets trouble. A file that turns out
     * to be the existing one that it replaces is gone then, and not copied.
     */
    Outcome copy(const TreeFolder& from, const TreeEntry* files, int count, const TreeFolder& to);

    /**
     * What the sources that arrived by the last copy() were like just before they were copied, in order:
     * whether one was written to since can be told by that. Of a copier that is Flushable.
     */
    const QVector<FileState>& sources() const;

    /** How many bytes were copied since the last flush. */
    qint64 unflushedBytes() const;

    /** Waits until everything copied since the last flush is on the disk; false when that cannot be told. */
    bool flush();

private:
    class Private;
    const std::unique_ptr<Private> d;
};

#endif
