// SPDX-License-Identifier: MIT
#ifndef OPENFILE_H
#define OPENFILE_H

#include <QFile>

/** Whether an open file is still what its path leads to: nobody removed it, moved it away or put another
 * there. */
bool isAtItsPath(const QFile& file);

#endif
