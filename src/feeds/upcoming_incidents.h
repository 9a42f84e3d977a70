#pragma once

#include <span>
#include <vector>

#include "platform/transit_line.h"
#include "shared/date.h"

namespace linewatch {

/// How far ahead `upcomingIncidents` looks.
inline constexpr Seconds kUpcomingSpan{7.0 * 86400};

/// An incident that has not begun yet, and the lines that have it, in the order of the lines.
struct UpcomingIncident {
  SharedIncident incident;
  TransitLineItems lines;
};

/// The incidents that begin after `now` and within `kUpcomingSpan`, the earliest first. Incidents that
/// begin at the same time are in the order of the lines. Each incident is listed once. An incident in force
/// now is not listed, even if it has another period within the span.
std::vector<UpcomingIncident> upcomingIncidents(std::span<const SharedLineItem> lines, Date now);

}  // namespace linewatch
