// SPDX-License-Identifier: MIT
#ifndef BUILDWISHES_H
#define BUILDWISHES_H

#include "build/job.h"
#include "build/slice.h"

/** What the words of the command line ask of a run. */
struct BuildWishes {
    Slice slice;
    QStringList only; ///< folders of the channels to be built; empty for all of the slice
    bool force = false; ///< builds what has not changed, too
    int processes = 1;

    /** Whether a channel is to be built, by its place in the job: slices stay what they are, whichever of
     * their channels are chosen. */
    bool takes(int index, const JobChannel& channel) const
    {
        return slice.takes(index) && (only.isEmpty() || only.contains(channel.folder));
    }

    QVector<JobChannel> channelsOf(const Job& job) const
    {
        QVector<JobChannel> taken;
        for (int i = 0; i < job.channels.size(); ++i) {
            if (takes(i, job.channels.at(i)))
                taken.append(job.channels.at(i));
        }
        return taken;
    }
};

#endif
