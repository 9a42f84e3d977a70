#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "feeds/alerts/alert_enumerations.h"
#include "platform/transit_records.h"

namespace linewatch::desktop {

/// The facts of an incident that a row does not hand over.
struct FoundIncident {
  /// The lines that have the incident, in the order of the feeds.
  std::vector<std::shared_ptr<const TransitLineFields>> lines = {};
  AlertSeverity severity = AlertSeverity::unknownSeverity;
  AlertCause cause = AlertCause::unknownCause;
  AlertEffect effect = AlertEffect::unknownEffect;
  /// The names of the stops that the incident is about, in the feed's order.
  std::vector<std::string> stops = {};
  /// The incident is about one of the two directions of its lines.
  bool isOneDirectionOnly = false;
};

/// By the incidents' `muid`.
using FoundIncidents = std::map<std::uint64_t, FoundIncident>;

}  // namespace linewatch::desktop
