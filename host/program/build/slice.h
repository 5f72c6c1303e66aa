// SPDX-License-Identifier: MIT
#ifndef SLICE_H
#define SLICE_H

#include <QProcessEnvironment>
#include <QString>

/** The part of a job's channels that one process of many takes: every count-th one, from the index-th on. */
struct Slice {
    int index = 0; ///< from 0
    int count = 1;
    QString source; ///< who said so, for the person: "--slice", "SLURM_ARRAY_TASK_ID"; empty for the whole

    bool isWhole() const { return count == 1; }
    bool takes(int channel) const { return channel % count == index; }

    /**
     * Reads the words of the command line, and without a --slice what a scheduler says in the environment:
     * Slurm's arrays, GitLab's parallel jobs, and with --slices the indexed jobs of Kubernetes.
     *
     * Two schedulers at once are refused, and so is one that does not say of how many: a guess would leave
     * channels out, or build them twice.
     *
     * @param slice "I/N", I from 1; empty when not given
     * @param slices "N"; empty when not given
     * @param[out] fault a sentence when they cannot be used, which names the option or the variable
     */
    static Slice of(const QString& slice, const QString& slices, const QProcessEnvironment& environment,
                    QString& fault);
};

#endif
