// SPDX-License-Identifier: MIT
#ifndef ICONJOB_H
#define ICONJOB_H

#include "icons/channellist.h"

#include <QString>
#include <QStringList>
#include <QVector>

/** What the command line and the channel list ask for. */
struct IconJob {
    QString icon;
    QString marks;
    QString out; ///< absolute, without a separator at the end
    QString list;
    QString sheet; ///< empty when none is wanted
    int platform = 0;
    int defaultCorner = 3;
    int defaultX = 0;
    int defaultY = 0;
    bool keep = false;
    QVector<ListedChannel> channels;

    /** The names of the files that each channel gets. */
    QStringList fileNames() const;

    /** The path of every file, each once: channels may share a folder. */
    QStringList files() const;

    QString folderOf(const ListedChannel& channel) const;

    /** Why the job must not be run, since it would destroy what it must not; empty when it may. */
    QString danger() const;

    /** What of the output folder's earlier content is still there after a run that was to clear it. */
    QStringList leftovers() const;

    /** What the library would pass over in silence although it can be known beforehand. */
    QStringList warnings() const;
};

#endif
