#include "list/transit_incident_filter.h"

#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch {

bool RVTransitIncidentFilter::shouldDisplayIncident(const TransitIncident& incident) const {
  const Date now = platform().mainLoop().now();
  const auto start = incident.startDate();
  if (start && *start > now) return false;
  const auto end = incident.endDate();
  return !(end && *end < now);
}

}  // namespace linewatch
