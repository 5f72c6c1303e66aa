// SPDX-License-Identifier: MIT
#ifndef JOBCHANNELS_H
#define JOBCHANNELS_H

#include "build/jobinputs.h"

#include <QHash>

/** Reads the channels of a job over its defaults. */
class JobChannels {
public:
    /** The arguments outlive the object; the job's icons and SDKs have been read. */
    JobChannels(JobInputs& inputs, JobFaults& faults, Job& job);

    void read(const JobObject& root);

    /** What two names have in common that some file system takes for one. */
    static QString folded(const QString& name);

    /** Whether the run itself keeps something of that name in its work and output folders. */
    static bool isReserved(const QString& folder);

private:
    void readChannel(const JobObject& channel, const JobObject& defaults);
    void readShared(const JobObject& channel, const JobObject& defaults, JobChannel& read);
    void readFolder(const JobObject& channel, JobChannel& read);
    void readPlace(const JobObject& channel, const JobObject& defaults, JobChannel& read);
    void readMark(const JobObject& giver, JobChannel& read);
    QStringList sdksOf(const JobObject& giver) const;

    JobInputs& m_inputs;
    JobFaults& m_faults;
    Job& m_job;
    QHash<QString, QString> m_folders; ///< folded, to the place of the channel that has it
};

#endif
