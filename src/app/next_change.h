#pragma once

#include <optional>
#include <span>

#include "feeds/feed_state.h"
#include "platform/transit_line.h"
#include "shared/date.h"

namespace linewatch::app {

/// When the news will change by themselves: an incident begins or ends, a failed feed is to be asked again,
/// or its kept alerts become too old. After `now`; absent when nothing of this is in sight.
std::optional<Date> nextChange(std::span<const SharedLineItem> lines, std::span<const FeedState> states,
                               Date now);

}  // namespace linewatch::app
