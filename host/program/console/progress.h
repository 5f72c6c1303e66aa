// SPDX-License-Identifier: MIT
#ifndef PROGRESS_H
#define PROGRESS_H

#include <QJsonObject>
#include <QString>

/** The state of work that takes a while. */
struct Progress {
    enum Unit { None, Files, Bytes, Rows };

    QString doing; ///< what is being done, for a person: "copying"
    Unit unit = None; ///< with None there is nothing to count
    qint64 done = 0;
    qint64 total = -1; ///< -1 when it is not known
    QString more = {}; ///< further figures, worded

    /** What a person reads, in one line. */
    QString text() const;

    /** What a machine reads: "doing", "unit", "done" and "total", each null when it is not known. */
    QJsonObject json() const;
};

#endif
