// SPDX-License-Identifier: MIT
#ifndef ARCHIVESTREAM_H
#define ARCHIVESTREAM_H

#include "console/interruptguard.h"

#include <QString>
#include <QTemporaryDir>

class Console;

/**
 * A file on the way between an archive's script, which needs one, and a standard stream. It goes with this
 * object, and when a signal ends the program.
 */
class ArchiveStream {
public:
    explicit ArchiveStream(Console& console);

    /** Whether there is a place for the file; reports it when there is none. */
    bool isReady();

    /** The file's path. */
    QString path() const { return m_folder.filePath(QStringLiteral("archive.zip")); }

    /** Fills the file with all of the standard input; false when it failed, which has been reported. */
    bool takeInput();

    /** Writes the file to the standard output; the same. */
    bool giveOutput();

private:
    bool fail(const QString& text, const QString& cause);

    Console& m_console;
    QTemporaryDir m_folder;
    const InterruptGuard m_guard;
};

#endif
