#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "feeds/alerts/alert_enumerations.h"
#include "platform/transit_records.h"

namespace linewatch::desktop {

/// The facts about an incident that are not in the content of a row.
struct FoundIncident {
  /// The lines that have the incident, in the order of the feeds.
  std::vector<std::shared_ptr<const TransitLineFields>> lines = {};
  AlertSeverity severity = AlertSeverity::unknownSeverity;
  AlertCause cause = AlertCause::unknownCause;
  AlertEffect effect = AlertEffect::unknownEffect;
  /// The names of the affected stops, in the feed's order.
  std::vector<std::string> stops = {};
  /// Whether the incident affects one direction only.
  bool isOneDirectionOnly = false;
};

/// By the incidents' `muid`.
using FoundIncidents = std::map<std::uint64_t, FoundIncident>;

}  // namespace linewatch::desktop
