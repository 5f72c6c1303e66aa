// SPDX-License-Identifier: MIT
#include "build/buildoutcome.h"

#include <algorithm>

bool BuildOutcome::succeeded() const
{
    return !interrupted && std::all_of(channels.cbegin(), channels.cend(), [](const ChannelOutcome& channel) {
        return channel.outcome == ChannelOutcome::Built || channel.outcome == ChannelOutcome::Unchanged;
    });
}
