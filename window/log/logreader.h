// SPDX-License-Identifier: MIT
#ifndef LOGREADER_H
#define LOGREADER_H

#include "fileidentity.h"
#include "window/log/logentry.h"

#include <QObject>

/**
 * Follows the tool's log and Qt's messages, on a thread of its own: a log may be long, and lie on a slow
 * disk.
 *
 * The file may be missing, begin later, grow from other processes, or be replaced by another one.
 */
class LogReader : public QObject {
    Q_OBJECT

public:
    explicit LogReader(const QString& file);

    /** Begins; to be called on its thread. */
    void start();

Q_SIGNALS:
    void entriesRead(const QVector<LogEntry>& entries); ///< in order, a few times in a second at the most

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QVector<LogEntry> readFile();

    const QString m_file;
    FileIdentity m_identity; ///< of the file that was read last
    qint64 m_position = 0; ///< behind the last whole line of it
};

#endif
