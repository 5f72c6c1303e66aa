// SPDX-License-Identifier: MIT
#ifndef TREEFOLDER_LINUX_H
#define TREEFOLDER_LINUX_H

#include "files/treefolder.h"

struct stat;

/** The same of a file that is open as of one that a TreeFolder finds. */
FileState stateFrom(const struct stat& status);

#endif
