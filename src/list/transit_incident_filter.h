#pragma once

#include "platform/transit_incident.h"
#include "shared/date.h"

namespace linewatch {

/// Whether the incident is in force at `now`: from its start to its end, both included. An absent date sets
/// no limit. Any thread.
bool isInForceAt(const TransitIncident& incident, Date now);

/// Decides which incidents are shown, by their dates alone: an incident is shown while it is in force.
class RVTransitIncidentFilter {
 public:
  virtual ~RVTransitIncidentFilter() = default;

  /// `isInForceAt` the present time. Reads the clock on every call.
  virtual bool shouldDisplayIncident(const TransitIncident& incident) const;
};

}  // namespace linewatch
