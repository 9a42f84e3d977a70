#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "feeds/alerts/alert_enumerations.h"
#include "feeds/alerts/alerts_message.h"

namespace linewatch {

struct IncidentSources;

/// A stop that an alert names.
struct IncidentStop {
  std::string id;
  /// Empty when the timetable does not have the stop.
  std::string name;

  bool operator==(const IncidentStop&) const = default;
};

/// The facts of an incident that its texts do not hold.
struct IncidentDetails {
  AlertEffect effect = AlertEffect::unknownEffect;
  AlertCause cause = AlertCause::unknownCause;
  AlertSeverity severity = AlertSeverity::unknownSeverity;
  /// In the feed's order.
  std::vector<AlertPeriod> periods = {};
  /// The stops that its selectors name, in the order of their ids.
  std::vector<IncidentStop> stops = {};
  /// The directions of lines that its selectors name, 0 before 1; empty when they name none.
  std::vector<std::uint8_t> directions = {};

  bool operator==(const IncidentDetails&) const = default;
};

using IncidentDetailsByMuid = std::map<std::uint64_t, IncidentDetails>;

/// The details of incidents of the table taken together: the first known effect and cause, the worst
/// severity, and all periods, stops and directions.
IncidentDetails incidentDetails(const IncidentSources& sources, std::span<const std::uint32_t> places);

}  // namespace linewatch
