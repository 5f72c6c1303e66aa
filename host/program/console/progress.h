// SPDX-License-Identifier: MIT
#ifndef PROGRESS_H
#define PROGRESS_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

/** The state of work that takes a while. */
struct Progress {
    enum Unit { None, Files, Bytes, Rows, Channels };

    QString doing; ///< what is being done, for a person: "copying"
    Unit unit = None; ///< with None there is nothing to count
    qint64 done = 0;
    qint64 total = -1; ///< -1 when it is not known
    QString more = {}; ///< further figures, worded
    QStringList atWork = {}; ///< what is done at once, a line each for those who see several

    /**
     * What a person reads: percent, a bar, figures, rate and time left, as far as they are known and the line
     * holds them.
     *
     * @param elapsedMs since this work began
     * @param columns of the line; the first words alone may need more
     */
    QString line(qint64 elapsedMs, int columns) const;

    /** What a machine reads: "doing", "unit", "done" and "total", each null when it is not known. */
    QJsonObject json() const;
};

#endif
