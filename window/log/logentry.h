// SPDX-License-Identifier: MIT
#ifndef LOGENTRY_H
#define LOGENTRY_H

#include <QMetaType>
#include <QString>
#include <QVector>

/** One entry of the tool's log, or one message of Qt's. */
struct LogEntry {
    enum Kind { Tool, Detail, Information, Warning, Error }; ///< Tool: of the log file, which knows no levels

    QString time; ///< "2026-03-01 09:30:00.125", local; empty where the file tells none
    Kind kind = Tool;
    QString text; ///< may have several lines
};

Q_DECLARE_METATYPE(QVector<LogEntry>)

#endif
