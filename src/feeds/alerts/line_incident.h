#pragma once

#include <cstdint>

#include "feeds/alerts/incident_sources.h"
#include "platform/transit_incident.h"

namespace linewatch {

/// The record of an incident of whole lines, by its index in the table.
SharedIncident lineIncident(const IncidentSources& sources, std::uint32_t place);

}  // namespace linewatch
