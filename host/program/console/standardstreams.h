// SPDX-License-Identifier: MIT
#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

#include <QString>

#include <cstdio>

/** The descriptors 0, 1 and 2, and whether results have arrived. */
namespace StandardStreams {

/**
 * Opens those that the program was started without, before anything else is given their numbers: reading from
 * them comes to an end at once, writing fails. To be called first.
 */
void ensureOpen();

/** Writes at once; what fails on the standard output is kept for outputError(). */
void write(std::FILE* stream, const QString& text);

/** Why something has not reached the standard output, by whomever it was written; empty when all has. */
QString outputError();

} // namespace StandardStreams

#endif
