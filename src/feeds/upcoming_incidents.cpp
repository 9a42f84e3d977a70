#include "feeds/upcoming_incidents.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

#include "shared/hash_mixing.h"

namespace linewatch {

namespace {

bool isUpcoming(const TransitIncident& incident, Date now) {
  const auto start = incident.startDate();
  return start && *start > now && *start <= now + kUpcomingSpan;
}

}  // namespace

std::vector<UpcomingIncident> upcomingIncidents(std::span<const SharedLineItem> lines, Date now) {
  std::vector<UpcomingIncident> all;
  std::unordered_map<std::uint64_t, std::size_t, IdentifierHash> places;
  for (const SharedLineItem& line : lines) {
    for (const SharedIncident& incident : line->incidents()) {
      if (!isUpcoming(*incident, now)) continue;
      const auto [place, isNew] = places.try_emplace(incident->muid(), all.size());
      if (isNew) all.push_back({.incident = incident, .lines = {}});
      TransitLineItems& known = all[place->second].lines;
      if (known.empty() || known.back() != line) known.push_back(line);
    }
  }
  std::ranges::stable_sort(all, {}, [](const UpcomingIncident& each) { return *each.incident->startDate(); });
  return all;
}

}  // namespace linewatch
