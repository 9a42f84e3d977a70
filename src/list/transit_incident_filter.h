#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Decides which incidents are shown, by their dates alone: an incident is shown while it is in force.
class RVTransitIncidentFilter {
 public:
  virtual ~RVTransitIncidentFilter() = default;

  /// Whether it is in force at the present time. Reads the clock on every call.
  virtual bool shouldDisplayIncident(const TransitIncident& incident) const;
};

}  // namespace linewatch
