// SPDX-License-Identifier: MIT
#ifndef FAULTYCALLS_H
#define FAULTYCALLS_H

#include <functional>

/**
 * System calls that fail when a test wants them to, or are counted. A program that is linked with this has
 * them in the place of the C library's own, for the libraries it loads too.
 */
namespace FaultyCalls {

enum Call {
    Opening,
    OpeningUnnamed,
    Writing, ///< into regular files; half of what is handed over arrives while such calls are to fail
    Copying,
    Linking,
    Listing,
    Flushing,
    Removing,
    Renaming,
    ChangingMode,
    Climbing, ///< to the folder above one
    Storing, ///< at a place of a file, as databases do
    Syncing, ///< of a single file
    Locking, ///< of a part of a file, for writing
    StartingThread,
    CallCount
};

/** In the place of an error number: a call that copies then says that it has copied nothing. */
constexpr int nothingDone = 0;

/** Lets the n-th call of a kind, and those after it, fail with an error number, and does something before
 * each.
 */
void failFromNth(Call call, int n, int error, const std::function<void()>& action = {});

/** The same with the n-th alone. */
void failNth(Call call, int n, int error);

/** Does something before the n-th call of a kind, on its thread. */
void actBeforeNth(Call call, int n, const std::function<void()>& action);

/** Whether the file system knows files without a name, in addition to all of the above. */
void allowUnnamedFiles(bool allow);

/** Whether a file can be renamed only if nothing has its new name, in addition to all of the above. */
void allowRenamingIfFree(bool allow);

/** Whether the file system tells the kinds of a folder's entries, in addition to all of the above. */
void tellKinds(bool tell);

/** Whether what was last asked for has come about. */
bool wasHit();

/** Lets every call succeed again. */
void heal();

void startCounting();
int count(Call call);
int linksBeforeFlush();
int removalsBeforeFlush();

} // namespace FaultyCalls

#endif
