// SPDX-License-Identifier: MIT
#ifndef STACKLIMIT_H
#define STACKLIMIT_H

/** Whether little is left of this thread's stack: a walk through a tree is to end then, and not the process.
 */
bool isStackNearlyUsedUp();

#endif
