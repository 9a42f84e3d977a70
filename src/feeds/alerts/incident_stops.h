#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/incident_sources.h"
#include "platform/line_choice.h"

namespace linewatch {

struct StopNameList {
  /// Each once. "Stop 7" stands for a stop without a name.
  std::vector<std::string> names;
  /// False when a name is missing in the timetable.
  bool areAllKnown = true;
};

/// Empty when the timetable does not have the stop.
std::string nameOfStop(const IncidentSources& sources, std::string_view stopId);

/// The names in the order of the ids.
StopNameList namesOfStops(const IncidentSources& sources, std::span<const std::string_view> stopIds);

/// The ids of the stops that the alerts of an incident name, sorted, each once.
std::vector<std::string_view> stopIdsOf(const IncidentSources& sources, std::uint32_t incident);

/// True when the choice has the stop, its station or a platform of it.
bool isChosenStop(const IncidentSources& sources, std::string_view stopId, const LineChoice& choice);

/// A stop's id as text that can be shown.
std::string shownStopId(std::string_view stopId);

}  // namespace linewatch
