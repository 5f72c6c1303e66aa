// SPDX-License-Identifier: MIT
#ifndef FAULTYCALLS_H
#define FAULTYCALLS_H

/**
 * System calls that fail when a test wants them to, or are counted. A program that is linked with this has
 * them in the place of the C library's own, for the libraries it loads too.
 */
namespace FaultyCalls {

enum Call { Opening, OpeningUnnamed, Copying, Linking, Listing, Flushing, Removing };

/** Lets the n-th call of a kind, and those after it, fail with an error number. */
void failFromNth(Call call, int n, int error);
bool wasHit();

/** Lets every call succeed again. */
void heal();

void startCounting();
int count(Call call);
int linksBeforeFlush();
int removalsBeforeFlush();

} // namespace FaultyCalls

#endif
