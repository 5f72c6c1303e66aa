// SPDX-License-Identifier: MIT
#ifndef JOBTOOLS_H
#define JOBTOOLS_H

#include "console/failure.h"

#include <QHash>
#include <QVector>

#include <optional>

struct Job;
struct JobChannel;

/** Which programs a job's channels need besides those that come with this one, known before a run has
 * imported anything. */
class JobTools {
public:
    explicit JobTools(const Job& job);

    /** Whether a channel's manifest is not the base's: by its own package name, or by what the packages of
     * its SDKs hold. */
    bool changesManifest(const JobChannel& channel);

    /** The first program that the channels need and this machine does not have. */
    std::optional<Failure> missing(const QVector<JobChannel>& channels);

private:
    bool hasFragment(const QString& sdk);

    const Job& m_job;
    QHash<QString, bool> m_fragments; ///< by SDK, of those that were looked at
};

#endif
