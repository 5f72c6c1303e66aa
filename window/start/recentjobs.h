// SPDX-License-Identifier: MIT
#ifndef RECENTJOBS_H
#define RECENTJOBS_H

#include <QStringList>

/** The job files of late, the latest first, as the person's settings keep them. */
namespace RecentJobs {

QStringList all();
void add(const QString& path); ///< to the front; the oldest goes where it is too many
void remove(const QString& path);

} // namespace RecentJobs

#endif
