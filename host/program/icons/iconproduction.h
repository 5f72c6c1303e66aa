// SPDX-License-Identifier: MIT
#ifndef ICONPRODUCTION_H
#define ICONPRODUCTION_H

#include <QStringList>

class Console;
class FileTally;
struct IconJob;

/**
 * Has the library make the icons, and brings them into the job's layout; a terminal sees how far that is.
 *
 * @param tally of the job's files
 * @param[out] causes why files were not written, as far as the library did not say it
 * @return false, with the error reported, when nothing was done
 */
bool produceIcons(const IconJob& job, FileTally& tally, QStringList& causes, Console& console);

#endif
