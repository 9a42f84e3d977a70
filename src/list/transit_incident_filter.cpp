#include "list/transit_incident_filter.h"

#include "platform/in_force.h"
#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch {

bool RVTransitIncidentFilter::shouldDisplayIncident(const TransitIncident& incident) const {
  return isInForceAt(incident, platform().mainLoop().now());
}

}  // namespace linewatch
