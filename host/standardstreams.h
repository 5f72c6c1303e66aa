// SPDX-License-Identifier: MIT
#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

#include <QString>

#include <cstdio>

/** What goes to the standard output, and whether results have arrived. */
namespace StandardStreams {

/** Writes at once; what fails on the standard output is kept for outputError(). */
void write(std::FILE* stream, const QString& text);

/** Why something has not reached the standard output, by whomever it was written; empty when all has. */
QString outputError();

} // namespace StandardStreams

#endif
