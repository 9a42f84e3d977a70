#pragma once

#include <cstdint>
#include <memory>

#include "feeds/alerts/incident_language.h"
#include "feeds/alerts/incident_table.h"
#include "feeds/gtfs/stop_names.h"
#include "shared/date.h"

namespace linewatch {

/// The sources of the records of a feed's incidents.
struct IncidentSources {
  SharedIncidentTable table;
  SharedIncidentLanguage language;
  /// Chooses among the periods of an incident.
  Date now;
  /// Null when no names of stops are known.
  std::shared_ptr<StopNames> stops;

  const DistinctIncident& incident(std::uint32_t place) const { return table->incidents()[place]; }
  /// The alert that gives the incident its id, effect and periods.
  const AlertsMessage::Entity& alert(const DistinctIncident& incident) const {
    return table->message().entities()[incident.entity];
  }
};

}  // namespace linewatch
