// SPDX-License-Identifier: MIT
#ifndef DRYRUN_H
#define DRYRUN_H

class Console;
struct IconJob;

/** Tells file by file what a run of the job would delete and write, and touches nothing. */
void reportDryRun(const IconJob& job, Console& console);

#endif
