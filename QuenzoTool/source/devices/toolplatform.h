// SPDX-License-Identifier: MIT
#ifndef TOOLPLATFORM_H
#define TOOLPLATFORM_H

#include <QtGlobal>

/**
 * Called in a child before its program: signals that the host holds back are none of its business. With a
 * group of its own it has no terminal, and also ends when the thread that began it is gone, where the system
 * can see to that.
 */
void prepareToolChild(bool ownGroup);

/** Ends a child that has a group of its own, and all of the group. */
void endToolGroup(qint64 child);

#endif
