// SPDX-License-Identifier: MIT
#ifndef OUTCOMEJSON_H
#define OUTCOMEJSON_H

#include "build/buildoutcome.h"

#include <QJsonObject>

#include <array>

/** Outcomes as the report and the records write them. */
namespace OutcomeJson {

/** The words for outcomes, in the order of the enumerations. */
constexpr std::array<const char*, 4> channelWords{"built", "unchanged", "failed", "not reached"};
constexpr std::array<const char*, 3> stepWords{"done", "failed", "skipped"};

QString word(ChannelOutcome::Outcome outcome);
QString word(BuildStep::Outcome outcome);

/** ISO 8601, UTC, with milliseconds; null for an invalid one. */
QJsonValue time(const QDateTime& time);

QJsonObject object(const BuildStep& step);

/** Of the shape that docs/report.schema.json describes, paths as they are. */
QJsonObject object(const ChannelOutcome& channel);

/** The step, or the channel, of such an object. @param[out] isSound false when it is none; left alone
 * otherwise */
BuildStep step(const QJsonValue& value, bool& isSound);
ChannelOutcome channel(const QJsonValue& value, bool& isSound);

} // namespace OutcomeJson

#endif
