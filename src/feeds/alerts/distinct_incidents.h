#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// One incident of a feed and the entities that describe it, as indexes into the message's entities.
struct DistinctIncident {
  /// The entity that gives the id, the effect and the periods.
  std::uint32_t entity = 0;
  /// Entities with the same texts, periods, effect and stops, usually about other lines. Those without texts
  /// also have the same cause.
  std::vector<std::uint32_t> repetitions;
  /// Entities with the same id and texts in other languages.
  std::vector<std::uint32_t> otherLanguages;
  /// The number of earlier incidents with the same id.
  std::uint32_t sameIdBefore = 0;
};

/// The incidents of the message's alerts, in the order of their first entities. Takes time proportional to
/// the size of the message.
std::vector<DistinctIncident> distinctIncidents(const AlertsMessage& message);

}  // namespace linewatch
