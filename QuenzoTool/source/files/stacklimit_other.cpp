// SPDX-License-Identifier: MIT
#include "files/stacklimit.h"

bool isStackNearlyUsedUp()
{
    return false; // there is no portable way to tell
}
