// SPDX-License-Identifier: MIT
#ifndef REPORTSCENE_H
#define REPORTSCENE_H

#include "build/buildoutcome.h"

#include <QMetaType>

Q_DECLARE_METATYPE(BuildOutcome)

/** Runs whose reports the tests look at. Nothing of them lies on the disk. */
namespace ReportScene {

/** A moment of the runs, counted from their start. */
QDateTime at(qint64 ms);

/** A channel that went through all steps, in 1.4 seconds. */
ChannelOutcome built(int index, const QString& folder);

/** The same, which failed when it was to be signed. */
ChannelOutcome failed(int index, const QString& folder, const QString& message);

/** A run with a channel of every outcome: two built, one unchanged, one failed, one not reached. */
BuildOutcome run();

/** One slice of a run over so many channels; every count-th is its. */
BuildOutcome slice(int index, int count, int channels);

/** The names of the fields by which two outcomes of a channel differ, all of them looked at; empty for none.
 */
QString differenceOf(const ChannelOutcome& one, const ChannelOutcome& other);

/** What must reach no reader as anything but a text. */
QString hostileText();

} // namespace ReportScene

#endif
