// SPDX-License-Identifier: MIT
#ifndef TREERIGHTS_H
#define TREERIGHTS_H

class QDir;

/**
 * Gives every file in a folder, at every depth and through links, the permission QFileDevice::WriteOther
 * alone, and tells of each in Qt's message log. The folder's own name filters hold directly in it. What is
 * too deep for the thread's stack is left as it is.
 */
void forceTreeWriteOther(const QDir& top);

#endif
