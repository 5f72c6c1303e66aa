// SPDX-License-Identifier: MIT
#ifndef JOBPLAN_H
#define JOBPLAN_H

#include "build/job.h"
#include "command.h"

#include <QJsonObject>

/** What a run of a job would do, for people and for machines. */
namespace JobPlan {

/** Lines with a table of the channels. */
QStringList toText(const Job& job);

QJsonObject toJson(const Job& job);

/** Tells the mistakes of a job: people get a line each, machines a list besides. */
void report(const QString& path, const QVector<JobFault>& faults, Console& console);

} // namespace JobPlan

/** Prints the plan of a job, and looks for the programs that it needs; changes nothing. */
ExitCode checkJob(const Job& job, Console& console);

#endif
