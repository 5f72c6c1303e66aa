// SPDX-License-Identifier: MIT
#ifndef TREEREMOVAL_H
#define TREEREMOVAL_H

#include <QByteArray>

/**
 * Deletes the folder at an absolute path with all that is in it, as far as that can be done. Links in it are
 * removed and not followed; a link given as the folder itself is, and stays.
 *
 * @return true when there is no folder left
 */
bool removeTree(const QByteArray& path);

#endif
