#include "list/transit_incident_filter.h"

#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch {

bool isInForceAt(const TransitIncident& incident, Date now) {
  const auto start = incident.startDate();
  if (start && *start > now) return false;
  const auto end = incident.endDate();
  return !(end && *end < now);
}

bool RVTransitIncidentFilter::shouldDisplayIncident(const TransitIncident& incident) const {
  return isInForceAt(incident, platform().mainLoop().now());
}

}  // namespace linewatch
