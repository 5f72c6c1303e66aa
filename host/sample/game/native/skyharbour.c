/* SPDX-License-Identifier: MIT
 *
 * The whole native part of the sample game: an activity that opens its window and handles no event. It uses
 * nothing of the platform's libraries, so the machine's own compiler builds it without any Android kit. */
#include <stddef.h>

struct ANativeActivity;

__attribute__((visibility("default"))) void ANativeActivity_onCreate(struct ANativeActivity *activity,
                                                                     void *savedState, size_t savedStateSize)
{
    (void)activity;
    (void)savedState;
    (void)savedStateSize;
}
