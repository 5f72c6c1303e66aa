// SPDX-License-Identifier: MIT
#ifndef RECORDSFILE_H
#define RECORDSFILE_H

#include "build/buildrecords.h"

/**
 * The file behind BuildRecords, by short connections of their own: what tables it has, and what they tell.
 * Each function gives a sentence where it cannot do its work.
 */
namespace RecordsFile {

/** How times stand in the file: ISO 8601, UTC, with milliseconds; null for an invalid one. */
QVariant timeText(const QDateTime& time);

/** Makes what is missing; empty when the file can be written. Nothing is changed otherwise. */
QString prepare(const QString& file);

/** Writes the row of a run that begins, and gives it its number; 0 with an error. */
qint64 begin(const QString& file, const BuildOutcome& build, QString& error);

/** All runs, the latest first. */
QVector<ListedBuild> builds(const QString& file, QString& error);

/** The channels of a run with their steps, as far as they are known, in the order of their ends. */
QVector<ChannelOutcome> channels(const QString& file, qint64 build, QString& error);

/** The last complete build of each channel of a game, from this file and its siblings in slices. */
QHash<QString, EarlierBuild> earlier(const QString& file, const QString& game, QString& error);

} // namespace RecordsFile

#endif
