#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// One incident of a feed and the entities that tell of it, as places among the message's entities.
struct DistinctIncident {
  /// The entity that it has its id, effect and periods from.
  std::uint32_t entity = 0;
  /// Entities that say the same of other lines: in every text, period and in the effect.
  std::vector<std::uint32_t> repetitions;
  /// Entities of the same id that say it in other languages.
  std::vector<std::uint32_t> otherLanguages;
  /// How many incidents before this one have its id although they are about something else.
  std::uint32_t sameIdBefore = 0;
};

/// The incidents that the message's alerts tell of, in the order of their first entities. Takes time in
/// proportion to the message.
std::vector<DistinctIncident> distinctIncidents(const AlertsMessage& message);

}  // namespace linewatch
