// SPDX-License-Identifier: MIT
#ifndef TREERIGHTS_H
#define TREERIGHTS_H

class QString;

/**
 * Gives every file in a folder, at every depth and through links, the permission QFileDevice::WriteOther
 * alone, and tells of each in Qt's message log.
 *
 * @param path the folder's path as the messages show it
 */
void forceTreeWriteOther(const QString& path);

#endif
