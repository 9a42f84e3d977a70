#include "app/next_change.h"

#include <algorithm>

namespace linewatch::app {

namespace {

void take(std::optional<Date> date, Date now, std::optional<Date>& earliest) {
  if (date && *date > now) earliest = std::min(earliest.value_or(*date), *date);
}

}  // namespace

std::optional<Date> nextChange(std::span<const SharedLineItem> lines, std::span<const FeedState> states,
                               Date now) {
  std::optional<Date> earliest;
  take(nextUpdate(states, now), now, earliest);
  for (const SharedLineItem& line : lines) {
    for (const SharedIncident& incident : line->incidents()) {
      take(incident->startDate(), now, earliest);
      // At its end an incident is still in force.
      if (const auto end = incident->endDate()) take(*end + Seconds(0.001), now, earliest);
    }
  }
  return earliest;
}

}  // namespace linewatch::app
