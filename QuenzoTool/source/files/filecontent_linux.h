// SPDX-License-Identifier: MIT
#ifndef FILECONTENT_LINUX_H
#define FILECONTENT_LINUX_H

#include <sys/stat.h>

/**
 * Copies the content of an open file into an empty one by the kernel's own means: shares the blocks, has them
 * copied without passing through the process, or reads and writes; holes stay holes.
 *
 * @param status the source's own
 * @return false with errno set when not all of it could be copied
 */
bool copyContent(int source, int target, const struct stat& status);

#endif
