// SPDX-License-Identifier: MIT
#include "openfile.h"

// An open file can be neither removed nor moved here.
bool isAtItsPath(const QFile& file)
{
    return file.exists();
}
