// SPDX-License-Identifier: MIT
#ifndef OUTCOMEJSON_H
#define OUTCOMEJSON_H

#include "build/buildoutcome.h"

/** A channel's outcome as the records keep it for the next run, but for its inputs, digest and folder. */
namespace OutcomeJson {

QString textOf(const ChannelOutcome& channel);
void read(const QString& text, ChannelOutcome& channel);

} // namespace OutcomeJson

#endif
