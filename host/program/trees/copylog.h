// SPDX-License-Identifier: MIT
#ifndef COPYLOG_H
#define COPYLOG_H

#include <QFile>
#include <QString>

/** What cuts for output write to the tool's log: which file could not be copied. */
class CopyLog {
public:
    /** Notes how far the log has come; what is written from now on counts. */
    CopyLog();

    /**
     * The path, within the source, of the file that ended a cut for output. Empty when that is not certain:
     * for a file in the target a failure may have been passed over, and other processes write to the same
     * log.
     *
     * @param source,target absolute paths as the operation was given them
     */
    QString failedFile(const QString& source, const QString& target);

    /** The same, from the text of the log. */
    static QString failedFile(const QString& log, const QString& source, const QString& target);

private:
    QFile m_file;
    const qint64 m_before;
};

#endif
