// SPDX-License-Identifier: MIT
#ifndef ICONJOB_H
#define ICONJOB_H

#include "icons/channellist.h"
#include "icons/iconlayout.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/** What the command line and the channel list ask for. */
struct IconJob {
    QString icon;
    QString background; ///< the second picture; empty for layouts without one
    QStringList keptIcons; ///< what else that package shows as its icon
    QString base; ///< the package whose icons are to be replaced; empty when there is none
    QString marks;
    QString out; ///< absolute, without links and a separator at the end
    QString list; ///< "-" for the standard input
    QString sheet; ///< empty when none is wanted
    IconLayout layout;
    int defaultCorner = IconSet::RightBottom;
    std::optional<int> defaultX; ///< flush in the corner when not given
    std::optional<int> defaultY;
    bool keep = false; ///< delete nothing
    bool clear = false; ///< also a folder that no earlier run has made
    bool ignoreMissing = false; ///< marks that cannot be read leave their icons unmarked
    QVector<ListedChannel> channels;

    /** Gives each channel the corner and the position that its mark really gets. */
    void placeMarks();

    /** The path of every file, each once: channels may share a folder. */
    QStringList files() const;

    static bool isMarked(const ListedChannel& channel);
    QString folderOf(const ListedChannel& channel) const;

    /** Why the job must not be run, since it would destroy what it must not; empty when it may. */
    QString danger() const;

    /** Whether the output folder holds what no earlier run has made. */
    bool isForeign() const;

    /** Why such a folder is not cleared without a word for it; empty when there is no need. */
    QString refusal() const;

    /** The marks that cannot be drawn, each with its channel and the reason. */
    QStringList missingMarks() const;

    /** What of the output folder's earlier content is still there after a run that was to clear it. */
    QStringList leftovers() const;

    /** What is worth a look although the job can be run. */
    QStringList warnings() const;

    /** The file in an output folder that a run has made, and the next one may therefore clear. */
    QString marker() const;

    /** Makes it; false when that failed. */
    bool markAsOwn() const;
};

#endif
