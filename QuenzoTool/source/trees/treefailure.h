// SPDX-License-Identifier: MIT
#ifndef TREEFAILURE_H
#define TREEFAILURE_H

#include "files/treefolder.h"

/**
 * Tells the log of the trees, in one line for people, what could not be done with a file or folder, and why.
 *
 * @param what like "removed", which the line puts after "could not be"
 * @param reason the system's, or our own where the system has none
 */
void logFailure(const QByteArray& path, const QString& what, const QString& reason);

/** The same with what the system says of its latest call. */
void logSystemFailure(const QByteArray& path, const QString& what);

/** The same of a folder that could not be removed. */
void logFolderThatStays(const QByteArray& path);

/**
 * Tells at info level of an entry that a move has copied and could not remove: the move goes on behind it,
 * and its result does not speak of it.
 */
void logLeftBehind(const QByteArray& path, const QString& what, const QString& reason);

/** Tells in detail, at debug level, which folder is worked on. */
void logStep(const char* step, const QByteArray& path);

/** Why a folder could not be removed, by what the system says of its latest call. */
QString reasonOfStaying();

/** The same of a folder that could not be opened. */
void logUnreadable(const TreeFolder& folder);

void logFailedCopy(const QByteArray& source, const QByteArray& target, const QString& reason);

#endif
