// SPDX-License-Identifier: MIT
#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

#include <QByteArray>
#include <QString>

/** The descriptors 0, 1 and 2, and whether results have arrived. */
namespace StandardStreams {

/**
 * To be called first, before anything else is given the numbers of streams that the program was started
 * without: reading from these comes to an end at once, writing fails. From then on the standard output is for
 * results alone: whatever else writes to it, a script or a tool, reaches the standard error.
 */
void takeOver();

/** Whether a person reads the results. */
bool outputIsTerminal();

/** Whether a person types the input. */
bool inputIsTerminal();

/** Writes at once; what fails is kept for outputError(). */
void writeResult(const QByteArray& bytes);
void writeDiagnostic(const QString& text);

/** Why a result has not reached the standard output; empty when all have. */
QString outputError();

/** All of the standard input. @param[out] error why it could not be read; left alone otherwise */
QByteArray readInput(QString& error);

/** A part of it, up to a size; empty at its end, or when it could not be read. Not to be mixed with the
 * above.
 */
QByteArray readPiece(qint64 size, QString& error);

} // namespace StandardStreams

#endif
