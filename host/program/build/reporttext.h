// SPDX-License-Identifier: MIT
#ifndef REPORTTEXT_H
#define REPORTTEXT_H

#include "build/buildoutcome.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <array>

/** What a run adds up to. */
struct ReportSums {
    std::array<int, 4> channels{}; ///< by their outcome
    int packages = 0;
    int unsignedPackages = 0;
    qint64 bytes = 0; ///< of all packages
    QVector<QPair<QString, qint64>> steps; ///< milliseconds of what was done in this run, by step

    explicit ReportSums(const BuildOutcome& build);
    int of(ChannelOutcome::Outcome outcome) const { return channels.at(size_t(outcome)); }
};

/** The words that the report's forms for people share. */
namespace ReportText {

/** A text in which nothing steers the reader's terminal or page: controls, and marks that turn the direction
 * of writing, stand as \x1b or \u202e. */
QString shown(const QString& text);

QString outcomeName(ChannelOutcome::Outcome outcome);
QString stepOutcomeName(BuildStep::Outcome outcome);

/** A step's name for people; names of later versions stay as they are. */
QString stepName(const QString& step);

/** "350 ms", "2.4 s", "2 min 5 s". */
QString stretch(qint64 ms);

/** How long a step took, or the run; 0 for what has no end. */
qint64 duration(const QDateTime& start, const QDateTime& end);

/** The time of all of a channel's steps. */
qint64 duration(const ChannelOutcome& channel);

/** "signed", "unsigned", or how many are not; empty without packages. */
QString signing(const ReportSums& sums);

/** The run's outcome in one sentence. */
QString verdict(const BuildOutcome& build, const ReportSums& sums);

} // namespace ReportText

#endif
